// Compares a key with the keys in force. The table is borrowed; neighbours refer to its texts. Any thread
// may call.

#include "tools/almcfg/query/nearest.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "src/text/strfunctions.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

using NS_ASCII::AlarmKey;

constexpr std::size_t kSlightly = 1;
constexpr std::size_t kWholly = 10;
constexpr std::size_t kFarthest = 2 * kWholly - 1;  // One column wholly, the others slightly.

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool IsSameButCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

bool IsSameNumber(std::string_view wanted, std::string_view present) {
  const std::string meant = MeantNumber(present);
  return !meant.empty() && meant == wanted;
}

/// Why a slightly different text is not found; empty when the texts differ altogether.
std::string DescribeSlip(int column, std::string_view wanted, std::string_view present) {
  if (const std::optional<std::string> inner = Unquoted(present)) {
    return *inner == wanted ? "in quotation marks" : "";
  }
  const std::string_view a = NS_ASCII::TrimView(wanted);
  const std::string_view b = NS_ASCII::TrimView(present);
  if (column == 4 && IsSameNumber(wanted, present)) {
    return "the same number, written in a way that is never found";
  }
  if (IsSameButCase(wanted, present)) {
    return "another case";
  }
  if (a == b) {
    return "a blank at the edge";
  }
  return IsSameButCase(a, b) ? "another case and a blank at the edge" : "";
}

/// How one column differs, and by how much.
std::size_t CompareColumn(int column, std::string_view wanted, std::string_view present,
                          std::string& difference) {
  if (wanted == present) {
    return 0;
  }
  const std::string slip = DescribeSlip(column, wanted, present);
  difference += difference.empty() ? "" : "; ";
  difference += "column " + std::to_string(column) + " is " + Quoted(present) + ", not " + Quoted(wanted);
  difference += slip.empty() ? "" : " (" + slip + ")";
  return slip.empty() ? kWholly : kSlightly;
}

}  // namespace

Neighbour Compare(const AlarmKey& wanted, const AlarmKey& present) {
  Neighbour neighbour;
  std::string& difference = neighbour.difference;
  neighbour.distance = CompareColumn(1, wanted.key1, present.key1, difference);
  neighbour.distance += CompareColumn(2, wanted.key2, present.key2, difference);
  if (wanted.key3 == present.numKey && wanted.numKey == present.key3) {
    difference += difference.empty() ? "" : "; ";
    difference += "columns 3 and 4 are swapped";
    neighbour.distance += kSlightly;
  } else {
    neighbour.distance += CompareColumn(3, wanted.key3, present.key3, difference);
    neighbour.distance += CompareColumn(4, wanted.numKey, present.numKey, difference);
  }
  if (neighbour.distance > kFarthest) {
    difference.clear();
  }
  return neighbour;
}

std::vector<Neighbour> FindNearest(const LoadedTable& table, const AlarmKey& wanted, std::size_t count) {
  std::vector<Neighbour> nearest;
  const auto isNearer = [](const Neighbour& a, const Neighbour& b) { return a.distance < b.distance; };
  table.ForEach([&](const Entry& entry) {
    Neighbour neighbour = Compare(wanted, entry.key);
    if (neighbour.difference.empty() || (nearest.size() == count && !isNearer(neighbour, nearest.back()))) {
      return;
    }
    neighbour.place = entry.place;
    nearest.insert(std::upper_bound(nearest.begin(), nearest.end(), neighbour, isNearer),
                   std::move(neighbour));
    nearest.resize(std::min(nearest.size(), count));
  });
  // Keys that differ by a typing mistake hide those with an altogether different column.
  const auto other = std::find_if(nearest.begin(), nearest.end(),
                                  [](const Neighbour& neighbour) { return neighbour.distance >= kWholly; });
  if (other != nearest.begin()) {
    nearest.erase(other, nearest.end());
  }
  return nearest;
}

}  // namespace almcfg
