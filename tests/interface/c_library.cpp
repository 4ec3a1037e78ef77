// Answers the unit's calls of `time` and `strtol` as the test says. The test program must be linked with
// --wrap for both.

#include "tests/interface/c_library.h"

#include <cerrno>

namespace c_library {

std::optional<std::time_t> clockReads;
std::vector<std::string>* strtolTexts = nullptr;

}  // namespace c_library

using c_library::clockReads;
using c_library::strtolTexts;

extern "C" {
std::time_t __real_time(std::time_t*);
std::time_t __wrap_time(std::time_t* place) { return clockReads ? *clockReads : __real_time(place); }

long __real_strtol(const char*, char**, int);
long __wrap_strtol(const char* text, char** end, int base) {
  if (strtolTexts != nullptr) {
    strtolTexts->push_back(std::string(text) + " in " + std::to_string(base));
  }
  if (base < 0 || base == 1 || base > 36) {
    // As in the C library, `end` stays unchanged. AddressSanitizer's replacement of strtol would store an
    // uninitialised pointer.
    errno = EINVAL;
    return 0;
  }
  return __real_strtol(text, end, base);
}
}
