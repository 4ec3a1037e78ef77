#ifndef BENCH_REGISTER_H_
#define BENCH_REGISTER_H_

/// Registers the comparisons of one source file each. Call after `Bundles()` is filled.
namespace bench {

void RegisterFields();
void RegisterTables();
void RegisterTextFunctions();

}  // namespace bench

#endif  // BENCH_REGISTER_H_
