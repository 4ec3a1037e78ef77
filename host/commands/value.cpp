#include "host/value.h"

#include <ostream>

#include "host/config_items.h"
#include "host/problem.h"
#include "host/text_escape.h"

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

ListMap ParseMap(const Parameter& parameter, const std::string& argument) {
  ListMap map;
  if (argument.empty()) {
    return map;
  }
  for (const std::string& entry : SplitAt(argument, ',')) {
    const std::size_t equals = entry.find('=');
    const auto [place, isNew] = map.try_emplace(UnescapeBytes(entry.substr(0, equals)));
    if (!isNew) {
      Reject(parameter, argument, "not a map: a name stands in it twice");
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
      Reject(parameter, argument, "no integer from -2147483648 to 2147483647");
    case Kind::kMap:
      return ParseMap(parameter, argument);
    default:
      if (argument.empty() && !parameter.mayBeEmpty) {
        Reject(parameter, argument, "empty, and the operation would never end");
      }
      return UnescapeBytes(argument);
  }
}

void PrintValue(std::ostream& out, const std::string& label, const Value& value, std::size_t indent) {
  std::visit(Printer(out, label, indent), value);
}

}  // namespace host
