// Splitting a command line into words: blanks, quotes, comments. A word keeps its column for the messages.

#include "host/base/words.h"

#include <gtest/gtest.h>

#include "host/base/problem.h"

namespace {

using host::SplitWords;
using host::Words;

TEST(Words, AreSeparatedByBlanksTabsAndCarriageReturns) {
  EXPECT_EQ(SplitWords("  a\tbc   d\r"), (Words{"a", "bc", "d"}));
  EXPECT_EQ(SplitWords(""), Words{});
  EXPECT_EQ(SplitWords(" \t "), Words{});
}

TEST(Words, BetweenQuotesEveryByteIsLiteral) {
  EXPECT_EQ(SplitWords(R"('a "b' "c 'd" '#\n')"), (Words{"a \"b", "c 'd", "#\\n"}));
}

TEST(Words, PiecesSideBySideAreOneWord) {
  EXPECT_EQ(SplitWords(R"('say "it'"'"'s"' a''b"c d")"), (Words{"say \"it's\"", "abc d"}));
}

TEST(Words, EmptyQuotesAreAnEmptyWord) { EXPECT_EQ(SplitWords("a '' \"\""), (Words{"a", "", ""})); }

TEST(Words, ACommentStartsOnlyWhereAWordCouldStart) {
  EXPECT_EQ(SplitWords("a#b # c 'd"), Words{"a#b"});
  EXPECT_EQ(SplitWords("#"), Words{});
}

TEST(Words, AQuoteThatIsNotClosedIsReportedWithItsColumn) {
  try {
    SplitWords("ab 'c");
    FAIL();
  } catch (const host::UsageError& error) {
    EXPECT_STREQ(error.what(), "column 4: the quote ' is not closed");
  }
}

}  // namespace
