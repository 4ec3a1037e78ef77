#ifndef TESTS_ASCIIUTILIFIMPL_C_LIBRARY_H_
#define TESTS_ASCIIUTILIFIMPL_C_LIBRARY_H_

#include <ctime>
#include <optional>
#include <string>
#include <vector>

/// The C library as the unit sees it in this program: the linker leads the unit's calls of `time` and
/// `strtol` through c_library.cpp (--wrap), so that a test can see and answer them.
namespace c_library {

extern std::optional<std::time_t> clockReads;  ///< what `time` answers; else the real time
extern std::vector<std::string>* strtolTexts;  ///< where `strtol` notes its texts; null for nowhere

}  // namespace c_library

#endif  // TESTS_ASCIIUTILIFIMPL_C_LIBRARY_H_
