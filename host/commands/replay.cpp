// Makes recorded calls again and counts equal and different answers. The interface is borrowed, the result
// is a copy. Main thread only.

#include "host/commands/replay.h"

#include <cxxabi.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <typeinfo>
#include <utility>

#include "framework/config_items.h"
#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/commands/interrupt.h"
#include "host/commands/operations.h"
#include "tools/recorder/format/cksum.h"
#include "tools/recorder/format/reader.h"

namespace host {
namespace {

using recording_format::Head;
using recording_format::Record;
using recording_format::Thrown;

constexpr std::size_t kMaxReported = 10;

/// The result, exception and out values of a call.
struct Outcome {
  std::optional<Value> result;
  std::optional<Thrown> thrown;
  std::vector<Value> out;

  /// Out values are not known after an exception.
  bool operator==(const Outcome& other) const {
    if (thrown && other.thrown) {
      return thrown->type == other.thrown->type && thrown->what == other.thrown->what;
    }
    return result == other.result && thrown.has_value() == other.thrown.has_value() && out == other.out;
  }
};

/// Describes the exception that is being handled, with the names used in recordings.
Thrown CurrentException() {
  Thrown thrown;
  if (const std::type_info* const type = abi::__cxa_current_exception_type(); type != nullptr) {
    const std::unique_ptr<char, void (*)(void*)> plain(
        abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr), std::free);
    thrown.type = plain == nullptr ? type->name() : plain.get();
  }
  try {
    throw;
  } catch (const std::exception& error) {
    thrown.what = error.what();
  } catch (...) {  // NOLINT(bugprone-empty-catch): no text to keep.
  }
  return thrown;
}

/// Turns an escaped text into one argument of `call`: in quotes where it needs them.
std::string AsArgument(const std::string& text) {
  const bool needsQuotes = text.empty() || text.find_first_of(" \"#") != std::string::npos;
  const std::string argument = EscapeEach("'", text);
  return needsQuotes ? '\'' + argument + '\'' : argument;
}

/// A part of a map, with its separators escaped.
std::string MapPart(const std::string& text) { return EscapeEach(",|=", EscapeBytes(text)); }

std::string MapText(const NS_ASCII::ListMap& map) {
  std::string text;
  for (const auto& [name, items] : map) {
    text += (text.empty() ? "" : ",") + MapPart(name);
    const char* separator = "=";
    for (const std::string& item : items) {
      text += separator + MapPart(item);
      separator = "|";
    }
  }
  return text;
}

std::string CallText(const Operation& operation, const std::vector<Value>& in) {
  std::string text = operation.name;
  for (const Value& value : in) {
    text += ' ';
    if (const auto* const number = std::get_if<std::int64_t>(&value)) {
      text += std::to_string(*number);
    } else if (const auto* const map = std::get_if<NS_ASCII::ListMap>(&value)) {
      text += AsArgument(MapText(*map));
    } else {
      text += AsArgument(EscapeBytes(std::get<std::string>(value)));
    }
  }
  return text;
}

std::string Text(const Operation& operation, const Outcome& outcome) {
  std::ostringstream text;
  if (outcome.thrown) {
    text << "exception: " << EscapeValue(outcome.thrown->type) << ": " << EscapeValue(outcome.thrown->what)
         << '\n';
    return text.str();
  }
  PrintValue(text, "result", *outcome.result);
  for (std::size_t at = 0; at < outcome.out.size(); ++at) {
    PrintValue(text, operation.out[at].name, outcome.out[at]);
  }
  return text.str();
}

/// `SplitStr` with an empty separator appends pieces until memory runs out.
bool FillsMemory(const Record& record) {
  return record.operation == recording_format::Operation::kSplitStr &&
         std::get<std::string>(record.in[1]).empty();
}

class Player {
 public:
  Player(const ReplayOptions& options, NS_ASCII::AsciiUtilInterface& interface)
      : options_(options), target_{&interface, nullptr} {
    const std::string directory = NS_BUNDLEMGR1::GetCfgDirPath();
    replay_.currentConfiguration =
        directory.empty() ? "" : recording_format::Cksum(directory + "ii_asciiagent_bundle/AlarmConfig.csv");
  }

  void Take(const Head& head) {
    if (head.alarmConfig != replay_.currentConfiguration || replay_.recordedConfiguration.empty()) {
      replay_.recordedConfiguration = head.alarmConfig;
    }
    isSameNow_ = head.alarmConfig == replay_.currentConfiguration;
    replay_.isConfigurationSame = replay_.isConfigurationSame && isSameNow_;
  }

