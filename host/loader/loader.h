#ifndef HOST_LOADER_LOADER_H_
#define HOST_LOADER_LOADER_H_

#include <ace/Service_Object.h>

#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "framework/service_object_base.h"
#include "host/base/words.h"
#include "host/loader/directive.h"
#include "host/loader/mapped_library.h"
#include "host/loader/watched_service.h"

namespace host {

/// A loaded bundle. The pointers are borrowed and valid until its unload.
struct LoadedBundle {
  std::string name;     ///< its name in ACE's service configurator
  std::string library;  ///< real path of its library
  std::string factory;
  ACE_Service_Object* object = nullptr;
  NS_BUNDLEMGR1::ServiceObjectBase* service = nullptr;  ///< the same object; null when it has another base
  std::shared_ptr<const ServiceProblems> problems;
  /// The interface that the bundle found under a name and registered its own in front of, such as the one
  /// that a recorder passes calls on to; null when there is none. Compared, never dereferenced.
  const NS_BUNDLEMGR1::ServiceInterface* wraps = nullptr;
  Words arguments;      ///< of the last `init` that succeeded
  FileIdentity file;    ///< the library's file when it was loaded
  std::string buildId;  ///< of the library, hexadecimal; empty when it was linked without one
  std::chrono::system_clock::time_point loadTime;

  /// Whether the file was changed, replaced or removed since the load.
  [[nodiscard]] bool ChangedOnDisk() const { return IdentityOf(library) != file; }
};

/// The result of an unload.
struct UnloadReport {
  /// What failed during the unload; empty when nothing did. The loader forgets the bundle in any case.
  std::string problem;
  /// Why the library is still mapped; empty when it is not.
  std::string whyMapped;
};

/// Loads bundles through ACE's service configurator and unloads them.
///
/// Ownership: ACE holds a reference to the library from the load to the removal. The loader holds a second
/// one only during its own calls: it keeps the code mapped until the loader has destroyed a service object
/// that the exterminator left. Loggers belong to the log service and are kept. Other bundles must
/// drop the interfaces that they fetched before the unload.
///
/// Every library is tried in a child process first (see library_trial.h). Factories, `init` and `fini` run
/// under a `CallWatch`.
///
/// All functions throw `Failure`, or `UsageError` for an invalid request, with a one-line message. Then
/// nothing was loaded or unloaded, except that `Reload` may have unloaded the bundle, and that a "remove"
/// directive whose `fini` fails has removed it. Other effects of a failed `init` are not undone. Threads: one
/// at a time.
class Loader {
 public:
  /// Makes ACE unmap a library when its last service is removed, for the life of the process.
  Loader();
  Loader(const Loader&) = delete;
  Loader& operator=(const Loader&) = delete;

  /// Calls `UnloadAll`.
  ~Loader();

  /// Unloads all loaded bundles, the last one loaded first. Reports each failure in one line on standard
  /// error; returns false when there was one.
  bool UnloadAll();

  /// Loads `library`: a path, a file of the working directory, or a name that the dynamic linker finds or
  /// that is in one of `LibraryDirectories` (NAME also means libNAME.so). The bundle's name is the file name
  /// without "lib" and ".so"; for a symbolic link, the name of the target if the library has a factory only
  /// for that name. The factory is "_make_" and the bundle's name. Calls `init` with `arguments`. Returns the
  /// bundle.
  ///
  /// Throws `Failure` when the library is mapped already and its file has changed since, or when it stayed
  /// mapped after an unload: old code, or code with old state, would run.
  const LoadedBundle& Load(const std::string& library, const Words& arguments);

  /// Processes one directive of a svc.conf.
  void Process(const std::string& directive);

  /// Calls `init` of a loaded bundle again.
  void Init(const std::string& name, const Words& arguments);

  /// Calls `fini`, destroys the service object and releases the library. Throws `Failure` while another
  /// loaded bundle is linked against the library or passes calls on to the bundle's interface, unless
  /// `force`, as in `UnloadAll`. When `fini` fails or throws, the bundle is still unloaded and the problem is
  /// in the report.
  UnloadReport Unload(const std::string& name, bool force = false);

  /// Unloads the bundle, loads its current file and calls `init` with the arguments of the last successful
  /// `init`. A suspended bundle is loaded inactive. The bundle then counts as the last one loaded. Returns the
  /// bundle.
  ///
  /// Throws before the unload when other loaded bundles use this one, as for `Unload` (the message names all
  /// of them), when the old library would stay mapped as far as that is known, or when the new file cannot be
  /// loaded. Throws after the unload, and the message says so, when the old library stays mapped nevertheless,
  /// the new file has no factory of the old name, or its factory or `init` fails. Throws after the reload when
  /// the unload reported a problem.
  const LoadedBundle& Reload(const std::string& name);

  /// The loaded bundles, in load order.
  [[nodiscard]] const std::vector<LoadedBundle>& Bundles() const { return bundles_; }

  /// The loaded bundle of that name; throws `Failure` with a suggestion when there is none.
  [[nodiscard]] const LoadedBundle& Find(const std::string& name) const;

  /// The address of a symbol in the libraries of the loaded bundles, searched from the last one loaded; null
  /// when none defines it.
  [[nodiscard]] void* FindSymbol(const std::string& symbol) const;

 private:
  struct Plan;

  void Start(const Plan& plan);
  static void PassToAce(const Directive& parts, const std::string& directive);
  void RefuseWhileNeeded(const LoadedBundle& bundle) const;
  void RefuseOldCode(const std::string& library) const;
  [[nodiscard]] std::string SharedWith(const LoadedBundle& bundle) const;
  void NoteMapped();
  void Forget(const std::string& name);

  std::vector<LoadedBundle> bundles_;
  std::map<std::string, FileIdentity>
      mappedFiles_;                    ///< by path: every mapped library's file when it was first seen
  std::set<std::string> stillMapped_;  ///< paths that stayed mapped after an unload
};

}  // namespace host

#endif  // HOST_LOADER_LOADER_H_
