#ifndef FRAMEWORK_PLATFORM_UTIL_H_
#define FRAMEWORK_PLATFORM_UTIL_H_

#include <cstddef>
#include <string>

#include "framework/visibility.h"

/// The platform's string helpers. Pure functions, callable from any thread.
namespace NSTE_util {

/// A copy of `text` without leading and trailing white space.
PLATFORM_API std::string Trim(const std::string& text);

/// The decimal text of `number`, unpadded.
PLATFORM_API std::string Num2Str(int number);

}  // namespace NSTE_util

/// The platform's code-set conversion.
namespace KelpGlobalUtils {

/// Converts `input` from one code set to another and stores the result in `output`. Returns 0 when every
/// character could be converted. Otherwise, and when a code set is unknown, the platform defines what
/// `output` holds; callers use it as the result, even if it is empty.
PLATFORM_API int KelpCodeSetConvert(const std::string& fromCode, const std::string& toCode,
                                    const std::string& input, std::string& output);

}  // namespace KelpGlobalUtils

/// The bounds-checked formatter with the signature of C11 Annex K (ISO/IEC 9899:2011, K.3.5.3.6): writes
/// at most `size` characters to `buffer`, the terminating NUL included, and returns the number written
/// without it. Differs from Annex K: the result is negative, not 0, when the text does not fit or cannot be
/// formatted.
extern "C" PLATFORM_API int sprintf_s(char* buffer, std::size_t size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

#endif  // FRAMEWORK_PLATFORM_UTIL_H_
