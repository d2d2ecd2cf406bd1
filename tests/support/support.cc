#include "tests/support/support.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

std::string Render(quarry::storage::dmconfig::DMConfig* model) {
  const auto comment = [](const std::string& text) {
    return text.empty() ? text : '(' + text + ')';
  };
  std::list<std::string> sections;
  model->GetSectionList(&sections);
  std::string all;
  for (const std::string& section : sections) {
    const auto& record = *model->GetOptionMap(section);
    all += (all.empty() ? "" : " ") + section + comment(record.comment) + '{';
    for (const auto& [name, option] : record.option_map) {
      all += (all.back() == '{' ? "" : " ") + name + '=' + option.value + comment(option.comment);
    }
    all += '}';
  }
  return all;
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TempFolder::TempFolder() : folder_(testing::TempDir() + "/quarry-XXXXXX") {
  EXPECT_NE(mkdtemp(folder_.data()), nullptr);
  EXPECT_EQ(chmod(folder_.c_str(), 0755), 0);  // some tests change the user
}

TempFolder::~TempFolder() { std::filesystem::remove_all(folder_); }

void TempFolder::Write(const std::string& name, const std::string& text) const {
  std::ofstream(Path(name)) << text;
}

std::string TempFolder::Read(const std::string& name) const {
  std::ifstream file(Path(name));
  return {std::istreambuf_iterator<char>(file), {}};
}
