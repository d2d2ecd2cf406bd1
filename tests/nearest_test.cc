#include "tools/nearest.h"

#include <gtest/gtest.h>

namespace quarry::tool {
namespace {

TEST(NearestNames, FindsWhatMayHaveBeenMeant) {
  using Names = std::vector<std::string>;
  struct Case {
    const char* wanted;
    std::list<std::string> names;
    Names nearest;
  };
  const Case cases[] = {
      {"ab", {"ac", "ad", "ae", "af"}, {"ac", "ad", "ae"}},  // at most three
      {"abc", {"ac", "axbc", "axy"}, {"ac", "axbc"}},        // one edit
      {"abcd", {"xbxd", "abxd"}, {"abxd", "xbxd"}},          // nearest first
      {"ba", {"ab"}, {"ab"}},                                // swapped
      {"aBcDeF", {"AbCdEf"}, {"AbCdEf"}},
      {"abc", {"abcdefgh"}, {"abcdefgh"}},  // begins with it
      {"ab", {"abcdef"}, {}},
      {"abcdefgh", {"abcxyzuv"}, {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(NearestNames(c.wanted, c.names), c.nearest) << c.wanted;
  }
}

}  // namespace
}  // namespace quarry::tool
