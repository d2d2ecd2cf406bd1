#include "settings/name_table.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace quarry::settings {

namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x80 * kOnes;
constexpr std::uint64_t kCaseBits = 0x20 * kOnes;
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
constexpr unsigned kHalf = 32;

// Not zero when a byte of the word is; its lowest bit is in the lowest such byte.
std::uint64_t NulsIn(std::uint64_t word) { return (word - kOnes) & ~word & kHighBits; }

// The bytes below that one.
std::uint64_t BytesBelow(std::uint64_t nuls, std::uint64_t word) {
  const std::uint64_t lowest = nuls & (~nuls + 1);
  return word & ((lowest >> 7U) - 1);
}

// Adds 0x20 to each byte from A to Z: those below 0x80 whose high bit is set by adding 0x80 - 'A',
// but not by adding 0x80 - ('Z' + 1).
std::uint64_t Folded(std::uint64_t word) {
  const std::uint64_t low = word & ~kHighBits;
  const std::uint64_t from_a = low + (0x80 - 'A') * kOnes;
  const std::uint64_t past_z = low + (0x80 - 'Z' - 1) * kOnes;
  return word + (((from_a & ~past_z) & ~word & kHighBits) >> 2U);
}

template <typename Word>
std::uint64_t Load(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Up to eight bytes as a word; the missing ones are zero. Two words that overlap load faster than a
// copy of a size that the compiler does not know.
std::uint64_t WordOf(const char* bytes, std::size_t size) {
  constexpr std::size_t kByteBits = 8;
  const auto at = [](std::uint64_t word, std::size_t offset) {
    return word << (kByteBits * offset);
  };
  if (size == sizeof(std::uint64_t)) return Load<std::uint64_t>(bytes);
  if (size >= sizeof(std::uint32_t)) {
    const std::size_t last = size - sizeof(std::uint32_t);
    return Load<std::uint32_t>(bytes) | at(Load<std::uint32_t>(bytes + last), last);
  }
  if (size == 0) return 0;
  return Load<std::uint8_t>(bytes) | at(Load<std::uint8_t>(bytes + size / 2), size / 2) |
         at(Load<std::uint8_t>(bytes + size - 1), size - 1);
}

// Removes the next bytes of the name, up to eight; 0 at its end.
std::uint64_t TakeWord(std::string_view* name) {
  const std::size_t size = std::min(name->size(), sizeof(std::uint64_t));
  const std::uint64_t word = WordOf(name->data(), size);
  name->remove_prefix(size);
  const std::uint64_t nuls = NulsIn(word);
  if (nuls == 0) return word;
  *name = {};
  return BytesBelow(nuls, word);
}

std::uint64_t Mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * kMultiplier;
  return hash ^ (hash >> kHalf);
}

std::size_t SlotsFor(std::size_t capacity) {
  if (capacity >= NameTable::kNone / 2) throw std::bad_alloc();
  std::size_t slots = 2;
  while (slots < 2 * capacity) slots *= 2;
  return slots;
}

}  // namespace

std::uint64_t TakeFoldedWord(std::string_view* name) noexcept { return Folded(TakeWord(name)); }

// Setting the case bit in every byte is faster than folding. Some other bytes become the same: they
// are told apart when names are compared.
std::uint64_t HashOfName(std::string_view name, std::uint64_t seed) noexcept {
  std::uint64_t hash = seed;
  while (const std::uint64_t word = TakeWord(&name)) hash = Mixed(hash, word | kCaseBits);
  return hash;
}

NameTable::NameTable(std::size_t capacity) : slots_(SlotsFor(capacity)), mask_(slots_.size() - 1) {}

void NameTable::Add(std::uint64_t hash, std::uint32_t number) noexcept {
  std::size_t at = hash & mask_;
  while (slots_[at].number != kNone) at = (at + 1) & mask_;
  slots_[at] = {HighBits(hash), number};
}

}  // namespace quarry::settings
