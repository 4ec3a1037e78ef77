// The platform's classes as the bundle calls them: calls of any other slot are recorded and fail the test.

#include <cstdarg>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "tests/contract/loaded_bundle.h"
#include "tests/contract/raw_slots.h"
#include "tests/recording_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The arguments of the replaced entries; one test at a time writes them.
std::vector<std::string> heard;
void* answer = nullptr;

int HearLog(void* /*self*/, const std::string& file, const std::string& func, int line, int level,
            const std::string& message) {
  heard.push_back(file + "|" + func + "|" + std::to_string(line) + "|" + std::to_string(level) + "|" +
                  message);
  return 0;
}

int HearLogF(void* /*self*/, const std::string& file, const std::string& func, int line, int level,
             const char* format, ...) {
  va_list values;
  va_start(values, format);
  heard.push_back(file + "|" + func + "|" + std::to_string(line) + "|" + std::to_string(level) + "|" +
                  format + "|" + va_arg(values, const char*));
  va_end(values);
  return 0;
}

void* HearGetLogger(void* /*self*/, const std::string& bundle, const std::string& service,
                    const std::string& channel) {
  heard.push_back(bundle + "|" + service + "|" + channel);
  return answer;
}

void* HearGetBundle(void* /*self*/, const std::string& name) {
  heard.push_back(name);
  return answer;
}

void HearGetAllBundles(void* /*self*/, std::list<NS_BUNDLEMGR1::Bundle*>& bundles) {
  heard.emplace_back("GetAllBundles");
  bundles.push_back(static_cast<NS_BUNDLEMGR1::Bundle*>(answer));
}

NS_BUNDLEMGR1::ServiceObjectBase* onlyObject = nullptr;

void HearGetServiceObjects(void* /*self*/,
                           std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*>& objects) {
  heard.emplace_back("GetServiceObjects");
  objects["only"] = onlyObject;
}

void* HearGetInterface(void* /*self*/) {
  heard.emplace_back("GetInterface");
  return nullptr;
}

class PlatformSlots : public recording::FrameworkTest {
 protected:
  PlatformSlots() { heard.clear(); }

  static constexpr std::size_t kMany = 40;
  using Table = raw::ReplacedTable<kMany>;

  contract::LoadedBundle bundle;
};

/// Calls `IsTransQueltEnabled`, which logs.
void MakeItLog() {
  void* const object = contract::LoadedBundle::interface();
  raw::At<bool(void*)>(object, 7)(object);
}

TEST_F(PlatformSlots, MessagesGoThroughSlot7OfTheLogger) {
  recording::Logger logger;
  framework.logger = [&logger] { return &logger; };
  framework.intItems["IsTransQuelt"] = 1;
  Table table(&logger);
  table.Set(7, &HearLog);
  MakeItLog();
  EXPECT_THAT(heard, ElementsAre("asciiutilifimpl|unknown|57|1|Trans QueltTools "));
  EXPECT_THAT(Table::called, IsEmpty());
}

TEST_F(PlatformSlots, FormattedMessagesGoThroughSlot8OfTheLogger) {
  recording::Logger logger;
  framework.logger = [&logger] { return &logger; };
  framework.cfgDir = CONTRACT_BAD_CONFIG_DIR "/";
  {
    Table table(&logger);
    table.Set(7, &HearLog);
    table.Set(8, &HearLogF);
    bundle.service()->init(0, nullptr);
    EXPECT_THAT(heard, ElementsAre("almconfig|unknown|195|1|almconfig.cfg file error. line=s%|A\t\tB",
                                   "asciiutilsvc|unknown|32|2|run successfull!! "));
    EXPECT_THAT(Table::called, IsEmpty());
  }
}

TEST_F(PlatformSlots, LoggersComeFromSlot7OfTheLogService) {
  recording::LogService service;
  recording::Logger logger;
  answer = &logger;
  framework.Unregister("LogSvcInterface");
  framework.Register("LogSvcInterface", &service);
  Table table(&service);
  table.Set(7, &HearGetLogger);
  MakeItLog();
  EXPECT_THAT(heard, ElementsAre("ii_asciiagent_bundle|ii_asciiagent_bundle|debug"));
  EXPECT_THAT(Table::called, IsEmpty());
}

TEST_F(PlatformSlots, BundlesAreSearchedThroughSlots10And13And27) {
  recording::LogService service;
  recording::Bundle onlyBundle("only");
  NS_BUNDLEMGR1::ServiceObjectBase object("bundle", "service");
  onlyObject = &object;
  framework.Unregister("LogSvcInterface");

  // Three tables at once: different sizes make different classes, so each has its own list of calls.
  raw::ReplacedTable<40> managerTable(NS_BUNDLEMGR1::BundleMgr::Instance());
  managerTable.Set(10, &HearGetAllBundles);
  raw::ReplacedTable<41> bundleTable(&onlyBundle);
  bundleTable.Set(13, &HearGetServiceObjects);
  raw::ReplacedTable<42> objectTable(&object);
  objectTable.Set(27, &HearGetInterface);
  answer = &onlyBundle;
  MakeItLog();
  EXPECT_EQ(heard.size() % 3, 0U);
  heard.resize(3);
  EXPECT_THAT(heard, ElementsAre("GetAllBundles", "GetServiceObjects", "GetInterface"));
  EXPECT_THAT(raw::ReplacedTable<40>::called, IsEmpty());
  EXPECT_THAT(raw::ReplacedTable<41>::called, IsEmpty());
  EXPECT_THAT(raw::ReplacedTable<42>::called, IsEmpty());
}

TEST_F(PlatformSlots, OneBundleIsAskedForThroughSlot7OfTheBundleManager) {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  ref.bundleName = "wanted";
  Table table(NS_BUNDLEMGR1::BundleMgr::Instance());
  table.Set(7, &HearGetBundle);
  answer = nullptr;
  EXPECT_THROW(NS_BUNDLEMGR1::FetchInterface<NS_LOG_SERVICE1::LogSvcInterface>(ref),
               NS_BUNDLEMGR1::InterfaceNotExistException);
  EXPECT_THAT(heard, ElementsAre("wanted"));
  EXPECT_THAT(Table::called, IsEmpty());
}

}  // namespace
