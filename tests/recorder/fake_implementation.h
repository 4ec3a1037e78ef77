#ifndef TESTS_RECORDER_FAKE_IMPLEMENTATION_H_
#define TESTS_RECORDER_FAKE_IMPLEMENTATION_H_

#include <functional>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

namespace recorder_test {

/// Another implementation of the interface: its answers are distinct and follow none of the rules, and a test
/// can make any operation throw.
class FakeImplementation : public NS_ASCII::AsciiUtilInterface {
 public:
  std::function<void()> act = [] {};  ///< run by every operation, after its out values were written

  std::string GetSvcName() override { return Answer(std::string("Fake\0\xff", 6)); }
  std::int64_t IsValid() override { return Answer(std::int64_t{-9223372036854775807} - 1); }
  bool Str2Num(const std::string& text, int& value, int base) override {
    value += base;
    return Answer(text == "true");
  }
  std::string GetTimeStamp() override { return Answer(std::string("now")); }
  bool IsTransQueltEnabled() override { return Answer(true); }
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override {
    value = static_cast<std::int64_t>(key1.size() + key2.size() + key3.size());
    return Answer(std::int64_t{numKey});
  }
  std::string ToUpper(const std::string& text) override { return Answer("<" + text + ">"); }
  bool IsContain(const std::string& sub, const std::string& text) override { return Answer(sub == text); }
  bool IsKeyValueAboveOne(const std::string& key, const std::string& text) override {
    return Answer(key != text);
  }
  std::string GetKeyValue(const std::string& key, const std::string& text) override {
    return Answer(key + "@" + text);
  }
  std::int64_t ParseListMap(NS_ASCII::ListMap& map, const std::string& text) override {
    map[text] = {"", text};
    map[""] = {};
    return Answer(std::int64_t{3});
  }
  std::int64_t GetMapList(const NS_ASCII::ListMap& map, const std::string& name,
                          std::vector<std::string>& items) override {
    items.push_back(name + std::to_string(map.size()));
    return Answer(std::int64_t{4});
  }
  std::int64_t SplitStr(const std::string& text, const std::string& separator,
                        std::vector<std::string>& pieces) override {
    pieces = {text, separator};
    return Answer(std::int64_t{5});
  }
  std::int64_t WriteDbgLog(const std::string& message) override {
    return Answer(static_cast<std::int64_t>(message.size()));
  }

 private:
  template <class T>
  T Answer(T answer) const {
    act();
    return answer;
  }
};

}  // namespace recorder_test

#endif  // TESTS_RECORDER_FAKE_IMPLEMENTATION_H_
