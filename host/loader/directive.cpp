// Parses one directive. No state, the result is a copy; any thread may call.

#include "host/loader/directive.h"

#include <algorithm>
#include <set>

#include "host/base/problem.h"

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

/// Whether ACE's scanner reads `name` as a name: an identifier that is none of its keywords.
bool IsPlainName(const std::string& name) {
  constexpr const char* kBytes = "_0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  const std::set<std::string> keywords{"dynamic", "static", "suspend",        "resume", "remove",  "stream",
                                       "STREAM",  "Module", "Service_Object", "active", "inactive"};
  return !name.empty() && (name[0] < '0' || name[0] > '9') &&
         name.find_first_not_of(kBytes) == std::string::npos && keywords.count(name) == 0;
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

void RequireScannable(const std::string& name, const std::string& directive) {
  constexpr std::size_t kMost = 4094;
  if (name.size() > kMost) {
    throw UsageError("'" + name + "' is too long for a name; ACE's limit is " + std::to_string(kMost) +
                     " bytes");
  }
  if (!IsPlainName(name)) {
    throw UsageError(
        name +
        ": not a valid bundle name; ACE accepts letters, digits and '_', not a digit first, and none of "
        "its keywords, such as 'active'");
  }
  const std::size_t open = directive.find_first_of("\"'");
  const std::size_t size = open == std::string::npos ? 0 : directive.rfind(directive[open]) - open - 1;
  if (size > kMost) {
    throw UsageError("the arguments take " + std::to_string(size) + " bytes in a directive; ACE's limit is " +
                     std::to_string(kMost) + "; have the bundle read them from a file");
  }
}

}  // namespace host
