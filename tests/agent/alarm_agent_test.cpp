// The agent as a bundle: loaded, run, unloaded and loaded again by ACE's service configurator, together with
// the bundle whose interface it uses.

#include <ace/DLL_Manager.h>
#include <ace/Service_Config.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>

#include "framework/bundle_mgr.h"
#include "framework/interface_registry.h"
#include "host/platform/config_items.h"
#include "host/platform/log_service.h"
#include "host/platform/log_sink.h"
#include "tests/temp_directory.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

// The pool's window, plus the lines that four threads are working on: when two lines are at least this far
// apart, the message of the first is written before that of the second is made.
constexpr std::size_t kInHand = 256 + 4;

int Load(const std::string& name, const std::string& arguments = "") {
  const std::string directive =
      "dynamic " + name + " Service_Object * " + name + ":_make_" + name + "() \"" + arguments + "\"";
  return ACE_Service_Config::process_directive(directive.c_str());
}

int Unload(const std::string& name) {
  return ACE_Service_Config::process_directive(("remove " + name).c_str());
}

NS_BUNDLEMGR1::ServiceObjectBase* ServiceOf(const std::string& bundle, const std::string& service) {
  std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*> objects;
  if (NS_BUNDLEMGR1::Bundle* const found = NS_BUNDLEMGR1::BundleMgr::Instance()->GetBundle(bundle)) {
    found->GetServiceObjects(objects);
  }
  return objects[service];
}

bool IsMapped(const std::string& library) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(library) != std::string::npos) return true;
  }
  return false;
}

class AlarmAgentTest : public testing::Test {
 protected:
  AlarmAgentTest() : out_(dir_ / "out") {
    // Otherwise the service configurator keeps libraries mapped after their removal.
    ACE_DLL_Manager::instance()->unload_policy(ACE_DLL_UNLOAD_POLICY_PER_PROCESS);
    std::filesystem::create_directory(dir_ / "ii_asciiagent_bundle");
    Configure(1);
    host::SetConfigDir(dir_ / "");
    host::SetItem("IsTransQuelt", 0);
  }

  ~AlarmAgentTest() override {
    Unload("alarm_agent_example");
    Unload("ii_ascii_util");
  }

  /// Configures the alarms of `Alarm` with a severity. The file is renamed into place, so that no reader sees
  /// half of it.
  void Configure(int severity) const {
    const std::string file = dir_.Write("new", "COM\tBTS\tLOS\t7\t" + std::to_string(severity) + "\n");
    std::filesystem::rename(file, dir_ / "ii_asciiagent_bundle/AlarmConfig.csv");
  }

  static std::string Alarm(std::size_t id) {
    return "ID=" + std::to_string(id) + ",KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=a|b,PATH=x-y\n";
  }

  std::string Arguments(const std::string& feed, int workers = 1) const {
    return "--feed " + feed + " --out " + out_ + " --workers " + std::to_string(workers);
  }

  /// ACE's messages when the agent cannot be loaded with these arguments.
  std::string RefusalOf(const std::string& arguments) const {
    host::AceComplaints complaints;
    EXPECT_NE(Load("alarm_agent_example", arguments), 0);
    EXPECT_EQ(ServiceOf("alarm_agent_example_bundle", "alarm_agent_example"), nullptr);
    return complaints.Text();
  }

  const TempDirectory dir_;
  const std::string out_;
  const host::LogOutput log_{dir_ / "log"};
  const host::LogService logService_;
};

TEST_F(AlarmAgentTest, AnUnloadLetsItFinishTheFeed) {
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  ASSERT_EQ(Load("alarm_agent_example", Arguments(dir_.Write("feed", Alarm(1) + "junk\n" + Alarm(3)))), 0);
  EXPECT_EQ(Unload("alarm_agent_example"), 0);
  EXPECT_THAT(
      dir_.ReadLines("out"),
      ElementsAre(EndsWith(" CRITICAL COM BTS LOS/7 at x/y [a, b] https://noc.example/alarm?id=1&at=x%2fy"),
                  EndsWith(" MALFORMED line 2 of the feed is not an alarm: not every part is KEY=VALUE"),
                  EndsWith("?id=3&at=x%2fy")));
}

TEST_F(AlarmAgentTest, TheExampleFeedGivesAMessageForEachLine) {
  host::SetConfigDir(EXAMPLES_DIR "/config");
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  ASSERT_EQ(Load("alarm_agent_example", Arguments(EXAMPLES_DIR "/alarm_agent/feed.txt", 4)), 0);
  ASSERT_EQ(Unload("alarm_agent_example"), 0);
  std::vector<std::string> severities;
  for (const std::string& message : dir_.ReadLines("out")) {
    severities.push_back(message.substr(20, message.find(' ', 20) - 20));
  }
  EXPECT_THAT(
      severities,
      ElementsAre("CRITICAL", "CRITICAL", "MAJOR", "MINOR", "MAJOR", "MAJOR", "WARNING", "MINOR", "CRITICAL",
                  "CLEARED", "MAJOR", "MINOR", "MALFORMED", "WARNING", "MAJOR", "INDETERMINATE",
                  "INDETERMINATE", "MINOR", "SEVERITY?", "SEVERITY=-1", "INDETERMINATE", "MALFORMED", "MAJOR",
                  "INDETERMINATE", "MALFORMED", "MALFORMED", "MALFORMED", "CRITICAL", "CLEARED", "MAJOR"));
}

