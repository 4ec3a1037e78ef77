#ifndef HOST_LOG_FORMAT_H_
#define HOST_LOG_FORMAT_H_

#include <cstdarg>
#include <string>

#include "framework/visibility.h"

/// Printf formats of unknown origin. Pure functions.
namespace host {

/// Whether `format` is a printf format that the log service is willing to fill in: conversions d i u x X c s
/// f and %%, with the flags - + 0 #, a width and a precision of at most three digits each, and l or ll before
/// an integer. Everything else is refused: a '%' at the end, '*', %n, and the blank as a flag, so that "100%
/// done" is a text.
PLATFORM_API bool IsPlainFormat(const char* format);

/// Fills in `format`; returns it verbatim when it is not plain or cannot be filled in. The values must be of
/// the kinds that a plain format names; a format that is not plain does not touch them.
PLATFORM_API std::string FormatText(const char* format, std::va_list values)
    __attribute__((format(printf, 1, 0)));

}  // namespace host

#endif  // HOST_LOG_FORMAT_H_
