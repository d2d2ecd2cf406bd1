// A text that was loaded and saved loads again to the same names and values in the same order; each
// comment comes back with a line "#" above, which the writer puts before a comment that begins with
// a line feed. Two texts differ exactly when their canonical texts do.
#include "fuzz/reference_reader.h"
#include "fuzz/target.h"
#include "settings/differences.h"

namespace quarry::fuzz {

namespace {

using settings::CanonicalText;
using settings::Document;

// Returns whether the texts, both valid, say the same.
bool Agree(const std::string& one, const std::string& other) {
  Document left("left", std::string(one)), right("right", std::string(other));
  const std::string canonical = CanonicalText(&left);
  const bool agree = settings::FindDifferences(&left, &right).empty();
  Require(agree == settings::FindDifferences(&right, &left).empty(), "differences have no side");
  Require(agree == (canonical == CanonicalText(&right)), "canonical texts are equal as texts are");
  Document document("canonical", std::string(canonical));
  Require(CanonicalText(&document) == canonical, "a canonical text is its own");
  Require(settings::FindDifferences(&left, &document).empty(), "and loses nothing");
  return agree;
}

// Another byte or letter case, a line less, and the last section first.
void TryVariations(const std::string& text) {
  if (text.empty()) return;
  const std::size_t middle = text.size() / 2;
  std::string other_byte = text, line_less = text;
  other_byte[middle] = static_cast<char>(other_byte[middle] ^ 0x20);
  const std::size_t begin = text.rfind('\n', middle) + 1;
  line_less.erase(begin, text.find('\n', middle) + 1 - begin);
  const std::size_t last = text.rfind("\n[") + 1;
  const std::string moved = text.substr(last) + '\n' + text.substr(0, last);
  for (const std::string& variation : {other_byte, line_less, moved}) {
    if (ReadText(variation).status != 0) continue;
    Saw(Agree(text, variation) ? "variation agrees" : "variation differs");
  }
}

}  // namespace

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
  Require(Agree(input, text), "what was saved does not differ");
  TryVariations(input);
}

}  // namespace quarry::fuzz
