#ifndef TOOLS_ALMCFG_WRITE_PROGRESS_H_
#define TOOLS_ALMCFG_WRITE_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <string>

/// Shows the progress of long jobs on a terminal. Threads: one at a time.
namespace almcfg {

/// One line on the terminal, written to standard error, that shows the progress of a long job. It appears
/// after a second and is erased at the end. Call `Hide` before anything else is written to the terminal.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  /// Shows nothing unless `enabled`, and nothing before `delay` is over; then updates the line at most once
  /// per `interval`.
  explicit Progress(bool enabled, Clock::duration delay = std::chrono::seconds(1),
                    Clock::duration interval = std::chrono::milliseconds(200))
      : enabled_(enabled), interval_(interval), next_(Clock::now() + delay) {}
  ~Progress() { Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows "NAME: COUNT lines DONE". Reads the clock, so call it for every few thousand lines only.
  void Show(const std::string& name, const char* done, std::uint64_t count);

  /// Erases the line, if it is shown.
  void Hide();

 private:
  bool enabled_;
  Clock::duration interval_;
  Clock::time_point next_;
  bool shown_ = false;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_PROGRESS_H_
