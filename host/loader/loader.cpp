// Loads, reloads and unloads bundles by ACE's directives. The object owns its list of bundles, ACE owns
// the services. One thread at a time.

#include "host/loader/loader.h"

#include <ace/ARGV.h>
#include <ace/DLL.h>
#include <ace/DLL_Manager.h>
#include <ace/Service_Config.h>
#include <ace/Service_Repository.h>
#include <ace/Service_Types.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <memory>
#include <utility>

#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/base/text_escape.h"
#include "host/loader/call_watch.h"
#include "host/loader/library_search.h"
#include "host/loader/mapped_library.h"
#include "host/platform/bundle_mgr.h"
#include "host/platform/config_items.h"
#include "host/platform/interface_registry.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

using NS_BUNDLEMGR1::ServiceInterface;
using NS_BUNDLEMGR1::ServiceObjectBase;

/// Splits the string of a directive into arguments as ACE does.
Words SplitAsAce(const std::string& parameters) {
  ACE_ARGV split(parameters.c_str());
  return {split.argv(), split.argv() + split.argc()};
}

/// Whether ACE has a service of that name; with `onlyActive`, one that is not suspended.
bool IsKnownToAce(const std::string& name, bool onlyActive = false) {
  return ACE_Service_Repository::instance()->find(name.c_str(), nullptr, onlyActive) == 0;
}

/// Destroys the service objects that are not in `before`, left by a failed load. Their code must be mapped.
void DestroyObjectsCreatedSince(const std::vector<ServiceEntry>& before) {
  for (const ServiceEntry& entry : ListServices()) {
    const bool isOld = std::any_of(before.begin(), before.end(),
                                   [&](const ServiceEntry& old) { return old.object == entry.object; });
    if (!isOld) {
      delete entry.object;
    }
  }
}

std::string WithReason(const std::string& problem, const std::string& reason) {
  return reason.empty() ? problem : problem + " (" + reason + ")";
}

/// The names of the registry that were looked up since `before`: the entry then, empty for a new name, and the
/// present one.
std::vector<std::pair<InterfaceName, InterfaceName>> LookedUpSince(const std::vector<InterfaceName>& before) {
  std::vector<std::pair<InterfaceName, InterfaceName>> names;
  for (const InterfaceName& name : ListInterfaces()) {
    const InterfaceName* const found = FindNamed(before, name.name);
    const InterfaceName old = found == nullptr ? InterfaceName() : *found;
    if (name.lookups > old.lookups) {
      names.emplace_back(old, name);
    }
  }
  return names;
}

/// See `LoadedBundle::wraps`; `own` is the bundle's interface, or null.
const ServiceInterface* WrappedSince(const std::vector<InterfaceName>& before, const ServiceInterface* own) {
  for (const auto& [old, now] : LookedUpSince(before)) {
    if (!old.interfaces.empty() && !now.interfaces.empty() && now.interfaces.front() == own) {
      return old.interfaces.front();
    }
  }
  return nullptr;
}

ServiceInterface* InterfaceOf(ServiceObjectBase* service) {
  return service == nullptr ? nullptr : service->GetInterface();
}

/// Suggests why an `init` failed.
std::string HintAtCause(const std::vector<InterfaceName>& before) {
  std::string hint;
  for (const auto& [old, now] : LookedUpSince(before)) {
    if (now.interfaces.empty()) {
      hint += (hint.empty() ? "; looked up and not registered: " : ", ") + now.name;
    }
  }
  if (NS_BUNDLEMGR1::GetCfgDirPath().empty()) {
    hint += std::string("; no configuration directory is known: ") + kConfigDirHint;
  }
  return hint.empty() ? "; its log records may say more" : hint;
}

/// Calls the factory. When it throws or returns null, destroys the objects that it created and throws
/// `Failure`.
ACE_Service_Object* CallFactory(void* factory, const std::string& name,
                                ACE_Service_Object_Exterminator& exterminator) {
  using Factory = ACE_Service_Object* (*)(ACE_Service_Object_Exterminator*);
  const std::vector<ServiceEntry> before = ListServices();
  std::string problem = "the factory returned null";
  try {
    const CallWatch watch("the factory of " + name);
    if (ACE_Service_Object* const object = reinterpret_cast<Factory>(factory)(&exterminator)) {
      return object;
    }
  } catch (...) {
    problem = "the factory threw: " + CurrentExceptionText();
  }
  DestroyObjectsCreatedSince(before);
  throw Failure(name + ": " + problem);
}

