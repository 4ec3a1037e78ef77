// The HTML page as text: the head, the rows for its script, and that hostile text never becomes markup. The
// script is tested in a browser (tests/almcfg/page).

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr int kNone = 0;
constexpr int kNote = 1;
constexpr int kWarning = 2;
constexpr int kError = 3;

std::string PageOf(std::vector<std::string> files, const std::string& input = "") {
  files.insert(files.begin(), {"show", "--format", "html"});
  return RunAlmcfg(files, input).out;
}

std::string PageOfInput(const std::string& input) { return PageOf({"-"}, input); }

/// The text between two marks of the page.
std::string Between(const std::string& page, const std::string& start, const std::string& end) {
  const std::size_t from = page.find(start);
  EXPECT_NE(from, std::string::npos) << start;
  const std::size_t first = from + start.size();
  return from == std::string::npos ? "" : page.substr(first, page.find(end, first) - first);
}

std::string HeadOf(const std::string& page) { return Between(page, "</h1>\n", "\n<noscript>"); }

std::string DataOf(const std::string& page) {
  return Between(page, "<script id=\"data\" type=\"application/json\">", "</script>");
}

json LinesOf(const std::string& page) { return json::parse(DataOf(page))["lines"]; }

std::size_t CountOf(const std::string& page, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = page.find(part); at != std::string::npos; at = page.find(part, at + 1)) {
    ++count;
  }
  return count;
}

/// Sets an environment variable for the life of the object.
class Environment {
 public:
  Environment(const char* name, const char* value) : name_(name) { setenv(name, value, 1); }
  ~Environment() { unsetenv(name_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
};

TEST(Page, HasARowForEachKeyInForceInTheOrderOfTheFiles) {
  const TempDirectory folder;
  const std::string first = folder.Write("first.csv", "A\tB\tC\t7\t1\nB/C\tB\tC\t7\t2\n");
  const std::string second = folder.Write("second.csv", "# a comment\nD\tB\tC\t7\t3\n");
  EXPECT_EQ(DataOf(PageOf({first, second})), R"({"files":[{"name":"first.csv","path":")" + first +
                                                 R"("},{"name":"second.csv","path":")" + second +
                                                 R"("}],"lines":[)"
                                                 R"(
[0,1,0,[],"A","B","C","7","1"],
[0,2,0,[],"B","B","C","7","2"],
[0,2,0,[],"C","B","C","7","2"],
[1,2,0,[],"D","B","C","7","3"]
]})");
}

TEST(Page, GivesTheFindingsOfALineToTheLinesKey) {
  const std::string input = "A\tB\tC\t07\t1\n";
  const json found = json::parse(RunAlmcfg({"check", "--format", "json", "-"}, input).out)["findings"][0];
  EXPECT_EQ(found["code"], "number-never-matches");
  EXPECT_EQ(LinesOf(PageOfInput(input)), json({{0,
                                                1,
                                                kWarning,
                                                {{kWarning, found["code"], found["message"], found["hint"]}},
                                                "A",
                                                "B",
                                                "C",
                                                "07",
                                                "1"}}));
}

TEST(Page, PutsALineWithoutAKeyInTheOrderOfTheFile) {
  const json lines = LinesOf(PageOfInput("A\tB\tC\t7\t1\nlost\tlost\nZ\tB\tC\t7\t1\n"));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0][4], "A");
  EXPECT_EQ(lines[1][1], 2);
  EXPECT_EQ(lines[1].size(), 5U) << "one cell with the line";
  EXPECT_EQ(lines[1][4], "lost→lost");
  EXPECT_EQ(lines[2][4], "Z");
}

TEST(Page, HasTheTablesOrderAndThenTheLinesWithoutAKeyWithSort) {
  const TempDirectory folder;
  const std::string file = folder.Write("a.csv", "A\tB\tC\t7\t1\nlost\nB\tB\tC\t7\t2\n");
  const json lines = LinesOf(PageOf({"--sort", file}));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0][4], "B");
  EXPECT_EQ(lines[1][4], "A");
  EXPECT_EQ(lines[2][4], "lost");
}

