// The command replay: parses its options and prints the result of `ReplayCalls` as text or JSON. Main thread
// only.

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <ostream>

#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/base/table.h"
#include "host/base/text_escape.h"
#include "host/commands/command.h"
#include "host/commands/operations.h"
#include "host/commands/replay.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

/// Parses operation names separated by commas. Rejects text functions: recordings hold operations only.
std::vector<std::string> ParseNames(const std::string& text) {
  const std::vector<std::string> known = NamesOf(recording_format::kSignatures);
  std::vector<std::string> names;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(',', start), text.size());
    const std::string name = text.substr(start, end - start);
    if (std::find(known.begin(), known.end(), name) == known.end()) {
      throw UsageError("replay: --operations: no recorded operation '" + name + "'" +
                       DidYouMean(name, known, "; 'help call' lists them"));
    }
    names.push_back(name);
    start = end + 1;
  }
  return names;
}

std::size_t ParseCount(const std::string& text) {
  std::size_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw UsageError("replay: --max-differences: '" + text + "' is not an integer of 0 or more");
  }
  return count;
}

struct ReplayCommand {
  ReplayOptions options;
  bool asJson = false;
};

/// Parses the option at `at` and its value; returns the index of its last word.
std::size_t TakeOption(const Words& words, std::size_t at, ReplayCommand& command) {
  const std::string& word = words[at];
  const bool takesValue = word == "--operations" || word == "--max-differences";
  if (takesValue && at + 1 == words.size()) {
    throw UsageError("replay: " + word + " needs a value", at);
  }
  if (word == "--operations") {
    command.options.operations = AtWord(at + 1, [&] { return ParseNames(words[at + 1]); });
  } else if (word == "--max-differences") {
    command.options.maxDifferences = AtWord(at + 1, [&] { return ParseCount(words[at + 1]); });
  } else if (word == "--json") {
    command.asJson = true;
  } else if (word == "--compare-configuration") {
    command.options.compareConfiguration = true;
  } else if (command.options.file.empty() && word.compare(0, 2, "--") != 0) {
    command.options.file = word;
  } else {
    throw UsageError("replay: '" + word +
                         "' is not an argument of it; there are one FILE, --operations NAME,..., " +
                         "--max-differences N, --compare-configuration and --json",
                     at);
  }
  return takesValue ? at + 1 : at;
}

std::string Median(std::vector<std::int64_t> values) {
  if (values.empty()) {
    return "-";
  }
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return std::to_string(*middle);
}

Table OperationTable(const Replay& replay) {
  Table table{{"OPERATION", "CALLS", "SAME", "DIFFERENT", "NOT_COMPARED", "RECORDED_NS", "NOW_NS"}, {}};
  for (std::size_t at = 0; at < replay.operations.size(); ++at) {
    const OperationReplay& row = replay.operations[at];
    if (row.Calls() != 0) {
      table.rows.push_back({std::string(recording_format::kSignatures[at].name), std::to_string(row.Calls()),
                            std::to_string(row.same), std::to_string(row.different),
                            std::to_string(row.notCompared), Median(row.recorded), Median(row.replayed)});
    }
  }
  return table;
}

std::size_t CallsOf(const Replay& replay) {
  std::size_t calls = 0;
  for (const OperationReplay& row : replay.operations) {
    calls += row.Calls();
  }
  return calls;
}

void PrintAnswer(std::ostream& out, const char* label, const std::string& lines) {
  out << "  " << label << '\n';
  for (std::size_t start = 0; start < lines.size();) {
    const std::size_t end = lines.find('\n', start);
    out << "    " << lines.substr(start, end - start) << '\n';
    start = end + 1;
  }
}

