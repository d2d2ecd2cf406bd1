// Keeps known passwords out of output.
#ifndef QUARRY_TOOLS_TERMINAL_REDACTOR_H_
#define QUARRY_TOOLS_TERMINAL_REDACTOR_H_

#include <list>
#include <string>

namespace quarry::tool {

// What is shown for a secret, whatever its length.
inline constexpr char kMask[] = "********";

// A command that knows passwords prints through a Redactor.
class Redactor {
 public:
  Redactor() = default;
  ~Redactor();  // wipes its copies
  Redactor(const Redactor&) = delete;
  Redactor& operator=(const Redactor&) = delete;

  // Adds a secret; an empty one is ignored.
  void Hide(const std::string& secret);

  // Returns the text with every secret masked. A secret of less than four bytes is masked only
  // where it is the whole text: it is a part of too many others.
  std::string Redact(std::string text) const;

 private:
  std::list<std::string> secrets_;  // in a list, so that their texts are never moved
};

// Disables core dumps of this process.
void DisableCoreDumps();

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TERMINAL_REDACTOR_H_
