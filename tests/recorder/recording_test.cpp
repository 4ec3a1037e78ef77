// Calls through the recorder's interface: the callers' results, and the contents of the file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>

#include "framework/process_exception.h"
#include "tests/file_size_limit.h"
#include "tests/recorder/fake_implementation.h"
#include "tests/recorder/recorded_calls.h"
#include "tests/temp_directory.h"
#include "tools/recorder/front.h"
#include "tools/recorder/recording.h"

namespace {

using recorder_test::Recorded;
using recording_format::Operation;
using recording_format::Record;
using recording_format::SignatureOf;
using recording_format::TextList;
using recording_format::TextMap;
using recording_format::Value;
using testing::HasSubstr;
using Values = std::vector<Value>;

constexpr std::uint32_t kQueueSize = 1 << 20;

std::string problemReported;

std::string Text(const char* text) { return text; }
std::int64_t Integer(std::int64_t value) { return value; }

class RecordingTest : public testing::Test {
 protected:
  RecordingTest() {
    options_.output = dir_.path() / "calls.jsonl";
    options_.operations.set();
    front_.ForwardTo(&fake_);
    problemReported.clear();
  }
  ~RecordingTest() override { recording_.Stop(); }

  void Start(std::uint32_t capacity = kQueueSize) {
    recording_format::Head head;
    head.library = "fake";
    recording_.Start(
        options_, head, [](const std::string& problem) { problemReported = problem; }, capacity);
  }

  Recorded Stop() {
    totals_ = recording_.Stop();
    return recorder_test::ReadRecording(options_.output);
  }

  /// The one record of a call.
  Record Only(const Recorded& recorded) {
    EXPECT_EQ(recorded.problems, 0U);
    EXPECT_EQ(recorded.records.size(), 1U);
    return recorded.records.empty() ? Record() : recorded.records.front();
  }