void PrintText(std::ostream& out, const Replay& replay, const ReplayOptions& options) {
  if (!replay.isConfigurationSame) {
    const auto named = [](const std::string& cksum) { return cksum.empty() ? "none" : EscapeBytes(cksum); };
    out << "configuration: recorded with AlarmConfig.csv " << named(replay.recordedConfiguration) << ", now "
        << named(replay.currentConfiguration) << " (cksum)"
        << (options.compareConfiguration ? "" : "; GetAlmCfgValue is not compared") << '\n';
  }
  for (const std::string& problem : replay.reported) {
    out << EscapeControls(problem) << '\n';
  }
  if (replay.problems > replay.reported.size()) {
    out << replay.problems - replay.reported.size() << " more such lines\n";
  }
  for (const Difference& difference : replay.shown) {
    out << "record " << difference.record << ", line " << difference.line << ": call " << difference.call
        << '\n';
    PrintAnswer(out, "recorded", difference.recorded);
    PrintAnswer(out, "now", difference.now);
  }
  if (replay.differences > replay.shown.size()) {
    out << replay.differences - replay.shown.size() << " more differences\n";
  }
  PrintTable(out, OperationTable(replay));
}

void PrintReplayJson(std::ostream& out, const Replay& replay) {
  nlohmann::ordered_json report;
  report["calls"] = CallsOf(replay);
  report["different"] = replay.differences;
  report["configuration"] = {{"recorded", EscapeBytes(replay.recordedConfiguration)},
                             {"now", replay.currentConfiguration},
                             {"same", replay.isConfigurationSame}};
  report["skipped_lines"] = replay.problems;
  report["differences"] = nlohmann::ordered_json::array();
  for (const Difference& difference : replay.shown) {
    report["differences"].push_back({{"record", difference.record},
                                     {"line", difference.line},
                                     {"call", difference.call},
                                     {"recorded", difference.recorded},
                                     {"now", difference.now}});
  }
  const Table table = OperationTable(replay);
  report["operations"] = nlohmann::ordered_json::array();
  for (const std::vector<std::string>& row : table.rows) {
    nlohmann::ordered_json entry{{"operation", row[0]}};
    const std::vector<const char*> keys{"calls",        "same",        "different",
                                        "not_compared", "recorded_ns", "now_ns"};
    for (std::size_t at = 0; at < keys.size(); ++at) {
      entry[keys[at]] =
          row[at + 1] == "-" ? nlohmann::ordered_json() : nlohmann::ordered_json::parse(row[at + 1]);
    }
    report["operations"].push_back(std::move(entry));
  }
  out << report.dump(2) << '\n';
}

Action ParseReplay(const Words& words) {
  ReplayCommand command;
  for (std::size_t at = 1; at < words.size(); ++at) {
    at = TakeOption(words, at, command);
  }
  if (command.options.file.empty()) {
    throw UsageError("replay: a FILE is missing; give one that the recorder wrote");
  }
  return [command](Session& session) {
    NS_ASCII::AsciiUtilInterface* const interface = FetchAsciiUtil();
    const Replay replay = [&] {
      const LogCapture withoutRecords(false);
      return ReplayCalls(command.options, *interface);
    }();
    if (command.asJson) {
      PrintReplayJson(session.out, replay);
    } else {
      PrintText(session.out, replay, command.options);
    }
    if (replay.differences != 0) {
      throw Failure("replay: " + std::to_string(replay.differences) + " of " +
                    std::to_string(CallsOf(replay)) + " calls have another answer");
    }
  };
}

}  // namespace

std::vector<Command> ReplayCommands() {
  return {
      {"replay", "FILE [--operations NAME,...] [--max-differences N] [--compare-configuration] [--json]",
       "make the calls of a recording again and compare the answers",
       "Prints the first 20 (--max-differences) calls whose answers differ, and a table by operation with\n"
       "median durations in nanoseconds; NOW_NS includes the conversion of the file's values into "
       "arguments.\n"
       "Fails when an answer differs. GetTimeStamp and WriteDbgLog are not compared, nor is GetAlmCfgValue\n"
       "when AlarmConfig.csv is not the recorded one, unless --compare-configuration asks for it.\n"
       "Log records of the calls are not shown.\n",
       1, kAnyNumber, Completes::kFiles, ParseReplay},
  };
}

}  // namespace host