TEST_F(AlarmAgentTest, FourWorkersKeepEachMessageOnceAndInOrderWhileTheConfigurationIsReloaded) {
  std::string feed;
  for (std::size_t id = 1; id <= FEED_LINES; ++id) {
    feed += id % 1000 == 0 ? "junk\n" : Alarm(id);
  }
  dir_.Write("feed", feed);
  // Values above 5 are written as numbers, so each message shows which version of the file it used.
  constexpr int kFirst = 100;
  Configure(kFirst);
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  NS_BUNDLEMGR1::ServiceObjectBase* const util = ServiceOf("ii_asciiagent_bundle", "ii_ascii_util");
  ASSERT_NE(util, nullptr);

  std::atomic<bool> isOver = false;
  int newest = kFirst;
  std::thread reloading([&] {
    while (!isOver) {
      Configure(++newest);
      EXPECT_EQ(util->init(0, nullptr), 0);
    }
  });
  EXPECT_EQ(Load("alarm_agent_example", Arguments(dir_ / "feed", 4)), 0);
  EXPECT_EQ(Unload("alarm_agent_example"), 0);
  isOver = true;
  reloading.join();

  const std::vector<std::string> messages = dir_.ReadLines("out");
  ASSERT_EQ(messages.size(), FEED_LINES);
  std::vector<int> seen;
  for (std::size_t id = 1; id <= FEED_LINES; ++id) {
    const std::string& message = messages[id - 1];
    if (id % 1000 == 0) {
      ASSERT_THAT(message, HasSubstr(" MALFORMED line " + std::to_string(id) + " of"));
      seen.push_back(seen.back());
      continue;
    }
    ASSERT_THAT(message, EndsWith("?id=" + std::to_string(id) + "&at=x%2fy"));
    ASSERT_EQ(message.substr(19, 10), " SEVERITY=") << message;
    seen.push_back(std::stoi(message.substr(29)));
    ASSERT_GE(seen.back(), kFirst) << message;
    ASSERT_LE(seen.back(), newest) << message;
  }
  // After a message with a newer version, no message uses an older one.
  int newestBefore = kFirst;
  for (std::size_t i = kInHand; i < seen.size(); ++i) {
    newestBefore = std::max(newestBefore, seen[i - kInHand]);
    ASSERT_GE(seen[i], newestBefore) << messages[i];
  }
  RecordProperty("reloads", newest - kFirst);
}

TEST_F(AlarmAgentTest, IsUnmappedByAnUnloadAndRunsAgainWhenLoadedAgain) {
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  dir_.Write("feed", Alarm(1));
  for (int i = 1; i <= 3; ++i) {
    ASSERT_EQ(Load("alarm_agent_example", Arguments(dir_ / "feed", 4)), 0);
    EXPECT_TRUE(IsMapped("libalarm_agent_example.so"));
    ASSERT_EQ(Unload("alarm_agent_example"), 0);
    EXPECT_FALSE(IsMapped("libalarm_agent_example.so"));
    EXPECT_EQ(dir_.ReadLines("out").size(), static_cast<std::size_t>(i));
  }
}

TEST_F(AlarmAgentTest, RunsAgainAfterFiniWithoutAnUnload) {
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  std::string feed = dir_.Write("feed", Alarm(1));
  ASSERT_EQ(Load("alarm_agent_example", Arguments(feed)), 0);
  auto* const agent = ServiceOf("alarm_agent_example_bundle", "alarm_agent_example");
  ASSERT_NE(agent, nullptr);
  std::string out = out_;
  std::vector<std::string> words = {"--feed", feed, "--out", out};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  {
    host::AceComplaints complaints;
    EXPECT_EQ(agent->init(4, arguments.data()), -1);
    EXPECT_THAT(complaints.Text(),
                HasSubstr("alarm_agent_example: the agent is running already; unload the bundle first"));
  }
  EXPECT_EQ(agent->fini(), 0);
  EXPECT_EQ(agent->fini(), 0);
  EXPECT_EQ(agent->init(4, arguments.data()), 0);
  EXPECT_EQ(agent->fini(), 0);
  EXPECT_EQ(dir_.ReadLines("out").size(), 2U);
}

TEST_F(AlarmAgentTest, WithoutTheInterfaceItIsRefused) {
  EXPECT_THAT(
      RefusalOf(Arguments(dir_.Write("feed", Alarm(1)))),
      HasSubstr(
          "alarm_agent_example: there is no \"AsciiUtilInterface\"; load ii_ascii_util before this bundle"));
}

TEST_F(AlarmAgentTest, BadInputIsRefusedWithOneLine) {
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  EXPECT_THAT(
      RefusalOf("--feed /nowhere/feed.txt"),
      HasSubstr(
          "alarm_agent_example: the feed \"/nowhere/feed.txt\" cannot be opened: No such file or directory"));
  EXPECT_THAT(RefusalOf("--workers many"),
              HasSubstr("alarm_agent_example: --workers \"many\" is not a number from 1 to 64"));
  const std::string feed = dir_.Write("feed", Alarm(1));
  EXPECT_THAT(RefusalOf("--feed " + feed + " --out " + feed),
              HasSubstr("\"" + feed + "\" is the feed and the message file at once; they must differ"));
  EXPECT_EQ(dir_.Read("feed"), Alarm(1));
}

TEST_F(AlarmAgentTest, MessagesThatCannotBeWrittenAreReportedOnce) {
  ASSERT_EQ(Load("ii_ascii_util"), 0);
  const std::string feed = dir_.Write("feed", Alarm(1) + Alarm(2) + Alarm(3));
  ASSERT_EQ(Load("alarm_agent_example", "--feed " + feed + " --out /dev/full"), 0);
  EXPECT_EQ(ServiceOf("alarm_agent_example_bundle", "alarm_agent_example")->fini(), -1);
  const std::string log = dir_.Read("log");
  const std::string complaint = "messages cannot be written to \"/dev/full\": No space left on device";
  EXPECT_NE(log.find(complaint), std::string::npos);
  EXPECT_EQ(log.find(complaint), log.rfind(complaint));
}

}  // namespace
