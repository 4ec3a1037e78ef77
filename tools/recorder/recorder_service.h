#ifndef TOOLS_RECORDER_RECORDER_SERVICE_H_
#define TOOLS_RECORDER_RECORDER_SERVICE_H_

#include <ace/Service_Object.h>

#include "ascii_util/ascii_util_interface.h"
#include "framework/service_object_base.h"
#include "tools/recorder/options.h"

namespace recorder {

/// The service object of a bundle that records the calls of "AsciiUtilInterface".
///
/// Life cycle: `init` fetches the interface, creates the file and registers its own interface under the same
/// name; callers that fetch the interface after that are recorded. `fini` withdraws that interface, so that
/// lookups return the implementation again, and finishes the file; running calls end normally. The library
/// stays mapped for the life of the process, and callers that still use the recorder's interface reach the
/// implementation through it. So the recorder may be removed and loaded again at any time, but it must be
/// removed before the bundle that it records.
///
/// Needs only what framework/ declares. Threads: the framework makes these calls one at a time.
class RecorderService : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  RecorderService();

  /// Calls `fini`, which does nothing the second time.
  ~RecorderService() override;

  /// Destroys nothing: the interface outlives the service object.
  void RemoveInterface() override;

  /// Returns -1, with one line in ACE's log and in the log service, when the recording stopped early because
  /// the file could not be written or memory ran out; otherwise 0, also without a recording.
  int fini() override;

  /// Takes the arguments of `ParseOptions`. Returns 0, or -1 with one line in ACE's log and in the log
  /// service that says why: an argument is bad, there is no interface to record, the file cannot be created
  /// or a recording is running. Nothing is registered then.
  int init(int argc, ACE_TCHAR* argv[]) override;

 private:
  void Start(const Options& options);
  void PutInFront(NS_ASCII::AsciiUtilInterface& implementation);
  void TakeOut();

  NS_ASCII::AsciiUtilInterface* implementation_ = nullptr;  ///< borrowed; null while nothing is recorded
  bool isKeptAfter_ = false;  ///< the registry lists the implementation after the recorder's interface
};

}  // namespace recorder

/// The factory, in the form that ACE's service configurator calls.
extern "C" PLATFORM_API ACE_Service_Object* _make_ii_ascii_recorder(
    ACE_Service_Object_Exterminator* exterminator);

#endif  // TOOLS_RECORDER_RECORDER_SERVICE_H_
