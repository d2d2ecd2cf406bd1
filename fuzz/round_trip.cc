// A text that was loaded and saved loads again to the same names and values in the same order; each
// comment comes back with a line "#" above, which the writer puts before a comment that begins with
// a line feed.
#include "fuzz/reference_reader.h"
#include "fuzz/target.h"

namespace quarry::fuzz {

void TryInput(const std::string& input) {
  const CerrCapture cerr;
  storage::dmconfig::DMConfig first, second;
  if (Load(input, &first) != 0) return;
  Saw("saved");

  Sections expected = SectionsOf(&first);
  const auto add_marker = [](std::string* comment) {
    if (comment->empty()) return;
    Saw("saved with a comment");
    comment->insert(0, "\n#");
  };
  for (Section& section : expected) {
    add_marker(&section.comment);
    for (Option& option : section.options) add_marker(&option.comment);
  }
  const std::string text = Dump(&first);
  Require(Load(text, &second) == 0, "what was saved is valid");
  Require(SectionsOf(&second) == expected, "what was saved is what was loaded");
  Require(ReadText(text).sections == expected, "and so for the reference reader");
}

}  // namespace quarry::fuzz
