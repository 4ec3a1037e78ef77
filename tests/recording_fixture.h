#ifndef TESTS_RECORDING_FIXTURE_H_
#define TESTS_RECORDING_FIXTURE_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/recording_framework.h"

namespace recording {

/// A test fixture that resets the framework before and after each test.
class FrameworkTest : public ::testing::Test {
 protected:
  FrameworkTest() { framework.Reset(); }
  ~FrameworkTest() override { framework.Reset(); }

  Framework& framework = Framework::Instance();
};

}  // namespace recording

#endif  // TESTS_RECORDING_FIXTURE_H_