/// Passes the service to ACE, which calls `init`. Returns ACE's result; on 0 ACE owns `record`.
int Insert(const std::string& name, std::unique_ptr<ACE_Service_Type>& record) {
  // As ACE does for a directive, so that static services that `init` registers are removed with the library.
  const ACE_Service_Type_Dynamic_Guard guard(*ACE_Service_Repository::instance(), name.c_str());
  const int result = ACE_Service_Config::initialize(record.get(), ACE_TEXT(""));
  if (result == 0) {
    static_cast<void>(record.release());
  }
  return result;
}

}  // namespace

/// The parameters of one load.
struct Loader::Plan {
  std::string request;  ///< as given, for messages
  std::string name;
  std::string path;
  std::string factory;
  Words arguments;
  bool active = true;
};

// ACE's default policy lets each library choose, and unmaps lazily when a library does not.
Loader::Loader() {
  ACE_DLL_Manager::instance()->unload_policy(ACE_DLL_UNLOAD_POLICY_PER_PROCESS);
  NoteMapped();
}

Loader::~Loader() { UnloadAll(); }

bool Loader::UnloadAll() {
  bool ok = true;
  while (!bundles_.empty()) {
    const std::string name = bundles_.back().name;
    try {
      const UnloadReport report = Unload(name, true);
      if (!report.problem.empty()) {
        ok = false;
        std::cerr << "bundle_host: " << OneLine(report.problem) << '\n';
      }
    } catch (const std::exception& error) {
      ok = false;
      std::cerr << "bundle_host: " << OneLine(name + ": " + error.what()) << '\n';
      Forget(name);
    }
  }
  return ok;
}

const LoadedBundle& Loader::Load(const std::string& library, const Words& arguments) {
  const std::string path = FindLibrary(library, true);
  // Either the link or its target may have the bundle's name.
  const std::string asked = BundleNameOf(FileNameOf(library));
  const std::string real = BundleNameOf(BaseName(path));
  const LibraryHandle handle = LibraryHandle::Load(path);
  const bool isReal = handle.Symbol(FactoryOf(asked)) == nullptr && handle.Symbol(FactoryOf(real)) != nullptr;
  const std::string name = isReal ? real : asked;
  Start({library, name, path, FactoryOf(name), arguments});
  return bundles_.back();
}

void Loader::Process(const std::string& directive) {
  const Directive parts = ParseDirective(directive);
  // ACE skips an unknown word without reporting a problem.
  const std::vector<std::string> verbs{"dynamic", "static", "remove", "suspend", "resume"};
  if (std::find(verbs.begin(), verbs.end(), parts.verb) == verbs.end()) {
    throw Failure("'" + parts.verb +
                  "' is not a directive; there are dynamic, static, remove, suspend and resume");
  }
  if (parts.verb == "dynamic") {
    // ACE would use any symbol of that name as the factory or object that the directive declares.
    if (parts.library.empty() || parts.factory.empty()) {
      throw Failure(
          "the directive does not load a bundle; write dynamic NAME Service_Object * LIBRARY:FACTORY() "
          "\"ARGUMENTS\"");
    }
    RequireScannable(parts.name, directive);
    Start({parts.library, parts.name, FindLibrary(parts.library, false), parts.factory,
           SplitAsAce(parts.parameters), parts.active});
    return;
  }
  if (parts.name.empty()) {
    throw Failure("'" + parts.verb + "' needs the name of a service after it");
  }
  if (parts.verb != "static" && !parts.trailing.empty()) {
    throw Failure("'" + parts.verb + "' takes the name of a service and nothing after it, not '" +
                  parts.trailing + "'");
  }
  if (parts.verb == "remove") {
    if (const UnloadReport report = Unload(parts.name); !report.problem.empty()) {
      throw Failure(report.problem);
    }
    return;
  }
  if (parts.verb != "static" && !IsKnownToAce(parts.name)) {
    static_cast<void>(Find(parts.name));
  }
  PassToAce(parts, directive);
}

