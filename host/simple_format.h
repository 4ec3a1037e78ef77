#ifndef HOST_SIMPLE_FORMAT_H_
#define HOST_SIMPLE_FORMAT_H_

#include <cstdarg>
#include <cstddef>

#include "framework/visibility.h"

namespace host {

/// Does what `vsnprintf` does, and faster, where that is simple: the format holds nothing but text, %%, %s,
/// and %d with any width of at most two digits and the flag 0; no text is null, and all of it fits. `size` is
/// at least 1.
///
/// Returns the length without the terminating NUL. Anything that is not simple gives -1: then nothing is
/// known of the buffer nor of how many values were taken, and `vsnprintf` has to begin anew.
PLATFORM_API int SimpleFormat(char* buffer, std::size_t size, const char* format, std::va_list values)
    __attribute__((format(printf, 3, 0)));

/// `vsnprintf`, faster where the format is simple.
PLATFORM_API int FastFormat(char* buffer, std::size_t size, const char* format, std::va_list values)
    __attribute__((format(printf, 3, 0)));

}  // namespace host

#endif  // HOST_SIMPLE_FORMAT_H_
