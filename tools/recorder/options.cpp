// Parses the arguments of the recorder's directive. No state; the result belongs to the caller. Any thread
// may call.

#include "tools/recorder/options.h"

#include <charconv>
#include <set>
#include <string_view>

namespace recorder {
namespace {

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::uint64_t ParseNumber(std::string_view option, std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number == 0) {
    throw SetupError(std::string(option) + ' ' + Quoted(text) + " is not a positive integer");
  }
  return number;
}

OperationSet ParseOperations(std::string_view names) {
  OperationSet set;
  while (true) {
    const std::size_t comma = names.find(',');
    const std::string_view name = names.substr(0, comma);
    const auto operation = recording_format::FindOperation(name);
    if (!operation) {
      throw SetupError("--operations: the interface has no operation " + Quoted(name));
    }
    set.set(static_cast<std::size_t>(*operation));
    if (comma == std::string_view::npos) {
      return set;
    }
    names.remove_prefix(comma + 1);
  }
}

void Apply(std::string_view option, std::string_view value, Options& options) {
  if (option == "--output") {
    options.output = value;
  } else if (option == "--operations") {
    options.operations = ParseOperations(value);
  } else if (option == "--every") {
    options.every = ParseNumber(option, value);
  } else if (option == "--limit") {
    options.limit = ParseNumber(option, value);
  } else {
    throw SetupError("unknown argument " + Quoted(option) +
                     "; there are --output FILE, --operations NAME,..., --every N and --limit BYTES");
  }
}

}  // namespace

Options ParseOptions(int argc, const char* const argv[]) {
  Options options;
  options.operations.set();
  std::set<std::string_view> seen;
  for (int at = 0; at < argc; at += 2) {
    const std::string_view option = argv[at];
    if (!seen.insert(option).second) {
      throw SetupError(std::string(option) + " is given twice");
    }
    if (at + 1 == argc && option.substr(0, 2) == "--") {
      throw SetupError(std::string(option) + " needs a value");
    }
    Apply(option, at + 1 < argc ? argv[at + 1] : "", options);
  }
  if (options.output.empty()) {
    throw SetupError("no file to write: give --output FILE");
  }
  return options;
}

}  // namespace recorder
