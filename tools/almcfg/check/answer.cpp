// Calls the bundle's conversion of numbers. No state; any thread may call.

#include "tools/almcfg/check/answer.h"

#include <string>

#include "src/interface/asciiutilifimpl.h"

namespace almcfg {

Answer AnswerFor(std::string_view value) {
  int number = 0;
  const bool isInteger = NS_ASCII::AsciiUtilInterfaceImpl().Str2Num(std::string(value), number, 10);
  return {isInteger ? 0 : 1, isInteger ? number : 0};
}

}  // namespace almcfg
