// Keeping passwords out of what is printed.
#ifndef QUARRY_TOOLS_SECRETS_H_
#define QUARRY_TOOLS_SECRETS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quarry::tool {

inline constexpr char kMask[] = "********";

// Where in a line that sets a password, well-formed or not, the password
// begins; npos in other lines and when there is none.
std::size_t FindSecret(std::string_view line);

// The one place through which a command that knows passwords prints.
class Masker {
 public:
  // The text will not be shown from now on; an empty one is no secret.
  void Hide(const std::string& secret);

  // The text with every secret masked. A secret of less than four bytes is
  // masked only where it is the whole text: it stands in too many others.
  std::string Masked(std::string text) const;

 private:
  std::vector<std::string> secrets_;
};

// From now on a crash leaves no image of this process's memory.
void ForbidCoreDumps();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SECRETS_H_
