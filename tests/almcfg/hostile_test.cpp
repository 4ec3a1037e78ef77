// Hostile texts, names and files: none may move the cursor, forge a line or break a format.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"
#include "tools/almcfg/check/finding.h"
#include "tools/almcfg/write/printable.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::RunIn;
using almcfg_test::TempFile;
using nlohmann::json;
using testing::HasSubstr;

/// An escape sequence, DEL, a byte that is not UTF-8, a control character of two bytes, one that reverses text,
/// and markup.
const std::string kHostile = "\x1b[31m\x7F\xFF\xC2\x9B\xE2\x80\xAE<b>&\"'";
const std::string kHostileName = "a\n" + kHostile + "%s.csv";

/// Empty when a terminal can show the text; otherwise the bytes from the first bad one on.
std::string Unprintable(const std::string& text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = almcfg::Utf8Length(std::string_view(text).substr(at));
    const std::string bytes = text.substr(at, std::max<std::size_t>(length, 1));
    if (bytes != "\n" && (length == 0 || almcfg::Printable(bytes) != bytes)) {
      return text.substr(at, 20);
    }
    at += bytes.size();
  }
  return "";
}

/// What is wrong with text output: bytes that a terminal obeys, or a line feed of the file's name.
std::string Fault(const std::string& text) {
  const bool hasForgedLine = text.find("\n\\x1B[31m") != std::string::npos;
  return hasForgedLine ? "a line feed in the name" : Unprintable(text);
}

struct Case {
  const char* code;
  std::string content;
};

void PrintTo(const Case& each, std::ostream* out) { *out << each.code; }

/// One file for each code. Every text of it that almcfg prints is hostile.
std::vector<Case> Cases() {
  const std::string& h = kHostile;
  const std::string rest = "\t" + h + "\t" + h + "\t7\t1\n";
  const std::string line = h + rest;
  return {{"overlong-line", h + std::string(1100, 'x') + h + "\n"},
          {"too-few-columns", h + "\n"},
          {"empty-edge-column", h + "\t" + h + "\t" + h + "\t7\t\n"},
          {"wrong-separator", h + "," + h + "," + h + ",7,1\n"},
          {"too-many-columns", h + "\t" + h + "\t" + h + "\t7\t1\t" + h + "\n"},
          {"empty-column", h + "\t\t" + h + "\t7\t1\n"},
          {"too-many-alternatives", "A/B/C/D/E/" + line},
          {"empty-alternative", "/" + line},
          {"nul-byte", h + std::string(1, '\0') + line},
          {"value-replaced",
           h + "\tB\t" + h + "\t" + h + "\t" + h + "\n" + h + "\tB\t" + h + "\t" + h + "\tx" + h + "\n"},
          {"duplicate-key",
           h + "/A\t" + h + "\tC\t" + h + "\t" + h + "\n" + h + "\t" + h + "\tC\t" + h + "\t" + h + "\n"},
          {"duplicate-key", h + "/" + line},
          {"header-line", "[m\x1b\xFF\tB\tC\tNumber\x1b\tValue\x7F\n"},
          {"quoted-cell", "\"\x1b[31m\x7F\xFF\"" + rest},
          {"number-never-matches", h + "\tB\tC\t" + h + "\t1\n"},
          {"value-not-integer", h + "\tB\tC\t7\t" + h + "\n"},
          {"value-wraps", h + "\tB\tC\t7\t4294967297\n"},
          {"edge-blank", " \t" + h + "\n" + h + " \t" + h + " \t " + h + "\t7\t" + h + "\v\n"},
          {"control-character", line},
          {"indented-comment", " #" + h + "\n"},
          {"byte-order-mark", "\xEF\xBB\xBF" + line},
          {"not-ascii", line},
          {"many-records", "A/B/C/" + h + "\tA/B/C/" + h + "\tC\t7\t1\n"},
          {"no-record", "#" + h + "\n"},
          {"trailing-slash", h + "/" + rest},
          {"slash-in-column-3", h + "\t" + h + "\t/" + h + "\t7\t1\n"},
          {"outer-blank", " " + line},
          {"cr-line-ends", line.substr(0, line.size() - 1) + "\r\n"},
          {"no-final-line-feed", line + "#" + h},
          {"repeated-line", line + line}};
}

