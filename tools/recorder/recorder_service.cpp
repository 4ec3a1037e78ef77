// Registers the recorder's interface at `init` and withdraws it at `fini`. The recording and the interface
// live as long as the process. The framework makes these calls on one thread at a time.

#include "tools/recorder/recorder_service.h"

#include <ace/Guard_T.h>
#include <ace/Log_Msg.h>
#include <pthread.h>

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>
#include <vector>

#include "framework/config_items.h"
#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "tools/recorder/front.h"
#include "tools/recorder/library_of.h"
#include "tools/recorder/recorder_log.h"
#include "tools/recorder/recording.h"

namespace recorder {
namespace {

using NS_ASCII::AsciiUtilInterface;
using NS_BUNDLEMGR1::ServiceInterface;

constexpr const char* kInterfaceName = "AsciiUtilInterface";

/// The bytes of each of the queue's two buffers: some 50,000 calls of 330 bytes. Pages that are never written
/// do not become resident.
constexpr std::uint32_t kQueueSize = 16U << 20U;

/// The recording and the front are never destroyed: callers may still use them, see `RecorderService`.
Recording& TheRecording() {
  static auto& recording = *new Recording;
  return recording;
}

Front& TheFront() {
  static auto& front = *new Front(TheRecording());
  return front;
}

void Report(const std::string& text) {
  ACE_ERROR((LM_ERROR, ACE_TEXT("ii_ascii_recorder: %C\n"), text.c_str()));
  Log(text);
}

AsciiUtilInterface& FetchImplementation() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf(kInterfaceName);
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  try {
    auto* const found = NS_BUNDLEMGR1::FetchInterface<AsciiUtilInterface>(ref);
    if (found == &TheFront()) {
      throw SetupError("the platform has not withdrawn the recorder's interface; it cannot record again");
    }
    if (found != nullptr) {
      return *found;
    }
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException&) {  // Reported below.
  }
  throw SetupError("there is no AsciiUtilInterface to record; load its bundle before the recorder");
}

/// A copy of the current list of registered interfaces.
std::vector<ServiceInterface*> Registered() {
  const auto* const buffer = NS_BUNDLEMGR1::CheckIFBuf(kInterfaceName);
  const ACE_Guard<ACE_Thread_Mutex> guard(NS_BUNDLEMGR1::_g_actualmutex);
  return buffer == nullptr ? std::vector<ServiceInterface*>() : *buffer;
}

recording_format::Head HeadFor(AsciiUtilInterface& implementation) {
  // An object starts with the address of its virtual table, which lies in the library that implements it.
  const auto* const table = *static_cast<const void* const*>(dynamic_cast<const void*>(&implementation));
  const Library library = LibraryOf(table);
  recording_format::Head head;
  head.library = library.path;
  head.buildId = library.buildId;
  head.configDir = NS_BUNDLEMGR1::GetCfgDirPath();
  return head;
}

std::string Summary(const Totals& totals) {
  return std::to_string(totals.records) + " calls recorded, " + std::to_string(totals.dropped) + " dropped";
}

}  // namespace

RecorderService::RecorderService() : ServiceObjectBase("ii_ascii_recorder", "ii_ascii_recorder") {}

RecorderService::~RecorderService() { RecorderService::fini(); }

void RecorderService::RemoveInterface() { interface_ = nullptr; }

int RecorderService::init(int argc, ACE_TCHAR* argv[]) {
  try {
    if (TheRecording().IsRunning()) {
      throw SetupError("a recording is running; unload the recorder first");
    }
    Start(ParseOptions(argc, argv));
    return 0;
  } catch (const std::exception& error) {
    Report(error.what());
    return -1;
  }
}

void RecorderService::Start(const Options& options) {
  AsciiUtilInterface& implementation = FetchImplementation();
  static const int registered = pthread_atfork(nullptr, nullptr, [] { TheRecording().AbandonAfterFork(); });
  if (registered != 0) {
    throw std::system_error(registered, std::generic_category(), "pthread_atfork");
  }
  TheRecording().Start(
      options, HeadFor(implementation),
      [](const std::string& problem) { Log("recording stopped: " + problem); }, kQueueSize);
  try {
    PutInFront(implementation);
  } catch (...) {
    TakeOut();
    TheRecording().Stop();
    throw;
  }
  Log("recording the calls of AsciiUtilInterface to " + options.output);
}

void RecorderService::PutInFront(AsciiUtilInterface& implementation) {
  TheFront().ForwardTo(&implementation);
  implementation_ = &implementation;
  interface_ = &TheFront();
  NS_BUNDLEMGR1::SetIFBuf(kInterfaceName, interface_);
  const std::vector<ServiceInterface*> now = Registered();
  isKeptAfter_ = std::find(now.begin(), now.end(), implementation_) != now.end();
  if (now.empty() || now.front() != interface_) {
    throw SetupError("the platform's registry does not return the interface that was registered last");
  }
}

void RecorderService::TakeOut() {
  // A registry that keeps one interface for a name has dropped the implementation. It is registered again
  // before the recorder's interface is withdrawn, so that no lookup fails. A registry that keeps several has
  // it still, or has withdrawn it because its bundle was unloaded.
  const std::vector<ServiceInterface*> now = Registered();
  if (!isKeptAfter_ && !now.empty() && now.front() == interface_) {
    NS_BUNDLEMGR1::SetIFBuf(kInterfaceName, implementation_);
  }
  UnRegistSvc();
  interface_ = nullptr;
  implementation_ = nullptr;
}

int RecorderService::fini() {
  if (implementation_ == nullptr) {
    return 0;
  }
  TakeOut();
  if (TheRecording().IsAbandoned()) {
    return 0;
  }
  const Totals totals = TheRecording().Stop();
  if (!totals.problem.empty()) {
    Report(totals.problem + "; " + Summary(totals));
    return -1;
  }
  Log("recording ended: " + Summary(totals));
  return 0;
}

}  // namespace recorder

namespace {

void DestroyRecorder(void* object) { delete static_cast<ACE_Service_Object*>(object); }

}  // namespace

extern "C" ACE_Service_Object* _make_ii_ascii_recorder(ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) {
    *exterminator = DestroyRecorder;
  }
  return new recorder::RecorderService;
}
