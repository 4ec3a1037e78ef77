// Factory, `init`, `fini` and exterminator as the framework calls them: the calls of the platform in their
// order, and the one file that is opened.

#include "src/service/asciiutilsvc.h"

#include <filesystem>
#include <ios>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "framework/interface_registry.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/counters_at_abort.h"
#include "tests/recording_fixture.h"
#include "tests/temp_directory.h"

namespace {

std::vector<std::string>* openedFiles = nullptr;  ///< records the files that are opened

void NoteOpened(const char* path) {
  if (openedFiles != nullptr) {
    openedFiles->emplace_back(path);
  }
}

}  // namespace

// The linker redirects the standard library's opening of files to these functions (--wrap), so that a test
// can observe it: of file buffers where the compiler inlines the streams, otherwise of the streams.
extern "C" {
using OpenMode = std::ios_base::openmode;

void* __real__ZNSt13basic_filebufIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(void*, const char*,
                                                                                 OpenMode);
void* __wrap__ZNSt13basic_filebufIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(void* buffer,
                                                                                 const char* path,
                                                                                 OpenMode mode) {
  NoteOpened(path);
  return __real__ZNSt13basic_filebufIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(buffer, path, mode);
}

void __real__ZNSt14basic_ifstreamIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(void*, const char*,
                                                                                 OpenMode);
void __wrap__ZNSt14basic_ifstreamIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(void* stream,
                                                                                 const char* path,
                                                                                 OpenMode mode) {
  NoteOpened(path);
  __real__ZNSt14basic_ifstreamIcSt11char_traitsIcEE4openEPKcSt13_Ios_Openmode(stream, path, mode);
}
}

namespace {

using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AlarmConfigRecord;
using NS_ASCII::AsciiUtilInterface;
using NS_ASCII::ii_ascii_util;
using NS_BUNDLEMGR1::ServiceInterface;
using recording::Message;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ServiceTest : public recording::FrameworkTest {
 protected:
  /// A new service object from the factory; its exterminator destroys it.
  std::unique_ptr<ACE_Service_Object, ACE_Service_Object_Exterminator> Make() {
    ACE_Service_Object_Exterminator exterminator = nullptr;
    ACE_Service_Object* const object = _make_ii_ascii_util(&exterminator);
    return {object, exterminator};
  }

  static ii_ascii_util& ServiceIn(
      const std::unique_ptr<ACE_Service_Object, ACE_Service_Object_Exterminator>& object) {
    return dynamic_cast<ii_ascii_util&>(*object);
  }

  /// The value of the process-wide configuration for a key that starts with `key1`.
  static std::string Configured(const std::string& key1) {
    std::string value = "(none)";
    Alarm_Config_Param::Instance()->GetValue(AlarmConfigRecord{key1, "k", "1", "c", ""}, value);
    return value;
  }

  /// The result of `init` and the files that it opens with that configuration directory: "0 FILE".
  std::string InitIn(const std::string& cfgDir) {
    const auto object = Make();
    framework.cfgDir = cfgDir;
    std::vector<std::string> files;
    openedFiles = &files;
    std::string answer = std::to_string(object->init(0, nullptr));
    openedFiles = nullptr;
    for (const std::string& file : files) {
      answer += ' ' + file;
    }
    return answer;
  }

  TempDirectory directory;
};

class MakeIiAsciiUtil : public ServiceTest {};
class Init : public ServiceTest {};
class Fini : public ServiceTest {};
class Exterminator : public ServiceTest {};
class ServiceObject : public ServiceTest {};

// --- The factory

TEST_F(MakeIiAsciiUtil, PublishesTheInterfaceBeforeInit) {
  const auto object = Make();
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util"))",
                                             R"(SetIFBuf("AsciiUtilInterface"))"));
  const auto* const buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  ASSERT_NE(buffer, nullptr);
  EXPECT_THAT(*buffer, ElementsAre(ServiceIn(object).GetInterface()));
  ASSERT_NE(dynamic_cast<AsciiUtilInterface*>(buffer->front()), nullptr);
  EXPECT_EQ(buffer->front()->GetSvcName(), "AsciiUtilService");
}

TEST_F(MakeIiAsciiUtil, WorksWithoutAPlaceForTheExterminator) {
  const std::unique_ptr<ACE_Service_Object> object(_make_ii_ascii_util(nullptr));
  ASSERT_NE(object, nullptr);
  auto* const service = dynamic_cast<ii_ascii_util*>(object.get());
  ASSERT_NE(service, nullptr);
  EXPECT_THAT(*NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface"), ElementsAre(service->GetInterface()));
  EXPECT_EQ(service->GetInterface()->IsValid(), 1);
  framework.cfgDir = directory.path().string() + "/";
  EXPECT_EQ(object->init(0, nullptr), 0);
  EXPECT_EQ(object->fini(), 0);
}

TEST_F(MakeIiAsciiUtil, MakesANewObjectWithANewInterfaceEveryTime) {
  const auto one = Make();
  const auto two = Make();
  EXPECT_NE(one.get(), two.get());
  EXPECT_NE(ServiceIn(one).GetInterface(), ServiceIn(two).GetInterface());
  EXPECT_THAT(framework.CallsWithoutLog(),
              ElementsAre(R"(ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util"))",
                          R"(SetIFBuf("AsciiUtilInterface"))",
                          R"(ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util"))",
                          R"(SetIFBuf("AsciiUtilInterface"))"));
}

