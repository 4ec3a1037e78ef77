#ifndef BENCH_COMPARISON_H_
#define BENCH_COMPARISON_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/bundle.h"

namespace bench {

/// Ends the program with a message: contestants with different answers must not be compared.
[[noreturn]] inline void Disagree(const std::string& benchmark) {
  std::fprintf(stderr, "bench: %s gives a different answer\n", benchmark.c_str());
  std::exit(1);
}

/// One operation on many inputs, run by every bundle and by what a caller could use instead.
///
/// Each contestant becomes a benchmark "operation/input/contestant" that runs over the inputs in turn. It is
/// timed only after it has given the expected answer to every input.
template <class Input, class Answer>
class Comparison {
 public:
  /// `expect` maps an input to its answer.
  Comparison(std::string name, std::vector<Input> inputs, std::function<Answer(const Input&)> expect)
      : name_(std::move(name)),
        shared_(std::make_shared<Shared>(Shared{std::move(inputs), std::move(expect), {}})) {}

  /// Adds the literal version of the rules, which computes the expected answers.
  const Comparison& Literal() const { return Rival("literal", shared_->expect); }

  /// Adds every bundle; `run(bundle, input)` returns the answer.
  template <class Run>
  const Comparison& Ours(Run run) const {
    for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
      Rival(bundle->name(), [&bundle = *bundle, run](const Input& input) { return run(bundle, input); });
    }
    return *this;
  }

  template <class Run>
  const Comparison& Rival(const std::string& contestant, Run run) const {
    return Rival(
        contestant, run, [](const auto& answer) -> const auto& { return answer; });
  }

  /// For a rival that spells answers differently: `spell` turns its answer into the expected one. It runs in
  /// the check only.
  template <class Run, class Spell>
  const Comparison& Rival(const std::string& contestant, Run run, Spell spell) const {
    const std::string name = name_ + "/" + contestant;
    benchmark::RegisterBenchmark(
        name.c_str(), [name, run, spell, shared = shared_, checked = false](benchmark::State& state) mutable {
          if (!std::exchange(checked, true)) {
            shared->Check(name, run, spell);
          }
          const std::vector<Input>& inputs = shared->inputs;
          std::size_t next = 0;
          for ([[maybe_unused]] auto unused : state) {
            auto answer = run(inputs[next]);
            benchmark::DoNotOptimize(answer);
            next = next + 1 == inputs.size() ? 0 : next + 1;
          }
        });
    return *this;
  }

 private:
  struct Shared {
    std::vector<Input> inputs;
    std::function<Answer(const Input&)> expect;
    std::vector<Answer> answers;  // Filled by the first check.

    template <class Run, class Spell>
    void Check(const std::string& name, Run& run, Spell& spell) {
      for (std::size_t i = answers.size(); i < inputs.size(); ++i) {
        answers.push_back(expect(inputs[i]));
      }
      for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (!(answers[i] == spell(run(inputs[i])))) {
          Disagree(name);
        }
      }
    }
  };

  std::string name_;
  std::shared_ptr<Shared> shared_;
};

}  // namespace bench

#endif  // BENCH_COMPARISON_H_
