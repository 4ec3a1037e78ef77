// Passes the directives of a file to a borrowed loader. One thread at a time.

#include "host/loader/svc_conf.h"

#include <string_view>

#include "host/base/problem.h"
#include "host/base/text_lines.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t\r";

/// The line without its comment and surrounding blanks. Throws `LineError` for a brace or an open quote.
std::string DirectiveIn(std::string_view line) {
  char quote = '\0';
  std::size_t quoteAt = 0;
  std::size_t end = 0;
  for (; end < line.size(); ++end) {
    const char c = line[end];
    if (quote != '\0') {
      quote = c == quote ? '\0' : quote;
    } else if (c == '#') {
      break;
    } else if (c == '"' || c == '\'') {
      quote = c;
      quoteAt = end;
    } else if (c == '{' || c == '}') {
      throw LineError(end + 1, std::string("unexpected '") + c + "'; stream directives are not supported");
    }
  }
  if (quote != '\0') {
    throw LineError(quoteAt + 1, std::string("the quote ") + quote + " is not closed");
  }
  const std::string_view text = line.substr(0, end);
  const std::size_t start = text.find_first_not_of(kBlanks);
  return start == std::string_view::npos
             ? ""
             : std::string(text.substr(start, text.find_last_not_of(kBlanks) + 1 - start));
}

}  // namespace

void ProcessSvcConf(Loader& loader, const std::string& file) {
  TextLines lines(file);
  for (std::string line; lines.Next(line);) {
    try {
      if (const std::string directive = DirectiveIn(line); !directive.empty()) {
        loader.Process(directive);
      }
    } catch (const LineError& problem) {
      lines.Fail(problem.Column() - 1, problem.Reason());
    } catch (const std::exception& problem) {
      lines.Fail(line.find_first_not_of(kBlanks), problem.what());
    }
  }
}

}  // namespace host
