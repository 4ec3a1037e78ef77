#include "host/problem.h"

namespace host {

void FailAt(const std::string& file, int line, std::size_t column, const std::string& reason) {
  throw Failure(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + reason);
}

std::string CurrentExceptionText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "something that is no std::exception";
  }
}

}  // namespace host