  void Take(const recording_format::Problem& problem, std::size_t line) {
    ++replay_.problems;
    if (replay_.reported.size() < kMaxReported) {
      replay_.reported.push_back(options_.file + ':' + std::to_string(line) + ':' +
                                 std::to_string(problem.column) + ": " + problem.text +
                                 "; the line is skipped");
    }
  }

  void Take(const Record& record, std::size_t line) {
    ++records_;
    const std::string name(recording_format::SignatureOf(record.operation).name);
    const std::vector<std::string>& wanted = options_.operations;
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), name) == wanted.end()) {
      return;
    }
    const Operation& operation = FindOperation(name);
    OperationReplay& row = replay_.operations[static_cast<std::size_t>(record.operation)];
    row.recorded.push_back(record.duration);
    const Outcome then{record.result, record.thrown, record.out};
    if (FillsMemory(record)) {
      ++row.different;
      Keep(operation, record, line, then,
           "not called: with an empty separator the call would fill the memory\n");
      return;
    }
    const Outcome now = Call(operation, record, row);
    if (!IsCompared(record)) {
      ++row.notCompared;
    } else if (then == now) {
      ++row.same;
    } else {
      ++row.different;
      Keep(operation, record, line, then, Text(operation, now));
    }
  }

  [[nodiscard]] std::size_t Records() const { return records_; }
  Replay Result() && { return std::move(replay_); }

 private:
  Outcome Call(const Operation& operation, const Record& record, OperationReplay& row) const {
    std::vector<Value> arguments = record.in;
    arguments.insert(arguments.end(), record.before.begin(), record.before.end());
    Outcome now;
    const auto start = std::chrono::steady_clock::now();
    try {
      Answer answer = operation.invoke(target_, arguments);
      now.result = std::move(answer.result);
      for (auto& [name, value] : answer.outs) {
        now.out.push_back(std::move(value));
      }
    } catch (...) {
      now.thrown = CurrentException();
    }
    const auto taken = std::chrono::steady_clock::now() - start;
    row.replayed.push_back(std::chrono::duration_cast<std::chrono::nanoseconds>(taken).count());
    return now;
  }

  [[nodiscard]] bool IsCompared(const Record& record) const {
    switch (record.operation) {
      case recording_format::Operation::kGetTimeStamp:
      case recording_format::Operation::kWriteDbgLog:
        return false;
      case recording_format::Operation::kGetAlmCfgValue:
        return isSameNow_ || options_.compareConfiguration;
      default:
        return true;
    }
  }

  void Keep(const Operation& operation, const Record& record, std::size_t line, const Outcome& then,
            const std::string& now) {
    ++replay_.differences;
    if (replay_.shown.size() < options_.maxDifferences) {
      replay_.shown.push_back({records_, line, CallText(operation, record.in), Text(operation, then), now});
    }
  }

  const ReplayOptions& options_;
  const Target target_;
  Replay replay_;
  std::size_t records_ = 0;
  bool isSameNow_ = true;
};

}  // namespace

Replay ReplayCalls(const ReplayOptions& options, NS_ASCII::AsciiUtilInterface& interface) {
  std::ifstream file(options.file, std::ios::binary);
  if (!file) {
    throw Failure(options.file + ": " + std::generic_category().message(errno));
  }
  if (std::error_code none; std::filesystem::is_directory(options.file, none)) {
    throw Failure(options.file + ": is a directory; give the file that the recorder wrote");
  }
  // A recording that is still written grows, perhaps by the calls of this replay. For a pipe
  // `file_size` fails and returns its largest value; files in /proc have the size 0.
  std::error_code ignored;
  const std::uintmax_t end = std::filesystem::file_size(options.file, ignored);
  Player player(options, interface);
  recording_format::Reader reader(file);
  while (end == 0 || reader.BytesRead() < end) {
    const auto line = reader.Next();
    if (!line) {
      break;
    }
    ThrowIfInterrupted();
    if (const auto* const head = std::get_if<Head>(&*line)) {
      player.Take(*head);
    } else if (const auto* const record = std::get_if<Record>(&*line)) {
      player.Take(*record, reader.LineNumber());
    } else if (const auto* const problem = std::get_if<recording_format::Problem>(&*line)) {
      player.Take(*problem, reader.LineNumber());
    }
  }
  if (file.bad()) {
    throw Failure(options.file + ':' + std::to_string(reader.LineNumber() + 1) +
                  ":1: cannot be read: " + std::generic_category().message(EIO));
  }
  if (player.Records() == 0) {
    throw Failure(options.file + ":1:1: the file holds no recorded call; give one that the recorder wrote");
  }
  return std::move(player).Result();
}

}  // namespace host
