#ifndef HOST_BASE_TABLE_H_
#define HOST_BASE_TABLE_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

/// A listing, printed as text or JSON. Each row has one text per column.
/// Plain value. Any thread may call the functions below with a stream of its own.
struct Table {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

/// Prints a line of column names, then the rows; every column is as wide as its widest text. Texts are
/// escaped by `EscapeBytes`; blanks at the ends of lines are removed.
void PrintTable(std::ostream& out, const Table& table);

/// Prints a JSON array with one object per row, each on its own line: the keys are the column names in lower
/// case, the values the texts, escaped by `EscapeBytes`.
void PrintJson(std::ostream& out, const Table& table);

}  // namespace host

#endif  // HOST_BASE_TABLE_H_
