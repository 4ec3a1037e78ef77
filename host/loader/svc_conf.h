#ifndef HOST_LOADER_SVC_CONF_H_
#define HOST_LOADER_SVC_CONF_H_

#include <string>

#include "host/loader/loader.h"

namespace host {

/// Processes a file of ACE service configurator directives in order, one per line; '#' outside quotes starts
/// a comment. Stops at the first directive that fails and throws `Failure` with "FILE:LINE:COLUMN: message";
/// the column is that of the directive or of the wrong character. Bundles loaded by then remain loaded.
/// Threads: one at a time, as for `loader`.
void ProcessSvcConf(Loader& loader, const std::string& file);

}  // namespace host

#endif  // HOST_LOADER_SVC_CONF_H_
