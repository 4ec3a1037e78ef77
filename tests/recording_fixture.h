#ifndef TESTS_RECORDING_FIXTURE_H_
#define TESTS_RECORDING_FIXTURE_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/recording_framework.h"

namespace recording {

/// A test that starts and ends with a fresh framework.
class FrameworkTest : public ::testing::Test {
 protected:
  FrameworkTest() { framework.Reset(); }
  ~FrameworkTest() override { framework.Reset(); }

  Framework& framework = Framework::Instance();
};

}  // namespace recording

#endif  // TESTS_RECORDING_FIXTURE_H_
