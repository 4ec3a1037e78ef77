// Loads the built bundle into a test program that exports the recording platform.

#include "tests/contract/loaded_bundle.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "tests/recording_framework.h"

namespace contract {
namespace {

using Factory = ACE_Service_Object*(ACE_Service_Object_Exterminator*);

}  // namespace

std::string BundlePath() {
  const char* const chosen = std::getenv("ASCII_UTIL_BUNDLE");
  return chosen == nullptr ? CONTRACT_BUNDLE : chosen;
}

int MappingsOfBundle() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);) {
    count += line.find("/libii_ascii_util") == std::string::npos ? 0 : 1;
  }
  return count;
}

LoadedBundle::LoadedBundle() : library_(dlopen(BundlePath().c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) {
    throw std::runtime_error(dlerror());
  }
  void* const symbol = Symbol("_make_ii_ascii_util");
  Factory* make;
  std::memcpy(&make, &symbol, sizeof make);
  service_ = make(&destroy_);
}

LoadedBundle::~LoadedBundle() {
  destroy_(service_);
  dlclose(library_);
}

void* LoadedBundle::interface() {
  return recording::Framework::Instance().BufferOf("AsciiUtilInterface")->front();
}

void* LoadedBundle::Symbol(const std::string& name) const { return dlsym(library_, name.c_str()); }

}  // namespace contract
