#ifndef TESTS_RECORDER_RECORDED_IMPLEMENTATION_H_
#define TESTS_RECORDER_RECORDED_IMPLEMENTATION_H_

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "src/interface/asciiutilifimpl.h"
#include "tests/temp_directory.h"
#include "tools/recorder/format/reader.h"
#include "tools/recorder/front.h"
#include "tools/recorder/recording.h"

namespace recorder_test {

/// Replaces the implementation in the tests of the interface: every operation goes through the recorder's
/// interface, and all calls are recorded. At the end the file must contain each of them.
class RecordedImplementation : public NS_ASCII::AsciiUtilInterfaceImpl {
 public:
  RecordedImplementation() {
    recorder::Options options;
    options.output = Path();
    options.operations.set();
    recording_.Start(
        options, {}, [](const std::string&) {}, std::uint32_t{16} << 20);
    front_.ForwardTo(&implementation_);
  }

  ~RecordedImplementation() override {
    const recorder::Totals totals = recording_.Stop();
    std::ifstream file(Path(), std::ios::binary);
    recording_format::Reader reader(file);
    std::uint64_t records = 0;
    while (const auto line = reader.Next()) {
      EXPECT_FALSE(std::holds_alternative<recording_format::Problem>(*line)) << reader.LineNumber();
      records += std::holds_alternative<recording_format::Record>(*line) ? 1U : 0U;
    }
    EXPECT_EQ(records + totals.dropped, calls_);
  }

  std::string GetSvcName() override { return Next().GetSvcName(); }
  std::int64_t IsValid() override { return Next().IsValid(); }
  bool Str2Num(const std::string& text, int& value, int base) override {
    return Next().Str2Num(text, value, base);
  }
  std::string GetTimeStamp() override { return Next().GetTimeStamp(); }
  bool IsTransQueltEnabled() override { return Next().IsTransQueltEnabled(); }
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override {
    return Next().GetAlmCfgValue(value, key1, key2, key3, numKey);
  }
  std::string ToUpper(const std::string& text) override { return Next().ToUpper(text); }
  bool IsContain(const std::string& sub, const std::string& text) override {
    return Next().IsContain(sub, text);
  }
  bool IsKeyValueAboveOne(const std::string& key, const std::string& text) override {
    return Next().IsKeyValueAboveOne(key, text);
  }
  std::string GetKeyValue(const std::string& key, const std::string& text) override {
    return Next().GetKeyValue(key, text);
  }
  std::int64_t ParseListMap(NS_ASCII::ListMap& map, const std::string& text) override {
    return Next().ParseListMap(map, text);
  }
  std::int64_t GetMapList(const NS_ASCII::ListMap& map, const std::string& name,
                          std::vector<std::string>& items) override {
    return Next().GetMapList(map, name, items);
  }
  std::int64_t SplitStr(const std::string& text, const std::string& separator,
                        std::vector<std::string>& pieces) override {
    return Next().SplitStr(text, separator, pieces);
  }
  std::int64_t WriteDbgLog(const std::string& message) override { return Next().WriteDbgLog(message); }

 private:
  std::string Path() const { return dir_.path() / "calls.jsonl"; }

  recorder::Front& Next() {
    ++calls_;
    return front_;
  }

  const TempDirectory dir_;
  NS_ASCII::AsciiUtilInterfaceImpl implementation_;
  recorder::Recording recording_;
  recorder::Front front_{recording_};
  std::atomic<std::uint64_t> calls_{0};
};

}  // namespace recorder_test

#endif  // TESTS_RECORDER_RECORDED_IMPLEMENTATION_H_
