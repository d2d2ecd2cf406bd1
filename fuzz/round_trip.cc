// Promise: a text that was loaded and saved loads again to the same names and
// values in the same order; each comment comes back behind a line "#", which
// the writer puts before a comment that begins with a line feed.
#include "fuzz/second_reader.h"
#include "fuzz/target.h"

namespace quarry::fuzz {

void TryInput(const std::string& input) {
  const CerrCapture cerr;
  storage::dmconfig::DMConfig first, second;
  if (Load(input, &first) != 0) return;
  Saw("saved");

  Sections wanted = SectionsOf(&first);
  const auto add_marker = [](std::string* comment) {
    if (comment->empty()) return;
    Saw("saved with a comment");
    comment->insert(0, "\n#");
  };
  for (Section& section : wanted) {
    add_marker(&section.comment);
    for (Option& option : section.options) add_marker(&option.comment);
  }
  const std::string text = Dump(&first);
  Demand(Load(text, &second) == 0, "what was saved is valid");
  Demand(SectionsOf(&second) == wanted, "what was saved is what was loaded");
  Demand(ReadText(text).sections == wanted, "and so for another reader");
}

}  // namespace quarry::fuzz
