// Parses one directive. No state, the result is a copy; any thread may call.

#include "host/loader/directive.h"

#include <algorithm>

namespace host {
namespace {

constexpr const char* kBlanks = " \t\r\n";

/// Removes leading blanks and the text up to one of `ends` from `rest` and returns that text.
std::string Take(std::string& rest, const char* ends) {
  rest.erase(0, rest.find_first_not_of(kBlanks));
  std::string taken = rest.substr(0, rest.find_first_of(ends));
  rest.erase(0, taken.size());
  return taken;
}

/// Removes leading blanks and then `text` from `rest`. Returns false when `rest` does not start with `text`
/// after its blanks; only the blanks are then removed.
bool TakeText(std::string& rest, const std::string& text) {
  rest.erase(0, rest.find_first_not_of(kBlanks));
  if (rest.compare(0, text.size(), text) != 0) {
    return false;
  }
  rest.erase(0, text.size());
  return true;
}

/// Parses what may follow a factory: `active` or `inactive`, then a string in quotes; each is optional.
/// Returns false when `rest` is malformed.
bool ParseEndOfDynamic(std::string rest, Directive& directive) {
  if (!TakeText(rest, "active")) {
    directive.active = !TakeText(rest, "inactive");
  }
  rest.erase(0, rest.find_first_not_of(kBlanks));
  if (rest.empty()) {
    return true;
  }
  const std::size_t close =
      rest.front() == '"' || rest.front() == '\'' ? rest.find(rest.front(), 1) : std::string::npos;
  if (close == std::string::npos || rest.find_first_not_of(kBlanks, close + 1) != std::string::npos) {
    return false;
  }
  directive.parameters = rest.substr(1, close - 1);
  return true;
}

}  // namespace

Directive ParseDirective(const std::string& text) {
  Directive directive;
  std::string rest = text;
  directive.verb = Take(rest, kBlanks);
  directive.name = Take(rest, kBlanks);
  directive.trailing = rest.substr(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  if (directive.verb != "dynamic" || !TakeText(rest, "Service_Object") || !TakeText(rest, "*")) {
    return directive;
  }
  const std::string library = Take(rest, " \t\r\n:");
  if (TakeText(rest, ":")) {
    const std::string factory = Take(rest, " \t\r\n(");
    if (TakeText(rest, "(") && TakeText(rest, ")") && ParseEndOfDynamic(rest, directive)) {
      directive.library = library;
      directive.factory = factory;
    }
  }
  return directive;
}

}  // namespace host
