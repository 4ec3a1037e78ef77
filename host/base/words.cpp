// Splits command lines into words. No state, the results are copies; any thread may call.

#include "host/base/words.h"

#include "host/base/problem.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kEndsPiece = " \t\r'\"";

/// Appends the word at `at` to `word` and returns the position after it.
std::size_t TakeWord(std::string_view line, std::size_t at, std::string& word) {
  while (at < line.size() && kBlanks.find(line[at]) == std::string_view::npos) {
    const bool quoted = line[at] == '\'' || line[at] == '"';
    const std::size_t start = quoted ? at + 1 : at;
    std::size_t end = quoted ? line.find(line[at], start) : line.find_first_of(kEndsPiece, start);
    if (end == std::string_view::npos) {
      if (quoted) {
        throw LineError(at + 1, std::string("the quote ") + line[at] + " is not closed");
      }
      end = line.size();
    }
    word += line.substr(start, end - start);
    at = quoted ? end + 1 : end;
  }
  return at;
}

}  // namespace

Words SplitWords(std::string_view line, std::vector<std::size_t>* columns) {
  Words words;
  for (std::size_t at = 0;;) {
    at = line.find_first_not_of(kBlanks, at);
    if (at == std::string_view::npos || line[at] == '#') {
      return words;
    }
    if (columns != nullptr) {
      columns->push_back(at + 1);
    }
    at = TakeWord(line, at, words.emplace_back());
  }
}

Words Rest(const Words& words, std::size_t from) {
  return {words.begin() + static_cast<std::ptrdiff_t>(from), words.end()};
}

}  // namespace host
