// Parsing one line: its outcome and, for a rejected line, reason and place. `almcfg` shows both, so they
// are tested apart from the load.

#include "src/alarmconfig/almgrammar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using NS_ASCII::BadPart;
using NS_ASCII::LineOutcome;
using NS_ASCII::ParsedLine;
using NS_ASCII::ParseLine;
using NS_ASCII::PartList;
using NS_ASCII::Rejection;
using NS_ASCII::RejectReason;
using NS_ASCII::SplitText;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

void ExpectRejected(const std::string& line, RejectReason reason, SplitText split, const std::string& text,
                    std::size_t partIndex, std::size_t offset) {
  const ParsedLine parsed = ParseLine(line);
  ASSERT_EQ(parsed.outcome, LineOutcome::kRejected) << line;
  EXPECT_EQ(parsed.rejection.reason, reason) << line;
  EXPECT_EQ(parsed.rejection.split, split) << line;
  EXPECT_EQ(parsed.rejection.text, text) << line;
  EXPECT_EQ(parsed.rejection.partIndex, partIndex) << line;
  EXPECT_EQ(parsed.rejection.offset, offset) << line;
}

std::vector<std::string> TextsOf(const PartList& parts) { return {parts.begin(), parts.end()}; }

std::vector<std::string> RecordsOf(const ParsedLine& line) {
  std::vector<NS_ASCII::AlarmRecordView> records(1);
  NS_ASCII::ListRecords(line, records);
  std::vector<std::string> shown;
  for (const NS_ASCII::AlarmRecordView& record : records) {
    shown.push_back(std::string(record.key1) + '|' + std::string(record.key2) + '|' +
                    std::string(record.key3) + '|' + std::string(record.numKey) + '=' +
                    std::string(record.value));
  }
  return shown;
}

TEST(ParseLine, SkipsCommentsAndEmptyLines) {
  EXPECT_EQ(ParseLine("").outcome, LineOutcome::kSkipped);
  EXPECT_EQ(ParseLine("#").outcome, LineOutcome::kSkipped);
  EXPECT_EQ(ParseLine("#A\tk\tc\t1\tv").outcome, LineOutcome::kSkipped);
}

TEST(ParseLine, FindsTooFewColumns) {
  EXPECT_EQ(ParseLine("A").outcome, LineOutcome::kTooFewColumns);
  EXPECT_EQ(ParseLine(" \t\r").outcome, LineOutcome::kTooFewColumns);
  EXPECT_EQ(ParseLine(" #A").outcome, LineOutcome::kTooFewColumns);
  EXPECT_EQ(ParseLine("A\tk\tc\t1\t").outcome, LineOutcome::kTooFewColumns);
  EXPECT_EQ(ParseLine("A//\tk//\tc\t1").outcome, LineOutcome::kTooFewColumns);
  EXPECT_THAT(TextsOf(ParseLine(" A\tk\tc\t1").columns), ElementsAre("A", "k", "c", "1"));
  EXPECT_THAT(TextsOf(ParseLine("  ").columns), IsEmpty());
}

TEST(ParseLine, ReturnsTheColumnsAndAlternativesOfAnAcceptedLine) {
  const ParsedLine parsed = ParseLine(" A/B/C /D/E\tk/l\tc/d\t1/\tv w/\r");
  EXPECT_EQ(parsed.outcome, LineOutcome::kAccepted);
  EXPECT_THAT(TextsOf(parsed.columns), ElementsAre("A/B/C /D/E", "k/l", "c/d", "1/", "v w/"));
  EXPECT_THAT(TextsOf(parsed.key1s), ElementsAre("A", "B", "C ", "D", "E"));
  EXPECT_THAT(TextsOf(parsed.key2s), ElementsAre("k", "l"));
}

TEST(ParseLine, IgnoresOneSlashAtTheEndOfAColumn) {
  const ParsedLine parsed = ParseLine("A/\tk/l/\tc\t1\tv");
  EXPECT_EQ(parsed.outcome, LineOutcome::kAccepted);
  EXPECT_THAT(TextsOf(parsed.key1s), ElementsAre("A"));
  EXPECT_THAT(TextsOf(parsed.key2s), ElementsAre("k", "l"));
}

