// Small parts of almcfg: snippets, printable texts, the nearest keys.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/almcfg/check_text.h"
#include "tools/almcfg/query/nearest.h"
#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/snippet.h"

namespace {

using namespace almcfg;

TEST(Utf8Length, AcceptsExactlyTheWellFormedCharacters) {
  EXPECT_EQ(Utf8Length("A"), 1U);
  EXPECT_EQ(Utf8Length("\xC2\x80"), 2U);
  EXPECT_EQ(Utf8Length("\xE0\xA0\x80"), 3U);
  EXPECT_EQ(Utf8Length("\xF4\x8F\xBF\xBF"), 4U);
  for (const std::string bad :
       {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xC2", "\xE2\x82", "\xC2\x41"}) {
    EXPECT_EQ(Utf8Length(bad), 0U) << Printable(bad);
  }
}

TEST(Printable, LeavesNothingThatMovesTheCursorOrHides) {
  EXPECT_EQ(Printable("a b\x1b[31m\x07"), "a b\\x1B[31m\\x07");
  EXPECT_EQ(Printable("\xE2\x80\xAE"), "\\xE2\\x80\\xAE");
  EXPECT_EQ(Printable("\xC2\x9B"), "\\xC2\\x9B");
  EXPECT_EQ(Printable("\xC3\x9C\xFF"), "\xC3\x9C\\xFF");
  // A combining grapheme joiner, Hangul fillers, an em space, a variation selector and others.
  for (const std::string invisible :
       {"\xCD\x8F", "\xE1\x85\x9F", "\xE2\x80\x83", "\xE2\x81\x9F", "\xE2\xA0\x80", "\xE3\x80\x80",
        "\xE3\x85\xA4", "\xEF\xB8\x8F", "\xF0\x9D\x85\xB3"}) {
    EXPECT_EQ(Printable(invisible).size(), 4 * invisible.size()) << Printable("x" + invisible);
  }
}

TEST(Printable, EscapesABackslashThatLooksLikeAnEscape) {
  EXPECT_EQ(Printable("C\x08 C\\x08"), "C\\x08 C\\x5Cx08");
  EXPECT_EQ(Printable("\\xfF\\xg0\\x0\\\\X00\\"), "\\x5CxfF\\xg0\\x0\\\\X00\\");
}

TEST(Marked, ShowsBlanksOnlyWhereTheyAreOverlooked) {
  EXPECT_EQ(Marked(" a b  c \td/ e\r"), "·a b··c·→d/·e␍");
}

TEST(Quoted, CutsWhatIsTooLongForAMessage) {
  EXPECT_EQ(Quoted("a\"b"), "\"a\"b\"");
  EXPECT_EQ(Quoted(std::string(100, 'x')), '"' + std::string(48, 'x') + "…\"");
}

TEST(Grouped, SetsACommaBeforeEveryThreeDigits) {
  EXPECT_EQ(Grouped(0), "0");
  EXPECT_EQ(Grouped(999), "999");
  EXPECT_EQ(Grouped(1000), "1,000");
  EXPECT_EQ(Grouped(1234567), "1,234,567");
}

/// The shown character above the caret.
std::string UnderCaret(const Snippet& snippet) {
  std::string under;
  std::size_t width = 0;
  ForEachGlyph(snippet.text, Blanks::kAtEdges, [&](const Glyph& glyph) {
    under = width == snippet.indent ? glyph.bytes : "";
    width += glyph.width;
    return under.empty();
  });
  return under;
}

TEST(Snippet, PutsTheCaretBelowItsByteWhereverThatIsInALongLine) {
  std::string line(1000, '.');
  for (std::size_t at = 0; at < line.size(); at += 37) {
    line[at] = 'X';
    const Snippet snippet = MakeSnippet(line, at + 1, 1, Blanks::kAtEdges, 100);
    EXPECT_EQ(UnderCaret(snippet), "X") << at;
    EXPECT_LE(CharacterCount(snippet.text), 100U) << at;
    line[at] = '.';
  }
}

TEST(Snippet, CountsWhatIsShownAndNotTheBytes) {
  const Snippet snippet = MakeSnippet("\xC3\x9C\t\xFFX!", 5, 2, Blanks::kAtEdges, 100);
  EXPECT_EQ(snippet.text, "\xC3\x9C→\\xFFX!");
  EXPECT_EQ(snippet.indent, 6U);
  EXPECT_EQ(snippet.width, 2U);
}

TEST(Snippet, MarksThePlaceAfterTheLine) {
  const Snippet snippet = MakeSnippet("abc", 4, 1, Blanks::kAtEdges, 100);
  EXPECT_EQ(snippet.indent, 3U);
  EXPECT_EQ(snippet.width, 1U);
}

TEST(Snippet, CountsTwoColumnsForAWideCharacterAndNoneForACombiningOne) {
  EXPECT_EQ(MakeSnippet("\xE7\xBD\x91X", 4, 1, Blanks::kAtEdges, 100).indent, 2U);
  EXPECT_EQ(MakeSnippet("\xE7\xBD\x91X", 1, 3, Blanks::kAtEdges, 100).width, 2U);
  EXPECT_EQ(MakeSnippet("e\xCC\x81X", 4, 1, Blanks::kAtEdges, 100).indent, 1U);
}

TEST(Snippet, DoesNotMarkBeyondWhatItShows) {
  const Snippet snippet = MakeSnippet(std::string(900, 'x'), 50, 800, Blanks::kAtEdges, 100);
  EXPECT_LE(snippet.indent + snippet.width, CharacterCount(snippet.text));
}

TEST(JsonText, KeepsEveryByteThatIsNotUtf8InHexadecimal) {
  Json json;
  SetText(json, "a", "x\xFFy");
  SetText(json, "b", "\xC3\x9C");
  EXPECT_EQ(Dump(json), "{\"a\":\"x\xEF\xBF\xBDy\",\"aHex\":\"78ff79\",\"b\":\"\xC3\x9C\"}");
}

using NS_ASCII::AlarmKey;

/// "DISTANCE LINE DIFFERENCE" of the keys of `content` that are nearest to `wanted`.
std::vector<std::string> Nearest(const AlarmKey& wanted, const std::string& content, std::size_t count = 5) {
  const LoadedTable table = almcfg_test::TableOf(content);
  const std::vector<Neighbour> nearest = FindNearest(table, {wanted}, count).front();
  std::vector<std::string> found;
  for (const Neighbour& neighbour : nearest) {
    found.push_back(std::to_string(neighbour.distance) + ' ' + std::to_string(neighbour.place.line) + ' ' +
                    neighbour.difference);
  }
  return found;
}

TEST(Nearest, SpellsOutSmallDifferences) {
  const AlarmKey wanted{"Node", "Port", "Down", "7"};
  const auto lineOf = [&wanted](const std::string& line) { return Nearest(wanted, line + "\t1\n").at(0); };
  EXPECT_EQ(lineOf("node\tPort\tDown\t7"), "1 1 column 1 is \"node\", not \"Node\" (another case)");
  EXPECT_EQ(lineOf("Node\tPort \tDown\t7"), "1 1 column 2 is \"Port·\", not \"Port\" (a blank at the edge)");
  EXPECT_EQ(lineOf("Node\t port\tDown\t7"),
            "1 1 column 2 is \"·port\", not \"Port\" (another case and a blank at the edge)");
  EXPECT_EQ(lineOf("Node\t\"Port\"\tDown\t7"),
            "1 1 column 2 is \"\"Port\"\", not \"Port\" (in quotation marks)");
  EXPECT_EQ(lineOf("Node\tPort\t7\tDown"), "1 1 columns 3 and 4 are swapped");
  EXPECT_EQ(lineOf("node\tPort\t7\tDown"),
            "2 1 column 1 is \"node\", not \"Node\" (another case); columns 3 and 4 are swapped");
  EXPECT_EQ(lineOf("Node\tPort\tDown\t+07"),
            "1 1 column 4 is \"+07\", not \"7\" (the same number, written in a way that is never found)");
  EXPECT_EQ(lineOf("Node\tPort\tUp\t7"), "10 1 column 3 is \"Up\", not \"Down\"");
  EXPECT_EQ(lineOf("Node\tPort\tDown\t8"), "10 1 column 4 is \"8\", not \"7\"");
}

TEST(Nearest, FindsKeysWithTheQuotationMarksOfTheWantedOne) {
  const AlarmKey wanted{"\"A\"", "\"B\"", "Down", "7"};
  EXPECT_EQ(Nearest(wanted, "\"A\"\t\"B\"\tdown\t7\t1\n"),
            std::vector<std::string>{"1 1 column 3 is \"down\", not \"Down\" (another case)"});
  EXPECT_EQ(Nearest(wanted, "\"a\"\t\"B\"\tDown\t7\t1\n"),
            std::vector<std::string>{"10 1 column 1 is \"\"a\"\", not \"\"A\"\""});
}

TEST(Nearest, CallsOnlyTheNumberOfColumn4TheSameNumber) {
  EXPECT_EQ(Nearest({"7", "Port", "Down", "7"}, "07\tPort\tDown\t7\t1\n"),
            std::vector<std::string>{"10 1 column 1 is \"07\", not \"7\""});
}

TEST(Nearest, LeavesOutKeysOfWhichTwoColumnsAreAltogetherDifferent) {
  EXPECT_TRUE(Nearest({"A", "B", "C", "7"}, "A\tX\tY\t7\t1\nX\tB\tC\t8\t1\n").empty());
}

TEST(Nearest, PrefersSmallDifferencesThenTheOrderOfTheFile) {
  const AlarmKey wanted{"A", "B", "C", "7"};
  const std::string far = "X\tB\tC\t7\t1\nY\tB\tC\t7\t1\nZ\tB\tC\t7\t1\n";
  EXPECT_EQ(Nearest(wanted, far, 2), (std::vector<std::string>{"10 1 column 1 is \"X\", not \"A\"",
                                                               "10 2 column 1 is \"Y\", not \"A\""}));
  EXPECT_EQ(Nearest(wanted, far + "a\tb\tC\t7\t1\nA\tb\tC\t7\t1\n", 2),
            (std::vector<std::string>{"1 5 column 2 is \"b\", not \"B\" (another case)",
                                      "2 4 column 1 is \"a\", not \"A\" (another case); column 2 is \"b\", "
                                      "not \"B\" (another case)"}));
}

TEST(Nearest, FindsTheNeighboursOfEachWantedKey) {
  const LoadedTable table = almcfg_test::TableOf("A\tB\tC\t7\t1\nD\tE\tF\t8\t1\n");
  const auto nearest =
      FindNearest(table, {{"d", "E", "F", "8"}, {"no", "such", "key", "1"}, {"a", "B", "C", "7"}}, 2);
  ASSERT_EQ(nearest.size(), 3U);
  ASSERT_EQ(nearest[0].size(), 1U);
  EXPECT_EQ(nearest[0][0].place.line, 2U);
  EXPECT_TRUE(nearest[1].empty());
  ASSERT_EQ(nearest[2].size(), 1U);
  EXPECT_EQ(nearest[2][0].place.line, 1U);
}

}  // namespace
