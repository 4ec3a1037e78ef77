#ifndef HOST_WATCHED_SERVICE_H_
#define HOST_WATCHED_SERVICE_H_

#include <memory>
#include <string>

namespace host {

/// From here on the `fini` of the service that ACE knows as `name` is watched: ACE does not look at its
/// result, and lets what it throws end the process. The service must be a loaded and initialised service
/// object.
///
/// Returns where the problem of its `fini` will stand, in one line; empty until then, and when there is none.
/// The exterminator is called in any case. Threads: those that may load and unload.
std::shared_ptr<const std::string> WatchFini(const std::string& name);

}  // namespace host

#endif  // HOST_WATCHED_SERVICE_H_
