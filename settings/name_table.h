// Finds sections and options by their names, in one probe for most.
#ifndef QUARRY_SETTINGS_NAME_TABLE_H_
#define QUARRY_SETTINGS_NAME_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quarry::settings {

// Removes the next bytes of the name, up to eight, and returns them in lower case, the first one
// lowest; 0 at the end of the name, which is a NUL byte at the latest.
std::uint64_t TakeFoldedWord(std::string_view* name) noexcept;

// The same for all spellings of a name; another one with another seed.
std::uint64_t HashOfName(std::string_view name, std::uint64_t seed = 0) noexcept;

// A hash table of numbers. It holds no keys: whoever looks up says which number it is.
class NameTable {
 public:
  static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

  // Room for so many numbers, all of them less than kNone; more must not be added. Throws
  // std::bad_alloc.
  explicit NameTable(std::size_t capacity);

  // Returns the number with this hash for which `is_it` is true; kNone when there is none.
  template <typename IsIt>
  std::uint32_t Find(std::uint64_t hash, IsIt is_it) const noexcept {
    for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
      const Slot& slot = slots_[at];
      if (slot.number == kNone) return kNone;
      if (slot.hash == HighBits(hash) && is_it(slot.number)) return slot.number;
    }
  }

  void Add(std::uint64_t hash, std::uint32_t number) noexcept;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = kNone;
  };

  static std::uint32_t HighBits(std::uint64_t hash) {
    constexpr unsigned kHalf = 32;
    return static_cast<std::uint32_t>(hash >> kHalf);
  }

  std::vector<Slot> slots_;  // a power of two; half of them are empty
  std::size_t mask_;
};

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_NAME_TABLE_H_
