#ifndef TESTS_ASCIIUTILIFIMPL_INTERFACE_FIXTURE_H_
#define TESTS_ASCIIUTILIFIMPL_INTERFACE_FIXTURE_H_

#include <string>
#include <vector>

#include "src/asciiutilifimpl.h"
#include "tests/recording_fixture.h"

/// What the tests of the interface's operations share.
namespace interface_test {

using Texts = std::vector<std::string>;

/// A message of the unit.
inline recording::Message Said(int line, int level, const std::string& text) {
  return {"asciiutilifimpl", "unknown", line, level, text, {}};
}

class InterfaceTest : public recording::FrameworkTest {
 protected:
  NS_ASCII::AsciiUtilInterfaceImpl impl;
};

/// Answers number conversions itself.
class OwnStr2Num : public NS_ASCII::AsciiUtilInterfaceImpl {
 public:
  bool Str2Num(const std::string& text, int& value, int base) override {
    asked.push_back(text + " in " + std::to_string(base));
    value = -3;
    return answer;
  }
  Texts asked;
  bool answer = true;
};

}  // namespace interface_test

#endif  // TESTS_ASCIIUTILIFIMPL_INTERFACE_FIXTURE_H_
