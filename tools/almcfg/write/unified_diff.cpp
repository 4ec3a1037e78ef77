// Writes differences to a borrowed stream. No state. One thread at a time for each stream.

#include "tools/almcfg/write/unified_diff.h"

#include <algorithm>
#include <ostream>
#include <string_view>

#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

constexpr std::size_t kContext = 3;

class DiffWriter {
 public:
  DiffWriter(std::ostream& out, const std::vector<std::string>& original,
             const std::vector<std::vector<std::string>>& replacements, bool isTerminal)
      : out_(out), original_(original), replacements_(replacements), isTerminal_(isTerminal) {}

  void Write(const std::string& name) {
    for (std::size_t line = FindChange(0); line < original_.size();) {
      if (newLines_ == 0 && next_ == 0) {
        // A TAB ends a name with blanks, which patch(1) would otherwise cut at the first of them.
        const char* const nameEnd = name.find(' ') == std::string::npos ? "\n" : "\t\n";
        out_ << "--- " << Printable(name) << nameEnd << "+++ " << Printable(name) << nameEnd;
      }
      std::size_t end = line + 1;
      std::size_t change = FindChange(end);
      while (change < original_.size() && change - end <= 2 * kContext) {
        end = change + 1;
        change = FindChange(end);
      }
      WriteHunk(line - std::min(line, kContext), std::min(end + kContext, original_.size()));
      line = change;
    }
  }

 private:
  [[nodiscard]] bool IsChanged(std::size_t line) const {
    return replacements_[line].size() != 1 || replacements_[line][0] != original_[line];
  }

  [[nodiscard]] std::size_t FindChange(std::size_t line) const {
    while (line < original_.size() && !IsChanged(line)) {
      ++line;
    }
    return line;
  }

  void WriteHunk(std::size_t first, std::size_t end) {
    for (; next_ < first; ++next_) {
      newLines_ += replacements_[next_].size();
    }
    std::size_t count = 0;
    for (std::size_t line = first; line < end; ++line) {
      count += replacements_[line].size();
    }
    // A range without lines is numbered by the line before it.
    out_ << "@@ -" << first + 1 << ',' << end - first << " +" << newLines_ + (count == 0 ? 0 : 1) << ','
         << count << " @@\n";
    while (next_ < end) {
      if (!IsChanged(next_)) {
        WriteLine(' ', original_[next_]);
        ++newLines_;
        ++next_;
        continue;
      }
      const std::size_t start = next_;
      for (; next_ < end && IsChanged(next_); ++next_) {
        WriteLine('-', original_[next_]);
      }
      for (std::size_t line = start; line < next_; ++line) {
        for (const std::string& text : replacements_[line]) {
          WriteLine('+', text);
          ++newLines_;
        }
      }
    }
  }

  void WriteLine(char mark, std::string_view line) {
    const bool hasFeed = !line.empty() && line.back() == '\n';
    line.remove_suffix(hasFeed ? 1 : 0);
    out_ << mark;
    if (isTerminal_) {
      out_ << Marked(line);
    } else {
      out_ << line;
    }
    out_ << (hasFeed ? "\n" : "\n\\ No newline at end of file\n");
  }

  std::ostream& out_;
  const std::vector<std::string>& original_;
  const std::vector<std::vector<std::string>>& replacements_;
  bool isTerminal_;
  std::size_t next_ = 0;      // The first original line that is not written.
  std::size_t newLines_ = 0;  // New lines before it.
};

}  // namespace

void WriteUnifiedDiff(std::ostream& out, const std::string& name, const std::vector<std::string>& original,
                      const std::vector<std::vector<std::string>>& replacements, bool isTerminal) {
  DiffWriter(out, original, replacements, isTerminal).Write(name);
}

}  // namespace almcfg
