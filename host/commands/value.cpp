// Parses and prints arguments and out values. No state, the values are copies; any thread may call.

#include "host/commands/value.h"

#include <ostream>

#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/platform/config_items.h"

namespace host {
namespace {

using NS_ASCII::ListMap;

std::vector<std::string> SplitAt(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = text.find(separator, start)) != std::string::npos; start = end + 1) {
    pieces.push_back(text.substr(start, end - start));
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

[[noreturn]] void Reject(const Parameter& parameter, const std::string& argument, const char* expected) {
  throw UsageError(parameter.name + ": '" + EscapeBytes(argument) + "' is " + expected);
}

/// Throws for a "\x" without two hexadecimal digits after it.
void RequireWholeEscapes(const Parameter& parameter, const std::string& argument) {
  constexpr const char* kDigits = "0123456789abcdefABCDEF";
  for (std::size_t at = 0; (at = argument.find("\\x", at)) != std::string::npos; at += 2) {
    if (argument.find_first_not_of(kDigits, at + 2) < at + 4 || argument.size() < at + 4) {
      throw UsageError(parameter.name + ": '" + argument.substr(at, 4) +
                       "' is not a byte; write \\x and two hexadecimal digits, or \\x5c for a backslash");
    }
  }
}

ListMap ParseMap(const Parameter& parameter, const std::string& argument) {
  ListMap map;
  if (argument.empty()) {
    return map;
  }
  for (const std::string& entry : SplitAt(argument, ',')) {
    const std::size_t equals = entry.find('=');
    const auto [place, isNew] = map.try_emplace(UnescapeBytes(entry.substr(0, equals)));
    if (!isNew) {
      Reject(parameter, argument, "not a map: it contains a name twice");
    }
    if (equals == std::string::npos) {
      continue;
    }
    for (const std::string& item : SplitAt(entry.substr(equals + 1), '|')) {
      place->second.push_back(UnescapeBytes(item));
    }
  }
  return map;
}

class Printer {
 public:
  Printer(std::ostream& out, const std::string& label, std::size_t indent)
      : out_(out), label_(label), margin_(indent, ' ') {}

  void operator()(bool value) const { Line(value ? "true" : "false"); }
  void operator()(std::int64_t value) const { Line(std::to_string(value)); }
  void operator()(const std::string& value) const { Line(EscapeValue(value)); }

  void operator()(const TextList& list) const {
    out_ << margin_ << label_ << ":\n";
    for (const std::string& item : list) {
      out_ << margin_ << "  " << EscapeValue(item) << '\n';
    }
  }

  void operator()(const ListMap& map) const {
    out_ << margin_ << label_ << ":\n";
    for (const auto& [name, items] : map) {
      Printer(out_, EscapeValue(name), margin_.size() + 2)(items);
    }
  }

 private:
  void Line(const std::string& value) const {
    out_ << margin_ << label_ << (value.empty() ? ":" : ": ") << value << '\n';
  }

  std::ostream& out_;
  const std::string& label_;
  std::string margin_;
};

}  // namespace

Value ParseValue(const Parameter& parameter, const std::string& argument) {
  switch (parameter.kind) {
    case Kind::kInteger:
      if (const auto number = ParseInt(argument)) {
        return std::int64_t{*number};
      }
      Reject(parameter, argument, "not an integer from -2147483648 to 2147483647");
    case Kind::kMap:
      RequireWholeEscapes(parameter, argument);
      return ParseMap(parameter, argument);
    default:
      if (argument.empty() && !parameter.mayBeEmpty) {
        Reject(parameter, argument, "empty, and the operation would fill the memory");
      }
      RequireWholeEscapes(parameter, argument);
      return UnescapeBytes(argument);
  }
}

void PrintValue(std::ostream& out, const std::string& label, const Value& value, std::size_t indent) {
  std::visit(Printer(out, label, indent), value);
}

}  // namespace host
