// Ordinary messages: how the shared logger is obtained, and that no failure of the log service reaches the
// caller.

#include "src/log/logmsg.h"

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "framework/process_exception.h"
#include "framework/service_object_base.h"
#include "tests/recording_fixture.h"

// The handler of unexpected exceptions is deprecated; these tests install one.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

using NS_ASCII::LogFormatted;
using NS_ASCII::LogMessage;
using NS_ASCII::ObtainLogger;
using recording::Message;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// The shared logger is kept until the process ends, so each of these tests needs its own process.
class LogMessageTest : public recording::FrameworkTest {};
class LogFormattedTest : public recording::FrameworkTest {};
class ObtainLoggerTest : public recording::FrameworkTest {};
class LogMessageDeath : public recording::FrameworkTest {};

const std::string kAsk = R"(CheckIFBuf("LogSvcInterface"))";
const std::string kGet = R"(GetLogger("ii_asciiagent_bundle", "ii_asciiagent_bundle", "debug"))";

TEST_F(LogMessageTest, ObtainsTheSharedLoggerWithTheFirstMessage) {
  LogMessage({"tag", 25, 2, "first"});
  EXPECT_THAT(framework.Calls(), ElementsAre(kAsk, kGet, R"(Log("tag", "unknown", 25, 2, "first"))"));
}

TEST_F(LogMessageTest, KeepsTheSharedLogger) {
  LogMessage({"tag", 1, 2, "first"});
  framework.ForgetCalls();
  framework.Unregister("LogSvcInterface");
  LogMessage({"tag", 3, 4, "second"});
  LogFormatted({"other", 5, 6, "third"}, "value");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(Log("tag", "unknown", 3, 4, "second"))",
                                             R"(LogF("other", "unknown", 5, 6, "third", "value"))"));
}

TEST_F(LogFormattedTest, ObtainsTheSharedLoggerToo) {
  LogFormatted({"tag", 195, 1, "dangling s%"}, "value");
  EXPECT_THAT(framework.Calls(),
              ElementsAre(kAsk, kGet, R"(LogF("tag", "unknown", 195, 1, "dangling s%", "value"))"));
}

TEST_F(LogMessageTest, DropsMessagesWithoutALogServiceAndAsksAgain) {
  framework.Unregister("LogSvcInterface");
  LogMessage({"tag", 1, 2, "dropped"});
  LogFormatted({"tag", 1, 2, "dropped"}, "too");
  EXPECT_THAT(framework.Calls(), ElementsAre(kAsk, "GetAllBundles()", kAsk, "GetAllBundles()"));
}

TEST_F(LogMessageTest, SendsMessagesOnceALogServiceIsThere) {
  framework.Unregister("LogSvcInterface");
  LogMessage({"tag", 1, 2, "dropped"});
  recording::LogService service;
  framework.Register("LogSvcInterface", &service);
  LogMessage({"tag", 3, 4, "sent"});
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"tag", "unknown", 3, 4, "sent", {}}));
}

TEST_F(LogMessageTest, TreatsANullLoggerAsMissingAndAsksAgain) {
  framework.logger = [] { return nullptr; };
  LogMessage({"tag", 1, 2, "dropped"});
  LogMessage({"tag", 1, 2, "dropped"});
  EXPECT_THAT(framework.Calls(), ElementsAre(kAsk, kGet, kAsk, kGet));
}

TEST_F(LogMessageTest, SwallowsEveryExceptionOfTheLogService) {
  framework.On("GetLogger", [] { throw std::runtime_error("log service"); });
  EXPECT_NO_THROW(LogMessage({"tag", 1, 2, "dropped"}));
  framework.On("GetLogger", [] { throw 5; });
  EXPECT_NO_THROW(LogMessage({"tag", 1, 2, "dropped"}));
  EXPECT_THAT(framework.Messages(), IsEmpty());
  framework.On("GetLogger", [] {});
  LogMessage({"tag", 1, 2, "sent"});
  EXPECT_THAT(framework.Messages(), SizeIs(1));
}

