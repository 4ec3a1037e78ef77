// The lowest level that is written: an atomic number of the process. Any thread may call.

#include "host/platform/log_level.h"

#include <atomic>

#include "host/base/problem.h"

namespace host {
namespace {

std::atomic<int> lowestLevel{0};

}  // namespace

void SetLogLevel(int level) { lowestLevel = level; }

int LogLevel() { return lowestLevel; }

int ParseLogLevel(const std::string& text) {
  if (text == "off") {
    return kLogOff;
  }
  if (text == "0" || text == "1" || text == "2") {
    return text[0] - '0';
  }
  throw UsageError("'" + text + "' is not a log level; there are 0, 1, 2 and off");
}

}  // namespace host
