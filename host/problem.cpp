#include "host/problem.h"

std::string host::CurrentExceptionText() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return exception.what();
  } catch (...) {
    return "something that is no std::exception";
  }
}
