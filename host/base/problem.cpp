// Describes the exception that is being handled. No state; any thread may call.

#include "host/base/problem.h"

namespace host {

std::string CurrentExceptionText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "something that is not a std::exception";
  }
}

}  // namespace host
