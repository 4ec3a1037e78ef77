#ifndef BENCH_BUNDLE_H_
#define BENCH_BUNDLE_H_

#include <ace/Service_Object.h>

#include <memory>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

/// The bundle as its callers use it: loaded with `dlopen`, called through the virtual table and the exported
/// symbols. The open host is the platform.
namespace bench {

/// A loaded bundle library with its own alarm configuration.
///
/// Every object maps a private copy of the library's file, so that several builds, and several configurations
/// of one build, are loaded at the same time. Construct, load and destroy on one thread at a time.
class Bundle {
 public:
  /// Loads `library` and creates its service object, with an empty alarm configuration. `name` is its
  /// name in the reports. Ends the program when the library cannot be loaded.
  Bundle(std::string name, std::string library);
  ~Bundle();
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;

  /// Another copy of the same library.
  [[nodiscard]] std::unique_ptr<Bundle> Another() const { return std::make_unique<Bundle>(name_, library_); }

  /// Makes `file` the alarm configuration file for the next `Init`.
  static void SetConfigFile(const std::string& file);
  /// Calls the service object's `init`, which loads the alarm configuration file.
  void Init() const { service_->init(0, nullptr); }

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] NS_ASCII::AsciiUtilInterface& util() const { return *util_; }

  using TextFunction = std::string (*)(std::string);
  std::string (*Trim)(const std::string&);
  std::string (*Num2Str)(int);
  TextFunction StrToUpper;
  TextFunction StrToLower;
  TextFunction utf8toiso8859;
  TextFunction GetURLEncoding;
  TextFunction GetURLDecoding;
  TextFunction SetURLDecoding;

 private:
  template <class Function>
  void Find(const std::string& mangled, Function& function) const;

  std::string name_;
  std::string library_;
  std::string copy_;
  void* handle_;
  ACE_Service_Object_Exterminator destroy_ = nullptr;
  ACE_Service_Object* service_;
  NS_ASCII::AsciiUtilInterface* util_;
};

/// The bundles to compare: "ours", the one of this build, and those named on the command line. Filled by
/// `main`.
std::vector<std::unique_ptr<Bundle>>& Bundles();

/// The path of a file in this run's directory, which is removed at exit.
std::string TempFile(const std::string& name);

}  // namespace bench

#endif  // BENCH_BUNDLE_H_
