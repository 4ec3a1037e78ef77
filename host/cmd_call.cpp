#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ostream>

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "host/command.h"
#include "host/config_items.h"
#include "host/log_sink.h"
#include "host/operations.h"
#include "host/problem.h"

namespace host {
namespace {

using NS_ASCII::AsciiUtilInterface;

AsciiUtilInterface* FetchAsciiUtil() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  try {
    auto* const interface = NS_BUNDLEMGR1::FetchInterface<AsciiUtilInterface>(ref);
    if (interface == nullptr) {
      throw Failure("what is registered as AsciiUtilInterface is another interface");
    }
    return interface;
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException&) {
    throw Failure(
        "no AsciiUtilInterface is registered; load a bundle that brings it, as libii_ascii_util.so");
  }
}

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

void CheckCall(const Words& arguments) { ParseArguments(FindOperation(arguments[0]), Rest(arguments, 1)); }

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

void RunCall(Session& session, const Words& arguments) {
  const Operation& operation = FindOperation(arguments[0]);
  const std::vector<Value> values = ParseArguments(operation, Rest(arguments, 1));
  const Target target = TargetOf(operation, session.loader);
  if (session.headings) {
    const LogCapture capture;
    const Answer answer = operation.invoke(target, values);
    PrintSections(session.out, answer, capture.Records());
    return;
  }
  const Answer answer = operation.invoke(target, values);
  PrintValue(session.out, "result", answer.result);
  for (const auto& [name, value] : answer.outs) {
    PrintValue(session.out, name, value);
  }
}

constexpr int kMostRepeats = 100'000'000;

int Repeats(const Words& arguments) {
  const auto count = ParseInt(arguments[0]);
  if (!count || *count < 1 || *count > kMostRepeats) {
    throw UsageError("time: '" + arguments[0] + "' is no number of repeats from 1 to 100000000");
  }
  return *count;
}

void CheckTime(const Words& arguments) {
  Repeats(arguments);
  if (arguments[1] != "call") {
    throw UsageError("time: '" + arguments[1] + "' cannot be timed; only 'call' can");
  }
  CheckCall(Rest(arguments, 2));
}

/// Nanoseconds of each call. Many short ones are measured in batches, since reading the clock costs as much
/// as they.
std::vector<double> Measure(const Operation& operation, const Target& target,
                            const std::vector<Value>& values, int repeats) {
  using Clock = std::chrono::steady_clock;
  constexpr int kMostSamples = 1000;
  const int batch = std::max(1, repeats / kMostSamples);
  std::vector<double> samples;
  for (int done = 0; done < repeats;) {
    const int now = std::min(batch, repeats - done);
    const auto start = Clock::now();
    for (int i = 0; i < now; ++i) {
      operation.invoke(target, values);
    }
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    samples.push_back(taken.count() / now);
    done += now;
  }
  return samples;
}

void RunTime(Session& session, const Words& arguments) {
  const int repeats = Repeats(arguments);
  const Operation& operation = FindOperation(arguments[2]);
  const std::vector<Value> values = ParseArguments(operation, Rest(arguments, 3));
  const Target target = TargetOf(operation, session.loader);
  const LogCapture capture(false);
  std::vector<double> samples = Measure(operation, target, values, repeats);
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  char text[120];
  static_cast<void>(std::snprintf(text, sizeof text, "calls: %d\nmedian: %.0f ns\nrate: %.0f per second\n",
                                  repeats, *middle, 1e9 / *middle));
  session.out << text << "log records: " << capture.Count() << '\n';
}

std::string OperationList() {
  std::string text = "Operations, \"name parameters -> result, out values\":\n";
  for (const Operation& operation : Operations()) {
    text += "  " + Synopsis(operation) + "\n";
  }
  return text +
         "In texts \\xNN stands for a byte. A map is NAME=ITEM|ITEM,NAME=ITEM. Out values start as 0 or "
         "empty.\n";
}

}  // namespace

std::vector<Command> CallCommands() {
  return {
      {"call", "OPERATION [ARGUMENT...]", "call an operation of AsciiUtilInterface or a text function",
       OperationList(), 1, kAnyNumber, Completes::kOperations, CheckCall, RunCall},
      {"time", "COUNT call OPERATION [ARGUMENT...]", "repeat a call, print the median and the rate",
       "The time includes turning the arguments into values. Log records are counted, not shown.\n", 3,
       kAnyNumber, Completes::kOperations, CheckTime, RunTime},
  };
}

}  // namespace host