/// Does not use ACE's parser for `suspend` and `resume`: it would leak memory when the service throws.
void Loader::PassToAce(const Directive& parts, const std::string& directive) {
  const AceComplaints complaints;
  int result = 0;
  try {
    result = parts.verb == "suspend"  ? ACE_Service_Config::suspend(parts.name.c_str())
             : parts.verb == "resume" ? ACE_Service_Config::resume(parts.name.c_str())
                                      : ACE_Service_Config::process_directive(directive.c_str());
  } catch (...) {
    throw Failure("the directive failed: the service threw: " + CurrentExceptionText());
  }
  if (result != 0 || !complaints.Text().empty()) {
    throw Failure(WithReason("the directive failed", complaints.Text()));
  }
}

void Loader::Start(const Plan& plan) {
  if (IsKnownToAce(plan.name)) {
    throw UsageError("a bundle " + plan.name + " is loaded already; unload it first");
  }
  RefuseOldCode(plan.path);
  const FileIdentity file = IdentityOf(plan.path);
  const LibraryHandle library = LibraryHandle::Load(plan.path);
  void* const factory = library.Symbol(plan.factory);
  if (factory == nullptr) {
    throw Failure(plan.request + ": has no factory " + plan.factory +
                  "; it must export extern \"C\" ACE_Service_Object* " + plan.factory +
                  "(ACE_Service_Object_Exterminator*)");
  }
  const AceComplaints complaints;
  ACE_DLL dll;
  if (dll.open(plan.path.c_str()) != 0) {
    throw Failure(WithReason(plan.name + ": ACE did not load it", complaints.Text()));
  }
  const std::vector<ServiceEntry> servicesBefore = ListServices();
  const std::vector<InterfaceName> namesBefore = ListInterfaces();
  ACE_Service_Object_Exterminator exterminator = nullptr;
  ACE_Service_Object* const object = CallFactory(factory, plan.name, exterminator);
  const auto problems = std::make_shared<ServiceProblems>();
  auto record = std::make_unique<ACE_Service_Type>(
      plan.name.c_str(), new WatchedService(object, plan.name, exterminator, plan.arguments, problems), dll,
      plan.active);
  if (Insert(plan.name, record) != 0) {
    const std::string hint = HintAtCause(namesBefore);
    record.reset();  // Calls the exterminator, which may not destroy the object.
    DestroyObjectsCreatedSince(servicesBefore);
    throw Failure(WithReason(plan.name + ": " + problems->init, complaints.Text()) + hint);
  }
  NoteMapped();
  auto* const service = dynamic_cast<ServiceObjectBase*>(object);
  const std::vector<MappedLibrary> libraries = MappedLibraries();
  const MappedLibrary* const mapped = FindMapped(libraries, plan.path);
  bundles_.push_back({plan.name, plan.path, plan.factory, object, service, problems,
                      WrappedSince(namesBefore, InterfaceOf(service)), plan.arguments, file,
                      mapped == nullptr ? "" : mapped->buildId, std::chrono::system_clock::now()});
}

void Loader::Init(const std::string& name, const Words& arguments) {
  auto& bundle = const_cast<LoadedBundle&>(Find(name));  // An element of the vector, which is not const.
  const AceComplaints complaints;
  std::string problem;
  if (CallInit(*bundle.object, name, arguments, problem) != 0) {
    throw Failure(WithReason(name + ": " + problem, complaints.Text()));
  }
  bundle.arguments = arguments;
}

/// Records the file of every newly mapped library and drops those that are no longer mapped.
void Loader::NoteMapped() {
  std::map<std::string, FileIdentity> files;
  for (const MappedLibrary& library : MappedLibraries()) {
    const auto known = mappedFiles_.find(library.path);
    files[library.path] = known == mappedFiles_.end() ? IdentityOf(library.path) : known->second;
  }
  mappedFiles_ = std::move(files);
  for (auto path = stillMapped_.begin(); path != stillMapped_.end();) {
    path = mappedFiles_.count(*path) == 0 ? stillMapped_.erase(path) : std::next(path);
  }
}

void Loader::RefuseOldCode(const std::string& library) const {
  const std::vector<MappedLibrary> libraries = MappedLibraries();
  if (FindMapped(libraries, library) == nullptr) {
    return;
  }
  const auto file = mappedFiles_.find(library);
  const bool isOld = file != mappedFiles_.end() && file->second != IdentityOf(library);
  if (isOld || stillMapped_.count(library) != 0) {
    throw Failure(library + " is still mapped" + (isOld ? ", and its file has changed since" : "") +
                  ": the code in memory would run, not the file's: " + WhyMapped(libraries, library));
  }
}

