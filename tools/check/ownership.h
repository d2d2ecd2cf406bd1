// Users in messages: who owns a file, and how to run a command as that user.
#ifndef QUARRY_TOOLS_CHECK_OWNERSHIP_H_
#define QUARRY_TOOLS_CHECK_OWNERSHIP_H_

#include <sys/types.h>

#include <string>

namespace quarry::tool {

// "user storage", or "user 4001" for one without a name.
std::string UserText(uid_t user);

// How to run the command as that user: "runuser -u storage -- COMMAND".
std::string CommandAs(uid_t user, const std::string& command);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_OWNERSHIP_H_
