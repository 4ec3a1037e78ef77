// The arguments of the example agent's directive. A mistake must be reported with the options that exist,
// never ignored.

#include "examples/alarm_agent/agent_options.h"

#include <gtest/gtest.h>

#include <vector>

#include "examples/alarm_agent/setup_error.h"

namespace alarm_agent {
namespace {

AgentOptions Parse(const std::vector<const char*>& arguments) {
  return ParseOptions(static_cast<int>(arguments.size()), arguments.data());
}

std::string ComplaintAbout(const std::vector<const char*>& arguments) {
  try {
    Parse(arguments);
  } catch (const SetupError& error) {
    return error.what();
  }
  return "none";
}

TEST(AgentOptions, WithoutArgumentsTheyAreTheStandardStreamsAndOneWorker) {
  const AgentOptions options = Parse({});
  EXPECT_EQ(options.feed, "");
  EXPECT_EQ(options.out, "");
  EXPECT_EQ(options.workers, 1);
  EXPECT_EQ(options.link, "https://noc.example/alarm");
}

TEST(AgentOptions, EveryOptionIsAcceptedInAnyOrder) {
  const AgentOptions options =
      Parse({"--workers", "64", "--link", "http://x/", "--out", "o.txt", "--feed", "f.txt"});
  EXPECT_EQ(options.feed, "f.txt");
  EXPECT_EQ(options.out, "o.txt");
  EXPECT_EQ(options.workers, 64);
  EXPECT_EQ(options.link, "http://x/");
}

TEST(AgentOptions, AnUnknownOptionIsNamedAndTheKnownOnesAreListed) {
  EXPECT_EQ(ComplaintAbout({"--fed", "x"}),
            "unknown argument \"--fed\"; there are --feed FILE, --out FILE, --workers N and --link BASE");
  EXPECT_EQ(ComplaintAbout({"feed.txt"}),
            "unknown argument \"feed.txt\"; there are --feed FILE, --out FILE, --workers N and --link BASE");
}

TEST(AgentOptions, AMissingOrEmptyValueIsRefused) {
  EXPECT_EQ(ComplaintAbout({"--feed"}), "--feed needs a value");
  EXPECT_EQ(ComplaintAbout({"--feed", "f", "--out", ""}), "--out needs a value");
}

TEST(AgentOptions, AnOptionGivenTwiceIsRefused) {
  EXPECT_EQ(ComplaintAbout({"--feed", "a", "--feed", "b"}), "--feed is given twice");
}

TEST(AgentOptions, AWorkerCountOutsideOneToSixtyFourIsRefused) {
  EXPECT_EQ(ComplaintAbout({"--workers", "0"}), "--workers \"0\" is not a number from 1 to 64");
  for (const char* bad : {"65", "-1", "4x", "x", " 4", "99999999999", "+4", ""}) {
    EXPECT_EQ(ComplaintAbout({"--workers", bad}),
              "--workers \"" + std::string(bad) + "\" is not a number from 1 to 64");
  }
}

}  // namespace
}  // namespace alarm_agent
