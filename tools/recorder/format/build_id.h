#ifndef TOOLS_RECORDER_FORMAT_BUILD_ID_H_
#define TOOLS_RECORDER_FORMAT_BUILD_ID_H_

#include <link.h>

#include <string>

namespace recording_format {

/// The build id of a mapped library, as `dl_iterate_phdr` describes it, in hexadecimal; empty when it was linked
/// without one. Threads: any, while the library stays mapped.
std::string BuildIdOf(const dl_phdr_info& library);

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_BUILD_ID_H_
