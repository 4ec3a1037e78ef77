// What repairs promise, checked with random files: a safe repair keeps every integer that queries get from the
// file's lines, except for keys with quotation marks or a byte order mark; nothing that can be repaired is left, a
// second repair changes nothing, comments and the order of lines are kept.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/almcfg/check_text.h"
#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/options.h"
#include "tools/almcfg/repair/repair_text.h"

namespace {

using namespace almcfg;
using almcfg_test::CheckWhole;
using almcfg_test::TableOf;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

constexpr int kFiles = 150;
const RepairRules kSafe{Options::AllCodes(), false};
const RepairRules kUnsafe{Options::AllCodes(), true};

std::string Repaired(const std::string& content, const RepairRules& rules) {
  return RepairText(content, rules).Text();
}

/// Short files with everything that is repaired, and with what prevents a repair. With `isNumbered` each comment
/// and each value holds the number of its line, from 101.
class RandomFile {
 public:
  explicit RandomFile(unsigned seed, bool isNumbered = false) : random_(seed), isNumbered_(isNumbered) {}

  std::string Make() {
    std::string text = Below(10) == 0 ? "\xEF\xBB\xBF" : "";
    const std::size_t lines = 1 + Below(8);
    for (number_ = 101; number_ < 101 + lines; ++number_) {
      text += Line() + (Below(5) == 0 ? "\r\n" : "\n");
    }
    if (Below(4) == 0) {
      text.pop_back();
    }
    return text;
  }

 private:
  std::size_t Below(std::size_t end) { return random_() % end; }

  const std::string& OneOf(const Texts& texts) { return texts[Below(texts.size())]; }

  std::string Line() {
    switch (Below(12)) {
      case 0:
        return "#" + std::to_string(number_) + (Below(2) == 0 ? " " : "");
      case 1:
        return isNumbered_ ? "" : OneOf({"", " ", "A\tB\tK\tNumber\tValue", "A;B;K;Number;Value", "lost"});
      default:
        return Columns();
    }
  }

  std::string Columns() {
    static const Texts kSeparators{"\t", "\t", "\t", "\t", ",", ";"};
    const std::string separator = OneOf(kSeparators);
    std::string line = Below(8) == 0 ? " " : "";
    line += Below(12) == 0 ? "#" : "";
    for (std::size_t i = 0; i < 5; ++i) {
      line += (i == 0 ? "" : separator) + Column(i);
    }
    return line + (Below(8) == 0 ? " " : "") + (Below(40) == 0 ? "\tsixth" : "") +
           (Below(60) == 0 ? std::string(1, '\0') : "");
  }

  std::string Column(std::size_t column) {
    static const Texts kNumbers{"7", "7", "7", "8", "07", "+7", "-0", " 7", "\"7\"", "seven", "4294967303"};
    static const Texts kValues{"1", "1", "2", "3", "01", "x", " 1", "\"2\"", ""};
    if (column == 3) {
      return OneOf(kNumbers);
    }
    if (column == 4) {
      return isNumbered_ ? std::to_string(number_) : OneOf(kValues);
    }
    std::string text = Alternative();
    while (Below(3) == 0 && column < 2) {
      text += "/" + Alternative();
    }
    const std::string whole = Below(10) == 0 ? "\"" + text + "\"" : text;
    return whole + (Below(12) == 0 ? "/" : "");
  }

  std::string Alternative() {
    static const Texts kOdd{" A",
                            "B ",
                            " ",
                            "\"A\"",
                            "\"B\"",
                            "\"a\"\"b\"",
                            "A,B",
                            "",
                            "\"\"",
                            "x\"y",
                            "A/B/A/B/A/B",
                            "A\x01"
                            "B"};
    if (!isNumbered_ && Below(100) == 0) {
      return std::string(400, 'L');
    }
    return Below(4) == 0 ? OneOf(kOdd) : OneOf({"A", "A", "A", "B"});
  }