TEST(Page, PlacesFindingsOfTheWholeFileAtTheirLine) {
  const json lines = LinesOf(PageOfInput("A\tB\tC\t7\t1\n# one\r\nlost\nB\tB\tC\t7\t2"));
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[1][3][0][1], "cr-line-ends");
  EXPECT_EQ(lines[1][4], "# one␍");
  EXPECT_EQ(lines[2][4], "lost");
  EXPECT_EQ(lines[3][3][0][1], "no-final-line-feed");
}

TEST(Page, GivesEachFilesFindingsToThatFile) {
  const TempDirectory folder;
  const std::string first = folder.Write("a.csv", "A\tB\tC\t7\t1\n");
  const std::string second = folder.Write("b.csv", "B\tB\tC\t07\t1\n");
  const json lines = LinesOf(PageOf({first, second}));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0][2], kNone);
  EXPECT_TRUE(lines[0][3].empty());
  EXPECT_EQ(lines[1][2], kWarning);
  EXPECT_EQ(lines[1][3].size(), 1U);
}

TEST(Page, GivesARowTheGravestSeverityOfItsFindings) {
  const json lines = LinesOf(PageOfInput("A/\tB\tC\t07\t1\r\nlost\r\nC/\tB\tC\t7\t1\n"));
  ASSERT_EQ(lines.size(), 3U);
  ASSERT_EQ(lines[0][3].size(), 3U) << lines[0];
  EXPECT_EQ(lines[0][3][0][0], kNote);
  EXPECT_EQ(lines[0][3][1][0], kWarning);
  EXPECT_EQ(lines[0][3][2][0], kNote);
  EXPECT_EQ(lines[0][2], kWarning);
  EXPECT_EQ(lines[1][2], kError);
  EXPECT_EQ(lines[2][2], kNote);
}

TEST(Page, KeepsHostileTextOfAFileInsideTheDataElement) {
  const std::string page =
      PageOfInput("<!--\t\"'&\\\t</script><script>alert(1)</script>\t7\t</SCRIPT >\n<script>lost\n");
  EXPECT_EQ(CountOf(page, "<script"), 2U) << "the data and the page's own";
  EXPECT_EQ(CountOf(page, "</script"), 2U);
  EXPECT_EQ(CountOf(page, "</SCRIPT"), 0U);
  EXPECT_THAT(DataOf(page), Not(HasSubstr("<")));
  EXPECT_THAT(DataOf(page),
              HasSubstr(R"("\u003c!--","\"'&\\","\u003c/script>\u003cscript>alert(1)\u003c/script>","7",)"));
  EXPECT_EQ(LinesOf(page)[0][8], "</SCRIPT >");
  EXPECT_EQ(LinesOf(page)[1][4], "<script>lost");
}

TEST(Page, ShowsBytesThatHideOrBreakTextAsMarks) {
  const std::string input("A\xE2\x80\xA8\xE2\x80\xAE\tB\xFF\tC\x1B\x7F\t7\t1\nlost\0 \r\n", 26);
  const std::string page = PageOfInput(input);
  EXPECT_EQ(page.find('\0'), std::string::npos);
  EXPECT_THAT(page, Not(HasSubstr("\xE2\x80\xA8")));
  EXPECT_THAT(page, Not(HasSubstr("\xE2\x80\xAE")));
  EXPECT_THAT(page, Not(HasSubstr("\xFF")));
  const json lines = LinesOf(page);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0][4], R"(A\xE2\x80\xA8\xE2\x80\xAE)");
  EXPECT_EQ(lines[0][5], R"(B\xFF)");
  EXPECT_EQ(lines[0][6], R"(C\x1B\x7F)");
  EXPECT_EQ(lines[1][4], "lost␀·␍");
}

