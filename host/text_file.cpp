#include "host/text_file.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/problem.h"

std::ifstream host::OpenTextFile(const std::string& file) {
  // A directory can be opened, but then not read.
  if (std::error_code none; std::filesystem::is_directory(file, none)) {
    throw Failure(file + ": is a directory; a file is needed");
  }
  std::ifstream stream(file);
  if (!stream) {
    throw Failure(file + ": cannot be opened: " + std::generic_category().message(errno));
  }
  return stream;
}
