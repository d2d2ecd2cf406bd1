// An operator new that fails on demand and an operator delete that looks for
// secrets, in the program that links them. For one thread at a time.
#ifndef QUARRY_TESTS_TEST_ALLOCATOR_H_
#define QUARRY_TESTS_TEST_ALLOCATOR_H_

#include <gtest/gtest.h>

#include <iostream>
#include <new>
#include <string>

// The n-th allocation from now on fails, and with `for_ever` every later one.
// n = 0 switches it off.
void FailAllocation(long n, bool for_ever = false);

// How many allocations have failed so far.
long AllocationFaults();

// What an operation came to whose memory ran out.
inline constexpr int kThrown = 1;

// Runs `work`, whose result is an int, on what `prepare` makes, with its n-th
// allocation failing, for n = 1, 2, ... until it does not need that many; first
// with that one failing alone, then with all after it. `look` is given each
// result, kThrown for std::bad_alloc. Prints how many have failed: at least one.
template <typename Prepare, typename Work, typename Look>
void FailEachAllocation(const std::string& name, Prepare prepare, Work work, Look look) {
  SCOPED_TRACE(name);
  const long faults_before = AllocationFaults();
  for (const bool persistent : {false, true}) {
    for (long n = 1;; ++n) {
      auto prepared = prepare();
      const long faults_so_far = AllocationFaults();
      int result = kThrown;
      FailAllocation(n, persistent);
      try {
        result = work(prepared.get());
      } catch (const std::bad_alloc&) {
      }
      FailAllocation(0);
      if (AllocationFaults() == faults_so_far) break;
      SCOPED_TRACE(n);
      look(prepared.get(), result);
    }
  }
  EXPECT_GT(AllocationFaults(), faults_before);
  std::cout << name << ": " << AllocationFaults() - faults_before << " allocations failed\n";
}

// From now on counts the blocks that hold `secret` when they are freed. An
// empty one ends this.
void WatchFreedMemory(const std::string& secret);
long FreedSecrets();

#endif  // QUARRY_TESTS_TEST_ALLOCATOR_H_
