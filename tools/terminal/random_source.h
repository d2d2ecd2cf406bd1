#ifndef QUARRY_TOOLS_TERMINAL_RANDOM_SOURCE_H_
#define QUARRY_TOOLS_TERMINAL_RANDOM_SOURCE_H_

namespace quarry::tool {

// Lets libsodium draw its random bytes with getrandom(2). When the system gives none, the process
// ends at once with a message and kExitFailed; libsodium itself would abort. So draw them before
// there is anything to clean up. To be called before anything else uses libsodium.
void SetRandomSource();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_RANDOM_SOURCE_H_