TEST_F(MakeIiAsciiUtil, LetsAFailedRegistrationOutAndLeavesNoObject) {
  framework.On("SetIFBuf", [] { throw std::runtime_error("registry"); });
  ACE_Service_Object_Exterminator exterminator = nullptr;
  EXPECT_THROW(_make_ii_ascii_util(&exterminator), std::runtime_error);
  EXPECT_NE(exterminator, nullptr);  // It is stored first.
  EXPECT_THAT(framework.Calls(),
              ElementsAre(R"(ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util"))",
                          R"(SetIFBuf("AsciiUtilInterface"))", R"(~ServiceObjectBase("ii_ascii_util"))"));
}

// --- init

TEST_F(Init, FailsWithoutAConfigurationDirectory) {
  const auto object = Make();
  framework.ForgetCalls();
  framework.cfgDir = "";
  EXPECT_EQ(object->init(0, nullptr), -1);
  EXPECT_THAT(framework.CallsWithoutLog(), ElementsAre("GetCfgDirPath()"));
  EXPECT_THAT(
      framework.Messages(),
      ElementsAre(Message{"asciiutilsvc", "unknown", 25, 2, "Get environment variable kelp failed !!", {}}));
}

TEST_F(Init, OpensNoFileWithoutAConfigurationDirectory) {
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "relative\tk\tc\t1\tv\n");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(directory.path());
  framework.cfgDir = "";
  EXPECT_EQ(Make()->init(0, nullptr), -1);
  EXPECT_EQ(Configured("relative"), "(none)");
  std::filesystem::current_path(before);
}

TEST_F(Init, OpensExactlyTheFileThatTheDirectoryNames) {
  EXPECT_EQ(InitIn("/cfg/"), "0 /cfg/ii_asciiagent_bundle/AlarmConfig.csv");
  EXPECT_EQ(InitIn("/cfg"), "0 /cfgii_asciiagent_bundle/AlarmConfig.csv");
  EXPECT_EQ(InitIn(""), "-1");
}

TEST_F(Init, LoadsTheFileBelowTheDirectoryAndSaysSo) {
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "with separator\tk\tc\t1\tv\n");
  framework.cfgDir = directory.path().string() + "/";
  const auto object = Make();
  framework.ForgetCalls();
  EXPECT_EQ(object->init(0, nullptr), 0);
  EXPECT_EQ(Configured("with separator"), "v");
  EXPECT_THAT(framework.CallsWithoutLog(), ElementsAre("GetCfgDirPath()", "GetCfgDirPath()"));
  EXPECT_THAT(framework.Messages(),
              ElementsAre(Message{"asciiutilsvc", "unknown", 32, 2, "run successfull!! ", {}}));
}

// The directory is expected to end in a separator; none is added.
TEST_F(Init, AddsNoSeparator) {
  directory.Write("cfg/ii_asciiagent_bundle/AlarmConfig.csv", "inside\tk\tc\t1\tv\n");
  directory.Write("cfgii_asciiagent_bundle/AlarmConfig.csv", "beside\tk\tc\t1\tv\n");
  framework.cfgDir = (directory.path() / "cfg").string();
  EXPECT_EQ(Make()->init(0, nullptr), 0);
  EXPECT_EQ(Configured("beside"), "v");
  EXPECT_EQ(Configured("inside"), "(none)");
}

TEST_F(Init, AsksForTheDirectoryAgainToBuildThePath) {
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "asked again\tk\tc\t1\tv\n");
  int asked = 0;
  framework.cfgDir = "/somewhere/else/";
  framework.On("GetCfgDirPath", [&] {
    if (++asked == 2) {
      framework.cfgDir = directory.path().string() + "/";
    }
  });
  EXPECT_EQ(Make()->init(0, nullptr), 0);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(Configured("asked again"), "v");
}

TEST_F(Init, SucceedsWithoutAFile) {
  framework.cfgDir = directory.path().string() + "/";
  EXPECT_EQ(Make()->init(0, nullptr), 0);
  EXPECT_THAT(framework.Messages(),
              ElementsAre(Message{"asciiutilsvc", "unknown", 32, 2, "run successfull!! ", {}}));
}

TEST_F(Init, LogsWhatTheLoadLogsBeforeItSaysThatItRuns) {
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "a\t\tb\n");
  framework.cfgDir = directory.path().string() + "/";
  EXPECT_EQ(Make()->init(0, nullptr), 0);
  EXPECT_THAT(
      framework.Messages(),
      ElementsAre(Message{"almconfig", "unknown", 195, 1, "almconfig.cfg file error. line=s%", "a\t\tb"},
                  Message{"asciiutilsvc", "unknown", 32, 2, "run successfull!! ", {}}));
}

