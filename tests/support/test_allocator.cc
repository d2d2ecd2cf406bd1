#include "tests/support/test_allocator.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

namespace {

long countdown = 0;  // the allocation that fails is number 1; 0 is none
bool fails_on = false;
long faults = 0;

std::string watched;
long freed_secrets = 0;

bool FailsNow() {
  if (countdown == 0) return false;
  if (countdown > 1) {
    --countdown;
    return false;
  }
  if (!fails_on) countdown = 0;
  ++faults;
  return true;
}

}  // namespace

long FailEachAllocation(const std::string& name, const std::function<void()>& prepare,
                        const std::function<int()>& work, const std::function<void(int)>& look) {
  SCOPED_TRACE(name);
  const long faults_before = faults;
  for (const bool persistent : {false, true}) {
    fails_on = persistent;
    for (long n = 1;; ++n) {
      prepare();
      const long faults_so_far = faults;
      int result = kThrown;
      countdown = n;
      try {
        result = work();
      } catch (const std::bad_alloc&) {
      }
      countdown = 0;
      if (faults == faults_so_far) break;
      SCOPED_TRACE(n);
      look(result);
    }
  }
  std::cout << name << ": " << faults - faults_before << " allocations failed\n";
  return faults - faults_before;
}

void WatchFreedMemory(const std::string& secret) {
  watched = secret;
  freed_secrets = 0;
}

long FreedSecrets() { return freed_secrets; }

void* operator new(std::size_t size) {
  if (FailsNow()) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr && !watched.empty() &&
      memmem(memory, malloc_usable_size(memory), watched.data(), watched.size()) != nullptr) {
    ++freed_secrets;
  }
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
