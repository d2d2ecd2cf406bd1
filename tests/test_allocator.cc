#include "tests/test_allocator.h"

#include <malloc.h>

#include <cstdlib>
#include <cstring>
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

void FailAllocation(long n, bool for_ever) {
  countdown = n;
  fails_on = for_ever;
}

long AllocationFaults() { return faults; }

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
