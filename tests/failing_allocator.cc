#include "tests/failing_allocator.h"

#include <cstdlib>
#include <new>

namespace {

long countdown = 0;  // the allocation that fails is number 1; 0 is none
bool fails_on = false;
long faults = 0;

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

void* operator new(std::size_t size) {
  if (FailsNow()) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
