#ifndef TOOLS_ALMCFG_PROGRESS_H_
#define TOOLS_ALMCFG_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <string>

namespace almcfg {

/// One line on the terminal that says how far a long job has come. It appears after a second and leaves
/// nothing behind. Call `Hide` before anything else is written to the terminal.
class Progress {
 public:
  /// Shows nothing unless `enabled`.
  explicit Progress(bool enabled) : enabled_(enabled) {}
  ~Progress() { Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// "NAME: COUNT lines DONE". Cheap, but not for every line.
  void Show(const std::string& name, const char* done, std::uint64_t count);
  void Hide();

 private:
  using Clock = std::chrono::steady_clock;
  bool enabled_;
  bool shown_ = false;
  Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_PROGRESS_H_