  const TempDirectory dir_;
  recorder::Options options_;
  recorder_test::FakeImplementation fake_;
  recorder::Recording recording_;
  recorder::Front front_{recording_};
  recorder::Totals totals_;
};

void ExpectRecord(const Record& record, Operation operation, const Values& in, const Values& before,
                  const Value& result, const Values& out) {
  const std::string name(SignatureOf(operation).name);
  EXPECT_EQ(SignatureOf(record.operation).name, name);
  EXPECT_EQ(record.in, in) << name;
  EXPECT_EQ(record.before, before) << name;
  EXPECT_EQ(record.result, result) << name;
  EXPECT_EQ(record.out, out) << name;
}

TEST_F(RecordingTest, EveryOperationIsAnsweredByTheImplementationAndRecorded) {
  Start();
  int number = 5;
  std::int64_t value = 6;
  NS_ASCII::ListMap map{{"old", {"x"}}};
  std::vector<std::string> items{"first"};
  std::vector<std::string> pieces;
  EXPECT_EQ(front_.GetSvcName(), std::string("Fake\0\xff", 6));
  EXPECT_EQ(front_.IsValid(), std::numeric_limits<std::int64_t>::min());
  EXPECT_TRUE(front_.Str2Num("true", number, 16));
  EXPECT_EQ(number, 21);
  EXPECT_EQ(front_.GetTimeStamp(), "now");
  EXPECT_TRUE(front_.IsTransQueltEnabled());
  EXPECT_EQ(front_.GetAlmCfgValue(value, "a", "bc", "def", -7), -7);
  EXPECT_EQ(value, 6);
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  EXPECT_FALSE(front_.IsContain("a", "b"));
  EXPECT_TRUE(front_.IsKeyValueAboveOne("a", "b"));
  EXPECT_EQ(front_.GetKeyValue("k", "t"), "k@t");
  EXPECT_EQ(front_.ParseListMap(map, "t"), 3);
  EXPECT_EQ(map, (NS_ASCII::ListMap{{"", {}}, {"old", {"x"}}, {"t", {"", "t"}}}));
  EXPECT_EQ(front_.GetMapList({{"m", {}}}, "n", items), 4);
  EXPECT_EQ(items, (std::vector<std::string>{"first", "n1"}));
  EXPECT_EQ(front_.SplitStr("t", "s", pieces), 5);
  EXPECT_EQ(pieces, (std::vector<std::string>{"t", "s"}));
  EXPECT_EQ(front_.WriteDbgLog("message"), 7);

  const Recorded recorded = Stop();
  EXPECT_EQ(recorded.problems, 0U);
  const std::vector<Record>& records = recorded.records;
  ASSERT_EQ(records.size(), 14U);
  ExpectRecord(records[0], Operation::kGetSvcName, {}, {}, std::string("Fake\0\xff", 6), {});
  ExpectRecord(records[1], Operation::kIsValid, {}, {}, std::numeric_limits<std::int64_t>::min(), {});
  ExpectRecord(records[2], Operation::kStr2Num, {Text("true"), Integer(16)}, {Integer(5)}, true,
               {Integer(21)});
  ExpectRecord(records[3], Operation::kGetTimeStamp, {}, {}, Text("now"), {});
  ExpectRecord(records[4], Operation::kIsTransQueltEnabled, {}, {}, true, {});
  ExpectRecord(records[5], Operation::kGetAlmCfgValue, {Text("a"), Text("bc"), Text("def"), Integer(-7)},
               {Integer(6)}, Integer(-7), {Integer(6)});
  ExpectRecord(records[6], Operation::kToUpper, {Text("abc")}, {}, Text("<abc>"), {});
  ExpectRecord(records[7], Operation::kIsContain, {Text("a"), Text("b")}, {}, false, {});
  ExpectRecord(records[8], Operation::kIsKeyValueAboveOne, {Text("a"), Text("b")}, {}, true, {});
  ExpectRecord(records[9], Operation::kGetKeyValue, {Text("k"), Text("t")}, {}, Text("k@t"), {});
  ExpectRecord(records[10], Operation::kParseListMap, {Text("t")}, {TextMap{{"old", {"x"}}}}, Integer(3),
               {TextMap{{"", {}}, {"old", {"x"}}, {"t", {"", "t"}}}});
  ExpectRecord(records[11], Operation::kGetMapList, {TextMap{{"m", {}}}, Text("n")}, {TextList{"first"}},
               Integer(4), {TextList{"first", "n1"}});
  ExpectRecord(records[12], Operation::kSplitStr, {Text("t"), Text("s")}, {TextList()}, Integer(5),
               {TextList{"t", "s"}});
  ExpectRecord(records[13], Operation::kWriteDbgLog, {Text("message")}, {}, Integer(7), {});
}

TEST_F(RecordingTest, TheHeadAndTheTailSayWhatTheFileHolds) {
  options_.every = 1;
  options_.operations.reset();
  options_.operations.set(static_cast<std::size_t>(Operation::kToUpper));
  Start();
  front_.ToUpper("a");
  front_.GetTimeStamp();
  const Recorded recorded = Stop();
  ASSERT_EQ(recorded.heads.size(), 1U);
  EXPECT_EQ(recorded.heads[0].library, "fake");
  EXPECT_EQ(recorded.heads[0].operations, TextList{"ToUpper"});
  EXPECT_EQ(recorded.heads[0].every, 1);
  ASSERT_EQ(recorded.records.size(), 1U);
  ASSERT_EQ(recorded.tails.size(), 1U);
  EXPECT_EQ(recorded.tails[0].records, 1);
  EXPECT_EQ(recorded.tails[0].dropped, 0);
  EXPECT_EQ(totals_.records, 1U);
  EXPECT_EQ(totals_.dropped, 0U);
  EXPECT_EQ(totals_.problem, "");
}

TEST_F(RecordingTest, EachNthCallOfEachOperationIsRecorded) {
  options_.every = 3;
  Start();
  for (int i = 0; i < 7; ++i) {
    front_.ToUpper(std::to_string(i));
    front_.IsValid();
  }
  const Recorded recorded = Stop();
  std::vector<Value> upper;
  std::size_t others = 0;
  for (const Record& record : recorded.records) {
    if (record.operation == Operation::kToUpper) {
      upper.push_back(record.in[0]);
    } else {
      ++others;
    }
  }
  EXPECT_EQ(upper, (Values{Text("0"), Text("3"), Text("6")}));
  EXPECT_EQ(others, 3U);
  EXPECT_EQ(recorded.heads.at(0).every, 3);
}

TEST_F(RecordingTest, EveryByteAndAHugeTextSurvive) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
  }
  std::string huge;
  for (int i = 0; i < 1000; ++i) {
    huge += bytes;
  }
  Start();
  EXPECT_EQ(front_.ToUpper(huge), "<" + huge + ">");
  const Record record = Only(Stop());
  EXPECT_EQ(record.in, Values{huge});
  EXPECT_EQ(record.result, Value("<" + huge + ">"));
}

