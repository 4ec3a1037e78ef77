// Makes ACE's calls of `init` and `fini` under a watch. The record owns the service object. One thread at
// a time.

#include "host/loader/watched_service.h"

#include <utility>
#include <vector>

#include "host/base/problem.h"
#include "host/loader/call_watch.h"

namespace host {

int CallInit(ACE_Service_Object& object, const std::string& name, const Words& arguments,
             std::string& problem) {
  Words copies = arguments;
  std::vector<char*> argv;
  for (std::string& copy : copies) {
    argv.push_back(copy.data());
  }
  argv.push_back(nullptr);
  try {
    const CallWatch watch("init of " + name);
    const int result = object.init(static_cast<int>(copies.size()), argv.data());
    problem = result == 0 ? "" : "init returned " + std::to_string(result);
    return result;
  } catch (...) {
    problem = "init threw: " + CurrentExceptionText();
    return -1;
  }
}

WatchedService::WatchedService(ACE_Service_Object* object, const std::string& name,
                               ACE_Service_Object_Exterminator exterminator, Words arguments,
                               std::shared_ptr<ServiceProblems> problems)
    : ACE_Service_Object_Type(object, name.c_str(),
                              ACE_Service_Type::DELETE_THIS | ACE_Service_Type::DELETE_OBJ, exterminator),
      arguments_(std::move(arguments)),
      problems_(std::move(problems)) {}

int WatchedService::init(int /*argc*/, ACE_TCHAR* /*argv*/[]) const {
  const int result =
      CallInit(*static_cast<ACE_Service_Object*>(object()), name(), arguments_, problems_->init);
  isInitialised_ = result == 0;
  return result;
}

int WatchedService::fini() const {
  if (isInitialised_) {
    try {
      const CallWatch watch(std::string("fini of ") + name());
      if (const int result = static_cast<ACE_Service_Object*>(object())->fini(); result != 0) {
        problems_->fini = "fini returned " + std::to_string(result);
      }
    } catch (...) {
      problems_->fini = "fini threw: " + CurrentExceptionText();
    }
  }
  // Skips the direct base class, which would call fini again. The call destroys the service object and
  // `this`.
  return ACE_Service_Type_Impl::fini();  // NOLINT(bugprone-parent-virtual-call)
}

}  // namespace host
