#ifndef BENCH_UTIL_H_
#define BENCH_UTIL_H_

#include "src/asciiutilifimpl.h"

namespace bench {

/// The interface as other bundles have it: one object, called through its virtual table.
inline NS_ASCII::AsciiUtilInterface& Util() {
  static NS_ASCII::AsciiUtilInterfaceImpl util;
  return util;
}

}  // namespace bench

#endif  // BENCH_UTIL_H_
