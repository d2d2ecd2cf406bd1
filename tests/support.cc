#include "tests/support.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <list>
#include <vector>

std::string Render(quarry::storage::dmconfig::DMConfig* model) {
  const auto comment = [](const std::string& text) { return text.empty() ? text : "(" + text + ")"; };
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

Operation::Operation(const std::string& words) {
  std::istringstream in(words);
  std::vector<std::string> all(6);
  std::size_t count = 0;
  while (count < all.size() && in >> all[count]) ++count;
  const auto null = std::find(all.begin(), all.end(), "null");
  last_null = null != all.end() && null == all.begin() + static_cast<std::ptrdiff_t>(count) - 1;
  first_null = null != all.end() && !last_null;
  for (std::string& word : all) word = word == "''" ? "" : word;
  name = all[0];
  section = all[1];
  option = all[2];
  value = all[3];
  comment = all[4];
  has_comment = count == 5;
}

int Operation::Run(quarry::storage::dmconfig::DMConfig* model, Outputs* out) const {
  std::string* const first = first_null ? nullptr : name == "GetOptionValue" ? &out->value : &out->comment;
  std::string* const last = last_null ? nullptr : &out->comment;
  std::list<std::string>* const names = last_null ? nullptr : &out->names;
  if (name == "GetOptionMap") return model->GetOptionMap(section) == nullptr ? -5 : 0;
  if (name == "HasSection") return model->HasSection(section);
  if (name == "GetSectionList") return model->GetSectionList(names);
  if (name == "GetSectionComment") return model->GetSectionComment(section, last);
  if (name == "SetSectionComment") return model->SetSectionComment(section, option);
  if (name == "DelSectionComment") return model->DelSectionComment(section);
  if (name == "SetOptionValue" && has_comment) return model->SetOptionValue(section, option, value, comment);
  if (name == "SetOptionValue") return model->SetOptionValue(section, option, value);
  if (name == "SetOptionComment") return model->SetOptionComment(section, option, value);
  if (name == "GetOptionValue") return model->GetOptionValue(section, option, first, last);
  if (name == "GetSectionOptionList") return model->GetSectionOptionList(section, first, names);
  if (name == "DelOption") return model->DelOption(section, option);
  if (name == "DelOptionComment") return model->DelOptionComment(section, option);
  ADD_FAILURE() << "no operation " << name;
  return 1;
}

TempFolder::TempFolder() : folder_(testing::TempDir() + "/quarry-XXXXXX") {
  EXPECT_NE(mkdtemp(folder_.data()), nullptr);
  EXPECT_EQ(chmod(folder_.c_str(), 0755), 0);  // some tests change the user
}

TempFolder::~TempFolder() { EXPECT_EQ(std::system(("rm -rf '" + folder_ + "'").c_str()), 0); }

void TempFolder::Write(const std::string& name, const std::string& text) const { std::ofstream(*this / name) << text; }

std::string TempFolder::Read(const std::string& name) const {
  std::ostringstream text;
  text << std::ifstream(*this / name).rdbuf();
  return text.str();
}

CerrCapture::CerrCapture() : original_(std::cerr.rdbuf(caught_.rdbuf())) {}
CerrCapture::~CerrCapture() { std::cerr.rdbuf(original_); }
