// The floor: a simple reader with the cheapest types. One copy of the text, views into it, and one
// hash table of folded names; comments are kept, order is not, nothing is diagnosed. What a load
// takes beyond that is mainly the price of owned strings and ordered maps. It is no lower bound: a
// reader with a smaller table is faster on many small sections.
#ifndef QUARRY_BENCHMARKS_FLOORS_H_
#define QUARRY_BENCHMARKS_FLOORS_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/baselines.h"
#include "dmconfig/line.h"

namespace quarry::benchmarks {

// A text with its options, found by the names of section and option at once.
class FloorModel {
 public:
  struct Option {
    std::string_view section, name, value, comment;
  };

  explicit FloorModel(const std::string& text) : text_(text) {
    const std::size_t lines = ScanLines(text_) + 1;
    std::size_t slots = 2;
    while (slots < 2 * lines) slots *= 2;
    slots_.resize(slots);
    options_.reserve(lines);
    for (std::string_view rest = text_; !rest.empty();) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(std::min(line.size() + 1, rest.size()));
      ReadLine(storage::dmconfig::WithoutLeadingBlanks(line));
    }
  }
  FloorModel(const FloorModel&) = delete;
  FloorModel& operator=(const FloorModel&) = delete;

  // Null when there is none.
  const Option* Find(std::string_view section, std::string_view option) const {
    const Slot& slot = *SlotOf(Hash(option, Hash(section, 0)), section, option);
    return slot.number == 0 ? nullptr : &options_[slot.number - 1];
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // of an option, from 1; 0 for an empty slot
  };

  static constexpr std::size_t kWordSize = sizeof(std::uint64_t);

  // Sets the case bit of every byte.
  static std::uint64_t FoldedWord(const char* bytes, std::size_t size) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    return word | 0x2020202020202020;
  }

  static std::uint64_t Hash(std::string_view name, std::uint64_t hash) {
    const auto mix = [&hash](std::uint64_t word) {
      hash = (hash ^ word) * 0x9E3779B97F4A7C15;
      hash ^= hash >> 32U;
    };
    for (; name.size() > kWordSize; name.remove_prefix(kWordSize)) {
      mix(FoldedWord(name.data(), kWordSize));
    }
    mix(FoldedWord(name.data(), name.size()));
    return hash;
  }

  static bool Same(std::string_view one, std::string_view other) {
    if (one == other) return true;
    const auto folded = [](char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [&](char left, char right) { return folded(left) == folded(right); });
  }

  // The slot of the option, or the empty one where it belongs.
  const Slot* SlotOf(std::uint64_t hash, std::string_view section, std::string_view name) const {
    const auto high = static_cast<std::uint32_t>(hash >> 32U);
    for (std::size_t at = hash;; ++at) {
      const Slot& slot = slots_[at & (slots_.size() - 1)];
      if (slot.number == 0) return &slot;
      const Option& option = options_[slot.number - 1];
      if (slot.hash == high && Same(option.name, name) && Same(option.section, section)) {
        return &slot;
      }
    }
  }

  void ReadLine(std::string_view line) {
    using storage::dmconfig::LineKind;
    const LineKind kind = storage::dmconfig::KindOf(line);
    if (kind == LineKind::kComment) ReadComment(line);
    if (kind == LineKind::kHeader) ReadHeader(line);
    if (kind == LineKind::kOption) ReadOption(line);
  }

  // From the first line of the comment to its last.
  void ReadComment(std::string_view line) {
    const char* const begin = comment_.empty() ? line.data() : comment_.data();
    comment_ = {begin, static_cast<std::size_t>(line.data() + line.size() - begin)};
  }

  void ReadHeader(std::string_view line) {
    section_ = line.substr(1, line.find(']') - 1);
    section_hash_ = Hash(section_, 0);
    comment_ = {};
  }

  void ReadOption(std::string_view line) {
    const std::size_t equals = std::min(line.find('='), line.size() - 1);
    const Option option = {section_, storage::dmconfig::Trimmed(line.substr(0, equals)),
                           storage::dmconfig::Trimmed(line.substr(equals + 1)), comment_};
    comment_ = {};
    const std::uint64_t hash = Hash(option.name, section_hash_);
    const Slot* const slot = SlotOf(hash, section_, option.name);
    if (slot->number != 0) {
      options_[slot->number - 1].value = option.value;
      return;
    }
    options_.push_back(option);
    slots_[static_cast<std::size_t>(slot - slots_.data())] = {
        static_cast<std::uint32_t>(hash >> 32U), static_cast<std::uint32_t>(options_.size())};
  }

  const std::string text_;
  std::vector<Slot> slots_;  // a power of two, at least half of them empty
  std::vector<Option> options_;
  std::string_view section_, comment_;  // the current section; the comment above the next line
  std::uint64_t section_hash_ = 0;
};

// In the form of a library (peers.h).
struct Floor {
  static constexpr char kName[] = "floor";
  using Model = FloorModel;
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    return std::make_unique<Model>(text);
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    const Model::Option* const found = model->Find(section, option);
    return found == nullptr ? 0 : found->value.size();
  }
};

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_FLOORS_H_
