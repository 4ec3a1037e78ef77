// Prints listings as aligned columns or as JSON. No state; any thread may call with a stream of its own.

#include "host/base/table.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

#include "host/base/text_escape.h"

namespace host {
namespace {

using Row = std::vector<std::string>;

void PrintRow(std::ostream& out, const Row& row, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t at = 0; at < row.size(); ++at) {
    const std::string text = EscapeBytes(row[at]);
    line += text;
    if (at + 1 < row.size()) {
      line.append(widths[at] - text.size() + 2, ' ');
    }
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

void PrintTable(std::ostream& out, const Table& table) {
  std::vector<std::size_t> widths(table.columns.size());
  const auto widen = [&widths](const Row& row) {
    for (std::size_t at = 0; at < row.size(); ++at) {
      widths.at(at) = std::max(widths.at(at), EscapeBytes(row[at]).size());
    }
  };
  widen(table.columns);
  std::for_each(table.rows.begin(), table.rows.end(), widen);
  PrintRow(out, table.columns, widths);
  for (const Row& row : table.rows) {
    PrintRow(out, row, widths);
  }
}

void PrintJson(std::ostream& out, const Table& table) {
  out << '[';
  const char* separator = "\n  ";
  for (const Row& row : table.rows) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (std::size_t at = 0; at < row.size(); ++at) {
      object[Lower(table.columns.at(at))] = EscapeBytes(row[at]);
    }
    out << separator << object.dump();
    separator = ",\n  ";
  }
  out << (table.rows.empty() ? "]\n" : "\n]\n");
}

}  // namespace host
