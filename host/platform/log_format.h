#ifndef HOST_PLATFORM_LOG_FORMAT_H_
#define HOST_PLATFORM_LOG_FORMAT_H_

#include <cstdarg>
#include <string>

#include "framework/visibility.h"

/// Fills in printf formats that come from bundles and may be malformed. Pure functions; any thread may call
/// them.
namespace host {

/// Whether `format` has only conversions that the log service fills in: d i u x X c s f and %%, with flags
/// (-, +, 0, #), a width and a precision of at most three digits each, and l or ll before an integer. False
/// for all else: a '%' at the end, '*', %n, and the blank as a flag, so that "100% done" is written verbatim.
PLATFORM_API bool IsPlainFormat(const char* format);

/// Fills in `format`; returns it verbatim when it is not plain or formatting fails, and "" when it is null.
/// `values` must match a plain format, and are not read for any other.
PLATFORM_API std::string FormatText(const char* format, std::va_list values)
    __attribute__((format(printf, 1, 0)));

}  // namespace host

#endif  // HOST_PLATFORM_LOG_FORMAT_H_
