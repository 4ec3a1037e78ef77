#ifndef SRC_SERVICE_ASCIIUTILSVC_H_
#define SRC_SERVICE_ASCIIUTILSVC_H_

#include <ace/Global_Macros.h>
#include <ace/Service_Object.h>

#include "framework/service_object_base.h"

namespace NS_ASCII {

/// The bundle's service object: publishes the interface at construction, loads the alarm configuration at
/// `init`.
///
/// Life cycle: factory (registers the interface as "AsciiUtilInterface"), `init`, `fini`, exterminator. The
/// interface can be called as soon as it is registered. The base's destructor removes it from the registry
/// and destroys it.
///
/// Invariants: no data members. `fini` is declared before `init`: the order of declaration fixes the two
/// slots that they add to the primary virtual table.
///
/// Threads: the framework calls the factory, `init`, `fini` and the exterminator one at a time; no lock is
/// taken. Each `init` loads the file again, while other threads may be using the interface.
class ii_ascii_util : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  ii_ascii_util();
  ~ii_ascii_util() override;

  /// Required: does nothing.
  void SvcHook() override;

  /// Creates a new interface, stores it and returns it; does not register it. Required: the previous
  /// interface is not freed.
  NS_BUNDLEMGR1::ServiceInterface* CreateInterface() override;

  /// Always 0; does nothing.
  int fini() override;

  /// Loads "ii_asciiagent_bundle/AlarmConfig.csv" below the configuration directory; ignores the arguments.
  /// Returns -1 when the directory is unknown, otherwise 0, with or without a file.
  int init(int argc, ACE_TCHAR* argv[]) override;
};

}  // namespace NS_ASCII

/// The factory, in the form that ACE's service configurator calls. Stores the exterminator through
/// `exterminator` unless that is null, and returns a new service object, which the exterminator destroys.
/// Exhausted memory throws `std::bad_alloc`.
extern "C" PLATFORM_API ACE_Service_Object* _make_ii_ascii_util(
    ACE_Service_Object_Exterminator* exterminator);

#endif  // SRC_SERVICE_ASCIIUTILSVC_H_
