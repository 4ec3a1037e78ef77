#include "tools/almcfg/nearest.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "src/strfunctions.h"
#include "tools/almcfg/visible.h"

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
  std::string_view digits = NS_ASCII::TrimView(present);
  if (!digits.empty() && digits.front() == '+') {
    digits.remove_prefix(1);
  }
  int a = 0;
  int b = 0;
  const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), b).ptr;
  std::from_chars(wanted.data(), wanted.data() + wanted.size(), a);
  return !digits.empty() && end == digits.data() + digits.size() && a == b;
}

/// How one column differs, and by how much.
std::size_t CompareColumn(int column, std::string_view wanted, std::string_view present,
                          std::string& difference) {
  if (wanted == present) {
    return 0;
  }
  const std::string_view a = NS_ASCII::TrimView(wanted);
  const std::string_view b = NS_ASCII::TrimView(present);
  std::string how;
  if (column == 4 && IsSameNumber(wanted, present)) {
    how = "the same number, written in a way that is never found";
  } else if (IsSameButCase(wanted, present)) {
    how = "another case";
  } else if (a == b) {
    how = "a blank at the edge";
  } else if (IsSameButCase(a, b)) {
    how = "another case and a blank at the edge";
  }
  difference += difference.empty() ? "" : "; ";
  difference += "column " + std::to_string(column) + " is " + Quoted(present) + ", not " + Quoted(wanted);
  difference += how.empty() ? "" : " (" + how + ")";
  return how.empty() ? kWholly : kSlightly;
}

}  // namespace

Neighbour Compare(const AlarmKey& wanted, const AlarmKey& present) {
  Neighbour neighbour;
  std::string& difference = neighbour.difference;
  neighbour.distance = CompareColumn(1, wanted.key1, present.key1, difference);
  neighbour.distance += CompareColumn(2, wanted.key2, present.key2, difference);
  if (wanted.key3 == present.numKey && wanted.numKey == present.key3) {
    difference += difference.empty() ? "" : "; ";
    difference += "columns 3 and 4 are exchanged";
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

std::vector<Neighbour> FindNearest(const DeskLoad& load, const AlarmKey& wanted, std::size_t count) {
  std::vector<Neighbour> nearest;
  const auto isNearer = [](const Neighbour& a, const Neighbour& b) { return a.distance < b.distance; };
  load.ForEachInFileOrder([&](const Entry& entry) {
    Neighbour neighbour = Compare(wanted, entry.key);
    if (neighbour.difference.empty() || (nearest.size() == count && !isNearer(neighbour, nearest.back()))) {
      return;
    }
    neighbour.place = entry.place;
    nearest.insert(std::upper_bound(nearest.begin(), nearest.end(), neighbour, isNearer),
                   std::move(neighbour));
    nearest.resize(std::min(nearest.size(), count));
  });
  // Beside a slip of the pen, a key that just has another name is noise.
  const auto other = std::find_if(nearest.begin(), nearest.end(),
                                  [](const Neighbour& neighbour) { return neighbour.distance >= kWholly; });
  if (other != nearest.begin()) {
    nearest.erase(other, nearest.end());
  }
  return nearest;
}

}  // namespace almcfg