  std::mt19937 random_;
  bool isNumbered_;
  std::size_t number_ = 0;
};

/// The answer of a query that finds the key; none when no query does or the value is not an integer.
std::optional<Answer> AnswerOf(const Entry& entry) {
  static const std::regex kNumber("0|-?[1-9][0-9]{0,8}");
  const Answer answer = AnswerFor(entry.value);
  const bool isAskedFor = std::regex_match(std::string(entry.key.numKey), kNumber);
  return isAskedFor && answer.result == 0 ? std::optional<Answer>(answer) : std::nullopt;
}

/// Whether a safe repair may remove the key.
bool HasMarks(const NS_ASCII::AlarmKey& key) {
  return (std::string(key.key1) + std::string(key.key2) + std::string(key.key3)).find_first_of("\"\xEF") !=
         std::string::npos;
}

/// A key whose answer the repair has changed, or removed although the key has neither quotation marks nor a byte
/// order mark; empty when there is none.
std::string ChangedKey(const std::string& before, const std::string& after) {
  const LoadedTable old = TableOf(before);
  const LoadedTable fresh = TableOf(after);
  std::string changed;
  old.ForEach([&](const Entry& entry) {
    if (const std::optional<Answer> answer = AnswerOf(entry)) {
      const std::optional<Entry> now = fresh.Find(entry.key);
      const bool isKept = now ? AnswerFor(now->value) == *answer : HasMarks(entry.key);
      changed = isKept ? changed : Shown(entry.key);
    }
  });
  return changed;
}

Texts LinesOf(const std::string& content) {
  Texts lines;
  std::istringstream text(content);
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

Texts Split(const std::string& text, char separator) {
  Texts parts{""};
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

bool IsAccepted(const std::string& line) {
  return NS_ASCII::ParseLine(line).outcome == NS_ASCII::LineOutcome::kAccepted;
}

/// Whether the line has five columns without an empty or blank part, and its longest combination is short enough.
bool IsDivisible(const std::string& line) {
  const std::size_t start = line.find_first_not_of(" \t\r");
  Texts columns = Split(line.substr(start, line.find_last_not_of(" \t\r") + 1 - start), '\t');
  if (line[0] == '#' || columns.size() != 5) {
    return false;
  }
  for (std::size_t i = 0; i < 2; ++i) {
    if (!columns[i].empty() && columns[i].back() == '/') {
      columns[i].pop_back();
    }
    const Texts parts = Split(columns[i], '/');
    if (std::count(parts.begin(), parts.end(), "") + std::count(parts.begin(), parts.end(), " ") > 0) {
      return false;
    }
    columns[i] = *std::max_element(parts.begin(), parts.end(),
                                   [](const auto& a, const auto& b) { return a.size() < b.size(); });
  }
  std::size_t size = 0;
  for (const std::string& column : columns) {
    size += column.size() + 1;
  }
  return size <= kLongestLine + 1 && std::count(columns.begin(), columns.end(), "") == 0;
}

/// The line after the repair that `finding` asks for, made by simple rules; none when it has no such repair.
std::optional<std::string> RepairedByHand(const std::string& line, const Finding& finding) {
  const std::string marked = line.substr(finding.column - 1, finding.length);
  const auto with = [&](const std::string& text) {
    return line.substr(0, finding.column - 1) + text + line.substr(finding.column - 1 + finding.length);
  };
  switch (finding.code) {
    case Code::kQuotedCell:
      return with(std::regex_replace(marked.substr(1, marked.size() - 2), std::regex("\"\""), "\""));
    case Code::kEdgeBlank:
    case Code::kByteOrderMark:
    case Code::kIndentedComment:
      return with("");
    case Code::kNumberNeverMatches: {
      std::smatch number;
      const bool isNumber = std::regex_match(marked, number, std::regex(" *\\+?(-?[0-9]{1,9}) *"));
      return isNumber ? std::optional(with(std::to_string(std::stoi(number[1])))) : std::nullopt;
    }
    case Code::kWrongSeparator:
      for (const char separator : {',', ';'}) {
        const Texts cells = Split(line, separator);
        if (cells.size() == 5 && line.find_first_of("\"\t") == std::string::npos) {
          return std::regex_replace(line, std::regex(std::string(1, separator)), "\t");
        }
      }
      return std::nullopt;
    case Code::kTooManyAlternatives:
    case Code::kOverlongLine:
      return IsDivisible(line) ? std::optional(line) : std::nullopt;
    default:
      return line;
  }
}

std::string Joined(const Texts& lines) {
  std::string content;
  for (const std::string& line : lines) {
    content += line + '\n';
  }
  return content;
}

/// Why the finding that a repair has left had to stay; empty when there is no reason.
std::string ReasonToStay(const std::string& content, const Finding& finding, const RepairRules& rules) {
  Texts lines = LinesOf(content);
  std::string& line = lines[finding.line - 1];
  const std::optional<std::string> byHand = RepairedByHand(line, finding);
  if (line.find('\0') != std::string::npos) {
    return "a NUL byte";
  }
  if (!byHand) {
    return "no repair is known";
  }
  if ((*byHand)[0] == '#') {
    return IsAccepted(line) && !rules.unsafe ? "a loaded line would become a comment" : "";
  }
  if (*byHand == line) {
    return "";
  }
  if (!IsAccepted(*byHand) && !(rules.unsafe && IsDivisible(*byHand))) {
    return "the line would not be loaded";
  }
  line = *byHand;
  return !rules.unsafe && !ChangedKey(content, Joined(lines)).empty() ? "an answer would change" : "";
}

class RandomRepair : public testing::TestWithParam<unsigned> {};

TEST_P(RandomRepair, WhenSafeKeepsEveryIntegerThatQueriesGet) {
  RandomFile random(GetParam());
  for (int i = 0; i < kFiles; ++i) {
    const std::string content = random.Make();
    if (!TableOf(content).EndlessLine()) {
      EXPECT_EQ(ChangedKey(content, Repaired(content, kSafe)), "") << content;
    }
  }
}

TEST_P(RandomRepair, LeavesNothingThatCanBeRepaired) {
  RandomFile random(GetParam() + 100);
  for (int i = 0; i < kFiles; ++i) {
    const std::string content = random.Make();
    for (const RepairRules& rules : {kSafe, kUnsafe}) {
      const std::string repaired = Repaired(content, rules);
      for (const Finding& finding : CheckWhole(repaired)) {
        if (rules.Allows(finding.code) && ReasonToStay(repaired, finding, rules).empty()) {
          ADD_FAILURE() << finding.line << ": " << RuleOf(finding.code).name
                        << (rules.unsafe ? ", unsafe" : "") << ", in\n"
                        << repaired << "from\n"
                        << content;
        }
      }
    }
  }
}

TEST_P(RandomRepair, DoneAgainChangesNothing) {
  RandomFile random(GetParam() + 200);
  for (int i = 0; i < kFiles; ++i) {
    const std::string content = random.Make();
    for (const RepairRules& rules : {kSafe, kUnsafe}) {
      const std::string once = Repaired(content, rules);
      const RepairedText twice = RepairText(once, rules);
      EXPECT_EQ(twice.Text(), once) << content;
      EXPECT_THAT(twice.repairs, IsEmpty()) << content;
    }
  }
}

/// What the pattern's group matches in each line in which it is found.
Texts Numbers(const std::string& content, const std::string& pattern) {
  Texts found;
  for (const std::string& line : LinesOf(content)) {
    std::smatch match;
    if (std::regex_search(line, match, std::regex(pattern))) {
      found.push_back(match[1]);
    }
  }
  return found;
}

TEST_P(RandomRepair, KeepsCommentsAndTheOrderOfLines) {
  RandomFile random(GetParam() + 300, true);
  for (int i = 0; i < kFiles; ++i) {
    const std::string content = random.Make();
    for (const RepairRules& rules : {kSafe, kUnsafe}) {
      const std::string repaired = Repaired(content, rules);
      const std::string comment = "^(?:\xEF\xBB\xBF)?#(1[0-9][0-9]) ?\r?$";
      EXPECT_EQ(Numbers(repaired, comment), Numbers(content, comment)) << content;
      Texts values = Numbers(repaired, "[\t,;](1[0-9][0-9])(?:[^0-9]|$)");
      EXPECT_TRUE(std::is_sorted(values.begin(), values.end())) << content << "to\n" << repaired;
      values.erase(std::unique(values.begin(), values.end()), values.end());
      if (!rules.unsafe) {
        EXPECT_EQ(values, Numbers(content, "[\t,;](1[0-9][0-9])(?:[^0-9]|$)")) << content;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRepair, testing::Range(1U, 4U));

}  // namespace
