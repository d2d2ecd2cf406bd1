// An operator new that can be made to fail and an operator delete that searches
// for secrets, in the program that links them. For one thread at a time.
#ifndef QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_
#define QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_

#include <functional>
#include <string>

// Too long for the buffer inside a std::string, so that a copy of it allocates.
inline const std::string kLongText = "a text that is longer than a small string";

// The result of an operation that ended with std::bad_alloc.
inline constexpr int kThrown = 1;

// Runs `prepare` and then `work` with its n-th allocation failing, for n = 1, 2,
// ... until `work` needs fewer than n; first with that one failing alone, then
// with all later ones failing too. `check` is given each result of `work`.
// Returns how many runs had an allocation that failed.
long FailEachAllocation(const std::function<void()>& prepare, const std::function<int()>& work,
                        const std::function<void(int)>& check);

// Starts to watch for blocks that hold `secret` when they are freed; none when it
// is empty. Returns how many such blocks were freed since the previous call.
long WatchFreedMemory(const std::string& secret);

#endif  // QUARRY_TESTS_SUPPORT_TEST_ALLOCATOR_H_
