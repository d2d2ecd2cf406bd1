// An operator new that fails on demand, in the program that links it.
#ifndef QUARRY_TESTS_FAILING_ALLOCATOR_H_
#define QUARRY_TESTS_FAILING_ALLOCATOR_H_

// The n-th allocation from now on fails, and with `for_ever` every later one.
// n = 0 switches it off.
void FailAllocation(long n, bool for_ever = false);

// How many allocations have failed so far.
long AllocationFaults();

#endif  // QUARRY_TESTS_FAILING_ALLOCATOR_H_
