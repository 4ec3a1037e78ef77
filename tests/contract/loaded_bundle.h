#ifndef TESTS_CONTRACT_LOADED_BUNDLE_H_
#define TESTS_CONTRACT_LOADED_BUNDLE_H_

#include <ace/Service_Object.h>

#include <string>

namespace contract {

/// The bundle's file: the built one, or the one that the environment variable ASCII_UTIL_BUNDLE names.
std::string BundlePath();

/// The number of mappings of the bundle's file in the process's mapping list.
int MappingsOfBundle();

/// The bundle, opened with local symbols (other libraries cannot use them), with one service object.
/// It uses the recording platform, which this program exports.
class LoadedBundle {
 public:
  /// Throws `std::runtime_error` with the linker's message when the bundle cannot be loaded.
  LoadedBundle();
  /// Destroys the service object through its exterminator and closes the library.
  ~LoadedBundle();
  LoadedBundle(const LoadedBundle&) = delete;
  LoadedBundle& operator=(const LoadedBundle&) = delete;

  [[nodiscard]] ACE_Service_Object* service() const { return service_; }
  /// The interface that the service object registered.
  [[nodiscard]] static void* interface();
  /// The address of an exported symbol; null when there is none.
  void* Symbol(const std::string& name) const;

 private:
  void* library_;
  ACE_Service_Object_Exterminator destroy_ = nullptr;
  ACE_Service_Object* service_ = nullptr;
};

}  // namespace contract

#endif  // TESTS_CONTRACT_LOADED_BUNDLE_H_
