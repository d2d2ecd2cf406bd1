#include "tests/support/support.h"

#include <gtest/gtest.h>
#include <immintrin.h>
#include <pthread.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace {

// Not on the heap or on a thread's own stack, which the thread's end would change.
alignas(64) std::array<char, 1U << 20U> stack;
alignas(64) std::array<char, 16384> registers;

__attribute__((target("xsave"))) void* RunAndSaveRegisters(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  _xsave64(registers.data(), 0xff);
  return nullptr;
}

}  // namespace

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

Remains RemainsOf(const std::function<void()>& work) {
  stack.fill('\0');
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack.data(), stack.size());
  pthread_t thread = 0;
  std::function<void()> copy = work;
  EXPECT_EQ(pthread_create(&thread, &attributes, RunAndSaveRegisters, &copy), 0);
  pthread_join(thread, nullptr);
  return {{stack.data(), stack.size()}, {registers.data(), registers.size()}};
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
