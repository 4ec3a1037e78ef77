#ifndef TOOLS_RECORDER_FRONT_H_
#define TOOLS_RECORDER_FRONT_H_

#include <atomic>
#include <string>
#include <tuple>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "tools/recorder/recording.h"

namespace recorder {

/// The interface that callers get while the recorder is loaded. It forwards every call to the implementation
/// and adds it to the recording when one is running. Arguments, results, out values and exceptions stay
/// unchanged.
///
/// There is one object for the life of the process: a caller that still uses it after the recorder was
/// removed reaches the implementation, for as long as that is loaded.
/// Threads: any thread may call at any time; one thread at a time calls `ForwardTo`.
class Front final : public NS_ASCII::AsciiUtilInterface {
 public:
  explicit Front(Recording& recording) : recording_(recording) {}

  /// Forwards all later calls to `target`, which is borrowed.
  void ForwardTo(NS_ASCII::AsciiUtilInterface* target) noexcept {
    target_.store(target, std::memory_order_release);
  }

  std::string GetSvcName() override;
  std::int64_t IsValid() override;
  bool Str2Num(const std::string& text, int& value, int base) override;
  std::string GetTimeStamp() override;
  bool IsTransQueltEnabled() override;
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override;
  std::string ToUpper(const std::string& text) override;
  bool IsContain(const std::string& sub, const std::string& text) override;
  bool IsKeyValueAboveOne(const std::string& key, const std::string& text) override;
  std::string GetKeyValue(const std::string& key, const std::string& text) override;
  std::int64_t ParseListMap(NS_ASCII::ListMap& map, const std::string& text) override;
  std::int64_t GetMapList(const NS_ASCII::ListMap& map, const std::string& name,
                          std::vector<std::string>& items) override;
  std::int64_t SplitStr(const std::string& text, const std::string& separator,
                        std::vector<std::string>& pieces) override;
  std::int64_t WriteDbgLog(const std::string& message) override;

 private:
  /// Makes the call, `call(implementation)`, and records it when it is one of the calls to record. `in` and
  /// `out` refer to the arguments.
  template <class Call, class... In, class... Out>
  auto Forward(recording_format::Operation operation, const std::tuple<const In&...>& in,
               const std::tuple<const Out&...>& out, Call call);

  Recording& recording_;
  std::atomic<NS_ASCII::AsciiUtilInterface*> target_{nullptr};
};

}  // namespace recorder

#endif  // TOOLS_RECORDER_FRONT_H_
