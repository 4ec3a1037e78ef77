// The host's platform as a service of any ACE program. A rejected `init` must leave one line in the
// program's log.

#include "host/platform/bundle_platform.h"

#include <ace/Log_Msg.h>
#include <ace/Service_Object.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "host/platform/config_items.h"
#include "host/platform/log_sink.h"
#include "tests/temp_directory.h"

extern "C" ACE_Service_Object* _make_bundle_platform(ACE_Service_Object_Exterminator* exterminator);

namespace {

/// Creates, initialises and destroys the platform as ACE's service configurator does.
class BundlePlatform : public testing::Test {
 protected:
  BundlePlatform() {
    ACE_Service_Object_Exterminator exterminator = nullptr;
    object_ = {_make_bundle_platform(&exterminator), exterminator};
    host::SetConfigDir("");
  }

  int Init(std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    return object_->init(static_cast<int>(arguments.size()), argv.data());
  }

  /// Returns the text that a failing `init` writes to ACE's log of the program.
  std::string ProblemOf(const std::vector<std::string>& arguments) {
    std::ostringstream log;
    const unsigned long flags = ACE_Log_Msg::instance()->flags();
    ACE_Log_Msg::instance()->clr_flags(ACE_Log_Msg::STDERR);
    ACE_Log_Msg::instance()->set_flags(ACE_Log_Msg::OSTREAM);
    ACE_Log_Msg::instance()->msg_ostream(&log);
    EXPECT_EQ(Init(arguments), -1);
    EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface"), nullptr);
    ACE_Log_Msg::instance()->msg_ostream(nullptr);
    ACE_Log_Msg::instance()->clr_flags(ACE_Log_Msg::OSTREAM);
    ACE_Log_Msg::instance()->set_flags(flags);
    return log.str();
  }

  std::string Dir() const { return dir_.path().string(); }

  const TempDirectory dir_;
  std::unique_ptr<ACE_Service_Object, ACE_Service_Object_Exterminator> object_{nullptr, nullptr};
};

TEST_F(BundlePlatform, SetsUpDirectoryItemsLogAndLevelAndWithdrawsTheLogAtFini) {
  dir_.Write("config_items.ini", "[items]\nIsTransQuelt=7\n");
  EXPECT_EQ(Init({"--config-dir", Dir(), "--log-file", Dir() + "/log", "--log-level", "2"}), 0);
  EXPECT_EQ(NS_BUNDLEMGR1::GetCfgDirPath(), Dir() + "/");
  int value = 0;
  EXPECT_TRUE(NS_BUNDLEMGR1::CorbaConfigItems::Instance()->GetIntItemInfo("IsTransQuelt", value));
  EXPECT_EQ(value, 7);
  EXPECT_EQ(host::LogLevel(), 2);
  EXPECT_NE(NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface"), nullptr);
  EXPECT_TRUE(std::ifstream(Dir() + "/log").is_open());
  EXPECT_EQ(object_->fini(), 0);
  EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface"), nullptr);
}

TEST_F(BundlePlatform, ASecondInitReplacesThePlatform) {
  EXPECT_EQ(Init({"--config-dir", Dir(), "--log-file", Dir() + "/first"}), 0);
  EXPECT_EQ(Init({"--config-dir", Dir(), "--log-file", Dir() + "/second"}), 0);
  ACE_ERROR((LM_ERROR, ACE_TEXT("after the second init\n")));
  EXPECT_EQ(dir_.Read("first"), "");
  EXPECT_NE(dir_.Read("second").find("after the second init"), std::string::npos);
  EXPECT_EQ(object_->fini(), 0);
  EXPECT_EQ(ACE_Log_Msg::msg_backend(), nullptr);
}

TEST_F(BundlePlatform, ReportsADoubtfulItemInItsLog) {
  dir_.Write("config_items.ini", "[items]\nA=x\n");
  EXPECT_EQ(Init({"--config-dir", Dir(), "--log-file", Dir() + "/log"}), 0);
  std::stringstream log;
  log << std::ifstream(Dir() + "/log").rdbuf();
  EXPECT_NE(log.str().find("bundle_platform: " + Dir() + "/config_items.ini:2:1: A: 'x' is not an integer"),
            std::string::npos)
      << log.str();
}

TEST_F(BundlePlatform, RejectsAWrongOptionWithOneLineInTheProgramsLog) {
  EXPECT_EQ(ProblemOf({"--config-dri", "x"}),
            "bundle_platform: no option '--config-dri'; did you mean --config-dir?\n");
  EXPECT_EQ(ProblemOf({"x"}),
            "bundle_platform: no option 'x'; there are --config-dir, --log-file and --log-level\n");
  EXPECT_EQ(ProblemOf({"--config-dir"}), "bundle_platform: --config-dir needs a value after it\n");
  EXPECT_EQ(ProblemOf({"--config-dir", ""}), "bundle_platform: --config-dir needs a value after it\n");
  EXPECT_EQ(ProblemOf({"--log-level", "1", "--log-level", "1"}),
            "bundle_platform: --log-level is given twice\n");
  EXPECT_EQ(ProblemOf({"--log-level", "3"}),
            "bundle_platform: '3' is not a log level; there are 0, 1, 2 and off\n");
}

TEST_F(BundlePlatform, RejectsWhatCannotBeOpenedWithOneLineInTheProgramsLog) {
  EXPECT_EQ(ProblemOf({"--config-dir", "/nonexistent"}),
            "bundle_platform: configuration directory /nonexistent/: No such file or directory\n");
  EXPECT_EQ(ProblemOf({"--config-dir", Dir(), "--log-file", "/nonexistent/log"}),
            "bundle_platform: /nonexistent/log: cannot be opened for writing: No such file or directory\n");
  dir_.Write("config_items.ini", "what\n");
  EXPECT_EQ(ProblemOf({"--config-dir", Dir()}),
            "bundle_platform: " + Dir() +
                "/config_items.ini:1:1: neither a [SECTION], NAME=INTEGER, nor a comment, which starts "
                "with ';' or '#'\n");
}

TEST_F(BundlePlatform, WithoutAnyDirectoryIsRejected) {
  EXPECT_EQ(ProblemOf({}),
            "bundle_platform: no configuration directory is known: give --config-dir or set "
            "BUNDLE_HOST_CONFIG_DIR\n");
}

TEST(BundlePlatformFactory, TakesANullExterminator) {
  const std::unique_ptr<ACE_Service_Object> object(_make_bundle_platform(nullptr));
  EXPECT_NE(object, nullptr);
}

}  // namespace
