#ifndef HOST_LOADER_LIBRARY_SEARCH_H_
#define HOST_LOADER_LIBRARY_SEARCH_H_

#include <string>
#include <vector>

/// Finds the library file of a request: a path, a file name, or NAME for libNAME.so.
/// Threads: one at a time; `FindLibrary` starts a child process.
namespace host {

/// The part of `path` after the last '/'.
std::string BaseName(const std::string& path);

/// Resolves links, "." and "..". Of a file that does not exist, the existing directories are resolved.
std::string RealPath(const std::string& path);

/// The file name of a request: libNAME.so for NAME.
std::string FileNameOf(const std::string& request);

/// The name of the bundle in a library: the file name without "lib" and without ".so" and what follows it.
std::string BundleNameOf(const std::string& fileName);

/// The name of the bundle's factory: "_make_" and the bundle's name.
std::string FactoryOf(const std::string& bundle);

/// The directories to search after the dynamic linker found nothing: those of the program and of
/// libbundle_host.so. Bundles are installed there.
std::vector<std::string> LibraryDirectories();

/// The paths (with a '/') and names (for the dynamic linker) to try for a request, in order. A request with a
/// '/' is its only candidate. With `inWorkingDirectory`, a file of the working directory comes first.
std::vector<std::string> Candidates(const std::string& request, bool inWorkingDirectory,
                                    const std::vector<std::string>& directories);

/// Finds the library of a request and tries to load it in a child process. Returns its real path. Throws
/// `UsageError` for an empty request, and `Failure`, starting with the request, when the library is not found
/// (the message lists the directories searched) or cannot be loaded. `inWorkingDirectory` is as for
/// `Candidates`.
std::string FindLibrary(const std::string& request, bool inWorkingDirectory);

}  // namespace host

#endif  // HOST_LOADER_LIBRARY_SEARCH_H_
