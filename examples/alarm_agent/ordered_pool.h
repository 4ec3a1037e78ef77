#ifndef EXAMPLES_ALARM_AGENT_ORDERED_POOL_H_
#define EXAMPLES_ALARM_AGENT_ORDERED_POOL_H_

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "examples/alarm_agent/feed_line.h"

namespace alarm_agent {

/// Several threads that take lines from one source, work on them concurrently, and pass the results to a sink
/// in the order of the lines: exactly one result for each line.
///
/// Each line gets a number when it is taken. A finished result is stored under that number; the thread that
/// stores the next one due passes it to the sink, with all that follow without a gap. A thread that is `kWindow`
/// numbers ahead or more waits, which bounds the number of stored results.
///
/// Threads: one owner calls `Start` and `Join`. The three functions are called on the pool's threads:
/// `source` and `sink` by one thread at a time each (but at the same time as each other), `work` by all of
/// them at once. None may throw.
class OrderedPool {
 public:
  /// Fills in the next line. Returns false at the end and is not called again.
  using Source = std::function<bool(FeedLine& line)>;
  using Work = std::function<std::string(const FeedLine& line)>;
  using Sink = std::function<void(const std::string& result)>;

  /// The limit of the distance between a thread's line and the first unfinished one.
  static constexpr std::uint64_t kWindow = 256;

  OrderedPool(Source source, Work work, Sink sink);

  /// Waits for the source's end, like `Join`.
  ~OrderedPool();

  OrderedPool(const OrderedPool&) = delete;
  OrderedPool& operator=(const OrderedPool&) = delete;

  /// Starts `threads` threads. Throws `std::system_error` when the system refuses one; those already started
  /// keep running.
  void Start(int threads);

  /// Waits until the source has ended and every result has been passed to the sink. Does nothing when no
  /// thread runs.
  void Join();

 private:
  void Run();
  bool Take(FeedLine& line, std::uint64_t& number);
  void Deliver(std::uint64_t number, std::string result);

  const Source source_;
  const Work work_;
  const Sink sink_;

  // Used by the owner only.
  std::vector<std::thread> threads_;

  // Under `sourceLock_`.
  std::mutex sourceLock_;
  std::uint64_t taken_ = 0;
  bool hasEnded_ = false;

  // Under `resultLock_`, which is never held together with the other one.
  std::mutex resultLock_;
  std::condition_variable dueMoved_;
  std::uint64_t due_ = 0;
  std::map<std::uint64_t, std::string> finished_;  ///< by number
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_ORDERED_POOL_H_
