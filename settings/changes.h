// Changes of the options of a text and of its file, all or none.
#ifndef QUARRY_SETTINGS_CHANGES_H_
#define QUARRY_SETTINGS_CHANGES_H_

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "../platform/export.h"
#include "problem.h"
#include "snapshot.h"

namespace quarry::settings {

// One change of a text. Sections and options are named in any letter case.
struct QUARRY_EXPORT Change {
  // What is done.
  enum class Kind { kSet, kRemove, kRemoveSection };

  // Sets an option in the last line that sets it. A new option is added after the last one of its
  // section, a new section at the end of the text.
  static Change Set(std::string section, std::string option, std::string value);

  // Removes every line that sets the option; comments above it stay. To remove what is absent
  // changes nothing.
  static Change Remove(std::string section, std::string option);

  // Removes the section with all its options and the comments within; comments above it stay.
  static Change RemoveSection(std::string section);

  Kind kind = Kind::kSet;  // what is done
  std::string section;     // in which, or which
  std::string option;      // not of kRemoveSection
  std::string value;       // of kSet
};

// Returns the snapshot's text after all changes, which are made in their order. Every byte that
// they are not about is kept. The new text is parsed and compared with what was asked before it
// counts. When a name or a value to set would not read back as it is (a line feed in a value would
// begin another line), no change is made: returns nothing and adds the problem, of the rule
// "change-refused", which quotes no value. Throws std::bad_alloc.
[[nodiscard]] QUARRY_EXPORT std::optional<Snapshot> Apply(const Snapshot& snapshot,
                                                          const std::vector<Change>& changes,
                                                          std::vector<Problem>* problems);

// How Save waits, and whether it may create the file.
struct SaveOptions {
  // How long to wait for other edits of the file to end.
  std::chrono::milliseconds max_wait = std::chrono::seconds(10);
  // Called once, after a second of waiting; may be empty. What it throws passes through.
  std::function<void()> on_wait = nullptr;
  // An absent file is created with this mode, less what the process's umask removes; without a mode
  // it is a problem.
  std::optional<mode_t> new_mode = std::nullopt;
};

// Makes the changes in the file at `path`, as it is now, and returns what it holds then. The file
// is locked against other edits, replaced atomically by way of a temporary file beside it, with its
// owner, mode and extended attributes, and flushed to the disk. It is not written when there is
// nothing to change. On failure, returns nothing and adds what is wrong; the file is as before
// then, unless the problem's text says that the edit is in place, and no other file is left. Throws
// std::bad_alloc; the file is as before then, too.
//
// Any number of threads and programs may save at once; each waits for its turn. Nothing of the
// process is changed: no signal handler or mask, no timer, no umask. A process that is ended in
// between leaves the old file or the new one; the next edit removes the temporary file. A write
// beyond the process's limit for the size of files raises SIGXFSZ, as every write does.
[[nodiscard]] QUARRY_EXPORT std::optional<Snapshot> Save(const std::string& path,
                                                         const std::vector<Change>& changes,
                                                         std::vector<Problem>* problems,
                                                         const SaveOptions& options = {});

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_CHANGES_H_
