// StringCaseCmp is the order of all section and option names in a DMConfig
// (dmconfig/config.h).
#ifndef QUARRY_DMCONFIG_STRING_CASE_CMP_H_
#define QUARRY_DMCONFIG_STRING_CASE_CMP_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace quarry::storage::dmconfig {

// Orders names by their bytes up to the first NUL, compared as unsigned, with A to Z folded to
// lower case. This is the order of strcasecmp in the C locale, whatever locale the process has set.
// So "_" sorts before every letter, and bytes from 0x80 on sort last; letters outside ASCII are not
// folded.
struct StringCaseCmp {
  // Returns whether `left` sorts before `right`. Any thread may call.
  bool operator()(const std::string& left, const std::string& right) const noexcept {
    const char* l = left.c_str();
    const char* r = right.c_str();
    // Half of all comparisons are decided by the first byte.
    if (Folded(*l) != Folded(*r)) return Folded(*l) < Folded(*r);

    // Eight bytes at a time; the last word may overlap the one before it.
    const std::size_t shared = std::min(left.size(), right.size());
    for (std::size_t at = 0; shared >= kWordSize;
         at = std::min(at + kWordSize, shared - kWordSize)) {
      const std::uint64_t left_word = WordAt(l + at);
      const std::uint64_t right_word = WordAt(r + at);
      if (HasNul(left_word | right_word)) break;  // a NUL at the same place in both
      if (left_word != right_word && Folded(left_word) != Folded(right_word)) {
        return __builtin_bswap64(Folded(left_word)) < __builtin_bswap64(Folded(right_word));
      }
      if (at + kWordSize == shared) return Folded(l[shared]) < Folded(r[shared]);
    }

    for (;; ++l, ++r) {
      const unsigned char left_byte = Folded(*l), right_byte = Folded(*r);
      if (left_byte != right_byte) return left_byte < right_byte;
      if (left_byte == 0) return false;
    }
  }

 private:
  static constexpr std::size_t kWordSize = sizeof(std::uint64_t);
  static constexpr std::uint64_t kOnes = 0x0101010101010101;
  static constexpr std::uint64_t kHighBits = 0x80 * kOnes;

  // Loads the eight bytes at `text`; the first is the lowest.
  static std::uint64_t WordAt(const char* text) noexcept {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
  }
  static bool HasNul(std::uint64_t word) noexcept {
    return ((word - kOnes) & ~word & kHighBits) != 0;
  }
  // Adds 0x20 to each byte from A to Z. Those are the bytes below 0x80 whose high bit is set by
  // adding 0x80 - 'A' but not by adding 0x80 - ('Z' + 1).
  static std::uint64_t Folded(std::uint64_t word) noexcept {
    const std::uint64_t low = word & ~kHighBits;
    const std::uint64_t from_a = low + (0x80 - 'A') * kOnes;
    const std::uint64_t past_z = low + (0x80 - 'Z' - 1) * kOnes;
    return word + (((from_a & ~past_z) & ~word & kHighBits) >> 2);
  }
  static unsigned char Folded(char c) noexcept {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_STRING_CASE_CMP_H_
