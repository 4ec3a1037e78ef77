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

/// Several threads that take lines from one source, work on them at the same time, and hand the results on in
/// the order in which the lines were taken: one result for each line, none lost, none twice.
///
/// How the order is kept: taking a line gives it a turn. A finished result is put down under its turn, and
/// whoever puts down the one that is due hands it on, with all that follow without a gap. A thread that is
/// more than `kWindow` turns ahead waits, so that one slow line does not make the results of the others pile
/// up.
///
/// Threads: one owner calls `Start` and `Join`. The three functions are called on the pool's threads:
/// `source` and `sink` by one thread at a time each (but at the same time as each other), `work` by all of
/// them at once. None may throw.
class OrderedPool {
 public:
  /// Fills in the next line; false at the end, after which it is not asked again.
  using Source = std::function<bool(FeedLine& line)>;
  using Work = std::function<std::string(const FeedLine& line)>;
  using Sink = std::function<void(const std::string& result)>;

  /// How far the first unfinished line may lie behind the results that wait for it.
  static constexpr std::uint64_t kWindow = 256;

  OrderedPool(Source source, Work work, Sink sink);

  /// Waits for the source's end, like `Join`. Whoever destroys a started pool sees to it that the source
  /// ends.
  ~OrderedPool();

  OrderedPool(const OrderedPool&) = delete;
  OrderedPool& operator=(const OrderedPool&) = delete;

  /// Starts so many threads. Throws `std::system_error` when the system has no more; those that it had are
  /// running then.
  void Start(int threads);

  /// Waits until the source has ended and every result has been handed on. Does nothing when none is running.
  void Join();

 private:
  void Run();
  bool Take(FeedLine& line, std::uint64_t& turn);
  void PutDown(std::uint64_t turn, std::string result);

  const Source source_;
  const Work work_;
  const Sink sink_;

  // The owner's.
  std::vector<std::thread> threads_;

  // Under `sourceLock_`.
  std::mutex sourceLock_;
  std::uint64_t taken_ = 0;
  bool hasEnded_ = false;

  // Under `resultLock_`, which is never held together with the other one.
  std::mutex resultLock_;
  std::condition_variable dueMoved_;
  std::uint64_t due_ = 0;
  std::map<std::uint64_t, std::string> finished_;  ///< by turn
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_ORDERED_POOL_H_
