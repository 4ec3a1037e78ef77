// WriteDbgLog returns 0, also when the log service fails. The log manager keeps its logger, so each test
// needs its own process.

#include <stdexcept>
#include <thread>

#include "tests/interface/interface_fixture.h"

namespace {

using interface_test::InterfaceTest;
using recording::Message;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WriteDbgLog : public InterfaceTest {};

TEST_F(WriteDbgLog, LogsTheTextAtLevelZeroWithAnEmptyPosition) {
  EXPECT_EQ(impl.WriteDbgLog("x"), 0);
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"", "", 0, 0, "x", {}}));
}

TEST_F(WriteDbgLog, LogsAnEmptyPositionOnAThreadThatNeverLoggedBefore) {
  EXPECT_EQ(impl.WriteDbgLog("before"), 0);
  framework.ForgetCalls();
  std::thread([this] { EXPECT_EQ(impl.WriteDbgLog("x"), 0); }).join();
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"", "", 0, 0, "x", {}}));
}

TEST_F(WriteDbgLog, AnswersZeroWithoutALogger) {
  framework.logger = [] { return nullptr; };
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(WriteDbgLog, AnswersZeroWhenTheLogServiceThrows) {
  framework.On("GetLogger", [] { throw std::runtime_error("log service"); });
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(WriteDbgLog, AnswersZeroWithoutALogService) {
  framework.Unregister("LogSvcInterface");
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_EQ(impl.WriteDbgLog(""), 0);
}

TEST_F(WriteDbgLog, AsksForTheLogManagersOwnLoggerOnce) {
  impl.WriteDbgLog("x");
  impl.WriteDbgLog("y");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(CheckIFBuf("LogSvcInterface"))",
                                             R"(GetLogger("ii_ascii_bundle", "QueltAni", "corbaoper"))",
                                             R"(Log("", "", 0, 0, "x"))", R"(Log("", "", 0, 0, "y"))"));
}

}  // namespace