TEST_F(RecordingTest, AnArgumentIsRecordedAsItWasBeforeTheCall) {
  Start();
  std::vector<std::string> pieces{"a text that the call replaces, longer than a short string"};
  front_.SplitStr("x", pieces[0], pieces);
  EXPECT_EQ(Only(Stop()).in,
            (Values{Text("x"), Text("a text that the call replaces, longer than a short string")}));
}

TEST_F(RecordingTest, AnExceptionPassesUnchangedAndIsRecordedWithItsClassAndText) {
  Start();
  fake_.act = [] { throw std::out_of_range("beyond"); };
  std::vector<std::string> pieces;
  try {
    front_.SplitStr("a", ",", pieces);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "beyond");
  }
  const Record record = Only(Stop());
  EXPECT_FALSE(record.result);
  ASSERT_TRUE(record.thrown);
  EXPECT_EQ(record.thrown->type, "std::out_of_range");
  EXPECT_EQ(record.thrown->what, "beyond");
  EXPECT_EQ(record.out, (Values{TextList{"a", ","}}));
}

TEST_F(RecordingTest, AnExceptionOfThePlatformKeepsItsTexts) {
  Start();
  fake_.act = [] {
    NS_BUNDLEMGR1::InterfaceNotExistException missing;
    missing.code = 7;
    missing.stream1 << "kept";
    throw missing;  // NOLINT(cert-err09-cpp,cert-err61-cpp,misc-throw-by-value-catch-by-reference)
  };
  try {
    front_.IsTransQueltEnabled();
    ADD_FAILURE() << "nothing was thrown";
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException& error) {
    EXPECT_EQ(error.code, 7);
    EXPECT_EQ(error.stream1.str(), "kept");
  }
  const Record record = Only(Stop());
  ASSERT_TRUE(record.thrown);
  EXPECT_EQ(record.thrown->type, "NS_BUNDLEMGR1::InterfaceNotExistException");
}

TEST_F(RecordingTest, AnExceptionWithoutATextIsRecordedByItsType) {
  Start();
  fake_.act = [] { throw 7; };
  EXPECT_THROW(front_.IsValid(), int);
  const Record record = Only(Stop());
  ASSERT_TRUE(record.thrown);
  EXPECT_EQ(record.thrown->type, "int");
  EXPECT_EQ(record.thrown->what, "");
}

