// What two texts say to programs: where they differ, and one text for all that say the same.
#ifndef QUARRY_SETTINGS_DIFFERENCES_H_
#define QUARRY_SETTINGS_DIFFERENCES_H_

#include <optional>
#include <string>
#include <vector>

#include "settings/document.h"

namespace quarry::settings {

// A section (without an option) that is on one side only, or an option that is on one side only or
// has another value. A side that lacks it has no value; that of a section is empty.
struct Difference {
  std::string section;
  std::optional<std::string> option;
  std::optional<std::string> left, right;
};

// Sections and options are compared by their names, values byte by byte; order and comments do not
// count. A section that is on one side only comes right before the options in it.
std::vector<Difference> FindDifferences(Document* left, Document* right);

// The text of all documents without a difference between them, and of no other: sections and
// options in order of their names, which are in lower case and end before their first NUL; no
// comments. It is valid, and its own canonical text.
std::string CanonicalText(Document* document);

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_DIFFERENCES_H_
