#ifndef TOOLS_ALMCFG_TABLE_WRITER_H_
#define TOOLS_ALMCFG_TABLE_WRITER_H_

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tools/almcfg/desk_load.h"
#include "tools/almcfg/finding.h"

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
  virtual void End(const LoadedFiles& files) = 0;
};

/// One entry a line: columns 1 to 5 and FILE:LINE, separated by TABs, below a heading that starts with "#".
/// Bytes are written as they are, save to a terminal, which gets them printable.
std::unique_ptr<TableWriter> MakeTsvWriter(std::ostream& out, bool isTerminal);

/// One JSON object with a list of entries.
std::unique_ptr<TableWriter> MakeJsonWriter(std::ostream& out);

/// A page of HTML that needs nothing from elsewhere. Each of the `findings` about `files` (borrowed; they
/// have been loaded) is shown with the entries of its line, or in a row of its own: where the line stands
/// when `inFileOrder`, else at the end.
std::unique_ptr<TableWriter> MakeHtmlWriter(std::ostream& out, const LoadedFiles& files,
                                            std::vector<PlacedFinding> findings, bool inFileOrder);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_TABLE_WRITER_H_
