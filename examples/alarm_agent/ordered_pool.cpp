#include "examples/alarm_agent/ordered_pool.h"

#include <utility>

namespace alarm_agent {

OrderedPool::OrderedPool(Source source, Work work, Sink sink)
    : source_(std::move(source)), work_(std::move(work)), sink_(std::move(sink)) {}

OrderedPool::~OrderedPool() { Join(); }

void OrderedPool::Start(int threads) {
  for (int i = 0; i < threads; ++i) {
    threads_.emplace_back([this] { Run(); });
  }
}

void OrderedPool::Join() {
  for (std::thread& thread : threads_) {
    thread.join();
  }
  threads_.clear();
}

void OrderedPool::Run() {
  FeedLine line;
  std::uint64_t turn = 0;
  while (Take(line, turn)) {
    PutDown(turn, work_(line));
  }
}

bool OrderedPool::Take(FeedLine& line, std::uint64_t& turn) {
  const std::lock_guard<std::mutex> guard(sourceLock_);
  hasEnded_ = hasEnded_ || !source_(line);
  if (hasEnded_) {
    return false;
  }
  turn = taken_++;
  return true;
}

void OrderedPool::PutDown(std::uint64_t turn, std::string result) {
  std::unique_lock<std::mutex> guard(resultLock_);
  // Never waits for itself: the thread whose turn is due is within the window.
  dueMoved_.wait(guard, [&] { return turn - due_ < kWindow; });
  finished_.emplace(turn, std::move(result));
  while (!finished_.empty() && finished_.begin()->first == due_) {
    sink_(finished_.begin()->second);
    finished_.erase(finished_.begin());
    ++due_;
  }
  dueMoved_.notify_all();
}

}  // namespace alarm_agent
