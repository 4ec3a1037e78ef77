// Compares a key with the keys in force. The table is borrowed; neighbours refer to its texts. Any thread
// may call.

#include "tools/almcfg/query/nearest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
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

using Columns = std::array<std::string_view, 4>;

Columns ColumnsOf(const AlarmKey& key) { return {key.key1, key.key2, key.key3, key.numKey}; }

bool AreSwapped(const AlarmKey& wanted, const AlarmKey& present) {
  return wanted.key3 == present.numKey && wanted.numKey == present.key3;
}

/// Why a slightly different text is not found; empty when the texts differ altogether.
std::string_view DescribeSlip(std::size_t column, std::string_view wanted, std::string_view present) {
  if (const std::optional<std::string> inner = Unquoted(present)) {
    return *inner == wanted ? "in quotation marks" : "";
  }
  const std::string_view a = NS_ASCII::TrimView(wanted);
  const std::string_view b = NS_ASCII::TrimView(present);
  if (column == 3 && IsSameNumber(wanted, present)) {
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

std::size_t DistanceOf(const AlarmKey& wanted, const AlarmKey& present) {
  const Columns a = ColumnsOf(wanted);
  const Columns b = ColumnsOf(present);
  const bool areSwapped = AreSwapped(wanted, present);
  std::size_t distance = areSwapped ? kSlightly : 0;
  for (std::size_t i = 0; i < (areSwapped ? 2 : a.size()); ++i) {
    if (a[i] != b[i]) {
      distance += DescribeSlip(i, a[i], b[i]).empty() ? kWholly : kSlightly;
    }
  }
  return distance;
}

std::string Describe(const AlarmKey& wanted, const AlarmKey& present) {
  const Columns a = ColumnsOf(wanted);
  const Columns b = ColumnsOf(present);
  const bool areSwapped = AreSwapped(wanted, present);
  std::string text;
  for (std::size_t i = 0; i < (areSwapped ? 2 : a.size()); ++i) {
    if (a[i] != b[i]) {
      const std::string_view slip = DescribeSlip(i, a[i], b[i]);
      text += text.empty() ? "" : "; ";
      text += "column " + std::to_string(i + 1) + " is " + Quoted(b[i]) + ", not " + Quoted(a[i]);
      text += slip.empty() ? "" : " (" + std::string(slip) + ")";
    }
  }
  return areSwapped ? text + (text.empty() ? "" : "; ") + "columns 3 and 4 are swapped" : text;
}

/// A number for each column. Columns that are equal or differ slightly have the same one.
using Fingerprint = std::array<std::uint32_t, 4>;

std::uint32_t FingerprintOf(std::string_view column) {
  std::string letters;
  for (const char c : column) {
    if (c != '"') {
      letters += Lower(c);
    }
  }
  const std::string_view text = NS_ASCII::TrimView(letters);
  const std::string number = MeantNumber(text);
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(number.empty() ? text : number));
}

Fingerprint FingerprintOf(const AlarmKey& key) {
  Fingerprint print{};
  const Columns columns = ColumnsOf(key);
  std::transform(columns.begin(), columns.end(), print.begin(),
                 [](std::string_view column) { return FingerprintOf(column); });
  return print;
}

/// The wanted keys with the nearest keys visited so far.
class Search {
 public:
  Search(const std::vector<AlarmKey>& wanted, std::size_t count)
      : wanted_(wanted), count_(count), nearest_(wanted.size()) {
    for (const AlarmKey& key : wanted_) {
      prints_.push_back(FingerprintOf(key));
    }
  }

  void Visit(const Entry& entry) {
    const Fingerprint print = FingerprintOf(entry.key);
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      if (const std::size_t least = LeastDistance(prints_[i], print); least <= kFarthest) {
        Offer(entry, least, wanted_[i], nearest_[i]);
      }
    }
  }

  std::vector<std::vector<Neighbour>> Take() {
    for (std::vector<Neighbour>& nearest : nearest_) {
      // Keys that differ by a typing mistake hide those with an altogether different column.
      const auto other = std::find_if(nearest.begin(), nearest.end(), [](const Neighbour& neighbour) {
        return neighbour.distance >= kWholly;
      });
      if (other != nearest.begin()) {
        nearest.erase(other, nearest.end());
      }
    }
    return std::move(nearest_);
  }

 private:
  static std::size_t LeastDistance(const Fingerprint& a, const Fingerprint& b) {
    const std::size_t firstTwo = (a[0] != b[0] ? 1U : 0U) + (a[1] != b[1] ? 1U : 0U);
    const std::size_t lastTwo = (a[2] != b[2] ? 1U : 0U) + (a[3] != b[3] ? 1U : 0U);
    const bool maySwap = a[2] == b[3] && a[3] == b[2];
    return (firstTwo + (maySwap ? 0 : lastTwo)) * kWholly;
  }

  void Offer(const Entry& entry, std::size_t least, const AlarmKey& wanted,
             std::vector<Neighbour>& nearest) const {
    const auto isNearer = [](const Neighbour& a, const Neighbour& b) { return a.distance < b.distance; };
    const auto isTooFar = [&](std::size_t distance) {
      return distance > kFarthest || (nearest.size() == count_ && distance >= nearest.back().distance);
    };
    if (isTooFar(least)) {
      return;
    }
    Neighbour neighbour{DistanceOf(wanted, entry.key), entry.place, ""};
    if (!isTooFar(neighbour.distance)) {
      neighbour.difference = Describe(wanted, entry.key);
      nearest.insert(std::upper_bound(nearest.begin(), nearest.end(), neighbour, isNearer),
                     std::move(neighbour));
      nearest.resize(std::min(nearest.size(), count_));
    }
  }

  const std::vector<AlarmKey>& wanted_;
  const std::size_t count_;
  std::vector<Fingerprint> prints_;
  std::vector<std::vector<Neighbour>> nearest_;
};

}  // namespace

std::vector<std::vector<Neighbour>> FindNearest(const LoadedTable& table, const std::vector<AlarmKey>& wanted,
                                                std::size_t count) {
  Search search(wanted, count);
  table.ForEach([&search](const Entry& entry) { search.Visit(entry); });
  return search.Take();
}

}  // namespace almcfg
