// Runs the benchmarks. Without a rival's package its contestants are absent, which the context of the report
// says.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/rivals.h"

namespace {

const char* const kCompiler =
#ifdef __clang__
    "Clang " __clang_version__;
#else
    "GCC " __VERSION__;
#endif

}  // namespace

int main(int argc, char** argv) {
  benchmark::AddCustomContext("compiler", kCompiler);
  benchmark::AddCustomContext("rivals", bench::RivalVersions());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
