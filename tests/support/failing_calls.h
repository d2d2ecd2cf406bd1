// System calls that fail when a test says so.
#ifndef QUARRY_TESTS_SUPPORT_FAILING_CALLS_H_
#define QUARRY_TESTS_SUPPORT_FAILING_CALLS_H_

#include <string>
#include <vector>

struct FailingCall {
  std::string name;  // read, write, poll, close, waitpid, fchmod, renameat2, or one a test replaces
  int error;
};
extern std::vector<FailingCall> failing_calls;  // in this order, each once

// Whether this call is the next to fail; sets errno then.
bool Fails(const char* call);

#endif  // QUARRY_TESTS_SUPPORT_FAILING_CALLS_H_
