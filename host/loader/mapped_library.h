#ifndef HOST_LOADER_MAPPED_LIBRARY_H_
#define HOST_LOADER_MAPPED_LIBRARY_H_

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

/// The shared libraries of this process: load, look up symbols, list, and explain why one is still mapped.
/// Paths of `MappedLibrary` are real paths, without links. Threads: one at a time.
namespace host {

/// Identifies a file and its version: two values differ when the path leads to another file or the file was
/// written.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t seconds = 0;  ///< of the last change of its contents
  std::int64_t nanoseconds = 0;

  bool operator==(const FileIdentity& other) const {
    return std::tie(device, inode, size, seconds, nanoseconds) ==
           std::tie(other.device, other.inode, other.size, other.seconds, other.nanoseconds);
  }
  bool operator!=(const FileIdentity& other) const { return !(*this == other); }
};

/// The identity of the file at `path`; all zero when there is none.
FileIdentity IdentityOf(const std::string& path);

/// Owns a reference to a loaded library and releases it at the end of its life.
class LibraryHandle {
 public:
  LibraryHandle() = default;

  /// Loads `library`, a path or a name that the dynamic linker finds. Throws `Failure` with the linker's
  /// message, also when a symbol is missing.
  static LibraryHandle Load(const std::string& library);

  /// A reference to a library that is loaded already; an empty handle when it is not.
  static LibraryHandle OfLoaded(const std::string& path);

  explicit operator bool() const { return handle_ != nullptr; }

  /// The address of a symbol that the library or one that it needs defines; null when there is none.
  [[nodiscard]] void* Symbol(const std::string& name) const;

  /// The path that the dynamic linker loaded it from, links not resolved.
  [[nodiscard]] std::string Path() const;

 private:
  struct Close {
    void operator()(void* handle) const;
  };
  explicit LibraryHandle(void* handle) : handle_(handle) {}

  std::unique_ptr<void, Close> handle_;
};

/// A mapped library, as the dynamic linker describes it.
struct MappedLibrary {
  std::string path;
  std::string buildId;              ///< hexadecimal; empty when it was linked without one
  std::string soname;               ///< may be empty
  std::vector<std::string> needed;  ///< names of the libraries that it was linked against
  bool isNoDelete = false;          ///< linked with -z nodelete

  /// Whether it was linked against `other`.
  [[nodiscard]] bool Needs(const MappedLibrary& other) const;
};

/// All libraries that are mapped, in the order in which they were loaded.
std::vector<MappedLibrary> MappedLibraries();

/// The library with that path, borrowed from `libraries`; null when there is none.
const MappedLibrary* FindMapped(const std::vector<MappedLibrary>& libraries, const std::string& path);

/// What keeps the library at `path` mapped when it is released, as far as the dynamic linker shows it: the
/// libraries that need it, or the flag -z nodelete. Empty when it shows nothing, or the library is not in
/// `libraries`, which are all mapped libraries.
std::string KnownHolder(const std::vector<MappedLibrary>& libraries, const std::string& path);

/// Explains in one line why the library at `path`, one of `libraries`, is still mapped after its release.
std::string WhyMapped(const std::vector<MappedLibrary>& libraries, const std::string& path);

/// The path of the library that holds `address`, links not resolved; empty when none does.
std::string LibraryAt(const void* address);

}  // namespace host

#endif  // HOST_LOADER_MAPPED_LIBRARY_H_
