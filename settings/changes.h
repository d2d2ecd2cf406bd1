// Changes of the options of a text and of its file, all or none.
#ifndef QUARRY_SETTINGS_CHANGES_H_
#define QUARRY_SETTINGS_CHANGES_H_

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "settings/snapshot.h"

namespace quarry::settings {

// Sets an option, or removes it when there is no value. The section is added when it is missing.
struct Change {
  std::string section;
  std::string option;
  std::optional<std::string> value;
};

// Returns the snapshot's text with all changes made, in their order, and every other byte kept: an
// option is set in the last line that sets it, a new one is added after the last one of its
// section, a removed one goes from every line. To remove what is absent changes nothing. The new
// text is parsed and compared before it counts. When a change is refused, because its names or its
// value would not read back as they are (a line feed in a value would begin another line), none is
// made: returns nothing and adds the problem. Throws std::bad_alloc.
std::optional<Snapshot> Apply(const Snapshot& snapshot, const std::vector<Change>& changes,
                              std::vector<Problem>* problems);

struct SaveOptions {
  // How long to wait for other edits of the file to end.
  std::chrono::milliseconds max_wait = std::chrono::seconds(10);
  // Called once, after a second of waiting; may be empty.
  std::function<void()> on_wait = nullptr;
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
std::optional<Snapshot> Save(const std::string& path, const std::vector<Change>& changes,
                             std::vector<Problem>* problems, const SaveOptions& options = {});

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_CHANGES_H_
