// Which known word is suggested for a misspelt one. A word that is too far from all known ones must get
// none.

#include "host/base/suggest.h"

#include <gtest/gtest.h>

namespace {

using host::DidYouMean;

TEST(DidYouMean, NamesTheNearestOne) {
  EXPECT_EQ(DidYouMean("bundels", {"services", "bundles"}), "; did you mean bundles?");
  EXPECT_EQ(DidYouMean("touper", {"ToUpper", "ToLower"}), "; did you mean ToUpper?");
  EXPECT_EQ(DidYouMean("cal", {"call"}), "; did you mean call?");
}

TEST(DidYouMean, SwappedNeighboursCountOne) {
  EXPECT_EQ(DidYouMean("hlep", {"help"}), "; did you mean help?");
  EXPECT_EQ(DidYouMean("ehlp", {"call", "help"}), "; did you mean help?");
  EXPECT_EQ(DidYouMean("lhep", {"help"}), "");
}

TEST(DidYouMean, CaseIsIgnored) { EXPECT_EQ(DidYouMean("CALL", {"call"}), "; did you mean call?"); }

TEST(DidYouMean, IsSilentWhenNothingIsNear) {
  EXPECT_EQ(DidYouMean("xyz", {"call", "bundles"}), "");
  EXPECT_EQ(DidYouMean("", {"call"}), "");
  EXPECT_EQ(DidYouMean("call", {}), "");
}

TEST(DidYouMean, SaysSomethingElseInsteadWhenWanted) {
  EXPECT_EQ(DidYouMean("xyz", {"call"}, "; 'help' lists them"), "; 'help' lists them");
  EXPECT_EQ(DidYouMean("cal", {"call"}, "; 'help' lists them"), "; did you mean call?");
}

TEST(DidYouMean, AtMostAThirdOfTheLettersMayDiffer) {
  EXPECT_EQ(DidYouMean("abcdef", {"abcd"}), "; did you mean abcd?");
  EXPECT_EQ(DidYouMean("abcdef", {"abc"}), "");
}

TEST(DidYouMean, SuggestsNothingForAVeryLongWord) {
  const std::string word(100, 'a');
  EXPECT_EQ(DidYouMean(word, {word + 'b'}), "; did you mean " + word + "b?");
  EXPECT_EQ(DidYouMean(word + 'a', {word + 'b'}), "");
}

}  // namespace
