// The benchmark program.
//
//   ascii_util_bench [--bundle=NAME=LIBRARY]... [GOOGLE-BENCHMARK-OPTION...]
//
// Compares the bundle of this build, "ours", with other libraries. Each --bundle adds another build of the
// bundle to every comparison.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "bench/bundle.h"
#include "bench/register.h"
#include "bench/tables.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::string names = "ours";
  bench::Bundles().push_back(std::make_unique<bench::Bundle>(names, BENCH_BUNDLE));
  const std::string option = "--bundle=";
  int left = 1;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::size_t equals = argument.find('=', option.size());
    if (argument.compare(0, option.size(), option) != 0 || equals == std::string::npos) {
      argv[left++] = argv[i];
      continue;
    }
    const std::string name = argument.substr(option.size(), equals - option.size());
    names += "," + name;
    bench::Bundles().push_back(std::make_unique<bench::Bundle>(name, argument.substr(equals + 1)));
  }
  if (benchmark::ReportUnrecognizedArguments(left, argv)) {
    return 2;
  }
  benchmark::AddCustomContext("bundles", names);
  benchmark::AddCustomContext("compiler", BENCH_COMPILER);
  benchmark::AddCustomContext("rivals", BENCH_RIVALS);
  const bench::RcuThread registered;
  bench::RegisterFields();
  bench::RegisterTables();
  bench::RegisterTextFunctions();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  benchmark::ClearRegisteredBenchmarks();
  bench::Bundles().clear();
  return 0;
}