TEST_F(LogMessageTest, SwallowsAMissingInterfaceFromEveryStep) {
  for (const char* const step : {"CheckIFBuf", "GetLogger"}) {
    framework.On(step, [] { throw NS_BUNDLEMGR1::InterfaceNotExistException(); });
    EXPECT_NO_THROW(LogMessage({"tag", 1, 2, "dropped"})) << step;
    framework.On(step, [] {});
  }
  LogMessage({"tag", 1, 2, "sent"});
  EXPECT_THAT(framework.Messages(), SizeIs(1));
}

TEST_F(LogMessageTest, DropsMessagesWhenSomethingElseIsRegisteredByTheName) {
  recording::OtherInterface other;
  framework.Unregister("LogSvcInterface");
  framework.Register("LogSvcInterface", &other);
  LogMessage({"tag", 1, 2, "dropped"});
  EXPECT_THAT(framework.Calls(), ElementsAre(kAsk));
}

TEST_F(LogMessageTest, FindsTheLogServiceAmongTheBundlesAndCachesIt) {
  class LogObject : public NS_BUNDLEMGR1::ServiceObjectBase {
   public:
    LogObject() : ServiceObjectBase("bundle", "log") { interface_ = new recording::LogService; }
  } object;
  recording::Bundle bundle("bundle");
  bundle.objects["log"] = &object;
  framework.bundles = {&bundle};
  framework.Unregister("LogSvcInterface");
  framework.RegisterEmpty("LogSvcInterface");
  framework.ForgetCalls();
  LogMessage({"tag", 1, 2, "sent"});
  EXPECT_THAT(framework.Calls(),
              ElementsAre(kAsk, "GetAllBundles()", "GetServiceObjects(\"bundle\") [mutex held]", kGet,
                          R"(Log("tag", "unknown", 1, 2, "sent"))"));
  EXPECT_THAT(*framework.BufferOf("LogSvcInterface"), ElementsAre(object.GetInterface()));
}

TEST_F(LogMessageTest, LetsWhatTheLoggerThrowsReachTheCaller) {
  framework.On("Log", [] { throw std::runtime_error("logger"); });
  EXPECT_THROW(LogMessage({"tag", 1, 2, "text"}), std::runtime_error);
  framework.On("LogF", [] { throw std::logic_error("logger"); });
  EXPECT_THROW(LogFormatted({"tag", 1, 2, "text"}, "value"), std::logic_error);
}

TEST_F(LogMessageTest, LetsWhatTheRegistryThrowsReachTheCaller) {
  framework.On("CheckIFBuf", [] { throw std::runtime_error("registry"); });
  EXPECT_THROW(LogMessage({"tag", 1, 2, "text"}), std::runtime_error);
  EXPECT_THROW(LogFormatted({"tag", 1, 2, "text"}, "value"), std::runtime_error);
}

TEST_F(LogMessageTest, SendsEveryMessageOfThreadsThatStartTogether) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int line = 0; line < 100; ++line) {
        LogMessage({"tag", line, 0, "text"});
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(framework.Messages(), SizeIs(400));
}

TEST_F(LogMessageDeath, AnExceptionThatTheLookupMayNotLetOutEndsTheProcess) {
  framework.Unregister("LogSvcInterface");
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  EXPECT_EXIT(LogMessage({"tag", 1, 2, "text"}), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(LogMessageDeath, TheProcesssOwnHandlerIsHonoured) {
  framework.Unregister("LogSvcInterface");
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  std::set_unexpected([] { std::_Exit(3); });
  EXPECT_EXIT(LogMessage({"tag", 1, 2, "text"}), ::testing::ExitedWithCode(3), "");
}

TEST_F(ObtainLoggerTest, FetchesALoggerEveryTime) {
  recording::Logger one;
  recording::Logger two;
  framework.logger = [&one] { return &one; };
  EXPECT_EQ(ObtainLogger("a", "b", "c"), &one);
  framework.logger = [&two] { return &two; };
  EXPECT_EQ(ObtainLogger("d", "e", "f"), &two);
  framework.Unregister("LogSvcInterface");
  EXPECT_EQ(ObtainLogger("g", "h", "i"), nullptr);
  EXPECT_THAT(framework.Calls(), ElementsAre(kAsk, R"(GetLogger("a", "b", "c"))", kAsk,
                                             R"(GetLogger("d", "e", "f"))", kAsk, "GetAllBundles()"));
}

}  // namespace
