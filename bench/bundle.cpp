// Loads copies of a bundle's library and calls them. Each object owns its copy and the service object in it. One
// thread at a time loads; the operations may be called from any thread.

#include "bench/bundle.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "framework/service_object_base.h"
#include "tests/temp_directory.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

const fs::path& Directory() {
  static const TempDirectory directory;
  return directory.path();
}

[[noreturn]] void Fail(const std::string& library) {
  std::fprintf(stderr, "bench: cannot load %s: %s\n", library.c_str(), dlerror());
  std::exit(1);
}

std::string CopyOf(const std::string& library) {
  static int copies = 0;
  std::string copy = TempFile("bundle" + std::to_string(++copies) + ".so");
  std::error_code problem;
  fs::copy_file(library, copy, problem);  // A failure is reported by dlopen.
  return copy;
}

}  // namespace

std::string TempFile(const std::string& name) { return (Directory() / name).string(); }

Bundle::Bundle(std::string name, std::string library)
    : name_(std::move(name)),
      library_(std::move(library)),
      copy_(CopyOf(library_)),
      handle_(dlopen(copy_.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    Fail(library_);
  }
  using Factory = ACE_Service_Object* (*)(ACE_Service_Object_Exterminator*);
  Factory make = nullptr;
  Find("_make_ii_ascii_util", make);
  service_ = make(&destroy_);
  util_ = static_cast<NS_ASCII::AsciiUtilInterface*>(
      static_cast<NS_BUNDLEMGR1::ServiceObjectBase*>(service_)->GetInterface());
  const std::string text = "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";
  Find("_ZN8NS_ASCII4TrimERK" + text, Trim);
  Find("_ZN8NS_ASCII7Num2StrB5cxx11Ei", Num2Str);
  Find("_ZN8NS_ASCII10StrToUpperE" + text, StrToUpper);
  Find("_ZN8NS_ASCII10StrToLowerE" + text, StrToLower);
  Find("_ZN8NS_ASCII13utf8toiso8859E" + text, utf8toiso8859);
  Find("_ZN8NS_ASCII14GetURLEncodingE" + text, GetURLEncoding);
  Find("_ZN8NS_ASCII14GetURLDecodingE" + text, GetURLDecoding);
  Find("_ZN8NS_ASCII14SetURLDecodingE" + text, SetURLDecoding);
}

Bundle::~Bundle() {
  destroy_(service_);
  dlclose(handle_);
  fs::remove(copy_);
}

void Bundle::SetConfigFile(const std::string& file) {
  static std::string linked;
  if (std::exchange(linked, file) == file) {
    return;
  }
  const fs::path link = Directory() / "ii_asciiagent_bundle" / "AlarmConfig.csv";
  setenv("BUNDLE_HOST_CONFIG_DIR", Directory().c_str(), 1);
  fs::create_directories(link.parent_path());
  fs::remove(link);
  fs::create_symlink(file, link);
}

template <class Function>
void Bundle::Find(const std::string& mangled, Function& function) const {
  function = reinterpret_cast<Function>(dlsym(handle_, mangled.c_str()));
  if (function == nullptr) {
    Fail(library_);
  }
}

std::vector<std::unique_ptr<Bundle>>& Bundles() {
  static std::vector<std::unique_ptr<Bundle>> bundles;
  return bundles;
}

}  // namespace bench
