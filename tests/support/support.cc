#include "tests/support/support.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <list>
#include <sstream>

std::string Render(quarry::storage::dmconfig::DMConfig* model) {
  const auto comment = [](const std::string& text) {
    return text.empty() ? text : "(" + text + ")";
  };
  std::list<std::string> sections;
  model->GetSectionList(&sections);
  std::string all;
  for (const std::string& section : sections) {
    const auto* record = model->GetOptionMap(section);
    std::string options;
    for (const auto& [name, stored] : record->option_map) {
      if (!options.empty()) options += ' ';
      options.append(name).append("=").append(stored.value);
      options += comment(stored.comment);
    }
    if (!all.empty()) all += ' ';
    all.append(section).append(comment(record->comment));
    all.append("{").append(options).append("}");
  }
  return all;
}

TempFolder::TempFolder() : folder_(testing::TempDir() + "/quarry-XXXXXX") {
  EXPECT_NE(mkdtemp(folder_.data()), nullptr);
  EXPECT_EQ(chmod(folder_.c_str(), 0755), 0);  // some tests change the user
}

TempFolder::~TempFolder() { EXPECT_EQ(std::system(("rm -rf '" + folder_ + "'").c_str()), 0); }

void TempFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(Path(name)) << text;
}

std::string TempFolder::Read(const std::string& name) const {
  std::ostringstream text;
  text << std::ifstream(Path(name)).rdbuf();
  return text.str();
}
