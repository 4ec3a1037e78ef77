#ifndef EXAMPLES_ALARM_AGENT_ALARM_AGENT_SERVICE_H_
#define EXAMPLES_ALARM_AGENT_ALARM_AGENT_SERVICE_H_

#include <ace/Service_Object.h>

#include <memory>

#include "framework/service_object_base.h"

namespace alarm_agent {

class AgentRun;

/// The service object of a bundle that turns a feed of alarms into text messages with the help of the
/// interface "AsciiUtilInterface", which another bundle publishes. It publishes none itself.
///
/// Life cycle: `init` fetches the interface and starts the worker threads; `fini` lets them read what the feed
/// still holds, joins them and drops the interface. Then no code of this bundle runs on any thread, so it can
/// be unloaded, and `init` may be called again. Unload this bundle before the one whose interface it uses; the
/// service configurator closes services in the reverse order of their loading.
///
/// Threads: the framework makes these calls one at a time.
class AlarmAgent : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  AlarmAgent();

  /// Ends a run that `fini` has not ended.
  ~AlarmAgent() override;

  /// Ends the run. Returns -1, with a line in ACE's log, when messages could not be written; else 0, also
  /// without a run.
  int fini() override;

  /// Starts a run with the arguments of `ParseOptions`. Returns -1, with one line in ACE's log that says why,
  /// when an argument is bad, a file cannot be opened, the interface is missing or the agent is running; nothing
  /// is started then.
  int init(int argc, ACE_TCHAR* argv[]) override;

 private:
  std::unique_ptr<AgentRun> run_;  ///< null while there is no run
};

}  // namespace alarm_agent

/// The factory, in the form that ACE's service configurator calls.
extern "C" PLATFORM_API ACE_Service_Object* _make_alarm_agent_example(
    ACE_Service_Object_Exterminator* exterminator);

#endif  // EXAMPLES_ALARM_AGENT_ALARM_AGENT_SERVICE_H_
