#include "host/watched_service.h"

#include <ace/Service_Object.h>
#include <ace/Service_Repository.h>
#include <ace/Service_Types.h>

#include <utility>

#include "host/problem.h"

namespace host {
namespace {

/// Stands in ACE's repository for the record that ACE made of the same service.
class WatchedService : public ACE_Service_Object_Type {
 public:
  WatchedService(const ACE_Service_Type_Impl& original, std::shared_ptr<std::string> problem)
      : ACE_Service_Object_Type(original.object(), original.name(), original.*(&WatchedService::flags_),
                                original.*(&WatchedService::gobbler_)),
        problem_(std::move(problem)) {}

  int fini() const override {
    // ACE's own step is left out, as it would call fini again. The next one destroys the object, and this.
    try {
      if (const int result = static_cast<ACE_Service_Object*>(object())->fini(); result != 0) {
        *problem_ = "fini returned " + std::to_string(result);
      }
    } catch (...) {
      *problem_ = "fini threw: " + CurrentExceptionText();
    }
    return ACE_Service_Type_Impl::fini();  // NOLINT(bugprone-parent-virtual-call)
  }

 private:
  const std::shared_ptr<std::string> problem_;
};

}  // namespace

std::shared_ptr<const std::string> WatchFini(const std::string& name) {
  auto problem = std::make_shared<std::string>();
  const ACE_Service_Type* record = nullptr;
  if (ACE_Service_Repository::instance()->find(name.c_str(), &record, false) == 0 && record != nullptr) {
    const std::unique_ptr<const ACE_Service_Type_Impl> original(record->type());
    const_cast<ACE_Service_Type*>(record)->type(new WatchedService(*original, problem), record->active());
  }
  return problem;
}

}  // namespace host
