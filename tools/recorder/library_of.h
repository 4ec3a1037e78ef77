#ifndef TOOLS_RECORDER_LIBRARY_OF_H_
#define TOOLS_RECORDER_LIBRARY_OF_H_

#include <string>

namespace recorder {

/// A mapped library.
struct Library {
  std::string path;     ///< from the dynamic linker; empty when unknown
  std::string buildId;  ///< in hexadecimal; empty when the library has none
};

/// The library that holds `address`. Threads: any, while that library stays mapped.
Library LibraryOf(const void* address);

}  // namespace recorder

#endif  // TOOLS_RECORDER_LIBRARY_OF_H_
