#ifndef HOST_LOADER_WATCHED_SERVICE_H_
#define HOST_LOADER_WATCHED_SERVICE_H_

#include <ace/Service_Object.h>
#include <ace/Service_Types.h>

#include <memory>
#include <string>

#include "host/base/words.h"

namespace host {

/// The problem of each call of a service object, in one line; empty when it succeeded or was not made.
struct ServiceProblems {
  std::string init;
  std::string fini;
};

/// Calls `init` of the object under a `CallWatch`. Returns its result, or -1 when it throws; `problem` (out)
/// is the message, such as "init returned -1", or empty.
int CallInit(ACE_Service_Object& object, const std::string& name, const Words& arguments,
             std::string& problem);

/// ACE's record of a service object. Does what ACE's own class does, and also watches `init` and `fini`,
/// stores their problems, and catches their exceptions. Passes `arguments` to `init` instead of the arguments
/// that ACE passes. Owns the object; deletes it and itself when ACE removes the service. Threads: one at a
/// time.
class WatchedService : public ACE_Service_Object_Type {
 public:
  /// `exterminator` may be null, as for ACE.
  WatchedService(ACE_Service_Object* object, const std::string& name,
                 ACE_Service_Object_Exterminator exterminator, Words arguments,
                 std::shared_ptr<ServiceProblems> problems);

  int init(int argc, ACE_TCHAR* argv[]) const override;
  int fini() const override;

 private:
  const Words arguments_;
  const std::shared_ptr<ServiceProblems> problems_;
  mutable bool isInitialised_ = false;
};

}  // namespace host

#endif  // HOST_LOADER_WATCHED_SERVICE_H_
