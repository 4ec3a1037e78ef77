#ifndef TESTS_INTERFACE_INTERFACE_FIXTURE_H_
#define TESTS_INTERFACE_INTERFACE_FIXTURE_H_

#include <string>
#include <vector>

#include "src/interface/asciiutilifimpl.h"
#include "tests/recording_fixture.h"
#ifdef ASCII_UTIL_TEST_THROUGH_RECORDER
#include "tests/recorder/recorded_implementation.h"
#endif

/// Helpers for the tests of the interface's operations.
namespace interface_test {

using Texts = std::vector<std::string>;

/// A message of the unit.
inline recording::Message Said(int line, int level, const std::string& text) {
  return {"asciiutilifimpl", "unknown", line, level, text, {}};
}

/// The recorder must not change any answer, so the same tests also run through it.
#ifdef ASCII_UTIL_TEST_THROUGH_RECORDER
using Implementation = recorder_test::RecordedImplementation;
#else
using Implementation = NS_ASCII::AsciiUtilInterfaceImpl;
#endif

class InterfaceTest : public recording::FrameworkTest {
 protected:
  Implementation impl;
};

/// Overrides the number conversion.
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

#endif  // TESTS_INTERFACE_INTERFACE_FIXTURE_H_
