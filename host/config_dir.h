#ifndef HOST_CONFIG_DIR_H_
#define HOST_CONFIG_DIR_H_

#include <string>

#include "framework/config_items.h"

namespace host {

/// The environment variable that names the configuration directory when the program is not told one.
inline constexpr const char* kConfigDirVariable = "BUNDLE_HOST_CONFIG_DIR";

/// Sets what `GetCfgDirPath` answers from now on; a missing final "/" is added, an empty text means that the
/// directory is not known. Until the first call the environment variable decides. Nothing is checked here.
/// Threads: any.
PLATFORM_API void SetConfigDir(const std::string& directory);

}  // namespace host

#endif  // HOST_CONFIG_DIR_H_
