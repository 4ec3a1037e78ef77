// The agent's service object, factory and exterminator: fetches the interface at `init` and ends the run at
// `fini`. The object owns the run and borrows the interface. The framework makes these calls on one thread at
// a time.

#include "examples/alarm_agent/alarm_agent_service.h"

#include <exception>

#include "ascii_util/ascii_util_interface.h"
#include "examples/alarm_agent/agent_options.h"
#include "examples/alarm_agent/agent_run.h"
#include "examples/alarm_agent/setup_error.h"
#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"

namespace alarm_agent {
namespace {

NS_ASCII::AsciiUtilInterface& FetchUtil() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  try {
    if (auto* const util = NS_BUNDLEMGR1::FetchInterface<NS_ASCII::AsciiUtilInterface>(ref)) {
      return *util;
    }
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException&) {  // Reported below.
  }
  throw SetupError("there is no \"AsciiUtilInterface\"; load ii_ascii_util before this bundle");
}

}  // namespace

AlarmAgent::AlarmAgent() : ServiceObjectBase("alarm_agent_example_bundle", "alarm_agent_example") {}

AlarmAgent::~AlarmAgent() = default;

int AlarmAgent::fini() {
  const bool isComplete = run_ == nullptr || run_->Finish();
  run_.reset();
  return isComplete ? 0 : -1;
}

int AlarmAgent::init(int argc, ACE_TCHAR* argv[]) {
  try {
    if (run_ != nullptr) {
      throw SetupError("the agent is running already; unload the bundle first");
    }
    const AgentOptions options = ParseOptions(argc, argv);
    run_ = std::make_unique<AgentRun>(options, FetchUtil());
    return 0;
  } catch (const std::exception& error) {
    Report(error.what());
    return -1;
  }
}

}  // namespace alarm_agent

namespace {

void DestroyAlarmAgent(void* object) { delete static_cast<ACE_Service_Object*>(object); }

}  // namespace

extern "C" ACE_Service_Object* _make_alarm_agent_example(ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) {
    *exterminator = DestroyAlarmAgent;
  }
  return new alarm_agent::AlarmAgent;
}
