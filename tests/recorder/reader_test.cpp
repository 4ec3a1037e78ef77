// Reading the lines of a recording, valid and invalid ones.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tools/recorder/format/reader.h"
#include "tools/recorder/format/writer.h"

namespace {

using recording_format::Head;
using recording_format::Line;
using recording_format::Operation;
using recording_format::ParseLine;
using recording_format::Problem;
using recording_format::Record;
using recording_format::Tail;
using recording_format::TextList;
using recording_format::TextMap;
using recording_format::Value;
using Values = std::vector<Value>;

/// "COLUMN: TEXT" of a line that is a problem.
std::string ProblemOf(const std::string& text) {
  const Line line = ParseLine(text);
  const auto* const problem = std::get_if<Problem>(&line);
  return problem == nullptr ? "no problem" : std::to_string(problem->column) + ": " + problem->text;
}

Record RecordOf(const std::string& text) {
  const Line line = ParseLine(text);
  EXPECT_EQ(ProblemOf(text), "no problem") << text;
  const auto* const record = std::get_if<Record>(&line);
  return record == nullptr ? Record() : *record;
}

const std::string kEnd = R"(,"thread":4,"start":5,"ns":6})";

TEST(RecordingReader, AHeadIsReadBack) {
  Head head;
  head.time = "2026-11-22T02:15:48.123Z";
  head.operations = {"ToUpper", "SplitStr"};
  head.every = 10;
  head.library = "/lib/\xff.so";
  head.buildId = "0badcafe";
  head.configDir = "/etc/agent/";
  head.alarmConfig = "930766865 9";
  std::istringstream file(HeadLine(head));
  const Line line = *recording_format::Reader(file).Next();
  const Head& read = std::get<Head>(line);
  EXPECT_EQ(read.time, head.time);
  EXPECT_EQ(read.operations, head.operations);
  EXPECT_EQ(read.every, 10);
  EXPECT_EQ(read.library, head.library);
  EXPECT_EQ(read.buildId, head.buildId);
  EXPECT_EQ(read.configDir, head.configDir);
  EXPECT_EQ(read.alarmConfig, head.alarmConfig);
}

TEST(RecordingReader, ATailIsReadBack) {
  std::istringstream file(recording_format::TailLine({"now", 17, 4}));
  const Line line = *recording_format::Reader(file).Next();
  EXPECT_EQ(std::get<Tail>(line).time, "now");
  EXPECT_EQ(std::get<Tail>(line).records, 17);
  EXPECT_EQ(std::get<Tail>(line).dropped, 4);
}

TEST(RecordingReader, EveryByteIsReadBack) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  std::string text;
  recording_format::AppendText(text, bytes);
  EXPECT_EQ(RecordOf(R"({"op":"ToUpper","in":[)" + text + R"(],"result":"")" + kEnd).in, Values{bytes});
}

TEST(RecordingReader, AnUnescapedCharacterIsTheByteOfItsNumberToo) {
  EXPECT_EQ(RecordOf(R"({"op":"ToUpper","in":["é"],"result":"")" + kEnd).in, Values{std::string("\xe9")});
}

TEST(RecordingReader, ACallHasItsArgumentsResultOutValuesAndTimes) {
  const Record record =
      RecordOf(R"({"op":"GetAlmCfgValue","in":["a","b","c",-7],"before":[8],"result":1,"out":[9])" + kEnd);
  EXPECT_EQ(record.operation, Operation::kGetAlmCfgValue);
  EXPECT_EQ(record.in, (Values{std::string("a"), std::string("b"), std::string("c"), std::int64_t{-7}}));
  EXPECT_EQ(record.before, Values{std::int64_t{8}});
  EXPECT_EQ(record.result, Value(std::int64_t{1}));
  EXPECT_EQ(record.out, Values{std::int64_t{9}});
  EXPECT_FALSE(record.thrown);
  EXPECT_EQ(record.thread, 4);
  EXPECT_EQ(record.start, 5);
  EXPECT_EQ(record.duration, 6);
}

TEST(RecordingReader, OutValuesThatAreNotGivenStartAsZeroOrEmpty) {
  EXPECT_EQ(RecordOf(R"({"op":"Str2Num","in":["1",10],"result":true,"out":[1])" + kEnd).before,
            Values{std::int64_t{0}});
  EXPECT_EQ(RecordOf(R"({"op":"SplitStr","in":["a",","],"result":0,"out":[["a"]])" + kEnd).before,
            Values{TextList()});
  EXPECT_EQ(RecordOf(R"({"op":"ParseListMap","in":["a"],"result":0,"out":[{"":[""]}])" + kEnd).before,
            Values{TextMap()});
}

