// The commands call and time: parse an operation with its arguments, make the call, print the answer. The
// interface is borrowed for one call. Main thread only.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ostream>
#include <type_traits>

#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/commands/command.h"
#include "host/commands/interrupt.h"
#include "host/commands/operations.h"
#include "host/commands/script.h"
#include "host/platform/config_items.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

Target TargetOf(const Operation& operation, const Loader& loader) {
  if (operation.symbol.empty()) {
    return {FetchAsciiUtil(), nullptr};
  }
  void* const function = loader.FindSymbol(operation.symbol);
  if (function == nullptr) {
    throw Failure("no loaded library exports NS_ASCII::" + operation.name + "; load libii_ascii_util.so");
  }
  return {nullptr, function};
}

/// An operation with its arguments.
struct Call {
  const Operation& operation;
  std::vector<Value> values;
};

/// Parses the words from `at` on: the operation's name and its arguments.
Call ParseOperation(const Words& words, std::size_t at) {
  const Operation& operation = AtWord(at, [&]() -> const Operation& { return FindOperation(words[at]); });
  return {operation, ParseArguments(operation, words, at + 1)};
}

void PrintSections(std::ostream& out, const Answer& answer, const std::vector<LogRecord>& records) {
  out << "Returned\n";
  PrintValue(out, "result", answer.result, 2);
  out << "Out values\n";
  for (const auto& [name, value] : answer.outs) {
    PrintValue(out, name, value, 2);
  }
  out << (answer.outs.empty() ? "  none\n" : "") << "Log records\n";
  for (const LogRecord& record : records) {
    out << "  " << LogLine(record) << '\n';
  }
  out << (records.empty() ? "  none\n" : "");
}

nlohmann::ordered_json JsonOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> nlohmann::ordered_json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::string>) {
          return EscapeBytes(held);
        } else if constexpr (std::is_same_v<Held, TextList>) {
          auto array = nlohmann::ordered_json::array();
          std::transform(held.begin(), held.end(), std::back_inserter(array), EscapeBytes);
          return array;
        } else if constexpr (std::is_same_v<Held, NS_ASCII::ListMap>) {
          auto object = nlohmann::ordered_json::object();
          for (const auto& [name, items] : held) {
            object[EscapeBytes(name)] = JsonOf(items);
          }
          return object;
        } else {
          return held;
        }
      },
      value);
}

void PrintJson(std::ostream& out, const Answer& answer) {
  nlohmann::ordered_json object{{"result", JsonOf(answer.result)}};
  for (const auto& [name, value] : answer.outs) {
    object[name] = JsonOf(value);
  }
  out << object << '\n';
}

void RunCall(Session& session, const Call& call, bool asJson) {
  const Target target = TargetOf(call.operation, session.loader);
  if (session.hasConsole && !asJson) {
    const LogCapture capture;
    const Answer answer = call.operation.invoke(target, call.values);
    PrintSections(session.out, answer, capture.Records());
    return;
  }
  const Answer answer = call.operation.invoke(target, call.values);
  if (asJson) {
    PrintJson(session.out, answer);
    return;
  }
  PrintValue(session.out, "result", answer.result);
  for (const auto& [name, value] : answer.outs) {
    PrintValue(session.out, name, value);
  }
}

Action ParseCall(const Words& words) {
  const bool asJson = words[1] == "--json";
  const std::size_t at = asJson ? 2 : 1;
  if (at == words.size()) {
    throw UsageError("call: an operation is missing; 'help call' lists them");
  }
  if (words[at] == "-" && words.size() == at + 1) {
    return [prefix = Words(words.begin(), words.end() - 1)](Session& session) {
      RunScript(session, "-", prefix);
    };
  }
  return [call = ParseOperation(words, at), asJson](Session& session) { RunCall(session, call, asJson); };
}

constexpr int kMaxRepeats = 100'000'000;

/// Returns the nanoseconds per call of each batch. Batches keep the cost of reading the clock small against
/// short calls.
std::vector<double> Measure(const Call& call, const Target& target, int repeats) {
  using Clock = std::chrono::steady_clock;
  constexpr int kMaxSamples = 1000;
  const int batch = std::max(1, repeats / kMaxSamples);
  std::vector<double> samples;
  for (int done = 0; done < repeats;) {
    const int now = std::min(batch, repeats - done);
    ThrowIfInterrupted();
    const auto start = Clock::now();
    for (int i = 0; i < now; ++i) {
      call.operation.invoke(target, call.values);
    }
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    samples.push_back(taken.count() / now);
    done += now;
  }
  return samples;
}

void Time(Session& session, const Call& call, int repeats) {
  const Target target = TargetOf(call.operation, session.loader);
  const LogCapture capture(false);
  std::vector<double> samples = Measure(call, target, repeats);
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  char text[120];
  static_cast<void>(std::snprintf(text, sizeof text, "calls: %d\nmedian: %.0f ns\nrate: %.0f per second\n",
                                  repeats, *middle, 1e9 / *middle));
  session.out << text << "log records: " << capture.Count() << '\n';
}

Action ParseTime(const Words& words) {
  const auto repeats = ParseInt(words[1]);
  if (!repeats || *repeats < 1 || *repeats > kMaxRepeats) {
    throw UsageError("time: '" + words[1] + "' is not a number of repeats from 1 to 100000000", 1);
  }
  if (words[2] != "call") {
    throw UsageError("time: '" + words[2] + "' cannot be timed; only 'call' can", 2);
  }
  return [call = ParseOperation(words, 3), repeats = *repeats](Session& session) {
    Time(session, call, repeats);
  };
}

std::string OperationList() {
  std::string text = "Operations, \"name parameters -> result, out values\":\n";
  for (const Operation& operation : Operations()) {
    text += "  " + Synopsis(operation) + "\n";
  }
  return text +
         "With - as OPERATION, calls are read from standard input, one per line. --json prints the\n"
         "values of a call as one line of JSON, with numbers unquoted.\n"
         "In texts \\xNN stands for a byte. A map is NAME=ITEM|ITEM,NAME=ITEM. Out values start as 0 or "
         "empty.\n";
}

}  // namespace

std::vector<Command> CallCommands() {
  return {
      {"call", "[--json] OPERATION [ARGUMENT...]",
       "call an operation of AsciiUtilInterface or a text function", OperationList(), 1, kAnyNumber,
       Completes::kOperations, ParseCall},
      {"time", "COUNT call OPERATION [ARGUMENT...]", "repeat a call, print the median and the rate",
       "The time includes the conversion of the arguments. Log records are counted, not shown.\n", 3,
       kAnyNumber, Completes::kOperations, ParseTime},
  };
}

}  // namespace host
