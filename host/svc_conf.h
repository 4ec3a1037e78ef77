#ifndef HOST_SVC_CONF_H_
#define HOST_SVC_CONF_H_

#include <string>

#include "host/loader.h"

namespace host {

/// Processes a file of ACE service configurator directives, one a line and one after the other; '#' outside
/// quotes starts a comment. Throws `Failure` with "FILE:LINE:COLUMN: message" for the first directive that
/// fails (where it starts) or the first character that is wrong, and does not go on behind it; what was
/// loaded before stays loaded.
void ProcessSvcConf(Loader& loader, const std::string& file);

}  // namespace host

#endif  // HOST_SVC_CONF_H_