TEST(Page, KeepsMarkupInMessagesAndHintsInsideTheData) {
  const std::string page = PageOfInput("<b>,Port1,LinkDown,7,5\nA\tB\tC\t7\t<i></td>\n");
  const json lines = LinesOf(page);
  EXPECT_THAT(lines[0][3].dump(), HasSubstr("<TAB>")) << "the hint's";
  EXPECT_THAT(lines[1][3].dump(), HasSubstr("<i>"));
  EXPECT_THAT(page, Not(HasSubstr("<TAB>")));
  EXPECT_THAT(page, Not(HasSubstr("<i>")));
  EXPECT_THAT(page, Not(HasSubstr("</td>")));
}

TEST(Page, EscapesAHostileFileNameInTheHeadTheTitleAndTheData) {
  const TempDirectory folder;
  const std::string file = folder.Write("x<b>&\"\n</script>.csv", "A\tB\tC\t7\t1\n");
  const std::string page = PageOf({file});
  EXPECT_THAT(page, HasSubstr("<title>Alarm configuration: script&gt;.csv</title>"));
  EXPECT_THAT(HeadOf(page), HasSubstr("/x&lt;b&gt;&amp;\"\\x0A&lt;/script&gt;.csv</b>"));
  EXPECT_THAT(DataOf(page), HasSubstr(R"(/x\u003cb>&\"\\x0A\u003c/script>.csv"}])"));
  EXPECT_THAT(PageOf({file, file}), HasSubstr("/x&lt;b&gt;&amp;\"\\x0A&lt;/script&gt;.csv</li>"));
}

TEST(Page, NamesFilesByTheirLastPartsThatDiffer) {
  const TempDirectory folder;
  std::vector<std::string> files;
  for (const std::string name : {"north/A.csv", "south/A.csv", "south/B.csv"}) {
    files.push_back(folder.Write(name, ""));
  }
  files.push_back(files[0]);
  const json named = json::parse(DataOf(PageOf(files)))["files"];
  ASSERT_EQ(named.size(), 4U);
  EXPECT_EQ(named[0]["name"], "north/A.csv");
  EXPECT_EQ(named[1]["name"], "south/A.csv");
  EXPECT_EQ(named[2]["name"], "B.csv");
  EXPECT_EQ(named[3]["name"], "north/A.csv");
  EXPECT_EQ(named[1]["path"], files[1]);
}

TEST(Page, NamesAFileByItsWholePathWhenThatIsTheEndOfAnother) {
  const TempDirectory folder;
  const std::string file = folder.Write("A.csv", "");
  const std::string sameWithTwoSlashes = "/" + file;
  const json named = json::parse(DataOf(PageOf({file, sameWithTwoSlashes})))["files"];
  EXPECT_EQ(named[0]["name"], file);
  EXPECT_EQ(named[1]["name"], sameWithTwoSlashes);
}

TEST(Page, SaysInTheHeadWhatWasLoadedWhenAndByWhichVersion) {
  const Environment time("SOURCE_DATE_EPOCH", "1700000000");
  EXPECT_EQ(
      HeadOf(PageOfInput("A/B\tB\tC\t7\t1\nlost\nZ\tB\tC\t07\t1\n")),
      "<p>3 keys in force, 1 error, 1 warning. Loaded <time datetime=\"2023-11-14T22:13:20Z\">2023-11-14 "
      "22:13:20 UTC</time> by almcfg " ALMCFG_VERSION " from <b>&lt;stdin&gt;</b></p>");
}

TEST(Page, ListsSeveralFilesInTheHeadInTheirOrder) {
  const TempDirectory folder;
  const std::string first = folder.Write("b.csv", "");
  const std::string second = folder.Write("a.csv", "");
  const std::string page = PageOf({first, second});
  EXPECT_THAT(HeadOf(page),
              HasSubstr("from these files, in this order:</p>\n<ol tabindex=\"0\" aria-label=\"Files\">\n"
                        "<li>" +
                        first + "</li>\n<li>" + second + "</li>\n</ol>"));
  EXPECT_THAT(page, HasSubstr("<title>Alarm configuration: b.csv and 1 more file</title>"));
}

