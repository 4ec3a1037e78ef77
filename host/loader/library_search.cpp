// Lists where a library may be, and tries the candidates. No state. One thread at a time.

#include "host/loader/library_search.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/base/problem.h"
#include "host/loader/library_trial.h"
#include "host/loader/mapped_library.h"
#include "host/platform/config_items.h"

namespace host {
namespace {

namespace fs = std::filesystem;

bool HasDirectory(const std::string& request) { return request.find('/') != std::string::npos; }

std::string WhereLooked(bool inWorkingDirectory, const std::vector<std::string>& directories) {
  std::string places = inWorkingDirectory ? "looked in the working directory and where" : "looked where";
  places += " the dynamic linker looks (LD_LIBRARY_PATH and the system's directories)";
  for (const std::string& directory : directories) {
    places += ", in " + directory;
  }
  return places;
}

}  // namespace

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string RealPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  return error ? path : real.string();
}

std::string FileNameOf(const std::string& request) {
  const bool isFile = HasDirectory(request) || request.find(".so") != std::string::npos;
  return isFile ? BaseName(request) : "lib" + request + ".so";
}

std::string BundleNameOf(const std::string& fileName) {
  std::string name = fileName;
  name.erase(std::min(name.find(".so"), name.size()));
  if (name.compare(0, 3, "lib") == 0) {
    name.erase(0, 3);
  }
  return name;
}

std::string FactoryOf(const std::string& bundle) { return "_make_" + bundle; }

std::vector<std::string> LibraryDirectories() {
  const auto directoryOf = [](const std::string& file) {
    return fs::path(RealPath(file)).parent_path().string();
  };
  std::vector<std::string> directories{directoryOf("/proc/self/exe")};
  const std::string platform = directoryOf(LibraryAt(reinterpret_cast<const void*>(&SetConfigDir)));
  if (platform != directories.front()) {
    directories.push_back(platform);
  }
  return directories;
}

std::vector<std::string> Candidates(const std::string& request, bool inWorkingDirectory,
                                    const std::vector<std::string>& directories) {
  if (HasDirectory(request)) {
    return {request};
  }
  std::vector<std::string> candidates;
  if (inWorkingDirectory) {
    candidates.push_back("./" + request);
  }
  const std::string name = FileNameOf(request);
  candidates.push_back(name);
  for (const std::string& directory : directories) {
    candidates.push_back(directory);
    candidates.back().append("/").append(name);
  }
  return candidates;
}

std::string FindLibrary(const std::string& request, bool inWorkingDirectory) {
  if (request.empty()) {
    throw UsageError("'' is not a library; give its path, or a name that the dynamic linker finds");
  }
  const std::vector<std::string> directories = LibraryDirectories();
  for (const std::string& candidate : Candidates(request, inWorkingDirectory, directories)) {
    std::error_code none;
    const bool isName = !HasDirectory(candidate);
    const bool exists = isName || (HasDirectory(request) ? fs::exists(candidate, none)
                                                         : fs::is_regular_file(candidate, none));
    if (!exists) {
      continue;
    }
    try {
      if (const std::string path = TryLibrary(isName ? candidate : RealPath(candidate)); !path.empty()) {
        return RealPath(path);
      }
    } catch (const Failure& failure) {
      throw Failure(request + ": " + failure.what());
    }
  }
  throw Failure(request + ": no such library" +
                (HasDirectory(request) ? "" : "; " + WhereLooked(inWorkingDirectory, directories)));
}

}  // namespace host
