// Keeping passwords out of what is printed.
#ifndef QUARRY_TOOLS_SECRETS_H_
#define QUARRY_TOOLS_SECRETS_H_

#include <cstddef>
#include <list>
#include <string>
#include <string_view>

namespace quarry::tool {

inline constexpr char kMask[] = "********";

// Where in a line that names the password, well-formed or not, in whatever
// place and nearly spelled too, the password begins; npos in other lines.
std::size_t FindSecret(std::string_view line);

// The one place through which a command that knows passwords prints.
class Masker {
 public:
  Masker() = default;
  ~Masker();  // wipes
  Masker(const Masker&) = delete;
  Masker& operator=(const Masker&) = delete;

  // The text will not be shown from now on; an empty one is no secret.
  void Hide(const std::string& secret);

  // The text with every secret masked. A secret of less than four bytes is
  // masked only where it is the whole text: it stands in too many others.
  std::string Masked(std::string text) const;

 private:
  std::list<std::string> secrets_;  // its texts stay where they are
};

// From now on a crash leaves no image of this process's memory.
void ForbidCoreDumps();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_SECRETS_H_