void Loader::RefuseWhileNeeded(const LoadedBundle& bundle) const {
  const std::vector<MappedLibrary> libraries = MappedLibraries();
  const MappedLibrary* const library = FindMapped(libraries, bundle.library);
  const ServiceInterface* const interface = InterfaceOf(bundle.service);
  std::string users;
  for (const LoadedBundle& other : bundles_) {
    const MappedLibrary* const user = FindMapped(libraries, other.library);
    const bool isLinked = library != nullptr && user != nullptr && user != library && user->Needs(*library);
    if (isLinked || (interface != nullptr && other.wraps == interface)) {
      users += (users.empty() ? "" : ", ") + other.name +
               (isLinked ? " is linked against it" : " passes calls on to its interface");
    }
  }
  if (!users.empty()) {
    throw Failure(bundle.name + " is in use: " + users + "; unload first what uses it");
  }
}

UnloadReport Loader::Unload(const std::string& name, bool force) {
  const LoadedBundle bundle = Find(name);
  if (!force) {
    RefuseWhileNeeded(bundle);
  }
  UnloadReport report;
  {
    const LibraryHandle keepMapped = LibraryHandle::OfLoaded(bundle.library);
    const AceComplaints complaints;
    const int result = ACE_Service_Config::remove(name.c_str());
    if (bundle.service != nullptr && IsListed(bundle.service)) {
      report.problem = name + ": its exterminator did not destroy the service object; the host destroyed it";
      delete bundle.service;
    } else if (result != 0) {
      report.problem = WithReason(name + ": ACE could not remove it", complaints.Text());
    } else if (!bundle.problems->fini.empty()) {
      report.problem = WithReason(name + ": " + bundle.problems->fini, complaints.Text());
    }
  }
  Forget(name);
  const std::vector<MappedLibrary> libraries = MappedLibraries();
  report.whyMapped = SharedWith(bundle);
  if (report.whyMapped.empty() && FindMapped(libraries, bundle.library) != nullptr) {
    report.whyMapped = WhyMapped(libraries, bundle.library);
    stillMapped_.insert(bundle.library);
  }
  NoteMapped();
  return report;
}

std::string Loader::SharedWith(const LoadedBundle& bundle) const {
  const auto other = std::find_if(bundles_.begin(), bundles_.end(), [&](const LoadedBundle& loaded) {
    return loaded.library == bundle.library && loaded.name != bundle.name;
  });
  return other == bundles_.end() ? "" : "bundle " + other->name + " was loaded from it";
}

const LoadedBundle& Loader::Reload(const std::string& name) {
  const LoadedBundle old = Find(name);
  RefuseWhileNeeded(old);
  std::string holder = old.ChangedOnDisk() ? SharedWith(old) : "";
  if (holder.empty()) {
    holder = KnownHolder(MappedLibraries(), old.library);
  }
  if (!holder.empty()) {
    throw Failure(name + " cannot be reloaded, as " + old.library + " would stay mapped: " + holder);
  }
  FindLibrary(old.library, false);
  const bool isActive = IsKnownToAce(name, true);
  const UnloadReport report = Unload(name);
  try {
    Start({old.library, name, old.library, old.factory, old.arguments, isActive});
  } catch (const Failure& failure) {
    throw Failure(name + " was unloaded, but not loaded again: " + failure.what());
  }
  if (!report.problem.empty()) {
    throw Failure(name + " was reloaded, but its unload failed: " + report.problem);
  }
  return bundles_.back();
}

const LoadedBundle& Loader::Find(const std::string& name) const {
  if (const LoadedBundle* const bundle = FindNamed(bundles_, name)) {
    return *bundle;
  }
  throw Failure("no bundle '" + name + "' is loaded" +
                DidYouMean(name, NamesOf(bundles_), "; 'bundles' lists them"));
}

void* Loader::FindSymbol(const std::string& symbol) const {
  for (auto bundle = bundles_.rbegin(); bundle != bundles_.rend(); ++bundle) {
    const LibraryHandle library = LibraryHandle::OfLoaded(bundle->library);
    if (void* const found = library ? library.Symbol(symbol) : nullptr; found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

void Loader::Forget(const std::string& name) {
  bundles_.erase(std::remove_if(bundles_.begin(), bundles_.end(),
                                [&](const LoadedBundle& bundle) { return bundle.name == name; }),
                 bundles_.end());
}

}  // namespace host
