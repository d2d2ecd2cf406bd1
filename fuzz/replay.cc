// Runs a target on the kept inputs of a folder, and on random changes of them, the same every time:
// what the fuzzing engine does without its search, for every compiler and every run of the tests.
//
//   replay FOLDER CHANGES SEEN...
//
// Fails when the folder is empty, or when one of SEEN, which the target may see, was not seen.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>

#include "fuzz/target.h"

namespace {

using Inputs = std::vector<std::string>;

// NOLINTNEXTLINE(cert-err58-cpp,cert-msc32-c,cert-msc51-cpp): the same changes every time
std::mt19937 random_bits{20261124};

std::size_t Below(std::size_t end) {
  return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_bits);
}

// One of the inputs with a stretch replaced by one of another, by one of its own, or by a byte; up
// to four times.
std::string Changed(const Inputs& inputs) {
  std::string input = inputs[Below(inputs.size())];
  for (std::size_t n = Below(4) + 1; n > 0; --n) {
    const std::string& source = Below(2) == 0 ? input : inputs[Below(inputs.size())];
    const std::size_t from = Below(source.size() + 1);
    std::string piece = source.substr(from, Below(12));
    if (Below(3) == 0) piece = static_cast<char>(Below(256));
    const std::size_t at = Below(input.size() + 1), old_size = Below(2) == 0 ? 0 : Below(8);
    input.replace(at, old_size, piece);
  }
  return input;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  Inputs inputs;
  for (const auto& entry : std::filesystem::directory_iterator(words.at(0))) {
    std::ifstream file(entry.path(), std::ios::binary);
    inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  const unsigned long count = inputs.empty() ? 0 : std::stoul(words.at(1));
  for (const std::string& input : inputs) quarry::fuzz::TryInput(input);
  for (unsigned long i = 0; i < count; ++i) quarry::fuzz::TryInput(Changed(inputs));

  std::cout << inputs.size() << " inputs, " << count << " changes\n";
  bool all_seen = !inputs.empty();
  for (std::size_t i = 2; i < words.size(); ++i) {
    if (quarry::fuzz::HasSeen(words[i])) continue;
    std::cout << "not seen: " << words[i] << '\n';
    all_seen = false;
  }
  return all_seen ? 0 : 1;
}