/// Runs each command that names files on one with a hostile name.
class HostileText : public testing::TestWithParam<Case> {
 protected:
  HostileText() { folder_.Write(kHostileName, GetParam().content); }

  [[nodiscard]] Outcome Run(std::vector<std::string> arguments) const {
    std::replace(arguments.begin(), arguments.end(), std::string("FILE"), kHostileName);
    return RunIn(folder_.path(), arguments);
  }

  const TempDirectory folder_;
};

TEST_P(HostileText, IsMadeVisibleInTheFinding) {
  const Outcome outcome = Run({"check", "FILE"});
  EXPECT_THAT(outcome.out, HasSubstr("a\\x0A\\x1B[31m\\x7F\\xFF\\xC2\\x9B\\xE2\\x80\\xAE<b>&\"'%s.csv:"));
  EXPECT_THAT(outcome.out, HasSubstr(std::string(" [") + GetParam().code + "]\n"));
  EXPECT_EQ(Fault(outcome.out), "");
  EXPECT_EQ(outcome.err, "");
}

TEST_P(HostileText, IsWholeInJsonAndSarif) {
  const json report = json::parse(Run({"check", "--format", "json", "FILE"}).out);
  const std::string uri = "a%0A%1B%5B31m%7F%FF%C2%9B%E2%80%AE%3Cb%3E%26%22%27%25s.csv";
  std::set<std::string> codes;
  for (const json& finding : report["findings"]) {
    codes.insert(finding["code"]);
    EXPECT_THAT(finding["fileHex"], testing::StartsWith("610a1b5b33316d7fff"));
    EXPECT_EQ(Unprintable(finding["message"]), "");
    EXPECT_EQ(Unprintable(finding["hint"]), "");
  }
  EXPECT_EQ(codes.count(GetParam().code), 1U);
  const json results = json::parse(Run({"check", "--format", "sarif", "FILE"}).out)["runs"][0]["results"];
  ASSERT_EQ(results.size(), report["findings"].size());
  for (const json& result : results) {
    EXPECT_EQ(result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"], uri);
    EXPECT_EQ(Unprintable(result["message"]["text"]), "");
  }
}

TEST_P(HostileText, IsMadeVisibleInTheMessagesOfTheOtherCommands) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"lookup", "FILE", kHostile, kHostile, kHostile, "7"},
                                             {"lookup", "FILE", kHostile, "another", kHostile, "7"},
                                             {"diff", "FILE", "/dev/null"},
                                             {"diff", "/dev/null", "FILE"},
                                             {"coverage", "FILE", "--calls", "FILE"},
                                             {"fix", "--unsafe", "--in-place", "FILE"}}) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(Fault(outcome.out), "") << testing::PrintToString(arguments);
    EXPECT_EQ(Fault(outcome.err), "") << testing::PrintToString(arguments);
  }
}

std::string TestName(const testing::TestParamInfo<Case>& info) {
  std::string name = info.param.code + std::string("_") + std::to_string(info.index);
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, HostileText, testing::ValuesIn(Cases()), TestName);

TEST(HostileTexts, ExistForEveryCodeThatAFileCanShow) {
  std::set<std::string> codes;
  for (const Case& each : Cases()) {
    codes.insert(each.code);
  }
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    const bool canShow = rule.code != almcfg::Code::kUnreadableFile && rule.code != almcfg::Code::kDirectory;
    EXPECT_EQ(codes.count(rule.name), canShow ? 1U : 0U)
        << "Cases() in this file: " << (canShow ? "add " : "delete ") << rule.name;
  }
}

