// The one way in which the program changes a file of somebody's: the old text
// or the new one is there at any moment, whole, whatever fails or is killed.
#ifndef QUARRY_TOOLS_FILE_EDIT_H_
#define QUARRY_TOOLS_FILE_EDIT_H_

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/local/file_descriptor.h"
#include "tools/signals.h"
#include "tools/temporary_file.h"

namespace quarry::tool {

// The modes of new files, of which the umask leaves its part.
inline constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
inline constexpr mode_t kUsualMode = kPrivateMode | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

// A file that is held for an edit. Another edit of it waits for this one's end,
// up to ten seconds. Links are followed to the file.
class FileEdit {
 public:
  enum class Purpose { kEdit, kLook };

  // Opens and locks the file; it must be writable, regular and have one name.
  // Throws ToolError, for an absent file too unless it may be made, with
  // `new_mode`. One only looked at is not locked and may be read-only.
  FileEdit(const std::string& file, std::optional<mode_t> new_mode,
           Purpose purpose = Purpose::kEdit);

  // False when it is to be created.
  bool exists() const { return old_.get() != -1; }

  // What the file holds; empty when it is to be created. Throws ToolError.
  const std::string& text();

  // Puts `text` in the place of the old text: into a file ".NAME.quarry-new"
  // beside it first, with the owner, mode and extended attributes of the old
  // file, which it then replaces. All of it has reached the disk at the return.
  // The text that the file has is not written. Throws ToolError; the old text
  // is in place then, unless the message says otherwise, and no other file is
  // left.
  void Replace(std::string_view text);

 private:
  bool OpenOld();
  void PrepareNew(mode_t mode);
  bool FindInPlace(struct stat* status) const;
  bool IsUntouched() const;
  void DemandEditable() const;
  void WriteAndPublish(std::string_view text);

  const Purpose purpose_;
  const std::string name_;  // for messages
  std::string entry_;       // its name in its folder
  platform::FileDescriptor folder_{-1};
  platform::FileDescriptor old_{-1};  // -1 when it is to be created
  struct stat status_ {};             // of the old file when it was locked
  std::optional<std::string> text_;
  std::optional<SignalsHeld> held_;  // while there is a temporary file
  std::optional<TemporaryFile> new_;
};

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_FILE_EDIT_H_
