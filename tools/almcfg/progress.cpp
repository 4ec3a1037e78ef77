#include "tools/almcfg/progress.h"

#include <cstdio>

#include "tools/almcfg/visible.h"

namespace almcfg {

void Progress::Show(const std::string& name, const char* done, std::uint64_t count) {
  if (!enabled_ || Clock::now() < next_) {
    return;
  }
  next_ = Clock::now() + std::chrono::milliseconds(200);
  shown_ = true;
  std::fprintf(stderr, "\r\x1b[K%s: %s lines %s", Printable(name).c_str(), Grouped(count).c_str(), done);
  std::fflush(stderr);
}

void Progress::Hide() {
  if (shown_) {
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    shown_ = false;
  }
}

}  // namespace almcfg
