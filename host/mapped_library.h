#ifndef HOST_MAPPED_LIBRARY_H_
#define HOST_MAPPED_LIBRARY_H_

#include <memory>
#include <string>
#include <vector>

/// What the dynamic linker and the kernel know about a library of this process.
/// Threads: one at a time.
namespace host {

/// A reference to a loaded library, given back at the end of its life.
class LibraryHandle {
 public:
  LibraryHandle() = default;

  /// Loads `library`, a path or a name that the dynamic linker finds, with all its symbols. Throws `Failure`
  /// with the linker's own words, or when a file that the linker may take, other than by its cache, is cut
  /// short: that one would end the process.
  static LibraryHandle Load(const std::string& library);

  /// A reference to a library that is loaded already; an empty handle when it is not.
  static LibraryHandle OfLoaded(const std::string& path);

  explicit operator bool() const { return handle_ != nullptr; }

  /// The address of a symbol that the library or one that it needs defines; null when there is none.
  void* Symbol(const std::string& name) const;

  /// The path that the dynamic linker loaded it from.
  std::string Path() const;

  /// Names of the libraries that it was linked against.
  std::vector<std::string> Needed() const;

  /// Whether it was linked so that it is never unloaded.
  bool IsMarkedNoDelete() const;

 private:
  struct Close {
    void operator()(void* handle) const;
  };
  explicit LibraryHandle(void* handle) : handle_(handle) {}

  std::unique_ptr<void, Close> handle_;
};

/// The path of the library that holds `address`; empty when none does.
std::string LibraryAt(const void* address);

/// Whether the process's mapping list (/proc/self/maps) holds the file.
bool IsMapped(const std::string& path);

/// Why a library that was given back is still mapped, as far as can be told: one line.
/// `others` are the paths of the libraries that are still loaded as bundles.
std::string WhyMapped(const std::string& path, const std::vector<std::string>& others);

/// The file's own name, without directories.
std::string BaseName(const std::string& path);

}  // namespace host

#endif  // HOST_MAPPED_LIBRARY_H_
