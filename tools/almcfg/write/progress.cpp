// Draws and erases the progress line. The object owns the line of the terminal. One thread at a time.

#include "tools/almcfg/write/progress.h"

#include <iostream>

#include "tools/almcfg/write/printable.h"

namespace almcfg {

constexpr const char* kClearLine = "\r\x1b[K";

void Progress::Show(const std::string& name, const char* done, std::uint64_t count) {
  if (!enabled_ || Clock::now() < next_) {
    return;
  }
  next_ = Clock::now() + interval_;
  shown_ = true;
  std::cerr << kClearLine << Printable(name) + ": " + Grouped(count) + " lines " + done << std::flush;
}

void Progress::Hide() {
  if (shown_) {
    std::cerr << kClearLine << std::flush;
    shown_ = false;
  }
}

}  // namespace almcfg
