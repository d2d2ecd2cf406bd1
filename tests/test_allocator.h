// An operator new that fails on demand and an operator delete that looks for
// secrets, in the program that links them. For one thread at a time.
#ifndef QUARRY_TESTS_TEST_ALLOCATOR_H_
#define QUARRY_TESTS_TEST_ALLOCATOR_H_

#include <string>

// The n-th allocation from now on fails, and with `for_ever` every later one.
// n = 0 switches it off.
void FailAllocation(long n, bool for_ever = false);

// How many allocations have failed so far.
long AllocationFaults();

// From now on counts the blocks that hold `secret` when they are freed. An
// empty one ends this.
void WatchFreedMemory(const std::string& secret);
long FreedSecrets();

#endif  // QUARRY_TESTS_TEST_ALLOCATOR_H_
