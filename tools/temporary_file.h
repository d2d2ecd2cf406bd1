// The file ".NAME.quarry-new" beside the file NAME, in which its new text waits
// until it is whole.
#ifndef QUARRY_TOOLS_TEMPORARY_FILE_H_
#define QUARRY_TOOLS_TEMPORARY_FILE_H_

#include <sys/types.h>

#include <string>

#include "platform/local/file_descriptor.h"

namespace quarry::tool {

// Locked for its whole life: of all that work on the same NAME one at a time
// has it. One that a killed program left is locked by nobody, and replaced.
class TemporaryFile {
 public:
  // Makes it in the open folder, for the file `entry` there, with the mode that
  // the umask leaves of `mode`. Waits as LockForEdit does. Throws ToolError;
  // `name` is that of the file in its message.
  TemporaryFile(int folder, const std::string& entry, mode_t mode, const std::string& name);
  // Removes it, unless it was published.
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int get() const { return file_.get(); }

  // Gives it the name of the file, in one step: in the place of the old file,
  // or of none when `replaces` is false. Throws ToolError.
  void Publish(bool replaces);

 private:
  bool LockNew();
  bool IsInPlace(int file) const;
  void RemoveAbandoned();

  const int folder_;
  const std::string entry_;
  const std::string temporary_;
  const std::string name_;
  platform::FileDescriptor file_{-1};
  bool published_ = false;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_TEMPORARY_FILE_H_
