#ifndef TESTS_INTERFACE_C_LIBRARY_H_
#define TESTS_INTERFACE_C_LIBRARY_H_

#include <ctime>
#include <optional>
#include <string>
#include <vector>

/// The C library as the unit calls it in this program: the linker redirects the unit's calls of `time` and
/// `strtol` to c_library.cpp (--wrap), so that a test can observe and answer them.
namespace c_library {

extern std::optional<std::time_t> clockReads;  ///< what `time` returns; without it the real time
extern std::vector<std::string>* strtolTexts;  ///< where `strtol` records its texts; null to record none

}  // namespace c_library

#endif  // TESTS_INTERFACE_C_LIBRARY_H_
