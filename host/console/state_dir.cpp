// Finds and creates the directory of the history. No state; any thread may call while the environment does
// not change.

#include "host/console/state_dir.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace host {
namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::string HistoryFile() {
  std::filesystem::path directory = Environment("XDG_STATE_HOME");
  if (!directory.is_absolute()) {
    const std::filesystem::path home = Environment("HOME");
    if (!home.is_absolute()) {
      return {};
    }
    directory = home / ".local" / "state";
  }
  directory /= "bundle_host";
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  return error ? "" : (directory / "history").string();
}

}  // namespace host