TEST(HostileName, IsMadeVisibleWhereTheFileCannotBeRead) {
  const TempDirectory folder;
  folder.Write("good.csv", "A\tB\tC\t7\t1\n");
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"check", kHostileName},
                                             {"show", kHostileName},
                                             {"lookup", kHostileName, "A", "B", "C", "7"},
                                             {"diff", "good.csv", kHostileName},
                                             {"fix", kHostileName},
                                             {"coverage", "good.csv", "--calls", kHostileName},
                                             {"check", "--stdin-name", kHostileName, "-"},
                                             {"check", "--select", kHostile, "good.csv"},
                                             {"check", "--max-findings", kHostile, "good.csv"},
                                             {kHostile}}) {
    const Outcome outcome = RunIn(folder.path(), arguments, "lost\n");
    EXPECT_THAT(outcome.out + outcome.err, HasSubstr("\\x1B[31m\\x7F\\xFF\\xC2\\x9B\\xE2\\x80\\xAE<b>&\"'"));
    EXPECT_EQ(Fault(outcome.out), "") << testing::PrintToString(arguments);
    EXPECT_EQ(Fault(outcome.err), "") << testing::PrintToString(arguments);
  }
}

TEST(HostileName, IsMadeVisibleWhereALoadDoesNotReachTheFile) {
  const TempDirectory folder;
  const std::string endless = "x" + kHostileName;
  folder.Write(endless, std::string(1023, 'x') + "\n");
  const Outcome outcome = RunIn(folder.path(), {"show", endless, kHostileName});
  EXPECT_THAT(outcome.err, HasSubstr("never read, since the load of xa\\x0A\\x1B[31m"));
  EXPECT_EQ(Fault(outcome.err), "");
}

TEST(HostileName, IsMadeVisibleInMessagesAboutReplacedFiles) {
  const TempDirectory folder;
  folder.Write(kHostileName, "A/\tB\tC\t7\t1\n");
  folder.Write(kHostileName + ".bak", "");
  const Outcome outcome = RunIn(folder.path(), {"fix", "--in-place", "--backup", kHostileName});
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.err, HasSubstr("%s.csv.bak cannot be made: File exists\n"));
  EXPECT_EQ(Fault(outcome.err), "");
}

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
}

TEST(HostileInput, EndsWithAnAnswerInEveryFormat) {
  const std::vector<std::string> inputs{
      "",
      "\n",
      "\r\r\r",
      std::string(5000, '\r'),
      std::string(100000, '\0'),
      std::string(3000, '\n'),
      std::string("\xFF\xFE"
                  "A\0\t\0B\0\n\0",
                  10),
      std::string(200, '\t') + "\n" + std::string(200, '/') + "\n",
      almcfg_test::ReadFile(ALMCFG_PROGRAM).substr(0, 200000),
  };
  for (const std::string& input : inputs) {
    for (const std::string format : {"text", "json", "sarif"}) {
      const Outcome outcome = RunAlmcfg({"check", "--format", format, "-"}, input);
      EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1)
          << outcome.exitCode << ' ' << input.substr(0, 20);
      EXPECT_TRUE(format == "text" || json::accept(outcome.out)) << format << ' ' << input.substr(0, 20);
    }
    for (const std::string format : {"tsv", "json", "html"}) {
      const Outcome outcome = RunAlmcfg({"show", "--format", format, "-"}, input);
      EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1)
          << outcome.exitCode << ' ' << input.substr(0, 20);
    }
  }
}

TEST(HostileInput, OfAFileWithoutLineFeedsTakesNoMemoryForIt) {
  const TempFile file("");
  ASSERT_EQ(truncate(file.path().c_str(), off_t{64} << 20), 0);
  const Outcome outcome = RunAlmcfg({"check", file.path()});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, HasSubstr("67,108,864 bytes"));
}

TEST(HostileInput, MayBeADirectoryADeviceOrASilentPipe) {
  const TempFile pipe("");
  unlink(pipe.path().c_str());
  ASSERT_EQ(mkfifo(pipe.path().c_str(), 0600), 0);
  for (const std::string& path : {std::string("/"), std::string("/dev/zero"), pipe.path()}) {
    EXPECT_EQ(Exit({"check", path}), 2) << path;
    EXPECT_EQ(Exit({"show", path}), 2) << path;
    EXPECT_EQ(Exit({"lookup", path, "A", "B", "C", "7"}), 2) << path;
    EXPECT_EQ(Exit({"diff", path, path}), 2) << path;
  }
}

}  // namespace
