#ifndef HOST_PLATFORM_BUNDLE_PLATFORM_H_
#define HOST_PLATFORM_BUNDLE_PLATFORM_H_

#include <string>
#include <vector>

#include "host/platform/log_service.h"
#include "host/platform/log_sink.h"

/// Sets up the whole platform: configuration directory and items, log output and log service. bundle_host
/// constructs a `Platform`. Any other program that runs ACE's service configurator loads it by a directive,
/// which must precede those of the bundles:
///
///   dynamic bundle_platform Service_Object * libbundle_host.so:_make_bundle_platform()
///     "--config-dir DIR [--log-file FILE] [--log-level LEVEL]"      (on one line)
///
/// Its `init` logs one line and returns -1 for an invalid option, an unknown configuration directory, a
/// directory or log file that cannot be opened, and an invalid config_items.ini. Threads: one at a time, as
/// for any service object.
namespace host {

struct PlatformOptions {
  std::string configDir;  ///< empty: taken from the environment variable
  std::string logFile;    ///< appended to; empty: standard error
  int logLevel = 0;       ///< the lowest level to write
};

/// The platform is set up from construction to destruction; bundles are loaded and unloaded in between. At
/// most one exists at a time.
class PLATFORM_API Platform {
 public:
  /// Throws `Failure` with a one-line message when the log file or the directory cannot be opened or
  /// config_items.ini is invalid; the log output is then restored. A configuration directory need not be named,
  /// as for bundle_host, and config_items.ini may be missing.
  explicit Platform(const PlatformOptions& options);

  /// The warnings about config_items.ini, one line each.
  [[nodiscard]] const std::vector<std::string>& Warnings() const { return warnings_; }

  /// Whether all records so far have reached the log file.
  [[nodiscard]] bool LogIsComplete() const { return output_.IsComplete(); }

 private:
  const LogOutput output_;
  const std::vector<std::string> warnings_;
  const LogService logService_;
};

}  // namespace host

#endif  // HOST_PLATFORM_BUNDLE_PLATFORM_H_
