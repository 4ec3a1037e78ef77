#include "host/log_level.h"

#include "host/log_sink.h"
#include "host/problem.h"

int host::ParseLogLevel(const std::string& text) {
  if (text == "off") {
    return kLogOff;
  }
  if (text == "0" || text == "1" || text == "2") {
    return text[0] - '0';
  }
  throw UsageError("'" + text + "' is no log level; there are 0, 1, 2 and off");
}
