#ifndef HOST_PLATFORM_LOG_SERVICE_H_
#define HOST_PLATFORM_LOG_SERVICE_H_

#include "framework/log_service.h"
#include "framework/service_object_base.h"

namespace host {

/// The log service: service object "log" of bundle "bundle_host", whose interface is registered as
/// "LogSvcInterface" from construction to destruction. It must be constructed before the bundles that log are
/// loaded, and outlive them.
///
/// Ownership: the first `GetLogger` for a triple of names makes a logger, and later calls return the same
/// one, so repeated loads do not grow the process. Loggers outlive the service and are never released. A
/// client may delete its logger if it is the only user of that triple; the next `GetLogger` makes a new one.
///
/// Threads: any for `GetLogger` and the loggers; one at a time for construction and destruction.
class PLATFORM_API LogService : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  LogService();
  ~LogService() override;
};

}  // namespace host

#endif  // HOST_PLATFORM_LOG_SERVICE_H_
