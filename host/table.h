#ifndef HOST_TABLE_H_
#define HOST_TABLE_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

/// A listing: column names and rows of as many texts.
struct Table {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

/// Prints the table with a line of column names and every column as wide as its widest text. Texts are
/// escaped.
void PrintTable(std::ostream& out, const Table& table);

/// Prints the table as one JSON array of objects, a line each, with the column names in lower case as keys
/// and the texts, escaped, as values.
void PrintJson(std::ostream& out, const Table& table);

}  // namespace host

#endif  // HOST_TABLE_H_
