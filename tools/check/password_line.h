// Which parts of a text no finding shows.
#ifndef QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_
#define QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_

#include <cstddef>
#include <set>
#include <string_view>

namespace quarry::tool {

// Returns the offset of what follows the name of the agent's password in a line, even in a
// malformed line or misspelled; the line's size when nothing follows, npos when no such name is
// there.
std::size_t FindPassword(std::string_view line);

// The same for names that are usual for a secret as well: "db_passwd", "ClientSecret", "api-token",
// "rootpwd".
std::size_t FindSecret(std::string_view line);

// The offset of `end` in a line that ends in it; npos for other lines.
std::size_t FindEnd(std::string_view line, std::string_view end);

// The secrets of a text, with those that have a line of their own: a secret whose option line is
// empty, or ends in a backslash, is continued by the next lines that are no options or headers of
// their own.
class SecretLines {
 public:
  explicit SecretLines(std::string_view text);

  // Returns the offset of the secret in line `number`, whose text is `line`; npos when there is
  // none.
  std::size_t Find(std::size_t number, std::string_view line) const;

 private:
  std::set<std::size_t> continued_;  // the numbers of lines that are a secret as a whole
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_CHECK_PASSWORD_LINE_H_
