#ifndef TESTS_RECORDING_FRAMEWORK_H_
#define TESTS_RECORDING_FRAMEWORK_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "framework/bundle_mgr.h"
#include "framework/log_service.h"
#include "framework/service_interface.h"

/// A provider of everything that framework/ declares, for tests: it records every call with its arguments and
/// returns the answers that the test sets. Test programs link it together with the bundle's own objects.
///
/// The bundle keeps its logger until the process ends, so the default loggers are never destroyed. A test of
/// how that logger is obtained needs its own process: ctest starts one for each test, and so does
/// process_each_main.cpp when a program is run as a whole.
///
/// Threads: calls may come from any thread. Answers are set while no other thread calls.
namespace recording {

/// `text` in double quotes, with everything but printable ASCII escaped.
std::string Quoted(const std::string& text);

/// One message that reached a recording logger.
struct Message {
  std::string tag;
  std::string function;
  int line = 0;
  int level = 0;
  std::string text;                  ///< the message, or the format unchanged
  std::optional<std::string> value;  ///< the value of a format; none for a plain message

  bool operator==(const Message& other) const;
};

/// Prints a message in the failure reports of the test library.
std::ostream& operator<<(std::ostream& out, const Message& message);

/// Records its messages. Its destruction is recorded as "~Logger()".
class Logger : public NS_LOG_SERVICE1::Logger {
 public:
  ~Logger() override;
  int Log(const std::string& file, const std::string& func, int line, int level,
          const std::string& message) override;
  /// Takes exactly one value after the format, a NUL-terminated text.
  int LogF(const std::string& file, const std::string& func, int line, int level, const char* format,
           ...) override;
};

/// Returns the loggers that `Framework::logger` returns.
class LogService : public NS_LOG_SERVICE1::LogSvcInterface {
 public:
  std::string GetSvcName() override { return "RecordingLogService"; }
  std::int64_t IsValid() override { return 1; }
  NS_LOG_SERVICE1::Logger* GetLogger(const std::string& bundle, const std::string& service,
                                     const std::string& channel) override;
};

/// An interface of a type that the library does not use.
class OtherInterface : public NS_BUNDLEMGR1::ServiceInterface {
 public:
  std::string GetSvcName() override { return "OtherInterface"; }
  std::int64_t IsValid() override { return 1; }
};

/// A loaded bundle with the service objects that a test puts into it.
class Bundle : public NS_BUNDLEMGR1::Bundle {
 public:
  explicit Bundle(std::string bundleName) : name(std::move(bundleName)) {}
  void GetServiceObjects(std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*>& objects) override;

  std::string name;
  std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*> objects;
};

/// The state of the provider: the journal and the answers.
class Framework {
 public:
  using Buffer = std::vector<NS_BUNDLEMGR1::ServiceInterface*>;
  using Converter = std::function<int(const std::string& from, const std::string& to,
                                      const std::string& input, std::string& output)>;

  /// The state of the process; never destroyed.
  static Framework& Instance();

  /// Empties the journal and the registry, resets every answer, registers the log service.
  void Reset();

  // --- What happened -------------------------------------------------------------------------------------

  /// Every platform call in order, as C++ would write it: `Log("asciiutilsvc", "unknown", 25, 2, "text")`.
  /// Pointers are left out. A call made while its thread, or any other, holds the global mutex ends in
  /// " [mutex held]".
  std::vector<std::string> Calls() const;

  /// The same without the calls that look up a logger or use one.
  std::vector<std::string> CallsWithoutLog() const;

  /// The messages of all loggers, in order.
  std::vector<Message> Messages() const;

  /// Empties the journal, keeps the answers.
  void ForgetCalls();

  /// Stops and starts recording; for callers that make very many calls, such as benchmarks.
  void SetRecording(bool on);

  // --- How to answer -------------------------------------------------------------------------------------

  /// Runs `action` in each later call of `operation` ("SetIFBuf", "Log", ...), after the call is recorded and
  /// before its effect. An exception of `action` leaves the operation.
  void On(const std::string& operation, std::function<void()> action);

  std::string cfgDir;                   ///< `GetCfgDirPath`
  std::map<std::string, int> intItems;  ///< the readable items of `GetIntItemInfo`
  std::optional<int> unreadable;        ///< what a failing `GetIntItemInfo` stores; without it nothing
  std::optional<int> sprintfResult;     ///< what `sprintf_s` returns, writing nothing; without it, it formats
  std::list<NS_BUNDLEMGR1::Bundle*> bundles;  ///< the loaded bundles; `GetBundle` finds a recording one
  Converter convert;                          ///< `KelpCodeSetConvert`; at first `Utf8ToLatin1`
  std::function<std::string(int)> num2Str;    ///< `NSTE_util::Num2Str`
  std::function<std::string(const std::string&)> trim;  ///< `NSTE_util::Trim`
  std::function<NS_LOG_SERVICE1::Logger*()> logger;     ///< `GetLogger`; at first one for all

  /// Appends `interface` to those of the same name in the registry; not recorded.
  void Register(const std::string& name, NS_BUNDLEMGR1::ServiceInterface* interface);

  /// Gives the name a buffer without interfaces.
  void RegisterEmpty(const std::string& name);

  /// Removes the name and its buffer from the registry.
  void Unregister(const std::string& name);

  /// The buffer of the name; null when it has none. Not recorded.
  Buffer* BufferOf(const std::string& name);

  // --- For the provider's own functions -------------------------------------------------------------------

  /// Records the call, unless recording is stopped, and runs its action.
  template <class... Arguments>
  void Called(const char* operation, const Arguments&... arguments) {
    if (recording_) {
      Write(operation, {Shown(arguments)...});
    }
    RunAction(operation);
  }
  void Add(Message message);
  void Withdraw(NS_BUNDLEMGR1::ServiceInterface* interface);

 private:
  Framework();

  static std::string Shown(int number) { return std::to_string(number); }
  static std::string Shown(std::size_t number) { return std::to_string(number); }
  static std::string Shown(const std::string& text) { return Quoted(text); }
  void Write(const char* operation, const std::vector<std::string>& arguments);
  void RunAction(const char* operation);

  mutable std::mutex lock_;  // Guards the journal.
  std::vector<std::string> calls_;
  std::vector<Message> messages_;
  std::atomic<bool> recording_{true};

  std::map<std::string, std::function<void()>, std::less<>> actions_;
  std::map<std::string, std::unique_ptr<Buffer>> registry_;
  LogService logService_;
  Logger commonLogger_;
};

/// Holds the global mutex while it exists. The mutex checks for errors: a second lock by the same thread
/// fails instead of waiting forever, which is how a test makes locking fail.
class MutexHeld {
 public:
  MutexHeld();
  ~MutexHeld();
  MutexHeld(const MutexHeld&) = delete;
  MutexHeld& operator=(const MutexHeld&) = delete;
};

/// Converters. A character that Latin-1 lacks becomes '?'; the input must be well-formed.
int Utf8ToLatin1(const std::string& from, const std::string& to, const std::string& input,
                 std::string& output);
int CopyThrough(const std::string& from, const std::string& to, const std::string& input,
                std::string& output);

}  // namespace recording

#endif  // TESTS_RECORDING_FRAMEWORK_H_
