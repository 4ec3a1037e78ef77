// The arguments of the recorder's directive.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/recorder/options.h"

namespace {

using recorder::Options;
using recording_format::Operation;

Options Parse(const std::vector<const char*>& arguments) {
  return recorder::ParseOptions(static_cast<int>(arguments.size()), arguments.data());
}

std::string RefusalOf(const std::vector<const char*>& arguments) {
  try {
    Parse(arguments);
    return "accepted";
  } catch (const recorder::SetupError& error) {
    return error.what();
  }
}

TEST(RecorderOptions, ByDefaultEveryCallOfEveryOperationIsRecordedWithoutALimit) {
  const Options options = Parse({"--output", "calls.jsonl"});
  EXPECT_EQ(options.output, "calls.jsonl");
  EXPECT_TRUE(options.operations.all());
  EXPECT_EQ(options.every, 1U);
  EXPECT_EQ(options.limit, 0U);
}

TEST(RecorderOptions, EachOptionIsTaken) {
  const Options options =
      Parse({"--every", "10", "--limit", "1000000", "--operations", "IsValid,WriteDbgLog", "--output", "f"});
  EXPECT_EQ(options.every, 10U);
  EXPECT_EQ(options.limit, 1000000U);
  EXPECT_EQ(options.operations.count(), 2U);
  EXPECT_TRUE(options.operations.test(static_cast<std::size_t>(Operation::kIsValid)));
  EXPECT_TRUE(options.operations.test(static_cast<std::size_t>(Operation::kWriteDbgLog)));
}

TEST(RecorderOptions, AFileIsNeeded) {
  EXPECT_EQ(RefusalOf({}), "no file to write: give --output FILE");
  EXPECT_EQ(RefusalOf({"--output", ""}), "no file to write: give --output FILE");
}

TEST(RecorderOptions, WhatIsWrongIsNamed) {
  EXPECT_EQ(RefusalOf({"--output"}), "--output needs a value");
  EXPECT_EQ(RefusalOf({"--output", "f", "--output", "g"}), "--output is given twice");
  EXPECT_EQ(RefusalOf({"--operations", "ToUpper,Trim"}),
            "--operations: the interface has no operation \"Trim\"");
  EXPECT_EQ(RefusalOf({"--operations", "ToUpper,"}), "--operations: the interface has no operation \"\"");
  EXPECT_EQ(RefusalOf({"--fast", "1"}),
            "unknown argument \"--fast\"; there are --output FILE, --operations NAME,..., --every N and "
            "--limit BYTES");
  EXPECT_EQ(RefusalOf({"calls.jsonl"}).substr(0, 31), "unknown argument \"calls.jsonl\";");
  EXPECT_EQ(RefusalOf({"-f", "calls.jsonl"}).substr(0, 22), "unknown argument \"-f\";");
}

TEST(RecorderOptions, NumbersStartAtOne) {
  for (const char* const number : {"0", "-1", "", "1k", " 1", "18446744073709551616"}) {
    EXPECT_EQ(RefusalOf({"--every", number}),
              std::string("--every \"") + number + "\" is not a positive integer");
    EXPECT_EQ(RefusalOf({"--limit", number}),
              std::string("--limit \"") + number + "\" is not a positive integer");
  }
}

}  // namespace
