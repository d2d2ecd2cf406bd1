// The temporary file ".NAME.quarry-new" beside the file NAME, which holds the new text until it is
// complete.
#ifndef QUARRY_SETTINGS_TEMPORARY_FILE_H_
#define QUARRY_SETTINGS_TEMPORARY_FILE_H_

#include <sys/types.h>

#include <string>

#include "platform/local/file_descriptor.h"
#include "settings/file_lock.h"

namespace quarry::settings {

// Holds an exclusive lock for its lifetime, so of all edits of the same NAME one at a time has it.
// A file left by a killed process is unlocked, and gets replaced.
class TemporaryFile {
 public:
  // Creates it in the open folder, for the file `entry` there, with the mode that the umask leaves
  // of `mode`. Waits for others as long as `timer` allows. Throws Error; `name` is that of the file
  // for its message.
  TemporaryFile(int folder, const std::string& entry, mode_t mode, const std::string& name,
                LockTimer* timer);
  // Removes it, unless it was published.
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int get() const { return file_.get(); }

  // Whether it still has its name. Throws Error.
  bool IsOurs() const { return IsInPlace(file_.get()); }

  // Renames it to the file's name: over the old file, or, when `replaces` is false, only if there
  // is none. Throws Error.
  void Publish(bool replaces);

 private:
  bool Create(mode_t mode, LockTimer* timer);
  bool LockNew(LockTimer* timer);
  bool IsInPlace(int file) const;
  void RemoveAbandoned(LockTimer* timer);

  const int folder_;
  const std::string entry_;
  const std::string temporary_;
  const std::string name_;
  platform::FileDescriptor file_{-1};
  bool published_ = false;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_TEMPORARY_FILE_H_
