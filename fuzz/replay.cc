// Runs a target on the kept inputs of a folder, and on changes of them that a
// seed decides: what the fuzzing engine does without its search, for every
// compiler and every run of the tests.
//
//   replay FOLDER CHANGES SEEN...
//
// Red when the folder holds nothing, or when one of SEEN, by which a target
// says what it met, was not met.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/target.h"

namespace {

using Inputs = std::vector<std::string>;

Inputs ReadInputs(const std::string& folder) {
  Inputs inputs;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path(), std::ios::binary);
    inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return inputs;
}

class Changes {
 public:
  explicit Changes(const Inputs& inputs) : inputs_(inputs) {}

  // One of the inputs with a stretch replaced by one of another, by one of its
  // own, or by a byte; up to four times.
  std::string Next() {
    std::string input = Any();
    for (std::size_t n = Below(4) + 1; n > 0; --n) {
      const std::size_t at = Below(input.size() + 1);
      const std::size_t kind = Below(3);
      const std::string& source = kind == 0 ? input : Any();
      const std::string piece =
          kind < 2 ? Stretch(source) : std::string(1, static_cast<char>(Below(256)));
      input.replace(at, Below(2) * Below(8), piece);
    }
    return input;
  }

 private:
  std::size_t Below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
  }
  const std::string& Any() { return inputs_[Below(inputs_.size())]; }
  std::string Stretch(const std::string& text) {
    return text.substr(Below(text.size() + 1), Below(12));
  }

  const Inputs& inputs_;
  // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the same changes every time
  std::mt19937 random_{20261124};
};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() < 2) {
    std::cerr << "usage: replay FOLDER CHANGES SEEN...\n";
    return 2;
  }
  const Inputs inputs = ReadInputs(words[0]);
  if (inputs.empty()) {
    std::cerr << words[0] << " holds nothing\n";
    return 1;
  }
  for (const std::string& input : inputs) quarry::fuzz::TryInput(input);
  const unsigned long count = std::strtoul(words[1].c_str(), nullptr, 10);
  Changes changes(inputs);
  for (unsigned long i = 0; i < count; ++i) quarry::fuzz::TryInput(changes.Next());

  std::cout << inputs.size() << " inputs, " << count << " changes\n";
  bool all_seen = true;
  for (auto what = words.begin() + 2; what != words.end(); ++what) {
    const std::size_t times = quarry::fuzz::TimesSeen(*what);
    std::cout << *what << ": " << times << '\n';
    all_seen = all_seen && times > 0;
  }
  if (!all_seen) std::cerr << "not all was met that should be\n";
  return all_seen ? 0 : 1;
}
