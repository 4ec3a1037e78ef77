// The recorder on a provider of the platform that keeps one interface for each name, has no log service and
// lists no bundles.

#include <gtest/gtest.h>

#include <string>

#include "framework/interface_registry.h"
#include "src/service/asciiutilsvc.h"
#include "tests/recorder/recorded_calls.h"
#include "tests/temp_directory.h"
#include "tools/recorder/recorder_service.h"

namespace {

using NS_BUNDLEMGR1::ServiceInterface;

ServiceInterface* Registered() {
  const auto* const buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  return buffer == nullptr || buffer->empty() ? nullptr : buffer->front();
}

TEST(RecorderOnAnotherProvider, RecordsAndRegistersTheImplementationAgain) {
  const TempDirectory dir;
  std::string output = dir.path() / "calls.jsonl";
  std::string option = "--output";
  char* arguments[] = {option.data(), output.data()};
  const NS_ASCII::ii_ascii_util bundle;
  ServiceInterface* const implementation = Registered();
  for (int round = 0; round < 2; ++round) {
    recorder::RecorderService recorder;
    ASSERT_EQ(recorder.init(2, arguments), 0);
    EXPECT_NE(Registered(), implementation);
    EXPECT_EQ(dynamic_cast<NS_ASCII::AsciiUtilInterface&>(*Registered()).ToUpper("abc"), "ABC");
    EXPECT_EQ(recorder.fini(), 0);
    EXPECT_EQ(Registered(), implementation);
    EXPECT_EQ(recorder_test::ReadRecording(output).records.size(), 1U);
  }
}

}  // namespace
