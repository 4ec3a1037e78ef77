#ifndef BENCH_CONTEST_H_
#define BENCH_CONTEST_H_

#include <benchmark/benchmark.h>

#include <clocale>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

/// Contests: one operation on one input, run by this library and by what a user would take instead.
///
/// Each contestant becomes a benchmark "operation/input/contestant". The contestant "ours" enters first and
/// sets the answer. A rival is timed only after it has given the same answer to the same input, in the same
/// process; if it does not, the program says so and ends. "floor" is the least that any contestant must do,
/// usually copying the answer.
namespace bench {

/// Ends the program: a comparison of different answers would be worth nothing.
[[noreturn]] inline void Disagree(const std::string& contestant) {
  std::fprintf(stderr, "bench: %s gives another answer than ours; nothing it takes can be compared\n",
               contestant.c_str());
  std::exit(1);
}

/// A text that several contestants share. It is never written to.
using Input = std::shared_ptr<const std::string>;

inline Input Share(std::string text) { return std::make_shared<const std::string>(std::move(text)); }

/// `Ours` is a callable without arguments that returns the answer as a value with `==`.
template <class Ours>
class Contest {
 public:
  /// `bytes` is the length of the input when throughput is of interest, else 0. `locale` is in force whenever
  /// a contestant runs.
  Contest(std::string name, std::size_t bytes, Ours ours, const char* locale = "C")
      : name_(std::move(name)), bytes_(bytes), ours_(std::move(ours)), locale_(locale) {
    Register(
        name_ + "/ours", bytes_, locale_, [] {}, ours_);
  }

  /// Enters `rival`, a callable that returns what `Ours` returns.
  template <class Rival>
  const Contest& Against(const char* contestant, Rival rival) const {
    return Against(
        contestant, rival, [](const auto& answer) -> const auto& { return answer; });
  }

  /// Enters a `rival` whose answer is written differently: `spell(answer)` is how ours writes it. Only the
  /// check spells, the timed run does not.
  template <class Rival, class Spell>
  const Contest& Against(const char* contestant, Rival rival, Spell spell) const {
    const std::string name = name_ + "/" + contestant;
    const auto check = [ours = ours_, rival, spell, name] {
      if (!(ours() == spell(rival()))) {
        Disagree(name);
      }
    };
    Register(name, bytes_, locale_, check, rival);
    return *this;
  }

  /// Enters what is run for comparison only; its answer does not count.
  template <class Run>
  const Contest& Floor(Run run) const {
    Register(
        name_ + "/floor", bytes_, locale_, [] {}, run);
    return *this;
  }

 private:
  template <class Check, class Run>
  static void Register(const std::string& name, std::size_t bytes, const char* locale, Check check, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), [bytes, locale, check, run](benchmark::State& state) {
      if (std::setlocale(LC_ALL, locale) == nullptr) {
        state.SkipWithError("no such locale");
        return;
      }
      check();
      for ([[maybe_unused]] auto unused : state) {
        auto answer = run();
        benchmark::DoNotOptimize(answer);
      }
      if (bytes != 0) {
        state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
      }
    });
  }

  std::string name_;
  std::size_t bytes_;
  Ours ours_;
  const char* locale_;
};

/// `function` as a callable without arguments.
template <class Function>
auto Applied(Function function, Input input) {
  return [function, input] { return function(*input); };
}

/// A contest of functions from a text to a text, all of them on the same one. The floor enters by itself.
template <class Ours>
class TextContest {
 public:
  TextContest(const std::string& name, std::size_t bytes, const std::string& text, Ours ours,
              const char* locale = "C")
      : input_(Share(text)), contest_(name, bytes, Applied(ours, input_), locale) {
    contest_.Floor([answer = ours(text)] { return std::string(answer); });
  }

  template <class Rival>
  const TextContest& Against(const char* contestant, Rival rival) const {
    contest_.Against(contestant, Applied(rival, input_));
    return *this;
  }

 private:
  Input input_;
  Contest<decltype(Applied(std::declval<Ours>(), Input()))> contest_;
};

}  // namespace bench

#endif  // BENCH_CONTEST_H_
