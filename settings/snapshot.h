// An immutable text with its settings, for programs that read them from any thread.
#ifndef QUARRY_SETTINGS_SNAPSHOT_H_
#define QUARRY_SETTINGS_SNAPSHOT_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../platform/export.h"
#include "problem.h"

namespace quarry::settings {

// An option of a snapshot. The views live as long as any copy of the snapshot.
struct Option {
  std::string_view name;   // as the text first spells it
  std::string_view value;  // the last one that the text sets
  // The comment lines above, without their indentation, separated by line feeds. As with a load, a
  // line that sets the option again without a comment leaves the comment as it was.
  std::string_view comment;
  std::size_t line = 0;  // from 1: the one that sets the value
};

// Consecutive elements, which live as long as any copy of the snapshot.
template <typename Element>
class Range {
 public:
  // No elements.
  Range() = default;
  // The elements from `begin` to before `end`.
  Range(const Element* begin, const Element* end) : begin_(begin), end_(end) {}

  // The first element.
  const Element* begin() const { return begin_; }
  // After the last element.
  const Element* end() const { return end_; }
  // How many elements there are.
  std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }
  // Whether there are none.
  bool empty() const { return begin_ == end_; }

 private:
  const Element* begin_ = nullptr;
  const Element* end_ = nullptr;
};

// A section of a snapshot. The views live as long as any copy of the snapshot.
struct Section {
  std::string_view name;     // as the text first spells it
  std::string_view comment;  // above its last header, in the form of an option's
  std::size_t line = 0;      // of its first header, from 1
  Range<Option> options;     // in the order of the lines that first set them
};

// Copies share the text and its settings. Any number of threads may read a snapshot, and copies of
// it, at once; none of the operations below changes it. One that was moved from can only be
// assigned to and destroyed. Names of sections and options are compared without regard to the case
// of the letters A to Z, and end before their first NUL byte.
//
//   std::vector<Problem> problems;
//   const auto snapshot = Snapshot::Load("agent.conf", &problems);
//   for (const Problem& problem : problems) Log(problem.Message());
//   if (!snapshot) return;
//   if (const Option* level = snapshot->Find("Log", "level")) SetLevel(level->value);
class QUARRY_EXPORT Snapshot {
 public:
  // Whether what is valid but probably not meant is reported, too.
  enum class Warnings { kOmitted, kReported };

  // Reads a whole file. Returns nothing when it cannot be read, with the system's text as the only
  // problem, or when its text is not valid, as Parse does.
  [[nodiscard]] static std::optional<Snapshot> Load(const std::string& path,
                                                    std::vector<Problem>* problems,
                                                    Warnings warnings = Warnings::kOmitted);

  // Reads the text; `name` is its name in problems. A text is valid exactly when
  // DMConfigFile::LoadConfig loads it, and says the same then. Returns nothing for another one.
  // Adds every error of the text to `*problems`, and on request every warning, in order of lines.
  // Throws std::bad_alloc.
  [[nodiscard]] static std::optional<Snapshot> Parse(std::string name, std::string text,
                                                     std::vector<Problem>* problems,
                                                     Warnings warnings = Warnings::kOmitted);

  // The name that was given.
  const std::string& name() const noexcept;

  // The text, byte by byte.
  const std::string& text() const noexcept;

  // All sections, in the order of their first headers.
  Range<Section> sections() const noexcept;

  // The sections whose names begin with `prefix`, as "Volume " in "[Volume a]", in their order.
  // Throws std::bad_alloc.
  std::vector<const Section*> SectionsWithPrefix(std::string_view prefix) const;

  // The options of a section; none when there is no such section.
  Range<Option> options(std::string_view section) const noexcept;

  // Null when there is no such section. Allocates nothing.
  const Section* FindSection(std::string_view section) const noexcept;

  // Null when there is no such section or option. Allocates nothing.
  const Option* Find(std::string_view section, std::string_view option) const noexcept;

 private:
  struct Data;
  class Parser;

  explicit Snapshot(std::shared_ptr<const Data> data) noexcept;

  std::shared_ptr<const Data> data_;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_SNAPSHOT_H_
