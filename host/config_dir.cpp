#include "host/config_dir.h"

#include <cstdlib>
#include <mutex>

namespace host {
namespace {

std::string WithFinalSlash(std::string directory) {
  if (!directory.empty() && directory.back() != '/') {
    directory += '/';
  }
  return directory;
}

struct ConfigDir {
  std::mutex lock;
  std::string path;

  ConfigDir() {
    const char* const named = std::getenv(kConfigDirVariable);
    path = WithFinalSlash(named == nullptr ? "" : named);
  }
};

ConfigDir& TheConfigDir() {
  static auto& directory = *new ConfigDir;
  return directory;
}

}  // namespace

void SetConfigDir(const std::string& directory) {
  ConfigDir& place = TheConfigDir();
  const std::lock_guard<std::mutex> guard(place.lock);
  place.path = WithFinalSlash(directory);
}

}  // namespace host

std::string NS_BUNDLEMGR1::GetCfgDirPath() {
  host::ConfigDir& place = host::TheConfigDir();
  const std::lock_guard<std::mutex> guard(place.lock);
  return place.path;
}