TEST_F(Init, LoadsAgainEveryTimeOnTopOfWhatIsThere) {
  framework.cfgDir = directory.path().string() + "/";
  const auto object = Make();
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "again 1\tk\tc\t1\told\nagain 2\tk\tc\t1\tkept\n");
  EXPECT_EQ(object->init(0, nullptr), 0);
  directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", "again 1\tk\tc\t1\tnew\n");
  EXPECT_EQ(object->init(0, nullptr), 0);
  EXPECT_EQ(Configured("again 1"), "new");
  EXPECT_EQ(Configured("again 2"), "kept");
}

TEST_F(Init, IgnoresItsArguments) {
  framework.cfgDir = directory.path().string() + "/";
  ACE_TCHAR argument[] = "argument";
  ACE_TCHAR* arguments[] = {argument, nullptr};
  EXPECT_EQ(Make()->init(1, arguments), 0);
  EXPECT_EQ(Make()->init(-5, nullptr), 0);
}

TEST_F(Init, AnswersTheSameWithoutALogServiceAndLogsOnceThereIsOne) {
  framework.Unregister("LogSvcInterface");
  const auto object = Make();
  EXPECT_EQ(object->init(0, nullptr), 0);
  framework.cfgDir = "";
  EXPECT_EQ(object->init(0, nullptr), -1);
  EXPECT_THAT(framework.Messages(), IsEmpty());
  recording::LogService service;
  framework.Register("LogSvcInterface", &service);
  EXPECT_EQ(object->init(0, nullptr), -1);
  EXPECT_THAT(framework.Messages(), ::testing::SizeIs(1));
}

TEST_F(Init, LetsWhatTheLoggerThrowsOut) {
  const auto object = Make();
  framework.On("Log", [] { throw std::runtime_error("logger"); });
  EXPECT_THROW(object->init(0, nullptr), std::runtime_error);
}

// --- fini, the exterminator, the rest

TEST_F(Fini, AnswersZeroWhetherInitRanOrNot) {
  const auto object = Make();
  framework.ForgetCalls();
  EXPECT_EQ(object->fini(), 0);
  EXPECT_THAT(framework.Calls(), IsEmpty());
  EXPECT_EQ(object->init(0, nullptr), 0);
  framework.ForgetCalls();
  EXPECT_EQ(object->fini(), 0);
  EXPECT_EQ(object->fini(), 0);
  EXPECT_THAT(framework.Calls(), IsEmpty());
  EXPECT_NE(framework.BufferOf("AsciiUtilInterface")->size(), 0U);
}

TEST_F(Exterminator, DestroysTheObject) {
  auto object = Make();
  framework.ForgetCalls();
  object.reset();
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(~ServiceObjectBase("ii_ascii_util"))"));
  EXPECT_THAT(*framework.BufferOf("AsciiUtilInterface"), IsEmpty());
}

TEST_F(Exterminator, AssertsThatThereIsAnObject) {
  ACE_Service_Object_Exterminator exterminator = nullptr;
  const std::unique_ptr<ACE_Service_Object> object(_make_ii_ascii_util(&exterminator));
  const auto exterminate = [exterminator] {
    KeepCountersAtAbort();
    exterminator(nullptr);
  };
  EXPECT_EXIT(exterminate(), ::testing::KilledBySignal(SIGABRT),
              "file asciiutilsvc, line 17 assertion failed for '_p != 0'");
}

TEST_F(ServiceObject, HasTheServicesName) { EXPECT_STREQ(ServiceIn(Make()).GetName(), "ii_ascii_util"); }

TEST_F(ServiceObject, DoesNothingInItsHook) {
  const auto object = Make();
  framework.ForgetCalls();
  ServiceIn(object).SvcHook();
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(ServiceObject, MakesAnInterfaceInPlaceOfTheOldOneAndRegistersNothing) {
  const auto object = Make();
  ii_ascii_util& service = ServiceIn(object);
  const std::unique_ptr<ServiceInterface> old(service.GetInterface());  // The service does not free it.
  framework.ForgetCalls();
  ServiceInterface* const made = service.CreateInterface();
  ASSERT_NE(made, nullptr);
  EXPECT_NE(made, old.get());
  EXPECT_EQ(service.GetInterface(), made);
  EXPECT_EQ(made->IsValid(), 1);
  EXPECT_EQ(old->IsValid(), 1);
  EXPECT_THAT(framework.Calls(), IsEmpty());
  framework.Withdraw(old.get());
}

TEST_F(ServiceObject, AddsNoDataToItsBase) {
  EXPECT_EQ(sizeof(ii_ascii_util), sizeof(NS_BUNDLEMGR1::ServiceObjectBase));
}

TEST_F(ServiceObject, AnswersAsASharedObjectOfAce) {
  framework.cfgDir = "";
  const auto object = Make();
  ACE_Shared_Object& shared = *object;
  EXPECT_EQ(shared.init(0, nullptr), -1);
  EXPECT_EQ(shared.fini(), 0);
}

}  // namespace
