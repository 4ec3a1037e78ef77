#ifndef HOST_INI_CHECK_H_
#define HOST_INI_CHECK_H_

#include <string>

#include "framework/visibility.h"

namespace host {

/// What ACE's importer of INI files would stumble over, or take for something else than it looks like:
/// "FILE:LINE:COLUMN: what is wrong, and what would be right" for the first such place, both counted from 1;
/// "FILE: why" when it is no regular file or cannot be read; empty when all is well. Any thread may ask.
PLATFORM_API std::string CheckIniFile(const std::string& file);

}  // namespace host

#endif  // HOST_INI_CHECK_H_
