#ifndef HOST_LOG_SERVICE_H_
#define HOST_LOG_SERVICE_H_

#include "framework/log_service.h"
#include "framework/service_object_base.h"

namespace host {

/// The log service as a service object of its own: service "log" of bundle "bundle_host", whose interface is
/// registered as "LogSvcInterface" from construction to destruction. It must exist before the bundles that
/// log, and outlive them.
///
/// Who owns a logger: there is one for each triple of names, made when it is first asked for and asked for
/// again by every load of a bundle, so that loading for ever does not grow. It lives as long as the process,
/// the service object's own end included. A client may all the same destroy its logger, as a log manager that
/// is released does; the next one to ask gets a new one. Names are the identity: whoever does so must be the
/// only user of its triple.
///
/// Threads: `GetLogger` and the loggers, any; construction and destruction as for any service object.
class PLATFORM_API LogService : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  LogService();
  ~LogService() override;
};

}  // namespace host

#endif  // HOST_LOG_SERVICE_H_
