// Finds the name of the smallest edit distance. No state; any thread may call.

#include "host/base/suggest.h"

#include <algorithm>

namespace host {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Edit distance that ignores case and counts a swap of two neighbours as 1.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      std::size_t& best = rows[i][j];
      if (i == 0 || j == 0) {
        best = i + j;
        continue;
      }
      const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
      best = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) && Lower(a[i - 2]) == Lower(b[j - 1])) {
        best = std::min(best, rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

}  // namespace

std::string DidYouMean(const std::string& word, const std::vector<std::string>& names,
                       const std::string& otherwise) {
  constexpr std::size_t kLongestSlip = 100;  // Bounds the time: callers pass words of any length.
  if (word.size() > kLongestSlip) {
    return otherwise;
  }
  const std::string* nearest = nullptr;
  std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;
  for (const std::string& name : names) {
    if (name.size() >= word.size() + least || word.size() >= name.size() + least) {
      continue;  // The distance is at least the difference in length.
    }
    const std::size_t distance = Distance(word, name);
    if (distance < least) {
      least = distance;
      nearest = &name;
    }
  }
  return nearest == nullptr ? otherwise : "; did you mean " + *nearest + "?";
}

}  // namespace host
