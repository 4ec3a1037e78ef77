// The repairs of almcfg one by one, and the unified diff of a repair.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tools/almcfg/options.h"
#include "tools/almcfg/repair/repair_text.h"
#include "tools/almcfg/write/unified_diff.h"

namespace {

using namespace almcfg;
using testing::ElementsAre;
using testing::IsEmpty;

const RepairRules kSafe{Options::AllCodes(), false};
const RepairRules kUnsafe{Options::AllCodes(), true};

std::string Safe(const std::string& content) { return RepairText(content, kSafe).Text(); }
std::string Unsafe(const std::string& content) { return RepairText(content, kUnsafe).Text(); }

/// "LINE:COLUMN code" of every repair.
std::vector<std::string> Repairs(const std::string& content, const RepairRules& rules = kSafe) {
  std::vector<std::string> repairs;
  for (const Finding& repair : RepairText(content, rules).repairs) {
    repairs.push_back(std::to_string(repair.line) + ':' + std::to_string(repair.column) + ' ' +
                      RuleOf(repair.code).name);
  }
  return repairs;
}

TEST(SafeRepair, LeavesAGoodFileUnchanged) {
  const std::string good = "# x\n\nA/B\tC\tD e\t7\t1\nB\tC\tD\t8\t1\n";
  EXPECT_EQ(Safe(good), good);
  EXPECT_THAT(Repairs(good), IsEmpty());
  EXPECT_EQ(Safe(""), "");
}

TEST(SafeRepair, RemovesTheMarkTheCrsAndAddsTheFinalLineFeed) {
  const std::string content = "\xEF\xBB\xBF# x\r\nA\tB\tC\t7\t1\r\nlost\r";
  EXPECT_EQ(Safe(content), "# x\nA\tB\tC\t7\t1\nlost\n");
  EXPECT_THAT(Repairs(content),
              ElementsAre("1:1 byte-order-mark", "1:7 cr-line-ends", "3:6 no-final-line-feed"));
}

TEST(SafeRepair, KeepsAMarkThatKeepsALoadedLineFromBeingAComment) {
  const std::string marked = "\xEF\xBB\xBF#A/B\tC\tD\t7\t1\n";
  EXPECT_EQ(Safe(marked), marked);
  EXPECT_EQ(Unsafe(marked), "#A/B\tC\tD\t7\t1\n");
}

TEST(SafeRepair, RemovesBlanksAtTheEndsOfLinesButNotBesideAnEmptyColumn) {
  EXPECT_EQ(Safe(" A\tB\tC\t7\t1 \t\n \t\n# x \n"), "A\tB\tC\t7\t1\n\n# x\n");
  EXPECT_EQ(Safe("A\tB\tC\t7\t\n\tB\tC\t7\t1\n"), "A\tB\tC\t7\t\n\tB\tC\t7\t1\n");
}

TEST(SafeRepair, MakesCommentsOfIndentedOnesUnlessTheyAreLoaded) {
  EXPECT_EQ(Safe(" # x\n #A\tB\tC\t7\t1\tx\n"), "# x\n#A\tB\tC\t7\t1\tx\n");
  EXPECT_EQ(Safe(" #A\tB\tC\t7\t1\n"), " #A\tB\tC\t7\t1\n");
  EXPECT_EQ(Unsafe(" #A\tB\tC\t7\t1\n"), "#A\tB\tC\t7\t1\n");
}

TEST(SafeRepair, MakesHeadingsComments) {
  EXPECT_EQ(Safe("K1\tK2\tK3\tNumber\tValue\nK1,K2,K3,Number,Value\n"),
            "#K1\tK2\tK3\tNumber\tValue\n#K1,K2,K3,Number,Value\n");
}

TEST(SafeRepair, SeparatesExactlyFiveCellsByTabs) {
  EXPECT_EQ(Safe("A,B,C,7,1\n"), "A\tB\tC\t7\t1\n");
  EXPECT_EQ(Safe("A;B;C;7;1\n"), "A\tB\tC\t7\t1\n");
  EXPECT_EQ(Safe("\"A\",\"B, \"\"b\"\"\",C,7,\"1\"\n"), "A\tB, \"b\"\tC\t7\t1\n");
  EXPECT_EQ(Safe("A,B;C,D,7,1\n"), "A\tB;C\tD\t7\t1\n");
  for (const std::string content : {"A,B,C,7\n", "A,B,C,7,1,2\n", "A,,C,7,1\n", "\"A,B,C,7,1\n",
                                    "A\"b,B,C,7,1\n", "\"A\"x,B,C,7,1\n", "A,B,C,7,\"\"\n", "A B C 7 1\n"}) {
    EXPECT_EQ(Safe(content), content);
  }
}

TEST(SafeRepair, RemovesQuotesAroundWholeCellsAndAlternatives) {
  EXPECT_EQ(Safe("\"A/B\"\tC\t\"D\"\t\"7\"\t\"1\"\n"), "A/B\tC\tD\t7\t1\n");
  EXPECT_EQ(Safe("\"A\"/\"B\"\tC\tD\t7\t1\n"), "A/B\tC\tD\t7\t1\n");
  EXPECT_EQ(Safe("\"A\"\"b\"\tC\tD\t7\t1\n"), "A\"b\tC\tD\t7\t1\n");
  EXPECT_EQ(Safe("\"A\tC\tD\"\t7\t1\nA\"b\"\tC\tD\t7\t1\n"), "\"A\tC\tD\"\t7\t1\nA\"b\"\tC\tD\t7\t1\n");
}

TEST(SafeRepair, RemovesATrailingSlash) {
  EXPECT_EQ(Safe("A/\tB/\tC/\t7\t1\n"), "A\tB\tC/\t7\t1\n");
  EXPECT_THAT(Repairs("A/\tB/\tC\t7\t1\n"), ElementsAre("1:2 trailing-slash", "1:5 trailing-slash"));
}

TEST(SafeRepair, RemovesARepeatOnlyWhenNoAnswerDependsOnIt) {
  EXPECT_EQ(Safe("A\tB\tC\t7\t1\n# x\nA\tB\tC\t7\t1\n"), "A\tB\tC\t7\t1\n# x\n");
  const std::string needed = "A\tB\tC\t7\t1\nA\tB\tC\t7\t2\nA\tB\tC\t7\t1\n";
  EXPECT_EQ(Safe(needed), needed);
}

TEST(Repair, NamesTheRepeatedLineByItsNumberInTheOriginalFile) {
  const std::string content = "A/B/C/D/E/F\tX\tC\t7\t1\nG\tX\tC\t7\t1\nG\tX\tC\t7\t1\n";
  const auto repairs = RepairText(content, kUnsafe).repairs;
  ASSERT_EQ(repairs.size(), 2U);
  EXPECT_EQ(repairs[1].line, 3U);
  EXPECT_EQ(repairs[1].message, "removed the repeat of line 2");
}

TEST(SafeRepair, RemovesAMarkFromTheFirstLineOnly) {
  const std::string later =
      "A\tB\tC\t7\t1\n\xEF\xBB\xBF"
      "D\tB\tC\t7\t1\n";
  EXPECT_EQ(Safe(later), later);
}

TEST(SafeRepair, SeparatesAtCommasWhenSemicolonsWouldAlsoGiveFiveCells) {
  EXPECT_EQ(Safe("A,B;b,C;c,7;d,1;e\n"), "A\tB;b\tC;c\t7;d\t1;e\n");
}

TEST(SafeRepair, DoesNotReplaceAnAnswer) {
  const std::string conflict = "A\tB\tC\t7\t1\nA,B,C,7,2\n\"A\"\tB\tC\t7\t3\n";
  EXPECT_EQ(Safe(conflict), conflict);
  EXPECT_EQ(Unsafe(conflict), "A\tB\tC\t7\t3\n");
  EXPECT_EQ(Safe("A,B,C,7,2\nA\tB\tC\t7\t1\n"), "A\tB\tC\t7\t2\nA\tB\tC\t7\t1\n");
  EXPECT_EQ(Safe("A\tB\tC\t7\t01\nA,B,C,7,1\n"), "A\tB\tC\t7\t01\nA\tB\tC\t7\t1\n");
}

TEST(SafeRepair, ReplacesAValueThatALaterLineReplacesAnyway) {
  const std::string repaired = "A\tB\tC\t7\t1\nA\tB\tC\t7\t2\nA\tB\tC\t7\t1\n";
  EXPECT_EQ(Safe("A\tB\tC\t7\t1\n\"A\"\tB\tC\t7\t2\n\"A\"\tB\tC\t7\t1\n"), repaired);
  EXPECT_EQ(Safe("A\tB\tC\t7\t1\nA,B,C,7,2\nA,B,C,7,1\n"), repaired);
}

TEST(SafeRepair, LeavesUnsafeRepairsAlone) {
  const std::string content = "A \tB\tC\t07\t1\nB\tB\tC\t7\t1\nB\tB\tC\t7\t2\n";
  EXPECT_EQ(Safe(content), content);
}

TEST(UnsafeRepair, RemovesBlanksAndWritesNumbersPlainly) {
  EXPECT_EQ(Unsafe("A / B\tC \t D\t +07\t1\n"), "A/B\tC\tD\t7\t1\n");
  EXPECT_EQ(Unsafe("A\tB\tC\t-0\t1\nA\tB\tC\tseven\t1\n"), "A\tB\tC\t0\t1\nA\tB\tC\tseven\t1\n");
}

TEST(Repair, ChangesEachAlternativeThatCanBeChanged) {
  EXPECT_EQ(Unsafe("A / /B \tC\tD\t7\t1\n"), "A/ /B\tC\tD\t7\t1\n");
  EXPECT_EQ(Safe("A\tC\tD\t7\t1\n\"A\"/\"B\"\tC\tD\t7\t2\n"), "A\tC\tD\t7\t1\n\"A\"/B\tC\tD\t7\t2\n");
}

TEST(UnsafeRepair, KeepsTheLaterOfTwoLines) {
  EXPECT_EQ(Unsafe("A\tB\tC\t7\t1\n# x\nA\tB\tC\t7\t2\n"), "# x\nA\tB\tC\t7\t2\n");
  EXPECT_EQ(Unsafe("A/B\tX/Y\tC\t7\t1\nA\tX\tC\t7\t2\n"), "A\tY\tC\t7\t1\nB\tX/Y\tC\t7\t1\nA\tX\tC\t7\t2\n");
  EXPECT_EQ(Unsafe("A/B/D\tX/Y\tC\t7\t1\nA/B\tX\tC\t7\t2\n"),
            "A/B\tY\tC\t7\t1\nD\tX/Y\tC\t7\t1\nA/B\tX\tC\t7\t2\n");
  EXPECT_THAT(Repairs("A\tB\tC\t7\t1\nA\tB\tC\t7\t2\n", kUnsafe), ElementsAre("1:1 value-replaced"));
}

TEST(UnsafeRepair, SplitsLinesWithTooManyAlternativesAndOverlongOnes) {
  EXPECT_EQ(Unsafe("A/B/C/D/E/F\tX\tC\t7\t1\n"), "A/B/C/D/E\tX\tC\t7\t1\nF\tX\tC\t7\t1\n");
  EXPECT_EQ(Unsafe("A\tB/C/D/E/F/G/\tC\t7\t1\n"), "A\tB/C/D/E/F\tC\t7\t1\nA\tG\tC\t7\t1\n");
  EXPECT_EQ(Unsafe("A/B/C/D/E/F,X,C,7,1\n"), "A/B/C/D/E\tX\tC\t7\t1\nF\tX\tC\t7\t1\n");
  const std::string first(600, 'a');
  const std::string second(600, 'b');
  EXPECT_EQ(Unsafe(first + '/' + second + "\tX\tC\t7\t1\n"),
            first + "\tX\tC\t7\t1\n" + second + "\tX\tC\t7\t1\n");
  const std::string hopeless = std::string(1100, 'a') + "\tX\tC\t7\t1\n";
  EXPECT_EQ(Unsafe(hopeless), hopeless);
}

TEST(Repair, IsReportedAtItsPlaceInTheOriginalLine) {
  EXPECT_THAT(
      Repairs("\xEF\xBB\xBF  A /B/\tB/\t C\t07\t5 \r\n", kUnsafe),
      ElementsAre("1:1 byte-order-mark", "1:23 cr-line-ends", "1:4 outer-blank", "1:10 trailing-slash",
                  "1:13 trailing-slash", "1:6 edge-blank", "1:15 edge-blank", "1:18 number-never-matches"));
  EXPECT_THAT(Repairs("\"A/\",\"B, \"\"b\"\"\",C/ ,+7,\"5\"\n", kUnsafe),
              ElementsAre("1:1 wrong-separator", "1:3 trailing-slash", "1:17 edge-blank",
                          "1:21 number-never-matches"));
  EXPECT_THAT(Repairs("A\tB\tC\t7\t5\n \"A\"\t\"B\"\tC\t8\t5\n"),
              ElementsAre("2:1 outer-blank", "2:2 quoted-cell", "2:6 quoted-cell"));
  EXPECT_THAT(Repairs(" #A\t\"B\"\t\"C\"\t7\t5\n"), ElementsAre("1:5 quoted-cell", "1:9 quoted-cell"))
      << "the blank stays";
}

TEST(Repair, IsReportedAtTheStartOfALineThatIsSplit) {
  EXPECT_THAT(Repairs("A/B/C/D/E/F\t\"X\"\tC\t7\t1\n", kUnsafe),
              ElementsAre("1:1 too-many-alternatives", "1:1 quoted-cell", "1:1 quoted-cell"));
}

TEST(UnsafeRepair, SplitsALineIntoAtMost10000) {
  std::string line = "A\t";
  for (int i = 0; i < 50'000; ++i) {
    line += std::to_string(i) + '/';
  }
  const std::string split = Unsafe(line + "\tC\t7\t1\n");
  EXPECT_EQ(std::count(split.begin(), split.end(), '\n'), 10'000);
  const std::string more = line + "x\tC\t7\t1\n";
  EXPECT_EQ(Unsafe(more), more);
}

TEST(UnsafeRepair, CountsLinesThatAreSplitForTheirLengthToo) {
  const auto column = [](int alternatives, std::size_t length) {
    std::string text;
    for (int i = 0; i < alternatives; ++i) {
      text += std::string(length, 'x') + std::to_string(i) + '/';
    }
    return text;
  };
  const std::string rest = '\t' + column(100, 400) + "\tC\t7\t1\n";
  const std::string split =
      Unsafe(column(100, 500) + rest);  // Two alternatives of a column are too long together.
  EXPECT_EQ(std::count(split.begin(), split.end(), '\n'), 10'000);
  const std::string more = column(101, 500) + rest;
  EXPECT_TRUE(Unsafe(more) == more);
}

TEST(Repair, IsLimitedToTheSelectedCodes) {
  RepairRules rules{{}, true};
  rules.codes[static_cast<std::size_t>(Code::kTrailingSlash)] = true;
  EXPECT_EQ(RepairText(" A/\tB \tC\t07\t1\r", rules).Text(), " A\tB \tC\t07\t1\r");
}

std::string Diff(const std::vector<std::string>& original,
                 const std::vector<std::vector<std::string>>& replacements) {
  std::ostringstream out;
  WriteUnifiedDiff(out, "x.csv", original, replacements, false);
  return out.str();
}

TEST(UnifiedDiff, EndsANameWithBlanksByATab) {
  std::ostringstream out;
  WriteUnifiedDiff(out, "a b.csv", {"a\n"}, {{"b\n"}}, false);
  EXPECT_EQ(out.str(), "--- a b.csv\t\n+++ a b.csv\t\n@@ -1,1 +1,1 @@\n-a\n+b\n");
}

TEST(UnifiedDiff, IsEmptyWhenNothingChanges) { EXPECT_EQ(Diff({"a\n"}, {{"a\n"}}), ""); }

TEST(UnifiedDiff, ShowsThreeLinesAroundAChange) {
  EXPECT_EQ(Diff({"1\n", "2\n", "3\n", "4\n", "5\n", "6\n", "7\n", "8\n", "9\n"},
                 {{"1\n"}, {"2\n"}, {"3\n"}, {"4\n"}, {"x\n", "y\n"}, {"6\n"}, {"7\n"}, {"8\n"}, {"9\n"}}),
            "--- x.csv\n+++ x.csv\n@@ -2,7 +2,8 @@\n 2\n 3\n 4\n-5\n+x\n+y\n 6\n 7\n 8\n");
}

TEST(UnifiedDiff, SeparatesDistantChangesAndNumbersTheNewLines) {
  std::vector<std::string> original(12, "a\n");
  std::vector<std::vector<std::string>> replacements(12, {"a\n"});
  replacements[0] = {};
  replacements[11] = {"b\n"};
  EXPECT_EQ(Diff(original, replacements),
            "--- x.csv\n+++ x.csv\n@@ -1,4 +1,3 @@\n-a\n a\n a\n a\n@@ -9,4 +8,4 @@\n a\n a\n a\n-a\n+b\n");
}

TEST(UnifiedDiff, JoinsChangesWithSixLinesBetweenThem) {
  const auto hunks = [](std::size_t between) {
    std::vector<std::vector<std::string>> replacements(between + 2, {"a\n"});
    replacements.front() = {"b\n"};
    replacements.back() = {"b\n"};
    const std::string diff = Diff(std::vector<std::string>(between + 2, "a\n"), replacements);
    return std::count(diff.begin(), diff.end(), '@') / 4;
  };
  EXPECT_EQ(hunks(6), 1);
  EXPECT_EQ(hunks(7), 2);
}

TEST(UnifiedDiff, MarksAMissingLineFeed) {
  EXPECT_EQ(Diff({"a"}, {{"a\n"}}),
            "--- x.csv\n+++ x.csv\n@@ -1,1 +1,1 @@\n-a\n\\ No newline at end of file\n+a\n");
  EXPECT_EQ(Diff({"a\n"}, {{}}), "--- x.csv\n+++ x.csv\n@@ -1,1 +0,0 @@\n-a\n");
}

}  // namespace
