#include "settings/suggestions.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "settings/line_scanner.h"

namespace quarry::settings {

namespace {

constexpr std::size_t kMaxSuggestions = 3;
constexpr std::size_t kMaxNameBytes = 100;  // nobody types longer ones

// The least number of bytes to insert, delete, replace or swap with the next
// one (optimal string alignment).
std::size_t EditDistance(const std::string& left, const std::string& right) {
  const std::size_t columns = right.size() + 1;
  std::vector<std::size_t> before_last(columns), last(columns), row(columns);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= left.size(); ++i) {
    before_last.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, row[j - 1] + 1, last[j] + 1});
      const bool swapped =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (swapped) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
  }
  return row.back();
}

// Whether one of two folded names is a prefix of the other, which counts as one typing error.
bool IsPrefixEitherWay(const std::string& left, const std::string& right) {
  const std::size_t shorter = std::min(left.size(), right.size());
  return shorter >= 3 && left.compare(0, shorter, right, 0, shorter) == 0;
}

// The distance of two folded names; any number above `max_distance` when it is larger.
std::size_t Distance(const std::string& left, const std::string& right, std::size_t max_distance) {
  if (IsPrefixEitherWay(left, right)) return 1;
  const std::size_t difference =
      left.size() > right.size() ? left.size() - right.size() : right.size() - left.size();
  return difference > max_distance ? difference : EditDistance(left, right);
}

// The distance of `name` from a folded name; none when it is not spelled much like it.
std::optional<std::size_t> NearDistance(const std::string& wanted, std::string_view name) {
  if (wanted.size() > kMaxNameBytes || name.size() > kMaxNameBytes) return std::nullopt;
  const std::size_t max_distance = 1 + wanted.size() / 4;
  const std::size_t distance = Distance(wanted, Folded(name), max_distance);
  return distance <= max_distance ? std::optional(distance) : std::nullopt;
}

}  // namespace

bool IsSpelledLike(std::string_view wanted, std::string_view name) {
  return NearDistance(Folded(wanted), name).has_value();
}

std::vector<std::string> SuggestNames(const std::string& wanted,
                                      const std::list<std::string>& names) {
  const std::string folded = Folded(wanted);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const std::string& name : names) {
    const auto distance = NearDistance(folded, name);
    if (distance) near.emplace_back(*distance, name);
  }
  std::stable_sort(near.begin(), near.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });

  std::vector<std::string> nearest;
  for (const auto& [distance, name] : near) {
    if (nearest.size() < kMaxSuggestions) nearest.push_back(name);
  }
  return nearest;
}

}  // namespace quarry::settings
