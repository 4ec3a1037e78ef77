#ifndef TOOLS_ALMCFG_QUERY_LOAD_FILES_H_
#define TOOLS_ALMCFG_QUERY_LOAD_FILES_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/almcfg/check/finding.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/read/loaded_table.h"

/// Reads the files of a command and reports their problems. Shared by show, lookup, diff and coverage.
/// Threads: one at a time.
namespace almcfg {

/// Loads the files in order, as a process does, and passes findings to `sink`, if there is one. Reports on
/// the error stream the number of errors and warnings of each file, the line at which the load never ends,
/// and a file that cannot be read. Returns none when a file cannot be read.
std::optional<LoadedTable> LoadFiles(const std::vector<std::string>& paths, const Options& options,
                                     const Outputs& outputs, FindingSink* sink = nullptr);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_QUERY_LOAD_FILES_H_
