#ifndef BENCH_RIVALS_H_
#define BENCH_RIVALS_H_

#include <string>

/// Which rivals this build has. The build defines BENCH_WITH_... as 1 or 0 for each package.
namespace bench {

/// Names and versions of the rivals that were found, and the names of those that were not.
std::string RivalVersions();

}  // namespace bench

#endif  // BENCH_RIVALS_H_
