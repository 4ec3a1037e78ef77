#ifndef FRAMEWORK_CONFIG_ITEMS_H_
#define FRAMEWORK_CONFIG_ITEMS_H_

#include <string>

#include "framework/visibility.h"

namespace NS_BUNDLEMGR1 {

/// The framework's configuration directory with a final path separator: callers append to it without adding
/// one. Empty when it is unknown.
PLATFORM_API std::string GetCfgDirPath();

/// The process-wide store of configuration items. Any thread may read; a changed item is seen by the next
/// read. The name is the framework's; nothing here uses CORBA.
class PLATFORM_API CorbaConfigItems {
 public:
  /// The one store of the process; never null.
  static CorbaConfigItems* Instance();

  /// Reads the integer item `name` into `value`. False, and `value` unspecified, when there is no such item
  /// or it is not an integer.
  bool GetIntItemInfo(const std::string& name, int& value);
};

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_CONFIG_ITEMS_H_
