// Writing the lines of a recording.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tools/recorder/format/writer.h"

namespace {

std::string Text(const std::string& text) {
  std::string line;
  recording_format::AppendText(line, text);
  return line;
}

std::string Integer(std::int64_t value) {
  std::string line;
  recording_format::AppendInteger(line, value);
  return line;
}

TEST(RecordingWriter, PrintableAsciiIsWrittenUnchanged) {
  EXPECT_EQ(Text(""), R"("")");
  EXPECT_EQ(Text(" !#$[]^~azAZ09"), R"(" !#$[]^~azAZ09")");
}

TEST(RecordingWriter, QuotesAndBackslashesAreEscapedByABackslash) {
  EXPECT_EQ(Text(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST(RecordingWriter, EveryOtherByteIsTheCharacterOfItsNumber) {
  EXPECT_EQ(Text(std::string("\0\n\r\t\x1f", 5)), R"("\u0000\u000a\u000d\u0009\u001f")");
  EXPECT_EQ(Text("\x7f\x80\xe9\xff"), R"("\u007f\u0080\u00e9\u00ff")");
}

TEST(RecordingWriter, AByteIsEscapedAtEveryPlaceOfABlock) {
  for (std::size_t at = 0; at < 40; ++at) {
    std::string text(40, 'x');
    text[at] = '\n';
    const std::string rest(39 - at, 'x');
    EXPECT_EQ(Text(text), '"' + std::string(at, 'x') + "\\u000a" + rest + '"') << at;
  }
}

TEST(RecordingWriter, IntegersAreDecimal) {
  EXPECT_EQ(Integer(0), "0");
  EXPECT_EQ(Integer(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(Integer(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
}

TEST(RecordingWriter, TheHeadSaysWhatWasRecorded) {
  recording_format::Head head;
  head.time = "2026-11-22T02:15:48.123Z";
  head.operations = {"ToUpper", "SplitStr"};
  head.every = 10;
  head.library = "/lib/a\nb.so";
  head.buildId = "0badcafe";
  head.configDir = "/etc/agent/";
  head.alarmConfig = "930766865 9";
  EXPECT_EQ(recording_format::HeadLine(head),
            R"({"recording":1,"time":"2026-11-22T02:15:48.123Z","operations":["ToUpper","SplitStr"],)"
            R"("every":10,"library":"/lib/a\u000ab.so","build_id":"0badcafe","config_dir":"/etc/agent/",)"
            R"("alarm_config":"930766865 9"})"
            "\n");
}

TEST(RecordingWriter, TheTailSaysHowManyRecordsThereAre) {
  EXPECT_EQ(recording_format::TailLine({"2026-11-22T03:00:00.000Z", 17, 4}),
            R"({"end":"2026-11-22T03:00:00.000Z","records":17,"dropped":4})"
            "\n");
}

}  // namespace