TEST(RecordingReader, ListsAndMapsAreReadBack) {
  const Record record = RecordOf(
      R"({"op":"GetMapList","in":[{"a":[],"b":["","\u0000"]},"b"],"result":0,"out":[["x","y"]])" + kEnd);
  EXPECT_EQ(record.in, (Values{TextMap{{"a", {}}, {"b", {"", std::string(1, '\0')}}}, std::string("b")}));
  EXPECT_EQ(record.out, Values{(TextList{"x", "y"})});
}

TEST(RecordingReader, AnExceptionIsWrittenInPlaceOfTheResult) {
  const Record record = RecordOf(
      R"({"op":"SplitStr","in":["a",","],"threw":{"type":"std::bad_alloc","what":"no memory"},"out":[[]])" +
      kEnd);
  EXPECT_FALSE(record.result);
  ASSERT_TRUE(record.thrown);
  EXPECT_EQ(record.thrown->type, "std::bad_alloc");
  EXPECT_EQ(record.thrown->what, "no memory");
}

TEST(RecordingReader, MembersThatAreNotKnownAreIgnored) {
  EXPECT_EQ(RecordOf(R"({"op":"IsValid","in":[],"result":1,"later":{"x":[1.5]})" + kEnd).result,
            Value(std::int64_t{1}));
}

TEST(RecordingReader, ACutLineIsSaidToBeCut) {
  EXPECT_EQ(ProblemOf(R"({"op":"IsVal)"), "13: the line is truncated");
  EXPECT_EQ(ProblemOf(""), "1: the line is truncated");
}

TEST(RecordingReader, AForeignLineIsAProblem) {
  EXPECT_EQ(ProblemOf("hello"), "1: not JSON");
  EXPECT_EQ(ProblemOf("[]"), "1: not a JSON object");
  EXPECT_EQ(ProblemOf("{}"), R"(1: no member "op", "recording" or "end")");
  EXPECT_EQ(ProblemOf(R"({"op":"Trim","in":[]})"),
            R"(1: the interface has no operation of the name in "op")");
  EXPECT_EQ(ProblemOf(R"({"op":7})"), R"(1: "op" is not a text)");
}

TEST(RecordingReader, AnotherVersionOfTheFormatIsAProblem) {
  EXPECT_EQ(ProblemOf(R"({"recording":2})"), "1: format version 2 is not supported, only 1 is");
}

TEST(RecordingReader, ValuesMustHaveTheKindsOfTheSignature) {
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper"})"), R"(1: no member "in")");
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":[]})"), R"(1: "in" is not an array of 1)");
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":{"a":"b"}})"), R"(1: "in" is not an array of 1)");
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":[1]})"), R"(1: "in" is not a text)");
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":["a"]})"), R"(1: no member "result")");
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":["a"],"result":"A"})"), R"(1: no member "thread")");
  EXPECT_EQ(ProblemOf(R"({"op":"IsContain","in":["a","b"],"result":1})"),
            R"(1: "result" is not true or false)");
  EXPECT_EQ(ProblemOf(R"({"op":"Str2Num","in":["a",10],"before":["1"]})"),
            R"(1: "before" is not an integer from -2147483648 to 2147483647)");
  EXPECT_EQ(ProblemOf(R"({"op":"Str2Num","in":["a",10],"result":true})"), R"(1: no member "out")");
  EXPECT_EQ(ProblemOf(R"({"op":"SplitStr","in":["a",","],"out":["a"]})"), R"(1: "out" is not a list)");
  EXPECT_EQ(ProblemOf(R"({"op":"SplitStr","in":["a",","],"out":[[1]]})"), R"(1: "out" is not a text)");
  EXPECT_EQ(ProblemOf(R"({"op":"ParseListMap","in":["a"],"out":[[]]})"), R"(1: "out" is not a map)");
  EXPECT_EQ(ProblemOf(R"({"op":"IsValid","in":[],"threw":"x"})"), R"(1: no member "type")");
}

