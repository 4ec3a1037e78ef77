// Sets up and ends the platform, also as a service object of ACE's configurator. The object owns the log
// output and the log service. One thread at a time.

#include "host/platform/bundle_platform.h"

#include <ace/Log_Msg.h>
#include <ace/Service_Object.h>

#include <filesystem>
#include <map>
#include <memory>
#include <system_error>

#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/platform/config_items.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

std::vector<std::string> SetUpConfiguration(const PlatformOptions& options) {
  if (!options.configDir.empty()) {
    SetConfigDir(options.configDir);
  }
  const std::string directory = NS_BUNDLEMGR1::GetCfgDirPath();
  if (directory.empty()) {
    return {};
  }
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::directory_iterator opened(directory, error);
  if (error) {
    throw Failure("configuration directory " + directory + ": " + error.message());
  }
  const std::string items = directory + kItemsFile;
  // The status of a link itself: a dangling one is reported as an error, not treated as a missing file.
  const bool exists = fs::symlink_status(items, error).type() != fs::file_type::not_found;
  return exists ? LoadItems(items) : std::vector<std::string>();
}

PlatformOptions ParseArguments(int argc, ACE_TCHAR* argv[]) {
  std::map<std::string, std::string> values{{"--config-dir", ""}, {"--log-file", ""}, {"--log-level", ""}};
  for (int at = 0; at < argc; at += 2) {
    const std::string name = argv[at];
    const auto option = values.find(name);
    if (option == values.end()) {
      throw UsageError("no option '" + name + "'" +
                       DidYouMean(name, {"--config-dir", "--log-file", "--log-level"},
                                  "; there are --config-dir, --log-file and --log-level"));
    }
    if (!option->second.empty()) {
      throw UsageError(name + " is given twice");
    }
    option->second = at + 1 < argc ? argv[at + 1] : "";
    if (option->second.empty()) {
      throw UsageError(name + " needs a value after it");
    }
  }
  const std::string& level = values["--log-level"];
  return {values["--config-dir"], values["--log-file"], level.empty() ? 0 : ParseLogLevel(level)};
}

class BundlePlatform : public ACE_Service_Object {
 public:
  int init(int argc, ACE_TCHAR* argv[]) override {
    try {
      platform_.reset();
      const PlatformOptions options = ParseArguments(argc, argv);
      if (options.configDir.empty() && NS_BUNDLEMGR1::GetCfgDirPath().empty()) {
        throw UsageError(std::string("no configuration directory is known: ") + kConfigDirHint);
      }
      platform_ = std::make_unique<Platform>(options);
      for (const std::string& warning : platform_->Warnings()) {
        ACE_ERROR((LM_WARNING, ACE_TEXT("bundle_platform: %C\n"), OneLine(warning).c_str()));
      }
      return 0;
    } catch (const std::exception& problem) {
      ACE_ERROR_RETURN((LM_ERROR, ACE_TEXT("bundle_platform: %C\n"), OneLine(problem.what()).c_str()), -1);
    }
  }

  int fini() override {
    platform_.reset();
    return 0;
  }

 private:
  std::unique_ptr<Platform> platform_;
};

}  // namespace

Platform::Platform(const PlatformOptions& options)
    : output_(options.logFile), warnings_(SetUpConfiguration(options)) {
  SetLogLevel(options.logLevel);
}

}  // namespace host

extern "C" PLATFORM_API ACE_Service_Object* _make_bundle_platform(
    ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) {
    *exterminator = [](void* object) { delete static_cast<ACE_Service_Object*>(object); };
  }
  return new host::BundlePlatform;
}
