#ifndef HOST_LOADER_H_
#define HOST_LOADER_H_

#include <ace/Service_Object.h>

#include <memory>
#include <string>
#include <vector>

#include "framework/service_object_base.h"
#include "host/words.h"

namespace host {

/// A bundle as it was loaded.
struct LoadedBundle {
  std::string name;     ///< the name that ACE's service configurator knows it by
  std::string library;  ///< path of the library with its code
  ACE_Service_Object* object = nullptr;
  NS_BUNDLEMGR1::ServiceObjectBase* service = nullptr;  ///< the same object; null when it has another base
  std::shared_ptr<const std::string> finiProblem;       ///< what was wrong with its `fini`, once it has run
};

/// What an unload found.
struct UnloadReport {
  /// What went wrong on the way; empty when nothing did. The bundle is gone all the same.
  std::string problem;
  /// Why the library is still mapped; empty when it is not.
  std::string whyMapped;
};

/// Loads bundles through ACE's service configurator, one directive each, and unloads them again.
///
/// Who keeps what mapped: ACE holds the library from the directive to the removal. The loader holds a second
/// reference only while it works on it, so that an object which was left behind, as by an exterminator that
/// does nothing, can still be destroyed; an interface therefore never outlives its code. Loggers are the log
/// service's and stay. What other bundles have fetched they must drop before the unload.
///
/// Everything throws `Failure` (or `UsageError`, for what is not a right request) with one line, and has then
/// loaded and unloaded nothing, but for a "remove" that `Process` did and found something wrong with. What a
/// bundle's own code throws or changes in `init` is its own. Threads: one at a time.
class Loader {
 public:
  /// From here on ACE unmaps a library as soon as nobody uses it.
  Loader();
  Loader(const Loader&) = delete;
  Loader& operator=(const Loader&) = delete;

  /// Does `UnloadAll`.
  ~Loader();

  /// Unloads what is left, the last one loaded first. What goes wrong is told in one line each on standard
  /// error; false when something did.
  bool UnloadAll();

  /// Loads `library`: a path, a file of the working directory, or a name that the dynamic linker finds (NAME
  /// also stands for libNAME.so). The bundle gets the library's name without "lib" and ".so", or that of the
  /// file which a link leads to; its factory is "_make_" and the bundle's name. The arguments go to its
  /// `init`. Returns the bundle.
  const LoadedBundle& Load(const std::string& library, const Words& arguments);

  /// Processes one directive of a svc.conf.
  void Process(const std::string& directive);

  /// Calls `init` of a loaded bundle once more.
  void Init(const std::string& name, const Words& arguments);

  /// Calls `fini`, destroys the service object and gives the library back.
  /// Refused while another loaded bundle is linked against the library, unless `evenIfNeeded`. A `fini` that
  /// fails or throws keeps nothing loaded; the report tells.
  UnloadReport Unload(const std::string& name, bool evenIfNeeded = false);

  /// In the order in which they were loaded.
  const std::vector<LoadedBundle>& Bundles() const { return bundles_; }

  /// The loaded bundle of that name; throws `UsageError` with a suggestion when there is none.
  const LoadedBundle& Find(const std::string& name) const;

  /// A symbol of a loaded bundle's library, the last one loaded asked first; null when none has it.
  void* FindSymbol(const std::string& symbol) const;

 private:
  void Dynamic(const std::string& name, const std::string& directive);
  void Forget(const std::string& name);

  std::vector<LoadedBundle> bundles_;
};

}  // namespace host

#endif  // HOST_LOADER_H_
