#ifndef HOST_LOADER_CALL_WATCH_H_
#define HOST_LOADER_CALL_WATCH_H_

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace host {

/// Watches a call into a bundle's code for as long as the object exists, and reports on standard error, with
/// `what` ("init of NAME") as the name of the call:
/// - once, while the call runs, that it takes longer than `limit`;
/// - that it crashed, and by which signal. The process then ends by that signal as usual.
///
/// At most one exists at a time; it owns the timer's thread and the process's handlers of crash signals.
/// Never throws: when threads or memory have run out, the call is made without the missing report. The
/// destructor leaves handlers in place that the watched call installed.
class CallWatch {
 public:
  explicit CallWatch(const std::string& what,
                     std::chrono::milliseconds limit = std::chrono::seconds(3)) noexcept;
  ~CallWatch();
  CallWatch(const CallWatch&) = delete;
  CallWatch& operator=(const CallWatch&) = delete;

 private:
  void ReportWhenSlow(const std::string& what, std::chrono::milliseconds limit);

  std::mutex lock_;
  std::condition_variable ended_;
  bool hasEnded_ = false;
  std::thread timer_;
};

/// The signal's name, such as "SIGSEGV"; "signal N" when it has none.
std::string SignalName(int signal);

}  // namespace host

#endif  // HOST_LOADER_CALL_WATCH_H_
