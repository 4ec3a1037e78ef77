#ifndef TOOLS_ALMCFG_CHECK_CHECKER_H_
#define TOOLS_ALMCFG_CHECK_CHECKER_H_

#include "tools/almcfg/check/finding.h"
#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/read/loaded_table.h"

/// Finds everything wrong or odd about one file. Parsing is the bundle's own, duplicate keys come from the
/// loaded table. Borrows the table and the text for the call. Threads: one at a time.
namespace almcfg {

/// Reports everything wrong or odd about one file of the table to `sink`, in the order of lines and columns. The
/// finding that the file holds no record is the last. Of comments, only the length and the line end are checked.
void CheckText(const LoadedTable& table, const SourceText& text, Progress& progress, FindingSink& sink);

/// Whether, for each key of the line, the previous line that set the key is in the same file and has the same
/// text. Removing such a line changes no answer.
bool IsExactRepeat(const LoadedTable& table, Place place);

/// The finding for a file that could not be read.
Finding Unreadable(const ReadError& error);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_CHECKER_H_
