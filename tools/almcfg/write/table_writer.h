#ifndef TOOLS_ALMCFG_WRITE_TABLE_WRITER_H_
#define TOOLS_ALMCFG_WRITE_TABLE_WRITER_H_

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tools/almcfg/check/finding.h"
#include "tools/almcfg/read/loaded_table.h"

/// The outputs of `almcfg show`: TSV, JSON and HTML. Writers borrow the stream that they write to. Threads: one
/// at a time for each stream.
namespace almcfg {

/// A finding together with its place.
struct PlacedFinding {
  Place place;
  Finding finding;
};

/// Writes the table in force, entry by entry.
class TableWriter {
 public:
  virtual ~TableWriter() = default;
  virtual void Write(const Entry& entry) = 0;
  virtual void End(const LoadedTable& files) = 0;
};

/// One entry per line: columns 1 to 5 and FILE:LINE, separated by TABs, after a heading that starts with "#".
/// Bytes are written unchanged, except to a terminal, which gets them printable.
std::unique_ptr<TableWriter> MakeTsvWriter(std::ostream& out, bool isTerminal);

/// One JSON object with a list of entries.
std::unique_ptr<TableWriter> MakeJsonWriter(std::ostream& out);

/// What the HTML page shows besides the entries.
struct PageContent {
  /// Each is shown with the entries of its line, or, when the line has none, in a row of its own: at the
  /// line's position when `inFileOrder`, else at the end.
  std::vector<PlacedFinding> findings;
  bool inFileOrder = true;
  /// Returns how often an entry was asked for. When it is set, the page has a column and a filter for it, and
  /// `callSummary`, a sentence, in its head.
  std::function<std::uint64_t(const Entry&)> countCalls;
  std::string callSummary;
};

/// One HTML page without references to other files. `files`, which have been loaded, are borrowed.
std::unique_ptr<TableWriter> MakeHtmlWriter(std::ostream& out, const LoadedTable& files, PageContent content);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_TABLE_WRITER_H_
