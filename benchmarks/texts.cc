#include "benchmarks/texts.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string_view>

#include "benchmarks/baselines.h"

namespace quarry::benchmarks {

namespace {

// Removes it, if it is this process's own.
struct FolderGuard {
  ~FolderGuard() {
    if (is_own) std::filesystem::remove_all(path);
  }
  std::string path;
  bool is_own = false;
};

FolderGuard& TheFolder() {
  static FolderGuard folder;
  return folder;
}

const Workload& WorkloadOf(const std::string& name) {
  static std::map<std::string, Workload> workloads;
  const auto [place, is_new] = workloads.try_emplace(name);
  if (is_new) place->second = MakeWorkload(name);
  return place->second;
}

std::string ReadFile(const std::string& path) {
  return ReadWhole(path, std::filesystem::file_size(path));
}

void SwapCase(std::string* text) {
  const auto turn = [](char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    constexpr int kCaseBit = 0x20;
    return letter ? static_cast<char>(c ^ kCaseBit) : c;
  };
  std::transform(text->begin(), text->end(), text->begin(), turn);
}

void Respell(Spelling spelling, Entry* entry) {
  if (spelling == Spelling::kAsSet) return;
  SwapCase(&entry->section);
  SwapCase(&entry->option);
  if (spelling == Spelling::kMissing) entry->option += "_none";
}

std::vector<Entry> MakeEntries(const Sample& sample) {
  constexpr std::size_t kSize = 1000;
  const std::vector<Entry>& all = WorkloadOf(sample.workload).entries;
  std::mt19937 random(7);
  std::vector<Entry> entries;
  if (sample.has_all) {
    entries = all;
    std::shuffle(entries.begin(), entries.end(), random);
  } else {
    while (entries.size() < kSize) entries.push_back(all[random() % all.size()]);
  }
  for (Entry& entry : entries) Respell(sample.spelling, &entry);
  return entries;
}

std::string FileOf(const Sample& sample) {
  return Folder() + '/' + sample.workload + '.' +
         std::to_string(static_cast<int>(sample.spelling)) + (sample.has_all ? "all" : "some");
}

void Write(const std::vector<Entry>& entries, const std::string& path) {
  std::ofstream file(path);
  for (const Entry& entry : entries) {
    file << entry.section << '\0' << entry.option << '\0' << entry.value << '\0';
  }
}

std::vector<Entry> Read(const std::string& path) {
  const std::string text = ReadFile(path);
  std::vector<Entry> entries;
  std::string_view rest = text;
  const auto take = [&rest] {
    const std::string_view part = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(part.size() + 1);
    return std::string(part);
  };
  while (!rest.empty()) {
    entries.emplace_back();
    entries.back().section = take();
    entries.back().option = take();
    entries.back().value = take();
  }
  return entries;
}

}  // namespace

void MakeFolder() {
  TheFolder().path = "/tmp/quarry-bench-XXXXXX";
  if (mkdtemp(TheFolder().path.data()) == nullptr) std::abort();
  TheFolder().is_own = true;
}

void UseFolder(const std::string& path) { TheFolder().path = path; }

const std::string& Folder() { return TheFolder().path; }

std::string FileOf(const std::string& workload) {
  const std::string path = Folder() + '/' + workload;
  if (!std::filesystem::exists(path)) std::ofstream(path) << WorkloadOf(workload).text;
  return path;
}

const std::string& TextOf(const std::string& workload) {
  static std::map<std::string, std::string> texts;
  const auto [place, is_new] = texts.try_emplace(workload);
  if (is_new) place->second = ReadFile(FileOf(workload));
  return place->second;
}

const std::vector<Entry>& EntriesOf(const std::string& workload) {
  return WorkloadOf(workload).entries;
}

const std::vector<Entry>& EntriesOf(const Sample& sample) {
  static std::map<std::string, std::vector<Entry>> samples;
  const std::string path = FileOf(sample);
  const auto [place, is_new] = samples.try_emplace(path);
  if (!is_new) return place->second;
  if (!std::filesystem::exists(path)) Write(MakeEntries(sample), path);
  return place->second = Read(path);
}

}  // namespace quarry::benchmarks
