// Replaces a user's file atomically: it holds the old text or the new one, complete, after any
// failure.
#ifndef QUARRY_SETTINGS_FILE_REPLACEMENT_H_
#define QUARRY_SETTINGS_FILE_REPLACEMENT_H_

#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/local/file_descriptor.h"
#include "settings/file_lock.h"
#include "settings/temporary_file.h"

namespace quarry::settings {

// The modes of new files, less what the umask takes away.
inline constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
inline constexpr mode_t kUsualMode = kPrivateMode | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

// A file that is locked for an edit. Links are followed to the file, but for
// those of path_walk.h.
class FileReplacement {
 public:
  struct Options {
    // With a mode the file may be absent, and is created with it.
    std::optional<mode_t> new_mode = std::nullopt;
    // Opens without a lock and without write permission; Replace must not be called.
    bool read_only = false;
    // How long to wait for other edits to end, and what to call once, after a second of waiting.
    std::chrono::milliseconds max_wait = std::chrono::seconds(10);
    std::function<void()> on_wait = nullptr;
    // What it returns is kept while there is a temporary file: something that keeps this process
    // from ending meanwhile. May be empty.
    std::function<std::shared_ptr<void>()> guard = nullptr;
  };

  // Opens and locks the file, which must be writable, regular and have one name. Throws Error;
  // kNotFound for an absent file, unless it may be absent.
  FileReplacement(const std::string& file, Options options);

  // False when the file is to be created.
  bool exists() const { return old_.get() != -1; }

  // The file's content; empty when the file is to be created. Throws Error.
  const std::string& text();

  // Gives a file that is to be created the access that the open file `source` gives, less `mask`;
  // nobody may read it then who may not read `source`. Its mode must be private so far. Throws
  // Error.
  void CopyAccessOf(int source, mode_t mask);

  // Replaces the old text by `text`, by way of a file ".NAME.quarry-new" beside the old file and
  // with its owner, mode and extended attributes. On return all of it is on the disk. Writes
  // nothing when the file has this text already. Throws Error; the old text is in place then,
  // unless the message says otherwise, and no other file is left.
  void Replace(std::string_view text);

 private:
  void Guard();
  bool OpenOld();
  void PrepareNew();
  bool FindInPlace(struct stat* status) const;
  bool IsUntouched() const;
  void RequireOneName() const;
  void WriteAndPublish(std::string_view text);

  const Options options_;
  LockTimer timer_;
  const std::string name_;  // as the caller gave it
  std::string entry_;       // its name in its folder
  platform::FileDescriptor folder_{-1};
  platform::FileDescriptor old_{-1};  // -1 when it is to be created
  struct stat status_ {};             // of the old file when it was locked
  std::optional<std::string> text_;
  std::shared_ptr<void> guard_;  // while there is a temporary file
  std::optional<TemporaryFile> new_;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_FILE_REPLACEMENT_H_
