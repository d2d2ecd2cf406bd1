#include "settings/path_walk.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <system_error>
#include <utility>

#include "settings/error.h"

namespace quarry::settings {

namespace {

// Each component is opened in the folder that the ones before it have led to, so nobody can
// exchange what has been checked.
class PathWalk {
 public:
  // `path` is where to walk, `file` the name for messages.
  PathWalk(const std::string& file, std::string path, const NameVisitor& visit)
      : file_(file), rest_(std::move(path)), visit_(visit) {}

  std::string FindEntry();
  void OpenFolder(platform::FileDescriptor* folder) const;

 private:
  static constexpr int kMaxLinks = 40;  // as the system's
  static constexpr int kLook = O_PATH | O_NOFOLLOW | O_CLOEXEC;

  void EnterStart();
  void EnterFolder(const std::string& name);
  std::string TakeName();
  void FollowLink(const std::string& name, int link);
  void RequireTrustedLink(const std::string& name, int link) const;
  bool Visit(const std::string& name, const struct stat* entry) const;
  struct stat StatusOf(int descriptor) const;
  bool IsInProc() const;
  // Whether no component follows the one that was taken.
  bool IsAtLast() const { return rest_.empty(); }
  [[noreturn]] void Fail(int error) const;

  const std::string& file_;
  std::string rest_;  // what is still to be walked; after a component, empty or from a '/' on
  const NameVisitor& visit_;
  platform::FileDescriptor folder_{-1};
  int links_ = 0;
  bool is_linked_ = false;  // the last component of `file_` was a link
};

// Empty when the visitor has ended the walk.
std::string PathWalk::FindEntry() {
  if (IsAtLast()) Fail(ENOENT);
  EnterStart();
  for (;;) {
    std::string name = TakeName();
    if (name.empty()) return ".";
    if (IsAtLast() && IsInProc()) {
      throw Error(ErrorKind::kOpenFile, file_,
                  file_ + " is an open file of a process, which cannot be replaced");
    }
    platform::FileDescriptor found(openat(folder_.get(), name.c_str(), kLook));
    if (found.get() == -1) {
      const int error = errno;
      if (error == ENOENT && !Visit(name, nullptr)) return "";
      if (IsAtLast() && error == ENOENT && !is_linked_) return name;
      Fail(error);
    }
    const struct stat entry = StatusOf(found.get());
    if (!Visit(name, &entry)) return "";
    if (S_ISLNK(entry.st_mode)) {
      FollowLink(name, found.get());
    } else if (S_ISDIR(entry.st_mode)) {
      EnterFolder(name);
    } else if (IsAtLast()) {
      return name;
    } else {
      Fail(ENOTDIR);
    }
  }
}

// For reading, because it is to be flushed.
void PathWalk::OpenFolder(platform::FileDescriptor* folder) const {
  folder->Reset(openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder->get() == -1) throw SystemError("open the folder of " + file_, file_, errno);
}

void PathWalk::EnterStart() {
  folder_.Reset(openat(AT_FDCWD, rest_.front() == '/' ? "/" : ".", kLook | O_DIRECTORY));
  if (folder_.get() == -1) Fail(errno);
}

// Where a file system is mounted on demand, only O_DIRECTORY has it mounted.
void PathWalk::EnterFolder(const std::string& name) {
  folder_.Reset(openat(folder_.get(), name.c_str(), kLook | O_DIRECTORY));
  if (folder_.get() == -1) Fail(errno);
}

// Empty at the end of the path.
std::string PathWalk::TakeName() {
  const std::size_t begin = std::min(rest_.find_first_not_of('/'), rest_.size());
  const std::size_t end = std::min(rest_.find('/', begin), rest_.size());
  std::string name = rest_.substr(begin, end - begin);
  rest_.erase(0, end);
  return name;
}

void PathWalk::FollowLink(const std::string& name, int link) {
  if (++links_ > kMaxLinks) Fail(ELOOP);
  RequireTrustedLink(name, link);
  // The text of some links there, such as /proc/PID/root, is not where they lead.
  if (IsInProc()) {
    folder_.Reset(openat(folder_.get(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder_.get() == -1) Fail(errno);
    return;
  }
  std::array<char, PATH_MAX> target{};
  const ssize_t size = readlinkat(link, "", target.data(), target.size());
  if (size == -1) Fail(errno);
  is_linked_ = is_linked_ || IsAtLast();
  rest_.insert(0, target.data(), static_cast<std::size_t>(size));
  if (rest_.front() == '/') EnterStart();
}

void PathWalk::RequireTrustedLink(const std::string& name, int link) const {
  constexpr mode_t kSharedBits = S_ISVTX | S_IWOTH;
  const struct stat folder = StatusOf(folder_.get());
  const uid_t owner = StatusOf(link).st_uid;
  if ((folder.st_mode & kSharedBits) != kSharedBits) return;
  if (owner == geteuid() || owner == folder.st_uid) return;
  throw Error(ErrorKind::kFailed, file_,
              "cannot open " + file_ + ": its link " + Quoted(name) + " belongs to user ID " +
                  std::to_string(owner) + " and is in a folder that everyone can write to",
              "remove the link, or name the file that it leads to");
}

// Nobody can exchange "..".
bool PathWalk::Visit(const std::string& name, const struct stat* entry) const {
  return name == ".." || visit_(folder_.get(), entry);
}

struct stat PathWalk::StatusOf(int descriptor) const {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) Fail(errno);
  return status;
}

bool PathWalk::IsInProc() const {
  struct statfs status {};
  if (fstatfs(folder_.get(), &status) != 0) Fail(errno);
  return status.f_type == PROC_SUPER_MAGIC;
}

void PathWalk::Fail(int error) const {
  if (is_linked_ && error == ENOENT) {
    throw Error(ErrorKind::kFailed, file_, file_ + " is a link to a file that does not exist",
                "make that file, or remove the link");
  }
  const bool is_about_file = is_linked_ || IsAtLast();
  throw SystemError((is_about_file ? "open " : "open the folder of ") + file_, file_, error);
}

}  // namespace

std::string OpenFolderOf(const std::string& file, platform::FileDescriptor* folder) {
  const NameVisitor pass = [](int, const struct stat*) { return true; };
  RequireNoNul(file);
  PathWalk walk(file, file, pass);
  std::string entry = walk.FindEntry();
  walk.OpenFolder(folder);
  return entry;
}

void RequireNoNul(const std::string& file) {
  if (file.find('\0') == std::string::npos) return;
  throw SystemError("open " + file, file, EINVAL, "the name of a file holds no NUL byte");
}

void VisitNames(const std::string& file, const NameVisitor& visit) {
  std::error_code error;
  const auto path = std::filesystem::absolute(file, error);
  if (error) throw SystemError("open " + file, file, error.value());
  PathWalk(file, path.native(), visit).FindEntry();
}

}  // namespace quarry::settings
