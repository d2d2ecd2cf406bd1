// An operator new that fails on demand and an operator delete that looks for
// secrets, in the program that links them. For one thread at a time.
#ifndef QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_
#define QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_

#include <functional>
#include <string>

// What an operation came to whose memory ran out.
inline constexpr int kThrown = 1;

// Runs `work` after `prepare` with its n-th allocation failing, for n = 1, 2, ...
// until it does not need that many; first with that one failing alone, then with
// all after it. `look` is given each result, kThrown for std::bad_alloc. Prints and
// returns how many have failed.
long FailEachAllocation(const std::string& name, const std::function<void()>& prepare,
                        const std::function<int()>& work, const std::function<void(int)>& look);

// From now on counts the blocks that hold `secret` when they are freed. An
// empty one ends this.
void WatchFreedMemory(const std::string& secret);
long FreedSecrets();

#endif  // QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_
