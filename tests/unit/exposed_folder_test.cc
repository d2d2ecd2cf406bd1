#include "settings/exposed_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <tuple>

#include "settings/error.h"
#include "tests/support/support.h"

namespace quarry::settings {
namespace {

class ExposedFolderTest : public testing::Test, protected TempFolder {
 protected:
  ExposedFolderTest() {
    for (const char* folder : {"a", "a/b", "c"}) std::filesystem::create_directory(Path(folder));
    for (const char* link : {"c/link", "c/theirs"}) {
      std::filesystem::create_symlink(Path("a") + "/./b", Path(link));
    }
    std::filesystem::create_symlink("loop", Path("loop"));
    Write("a/b/key", "");
  }
  // "FOLDER[ OWNER]" or "" or "error".
  std::string Find(const std::string& file) const {
    try {
      const auto exposed = FindExposedFolder(Path(file));
      if (!exposed) return "";
      const std::string folder = std::filesystem::path(exposed->path).lexically_relative(Path(""));
      return folder + (exposed->owner ? ' ' + std::to_string(*exposed->owner) : "");
    } catch (const Error&) {
      return "error";
    }
  }
};

TEST_F(ExposedFolderTest, LooksAtEveryFolderOnTheWay) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files to another user";
  constexpr uid_t kOther = 4001;
  ASSERT_EQ(lchown(Path("c/theirs").c_str(), kOther, kOther), 0);
  // A folder, its mode and owner; the file, and what is found.
  const std::tuple<const char*, mode_t, uid_t, const char*, const char*> cases[] = {
      {"a", 0755, 0, "a/b/key", ""},
      {"a/b", 0775, 0, "a/b/key", "a/b"},
      {"a", 0757, 0, "a/b/key", "a"},
      {"a", 0755, kOther, "a/b/key", "a 4001"},
      {"a", 01777, 0, "a/b/key", ""},
      {"a", 01777, kOther, "a/b/key", "a 4001"},
      {"a/b", 01777, 0, "a/b/key", ""},
      {"a/b", 01777, 0, "a/b/absent", "a/b"},  // others may put it there
      {"a/b", 0755, 0, "a/b/absent", ""},
      {"c", 0777, 0, "c/link/key", "c"},
      {"c", 0777, 0, "c/../a/b/key", ""},  // nobody can exchange ".."
      {"a", 0777, 0, "c/link/key", "a"},
      {"c", 01777, 0, "c/link/key", ""},
      {"c", 01777, 0, "c/theirs/key", "c"},  // its owner may exchange the link
      {"c", 0755, 0, "c/theirs/key", ""},
      {"a", 0755, 0, "a/none/key", "error"},
      {"a", 0755, 0, "loop/key", "error"},
  };
  for (const auto& [folder, mode, owner, file, found] : cases) {
    const std::string changed = Path(folder);
    ASSERT_EQ(chown(changed.c_str(), owner, 0) + chmod(changed.c_str(), mode), 0);
    EXPECT_EQ(Find(file), found) << folder << std::oct << mode << file;
    ASSERT_EQ(chown(changed.c_str(), 0, 0) + chmod(changed.c_str(), 0755), 0);
  }
}

}  // namespace
}  // namespace quarry::settings
