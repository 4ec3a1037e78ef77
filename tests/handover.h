#ifndef TESTS_HANDOVER_H_
#define TESTS_HANDOVER_H_

#include <atomic>
#include <thread>

/// Runs `make` on one thread and, after it returned, `use` on another, without synchronisation between the
/// two: the code under test must order memory itself, and ThreadSanitizer reports where it does not. Both
/// threads are started before either runs.
template <class Make, class Use>
void HandOver(Make make, Use use) {
  std::atomic<int> step{0};
  const auto await = [&step](int wanted) {
    while (step.load(std::memory_order_relaxed) != wanted) {
      std::this_thread::yield();
    }
  };
  std::thread user([&] {
    step.store(1, std::memory_order_relaxed);
    await(2);
    use();
  });
  std::thread maker([&] {
    await(1);
    make();
    step.store(2, std::memory_order_relaxed);
  });
  maker.join();
  user.join();
}

#endif  // TESTS_HANDOVER_H_
