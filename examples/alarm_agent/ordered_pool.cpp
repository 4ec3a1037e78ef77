// Processes lines on several threads and passes the results on in the order of the lines. The pool owns its
// threads; its owner starts and joins them, and they call the three functions.

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
  std::uint64_t number = 0;
  while (Take(line, number)) {
    Deliver(number, work_(line));
  }
}

bool OrderedPool::Take(FeedLine& line, std::uint64_t& number) {
  const std::lock_guard<std::mutex> guard(sourceLock_);
  hasEnded_ = hasEnded_ || !source_(line);
  if (hasEnded_) {
    return false;
  }
  number = taken_++;
  return true;
}

void OrderedPool::Deliver(std::uint64_t number, std::string result) {
  std::unique_lock<std::mutex> guard(resultLock_);
  // The thread whose number is due is within the window, so at least one thread can continue.
  dueMoved_.wait(guard, [&] { return number - due_ < kWindow; });
  finished_.emplace(number, std::move(result));
  while (!finished_.empty() && finished_.begin()->first == due_) {
    sink_(finished_.begin()->second);
    finished_.erase(finished_.begin());
    ++due_;
  }
  dueMoved_.notify_all();
}

}  // namespace alarm_agent