TEST(Page, HasThePresentTimeWithoutAFixedOne) {
  unsetenv("SOURCE_DATE_EPOCH");
  const std::string before = Between(PageOfInput(""), "datetime=\"", "\"");
  const std::string after = Between(PageOfInput(""), "datetime=\"", "\"");
  EXPECT_EQ(before.size(), std::string("2023-11-14T22:13:20Z").size());
  EXPECT_GT(before, "2024");
  EXPECT_LE(before, after);
}

TEST(Page, IsNotWrittenWhenTheFixedTimeIsInvalid) {
  for (const char* const wrong : {"", "now", "17 ", "-", "99999999999999999999", "9223372036854775807"}) {
    const Environment time("SOURCE_DATE_EPOCH", wrong);
    const Outcome outcome = RunAlmcfg({"show", "--format", "html", "-"}, "A\tB\tC\t7\t1\n");
    EXPECT_EQ(outcome.exitCode, 2) << wrong;
    EXPECT_EQ(outcome.out, "") << wrong;
    EXPECT_THAT(outcome.err, HasSubstr("almcfg: SOURCE_DATE_EPOCH: ")) << wrong;
    EXPECT_THAT(outcome.err, HasSubstr(" is not a time in seconds since 1970; correct or unset it\n"))
        << wrong;
  }
}

TEST(Page, WarnsOfALoadThatNeverEnds) {
  const std::string page = PageOfInput("A\tB\tC\t7\t1\n" + std::string(1023, 'x') + "\nB\tB\tC\t7\t1\n");
  EXPECT_THAT(HeadOf(page), HasSubstr("<p class=\"alert\" role=\"alert\">A load of these files NEVER ENDS: "
                                      "&lt;stdin&gt;:2 is too long. Nothing after it is loaded.</p>"));
  EXPECT_EQ(LinesOf(page).size(), 2U);
  EXPECT_EQ(LinesOf(page)[1][2], kError);
  EXPECT_THAT(PageOfInput("A\tB\tC\t7\t1\n"), Not(HasSubstr("NEVER ENDS")));
}

TEST(Page, GivesTheFindingOfAnEmptyFileALineOfZero) {
  const json lines = LinesOf(PageOfInput(""));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0][1], 0);
  EXPECT_EQ(lines[0][3][0][1], "no-record");
  EXPECT_EQ(lines[0][4], "");
}

TEST(Page, OfAFileWithoutRecordsIsWhole) {
  const std::string page = PageOfInput("# only a comment\n");
  EXPECT_THAT(HeadOf(page), HasSubstr("<p>0 keys in force"));
  EXPECT_THAT(page, testing::EndsWith("</html>\n"));
}

TEST(Page, TakesNothingFromElsewhereAndForbidsIt) {
  const std::string page = PageOfInput("A\tB\tC\t7\t1\n");
  for (const std::string reference :
       {"http:", "https:", "src=", "href=", "@import", "url(", "fetch", "XMLHttp"}) {
    EXPECT_THAT(page, Not(HasSubstr(reference)));
  }
  EXPECT_THAT(
      page, HasSubstr("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                      "'unsafe-inline'; script-src 'unsafe-inline'\">"));
}

TEST(Page, NeverMakesMarkupOrCodeFromText) {
  const std::string page = PageOfInput("A\tB\tC\t7\t1\n");
  for (const std::string danger : {"innerHTML", "outerHTML", "insertAdjacentHTML", "document.write", "eval",
                                   "Function(", "createContextual"}) {
    EXPECT_THAT(page, Not(HasSubstr(danger)));
  }
}

TEST(Page, HasNoPlaceholderLeft) {
  const std::string page = PageOfInput("A\tB\tC\t7\t1\n");
  EXPECT_THAT(page, Not(HasSubstr("{{")));
  EXPECT_THAT(page, Not(HasSubstr("@ALMCFG")));
  EXPECT_THAT(page, HasSubstr("color-scheme"));
  EXPECT_THAT(page, HasSubstr("\"use strict\""));
}

}  // namespace
