#include "host/svc_conf.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "host/problem.h"

namespace host {
namespace {

/// A directive being gathered from lines.
struct GatheredDirective {
  std::string text;
  int firstLine = 0;
  int openBraces = 0;
  char openQuote = '\0';

  bool IsBlank() const { return text.find_first_not_of(" \t\r\n") == std::string::npos; }
  bool IsOpen() const { return openBraces > 0 || openQuote != '\0'; }

  void Add(const std::string& line) {
    for (const char c : line) {
      if (openQuote != '\0') {
        openQuote = c == openQuote ? '\0' : openQuote;
      } else if (c == '#') {
        break;
      } else if (c == '"' || c == '\'') {
        openQuote = c;
      } else if (c == '{') {
        ++openBraces;
      } else if (c == '}') {
        --openBraces;
      }
      text += c;
    }
    text += '\n';
  }
};

void Process(Loader& loader, const std::string& file, const GatheredDirective& directive) {
  const std::string place = file + ":" + std::to_string(directive.firstLine) + ": ";
  if (directive.text.find('\0') != std::string::npos) {
    throw Failure(place + "a NUL byte; this is a file of text lines");
  }
  if (directive.IsOpen()) {
    throw Failure(place + "the directive has a brace or a quote that is not closed");
  }
  try {
    loader.Process(directive.text.substr(0, directive.text.find_last_not_of(" \t\r\n") + 1));
  } catch (const std::exception& problem) {
    throw Failure(place + problem.what());
  }
}

}  // namespace

void ProcessSvcConf(Loader& loader, const std::string& file) {
  std::ifstream stream(file);
  if (!stream) {
    throw Failure(file + ": cannot be opened: " + std::generic_category().message(errno));
  }
  GatheredDirective directive;
  int number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (directive.IsBlank()) {
      directive = {};
      directive.firstLine = number;
    }
    directive.Add(line);
    if (!directive.IsOpen() && !directive.IsBlank()) {
      Process(loader, file, directive);
      directive = {};
    }
  }
  if (stream.bad()) {
    throw Failure(file + ": cannot be read");
  }
  if (!directive.IsBlank()) {
    Process(loader, file, directive);
  }
}

}  // namespace host