TEST(ParseLine, ReturnsViewsOfTheLine) {
  const std::string line = " A/B\tk\tc\t1\tv";
  const ParsedLine parsed = ParseLine(line);
  EXPECT_EQ(parsed.columns[0].data(), line.data() + 1);
  EXPECT_EQ(parsed.key1s[1].data(), line.data() + 3);
  EXPECT_EQ(parsed.columns[4].data(), line.data() + line.size() - 1);
}

TEST(ParseLine, RejectsAnEmptyColumn) {
  ExpectRejected("A\t\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kLine, "A\t\tc\t1\tv", 1, 2);
  ExpectRejected(" \tA\tk\tc\t\tv \r", RejectReason::kEmptyPart, SplitText::kLine, "A\tk\tc\t\tv", 3, 8);
  // Reported before the missing columns and before a bad alternative to its left.
  ExpectRejected("A//\t\tc", RejectReason::kEmptyPart, SplitText::kLine, "A//\t\tc", 1, 4);
}

TEST(ParseLine, RejectsASixthColumn) {
  ExpectRejected(" A\tk\tc\t1\tv\tw\tx", RejectReason::kSixthPart, SplitText::kLine, "A\tk\tc\t1\tv\tw\tx", 5,
                 11);
  ExpectRejected("A\tk\tc\t1\tv\t\tw", RejectReason::kEmptyPart, SplitText::kLine, "A\tk\tc\t1\tv\t\tw", 5,
                 10);
}

TEST(ParseLine, RejectsAnEmptyAlternative) {
  ExpectRejected(" A//B\tk\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kColumn1, "A//B", 1, 3);
  ExpectRejected("/A\tk\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kColumn1, "/A", 0, 0);
  ExpectRejected("A/B\tk/l//\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kColumn2, "k/l//", 2, 8);
  // Column 1 is split first.
  ExpectRejected("A//\t/k\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kColumn1, "A//", 1, 2);
  // The same text in both columns.
  ExpectRejected("/\t/\tc\t1\tv", RejectReason::kEmptyPart, SplitText::kColumn1, "/", 0, 0);
}

TEST(ParseLine, RejectsASixthAlternative) {
  ExpectRejected("A/B/C/D/E/F/G\tk\tc\t1\tv", RejectReason::kSixthPart, SplitText::kColumn1, "A/B/C/D/E/F/G",
                 5, 10);
  ExpectRejected("A\tk/l/m/n/o/p\tc\t1\tv", RejectReason::kSixthPart, SplitText::kColumn2, "k/l/m/n/o/p", 5,
                 12);
}

TEST(ListRecords, ListsTheAlternativesOfColumnTwoWithinThoseOfColumnOne) {
  EXPECT_THAT(RecordsOf(ParseLine("A/B\tX/Y\tc\t1\tv")),
              ElementsAre("A|X|c|1=v", "A|Y|c|1=v", "B|X|c|1=v", "B|Y|c|1=v"));
  EXPECT_EQ(RecordsOf(ParseLine("A/B/C/D/E\tA/B/C/D/E\tc\t1\tv")).size(), 25U);
}

TEST(SplitParts, AgreesWithTheLiteralRuleForEveryShortText) {
  testing_text::ForEachText("a/\t", 9, [](const std::string& text) {
    for (const std::string separators : {"/", "\t/", ""}) {
      literal::AlarmConfig rules;
      std::list<std::string> expected;
      const bool isBad = rules.Split(text, expected, separators) != 0;
      PartList parts;
      const std::optional<BadPart> bad = NS_ASCII::SplitParts(text, separators, parts);
      ASSERT_EQ(bad.has_value(), isBad) << text;
      ASSERT_EQ(TextsOf(parts), std::vector<std::string>(expected.begin(), expected.end())) << text;
      if (isBad) {
        const bool isEmpty = rules.complaints[0].line == 195;
        ASSERT_EQ(bad->reason, isEmpty ? RejectReason::kEmptyPart : RejectReason::kSixthPart) << text;
        ASSERT_EQ(bad->index, isEmpty ? parts.size() : 5U) << text;
        ASSERT_EQ(bad->part.empty(), isEmpty) << text;
      }
    }
  });
}

}  // namespace
