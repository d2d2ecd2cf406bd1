#include "tests/support/test_allocator.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <utility>

namespace {

bool counting = false, fails_on = false;
long remaining = 0;  // allocations up to the one that fails

std::string watched;
long freed_secrets = 0;

}  // namespace

long FailEachAllocation(const std::function<void()>& prepare, const std::function<int()>& work,
                        const std::function<void(int)>& check) {
  long runs = 0;
  for (const bool persistent : {false, true}) {
    fails_on = persistent;
    for (long n = 1;; ++n, ++runs) {
      prepare();
      int result = kThrown;
      remaining = n;
      counting = true;
      try {
        result = work();
      } catch (const std::bad_alloc&) {
      } catch (...) {
        counting = false;
        throw;
      }
      counting = false;
      if (remaining > 0) break;
      SCOPED_TRACE(n);
      check(result);
    }
  }
  std::cout << runs << " allocations failed\n";
  return runs;
}

long WatchFreedMemory(const std::string& secret) {
  watched = secret;
  return std::exchange(freed_secrets, 0);
}

void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
  const bool fails = counting && --remaining <= 0 && (remaining == 0 || fails_on);
  return fails ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr && !watched.empty() &&
      memmem(memory, malloc_usable_size(memory), watched.data(), watched.size()) != nullptr) {
    ++freed_secrets;
  }
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
