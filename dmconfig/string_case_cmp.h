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

    const std::size_t shared = std::min(left.size(), right.size());
    if (shared >= sizeof(std::uint64_t)) return IsBefore<std::uint64_t>(l, r, shared);
    if (shared >= sizeof(std::uint32_t)) return IsBefore<std::uint32_t>(l, r, shared);
    return IsBeforeBytewise(l, r);
  }

 private:
  // Compares `shared` bytes, a word at a time; the last word may overlap the one before it.
  template <typename Word>
  static bool IsBefore(const char* l, const char* r, std::size_t shared) noexcept {
    for (std::size_t at = 0;; at = std::min(at + sizeof(Word), shared - sizeof(Word))) {
      const Word left = WordAt<Word>(l + at);
      const Word right = WordAt<Word>(r + at);
      if (HasNul(static_cast<Word>(left | right))) return IsBeforeBytewise(l, r);
      if (left != right && Folded(left) != Folded(right)) {
        return Swapped(Folded(left)) < Swapped(Folded(right));
      }
      if (at + sizeof(Word) == shared) return Folded(l[shared]) < Folded(r[shared]);
    }
  }

  [[gnu::noinline]] static bool IsBeforeBytewise(const char* l, const char* r) noexcept {
    for (;; ++l, ++r) {
      const unsigned char left = Folded(*l), right = Folded(*r);
      if (left != right) return left < right;
      if (left == 0) return false;
    }
  }

  // Each byte is 1.
  template <typename Word>
  static constexpr Word kOnes = static_cast<Word>(0x0101010101010101);
  template <typename Word>
  static constexpr Word kHighBits = kOnes<Word> * 0x80;

  // Loads a word from `text`; the first byte is the lowest.
  template <typename Word>
  static Word WordAt(const char* text) noexcept {
    Word word;
    std::memcpy(&word, text, sizeof word);
    return word;
  }
  template <typename Word>
  static bool HasNul(Word word) noexcept {
    const Word borrowed = word - kOnes<Word>;
    return (borrowed & ~word & kHighBits<Word>) != 0;
  }
  // Adds 0x20 to each byte from A to Z. Those are the bytes below 0x80 whose high bit is set by
  // adding 0x80 - 'A' but not by adding 0x80 - ('Z' + 1).
  template <typename Word>
  static Word Folded(Word word) noexcept {
    const Word low = word & ~kHighBits<Word>;
    const Word from_a = low + (0x80 - 'A') * kOnes<Word>;
    const Word past_z = low + (0x80 - 'Z' - 1) * kOnes<Word>;
    return word + (((from_a & ~past_z) & ~word & kHighBits<Word>) >> 2U);
  }
  static std::uint64_t Swapped(std::uint64_t word) noexcept { return __builtin_bswap64(word); }
  static std::uint32_t Swapped(std::uint32_t word) noexcept { return __builtin_bswap32(word); }
  static unsigned char Folded(char c) noexcept {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_STRING_CASE_CMP_H_