TEST(RecordingReader, IntegersMustFitTheirType) {
  const auto base = [](const std::string& number) {
    return ProblemOf(R"({"op":"Str2Num","in":["a",)" + number + "]}");
  };
  const std::string problem = R"(1: "in" is not an integer from -2147483648 to 2147483647)";
  EXPECT_EQ(base("2147483648"), problem);
  EXPECT_EQ(base("-2147483649"), problem);
  EXPECT_EQ(base("18446744073709551615"), problem);
  EXPECT_EQ(base("1.0"), problem);
  EXPECT_EQ(base("2147483647"), R"(1: no member "out")");
  EXPECT_EQ(RecordOf(R"({"op":"IsValid","in":[],"result":-9223372036854775808)" + kEnd).result,
            Value(std::numeric_limits<std::int64_t>::min()));
  EXPECT_EQ(ProblemOf(R"({"op":"IsValid","in":[],"result":9223372036854775808)" + kEnd),
            R"(1: "result" is not an integer from -9223372036854775808 to 9223372036854775807)");
}

TEST(RecordingReader, ANumberThatNoTypeHoldsIsAProblem) {
  EXPECT_EQ(ProblemOf("-9e999"), "1: a number is larger than a double can be");
  EXPECT_EQ(ProblemOf(R"({"op":"IsValid","in":[],"result":1e309)" + kEnd),
            "1: a number is larger than a double can be");
}

TEST(RecordingReader, ACharacterAboveOneByteIsAProblem) {
  EXPECT_EQ(ProblemOf(R"({"op":"ToUpper","in":["\u0100"]})"), R"(1: "in" holds a character above U+00FF)");
  EXPECT_EQ(ProblemOf(R"({"op":"GetMapList","in":[{"\u20ac":[]},"a"]})"),
            R"(1: "in" holds a character above U+00FF)");
}

TEST(RecordingReader, LinesAreCountedAndReadingContinuesAfterAProblem) {
  std::istringstream file("junk\n" + recording_format::TailLine({"a", 1, 0}) + R"({"op":)");
  recording_format::Reader reader(file);
  EXPECT_TRUE(std::holds_alternative<Problem>(*reader.Next()));
  EXPECT_EQ(reader.LineNumber(), 1U);
  EXPECT_TRUE(std::holds_alternative<Tail>(*reader.Next()));
  EXPECT_EQ(reader.LineNumber(), 2U);
  EXPECT_TRUE(std::holds_alternative<Problem>(*reader.Next()));
  EXPECT_EQ(reader.LineNumber(), 3U);
  EXPECT_FALSE(reader.Next());
  EXPECT_FALSE(reader.Next());
}

TEST(RecordingReader, TheLastLineNeedsNoLineEnd) {
  std::string text = recording_format::TailLine({"a", 1, 0});
  text.pop_back();
  std::istringstream file(text);
  recording_format::Reader reader(file);
  EXPECT_TRUE(std::holds_alternative<Tail>(*reader.Next()));
  EXPECT_FALSE(reader.Next());
}

/// Gives a line, then fails like a file of a broken disk.
class BrokenBuffer : public std::stringbuf {
 public:
  BrokenBuffer() : std::stringbuf("first\nsec") {}

 protected:
  int_type underflow() override {
    const int_type byte = std::stringbuf::underflow();
    if (byte == traits_type::eof()) {
      throw std::ios_base::failure("broken");
    }
    return byte;
  }
  int_type uflow() override {
    const int_type byte = underflow();
    gbump(1);
    return byte;
  }
};

TEST(RecordingReader, AFailedReadEndsTheFileAndShowsInTheStream) {
  BrokenBuffer buffer;
  std::istream file(&buffer);
  recording_format::Reader reader(file);
  EXPECT_TRUE(reader.Next());
  EXPECT_FALSE(reader.Next());
  EXPECT_TRUE(file.bad());
  EXPECT_EQ(reader.LineNumber(), 1U);
  EXPECT_FALSE(reader.Next());
}

TEST(RecordingReader, TheBytesOfTheLinesAreCounted) {
  std::istringstream file("123\n" + std::string(200, 'x') + "\n\nab");
  recording_format::Reader reader(file, 100);
  for (const std::uint64_t bytes : {4U, 205U, 206U, 208U, 208U}) {
    reader.Next();
    EXPECT_EQ(reader.BytesRead(), bytes);
  }
}

TEST(RecordingReader, ALineThatIsTooLongIsSkipped) {
  std::istringstream file(std::string(101, 'x') + '\n' + std::string(100, 'x') + '\n');
  recording_format::Reader reader(file, 100);
  EXPECT_EQ(std::get<Problem>(*reader.Next()).text, "the line is longer than 100 bytes");
  EXPECT_EQ(std::get<Problem>(*reader.Next()).text, "not JSON");
  EXPECT_EQ(reader.LineNumber(), 2U);
}

}  // namespace