TEST_F(RecordingTest, TheThreadTheStartAndTheDurationAreRecorded) {
  Start();
  fake_.act = [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
  pid_t other = 0;
  front_.IsValid();
  std::thread([&] {
    other = ::gettid();
    front_.IsValid();
  }).join();
  const Recorded recorded = Stop();
  ASSERT_EQ(recorded.records.size(), 2U);
  EXPECT_EQ(recorded.records[0].thread, ::gettid());
  EXPECT_EQ(recorded.records[1].thread, other);
  EXPECT_GE(recorded.records[0].duration, 2000000);
  EXPECT_GE(recorded.records[1].start, recorded.records[0].start + recorded.records[0].duration);
}

TEST_F(RecordingTest, WithoutARecordingCallsGoThrough) {
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  Start();
  Stop();
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  EXPECT_FALSE(recording_.IsRunning());
}

TEST_F(RecordingTest, ASecondRecordingStartsFromNothing) {
  Start();
  front_.ToUpper("first");
  Stop();
  Start();
  front_.ToUpper("second");
  EXPECT_EQ(Only(Stop()).in, Values{Text("second")});
  EXPECT_EQ(totals_.records, 1U);
  EXPECT_EQ(Only(recorder_test::ReadRecording(options_.output + ".1")).in, Values{Text("first")});
}

TEST_F(RecordingTest, ACallThatEndsAfterTheRecordingIsLeftOut) {
  Start();
  fake_.act = [this] {
    Stop();
    Start();
  };
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  const Recorded recorded = Stop();
  EXPECT_EQ(recorded.records.size(), 0U);
  EXPECT_EQ(recorded.problems, 0U);
}

TEST_F(RecordingTest, WhatDoesNotFitIntoTheQueueIsDroppedAndCounted) {
  Start(1000);
  EXPECT_EQ(front_.ToUpper(std::string(2000, 'x')), "<" + std::string(2000, 'x') + ">");
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  const Recorded recorded = Stop();
  EXPECT_EQ(Only(recorded).in, Values{Text("abc")});
  EXPECT_EQ(recorded.tails.at(0).dropped, 1);
  EXPECT_EQ(totals_.dropped, 1U);
}

TEST_F(RecordingTest, AnOutValueThatDoesNotFitIntoTheQueueIsDroppedAndCounted) {
  Start(2000);
  std::vector<std::string> pieces;
  EXPECT_EQ(front_.SplitStr(std::string(1500, 'x'), ",", pieces), 5);
  EXPECT_EQ(pieces, (std::vector<std::string>{std::string(1500, 'x'), ","}));
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
  EXPECT_EQ(Only(Stop()).in, Values{Text("abc")});
  EXPECT_EQ(totals_.dropped, 1U);
}

TEST_F(RecordingTest, EveryOneOfManyCallsIsRecordedOrCounted) {
  Start(4000);
  constexpr std::uint64_t kCalls = 20000;
  for (std::uint64_t i = 0; i < kCalls; ++i) {
    front_.ToUpper("abc");
  }
  const Recorded recorded = Stop();
  EXPECT_GT(totals_.records, 0U);
  EXPECT_EQ(totals_.records + totals_.dropped, kCalls);
  EXPECT_EQ(recorded.records.size(), totals_.records);
  EXPECT_EQ(recorded.tails.at(0).records + recorded.tails.at(0).dropped, static_cast<std::int64_t>(kCalls));
}

TEST_F(RecordingTest, ADiskThatFillsUpIsReportedOnceAndEndsTheRecording) {
  Recorded recorded;
  {
    const FileSizeLimit limit(2000);
    Start();
    for (int i = 0; i < 100; ++i) {
      EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
    }
    recorded = Stop();
  }
  EXPECT_THAT(totals_.problem, HasSubstr("calls.jsonl: cannot write: File too large"));
  EXPECT_EQ(problemReported, totals_.problem);
  EXPECT_GT(recorded.records.size(), 0U);
  EXPECT_EQ(totals_.records, recorded.records.size());
  EXPECT_TRUE(recorded.tails.empty());
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
}

TEST_F(RecordingTest, AHeadThatCannotBeWrittenStartsNothing) {
  {
    const FileSizeLimit limit(10);
    EXPECT_THROW(Start(), std::system_error);
  }
  EXPECT_FALSE(recording_.IsRunning());
}

TEST_F(RecordingTest, AFileThatCannotBeCreatedStartsNothing) {
  options_.output = dir_.path() / "absent/calls.jsonl";
  EXPECT_THROW(Start(), std::system_error);
  EXPECT_FALSE(recording_.IsRunning());
  EXPECT_EQ(front_.ToUpper("abc"), "<abc>");
}

}  // namespace
