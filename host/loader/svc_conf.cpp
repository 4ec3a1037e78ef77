#include "host/svc_conf.h"

#include <string_view>

#include "host/problem.h"
#include "host/text_file.h"
#include "host/text_line.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t\r";

/// The line without a comment and the blanks around. Throws `LineError` for what no directive can hold.
std::string DirectiveIn(std::string_view line) {
  char quote = '\0';
  std::size_t quoteAt = 0;
  std::size_t end = 0;
  for (; end < line.size(); ++end) {
    const char c = line[end];
    if (c == '\0') {
      throw LineError(end + 1, kNulProblem);
    }
    if (quote != '\0') {
      quote = c == quote ? '\0' : quote;
    } else if (c == '#') {
      break;
    } else if (c == '"' || c == '\'') {
      quote = c;
      quoteAt = end;
    } else if (c == '{' || c == '}') {
      throw LineError(end + 1, "a brace; streams are not taken here");
    }
  }
  if (quote != '\0') {
    throw LineError(quoteAt + 1, std::string("the '") + quote + "' is not closed");
  }
  const std::string_view text = line.substr(0, end);
  const std::size_t start = text.find_first_not_of(kBlanks);
  return start == std::string_view::npos
             ? ""
             : std::string(text.substr(start, text.find_last_not_of(kBlanks) + 1 - start));
}

void ProcessLine(Loader& loader, std::string_view line) {
  if (line.size() > kLongestTextLine) {
    throw LineError(kLongestTextLine + 1, kLongLineProblem);
  }
  if (const std::string directive = DirectiveIn(line); !directive.empty()) {
    loader.Process(directive);
  }
}

}  // namespace

void ProcessSvcConf(Loader& loader, const std::string& file) {
  std::ifstream stream = OpenTextFile(file);
  int number = 0;
  for (std::string line; GetTextLine(stream, line);) {
    ++number;
    if (number == 1 && line.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
      FailAt(file, number, 1, kByteOrderMarkProblem);
    }
    try {
      ProcessLine(loader, line);
    } catch (const LineError& problem) {
      FailAt(file, number, problem.Column(), problem.Reason());
    } catch (const std::exception& problem) {
      FailAt(file, number, line.find_first_not_of(kBlanks) + 1, problem.what());
    }
  }
  if (stream.bad()) {
    throw Failure(file + ": cannot be read");
  }
}

}  // namespace host
