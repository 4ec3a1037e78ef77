#include "host/loader.h"

#include <ace/DLL_Manager.h>
#include <ace/Service_Config.h>
#include <ace/Service_Repository.h>
#include <ace/Service_Types.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>
#include <utility>

#include "host/bundle_table.h"
#include "host/config_dir.h"
#include "host/directive.h"
#include "host/log_sink.h"
#include "host/mapped_library.h"
#include "host/problem.h"
#include "host/suggest.h"
#include "host/text_escape.h"
#include "host/watched_service.h"

namespace host {
namespace {

using NS_BUNDLEMGR1::ServiceObjectBase;

std::string RealPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  return real == nullptr ? path : real.get();
}

/// The name of the file that a request means: NAME stands for libNAME.so.
std::string FileNameOf(const std::string& request) {
  const bool isFile = request.find('/') != std::string::npos || request.find(".so") != std::string::npos;
  return isFile ? BaseName(request) : "lib" + request + ".so";
}

/// Loads the library of a request and says what is wrong with it in terms of the request.
LibraryHandle OpenLibrary(const std::string& request) {
  if (request.empty()) {
    throw UsageError("'' is no library; give its path, or a name that the dynamic linker finds");
  }
  const bool isPath = request.find('/') != std::string::npos;
  if (std::error_code none; isPath && !std::filesystem::exists(request, none)) {
    throw Failure(request + ": no such library");
  }
  try {
    return LibraryHandle::Load(isPath ? RealPath(request) : FileNameOf(request));
  } catch (const Failure& failure) {
    throw Failure(request + ": " + failure.what());
  }
}

/// The library that `load` is asked for: a file of the working directory needs no "./".
std::string WithDirectory(const std::string& request) {
  std::error_code none;
  const bool isHere =
      request.find('/') == std::string::npos && std::filesystem::is_regular_file(request, none);
  return isHere ? "./" + request : request;
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

void RequireFactory(const LibraryHandle& library, const std::string& request, const std::string& factory) {
  if (library.Symbol(factory) == nullptr) {
    throw Failure(request + ": has no factory " + factory +
                  "; it must export extern \"C\" ACE_Service_Object* " + factory +
                  "(ACE_Service_Object_Exterminator*)");
  }
}

/// The arguments as ACE splits them again.
std::string QuoteForAce(const Words& arguments) {
  std::string text;
  for (const std::string& argument : arguments) {
    if (argument.find_first_of("\"'\\$\n") != std::string::npos) {
      throw UsageError("argument '" + argument +
                       "' holds a quote, a backslash, a '$' or a line end, which ACE's "
                       "directives cannot pass on");
    }
    text += (text.empty() ? "'" : " '") + argument + "'";
  }
  return text;
}

ACE_Service_Object* ServiceOf(const std::string& name) {
  const ACE_Service_Type* type = nullptr;
  const bool found = ACE_Service_Repository::instance()->find(name.c_str(), &type, false) == 0;
  if (!found || type == nullptr || type->type() == nullptr ||
      type->type()->service_type() != ACE_Service_Type::SERVICE_OBJECT) {
    return nullptr;
  }
  return static_cast<ACE_Service_Object*>(type->type()->object());
}

/// Throws when a name or the string in a directive is longer than ACE can scan. Behind such a string it would
/// have called `init` already, without any argument.
void RequireScannable(const std::string& name, const std::string& directive) {
  constexpr std::size_t kMost = 4094;
  if (name.size() > kMost) {
    throw UsageError("'" + name + "' is too long a name; ACE holds " + std::to_string(kMost) + " bytes");
  }
  const std::size_t open = directive.find_first_of("\"'");
  const std::size_t size = open == std::string::npos ? 0 : directive.rfind(directive[open]) - open - 1;
  if (size > kMost) {
    throw UsageError("the arguments take " + std::to_string(size) + " bytes in a directive, and ACE holds " +
                     std::to_string(kMost) + "; have the bundle read them from a file");
  }
}

/// Whether ACE has a service of that name, a suspended one included.
bool IsKnownToAce(const std::string& name) {
  return ACE_Service_Repository::instance()->find(name.c_str(), nullptr, false) == 0;
}

/// Destroys what a failed life cycle left behind. Their code must still be mapped.
void DestroyNewcomers(const std::vector<ServiceEntry>& before) {
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

/// Whether ACE's scanner is sure to take `name` for a name.
bool IsPlainName(const std::string& name) {
  const std::vector<std::string> words{"dynamic", "static", "suspend",        "resume", "remove",  "stream",
                                       "STREAM",  "Module", "Service_Object", "active", "inactive"};
  const auto isLetter = [](char c) { return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const auto isMore = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
  return !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), isMore) &&
         std::find(words.begin(), words.end(), name) == words.end();
}

/// A bundle that ACE did not load although nothing was thrown. An object of a foreign base is not listed.
std::string WhyNotLoaded(const std::string& name, bool wasMade, const std::string& complaint) {
  if (wasMade) {
    const bool mayLackDirectory = NS_BUNDLEMGR1::GetCfgDirPath().empty();
    return WithReason(name + ": init failed", complaint) +
           (mayLackDirectory
                ? std::string("; no configuration directory is known: give --config-dir or set ") +
                      kConfigDirVariable
                : "; its log records may say more");
  }
  if (complaint == "syntax error" && !IsPlainName(name)) {
    return name +
           ": no name for a bundle; ACE takes letters, digits and '_', no digit first, and none of its "
           "own words, such as 'active'";
  }
  if (!complaint.empty()) {
    return WithReason(name + ": ACE did not load it", complaint);
  }
  return name + ": the factory returned null, or init of an object that is no ServiceObjectBase failed";
}

}  // namespace

// ACE's default policy leaves the choice to each library, and takes one that makes none for lazy.
Loader::Loader() { ACE_DLL_Manager::instance()->unload_policy(ACE_DLL_UNLOAD_POLICY_PER_PROCESS); }

Loader::~Loader() { UnloadAll(); }

bool Loader::UnloadAll() {
  bool isWell = true;
  while (!bundles_.empty()) {
    const std::string name = bundles_.back().name;
    try {
      const UnloadReport report = Unload(name, true);
      if (!report.problem.empty()) {
        isWell = false;
        std::cerr << "bundle_host: " << OneLine(report.problem) << '\n';
      }
    } catch (const std::exception& error) {
      isWell = false;
      std::cerr << "bundle_host: " << OneLine(name + ": " + error.what()) << '\n';
      Forget(name);
    }
  }
  return isWell;
}

const LoadedBundle& Loader::Load(const std::string& library, const Words& arguments) {
  const std::string quoted = QuoteForAce(arguments);
  const LibraryHandle handle = OpenLibrary(WithDirectory(library));
  const std::string path = RealPath(handle.Path());
  if (path.find_first_of(" \t\n\"':()*{}#") != std::string::npos) {
    throw Failure(library + ": its path " + path + " holds a character that ACE's directives cannot pass on");
  }
  // A link may have the bundle's name, or the file that it leads to.
  const std::string asked = BundleNameOf(FileNameOf(library));
  const std::string real = BundleNameOf(BaseName(path));
  const bool isReal = handle.Symbol(FactoryOf(asked)) == nullptr && handle.Symbol(FactoryOf(real)) != nullptr;
  const std::string name = isReal ? real : asked;
  const std::string factory = FactoryOf(name);
  RequireFactory(handle, library, factory);
  Dynamic(name, "dynamic " + name + " Service_Object * " + path + ":" + factory + "() \"" + quoted + "\"");
  return bundles_.back();
}

void Loader::Process(const std::string& directive) {
  const Directive parts = ParseDirective(directive);
  // ACE passes over a word that it does not know without counting it as a problem.
  const std::vector<std::string> verbs{"dynamic", "static", "remove", "suspend", "resume"};
  if (std::find(verbs.begin(), verbs.end(), parts.verb) == verbs.end()) {
    throw Failure("'" + parts.verb +
                  "' is no directive; there are dynamic, static, remove, suspend and resume");
  }
  if (parts.verb == "dynamic") {
    // ACE would call or read whatever it finds under the name, and take it for what the directive says.
    if (parts.library.empty() || parts.factory.empty()) {
      throw Failure(
          "not what a bundle is loaded by; write dynamic NAME Service_Object * LIBRARY:FACTORY() "
          "\"ARGUMENTS\"");
    }
    const LibraryHandle handle = OpenLibrary(parts.library);
    RequireFactory(handle, parts.library, parts.factory);
    Dynamic(parts.name, directive);
    return;
  }
  if (parts.name.empty()) {
    throw Failure("'" + parts.verb + "' needs the name of a service behind it");
  }
  if (parts.verb != "static" && !parts.behindName.empty()) {
    throw Failure("'" + parts.verb + "' takes the name of a service and nothing behind it, not '" +
                  parts.behindName + "'");
  }
  if (parts.verb == "remove") {
    if (const UnloadReport report = Unload(parts.name); !report.problem.empty()) {
      throw Failure(report.problem);
    }
    return;
  }
  if (parts.verb != "static" && !IsKnownToAce(parts.name)) {
    Find(parts.name);
  }
  const AceComplaints complaints;
  if (ACE_Service_Config::process_directive(directive.c_str()) != 0 || !complaints.Text().empty()) {
    throw Failure(WithReason("the directive failed", complaints.Text()));
  }
}

void Loader::Dynamic(const std::string& name, const std::string& directive) {
  if (ServiceOf(name) != nullptr) {
    throw UsageError("a bundle " + name + " is loaded already; unload it first");
  }
  RequireScannable(name, directive);
  const std::vector<ServiceEntry> before = ListServices();
  const std::uint64_t madeBefore = ServicesEverListed();
  const AceComplaints complaints;
  bool done = false;
  std::string problem;
  try {
    done = ACE_Service_Config::process_directive(directive.c_str()) == 0;
  } catch (...) {
    // ACE has destroyed by now what there was, so nothing tells the one from the other.
    problem = name + ": the factory or init threw: " + CurrentExceptionText();
  }
  ACE_Service_Object* const object = done ? ServiceOf(name) : nullptr;
  if (object == nullptr) {
    ACE_Service_Config::remove(name.c_str());
    DestroyNewcomers(before);
    const bool wasMade = ServicesEverListed() != madeBefore;
    throw Failure(problem.empty() ? WhyNotLoaded(name, wasMade, complaints.Text()) : problem);
  }
  const void* const code = *reinterpret_cast<void* const*>(object);  // Its virtual table is the library's.
  bundles_.push_back(
      {name, RealPath(LibraryAt(code)), object, dynamic_cast<ServiceObjectBase*>(object), WatchFini(name)});
}

void Loader::Init(const std::string& name, const Words& arguments) {
  const LoadedBundle& bundle = Find(name);
  Words copies = arguments;
  std::vector<char*> vector;
  for (std::string& copy : copies) {
    vector.push_back(copy.data());
  }
  vector.push_back(nullptr);
  const AceComplaints complaints;
  const int result = bundle.object->init(static_cast<int>(copies.size()), vector.data());
  if (result != 0) {
    throw Failure(WithReason(name + ": init returned " + std::to_string(result), complaints.Text()));
  }
}

UnloadReport Loader::Unload(const std::string& name, bool evenIfNeeded) {
  const LoadedBundle bundle = Find(name);
  std::vector<std::string> others;
  for (const LoadedBundle& other : bundles_) {
    if (other.name == name) {
      continue;
    }
    others.push_back(other.library);
    const LibraryHandle user = LibraryHandle::OfLoaded(other.library);
    const auto needed = user ? user.Needed() : std::vector<std::string>();
    if (!evenIfNeeded && std::find(needed.begin(), needed.end(), BaseName(bundle.library)) != needed.end()) {
      throw Failure(name + " is in use: " + other.name + " is linked against it; unload that first");
    }
  }
  UnloadReport report;
  {
    const LibraryHandle keepMapped = LibraryHandle::OfLoaded(bundle.library);
    const AceComplaints complaints;
    const int result = ACE_Service_Config::remove(name.c_str());
    if (bundle.service != nullptr && IsListed(bundle.service)) {
      report.problem =
          name + ": its exterminator left the service object behind; it was destroyed all the same";
      delete bundle.service;
    } else if (result != 0) {
      report.problem = WithReason(name + ": ACE could not remove it", complaints.Text());
    } else if (!bundle.finiProblem->empty()) {
      report.problem = WithReason(name + ": " + *bundle.finiProblem, complaints.Text());
    }
  }
  Forget(name);
  if (IsMapped(bundle.library)) {
    report.whyMapped = WhyMapped(bundle.library, others);
  }
  return report;
}

const LoadedBundle& Loader::Find(const std::string& name) const {
  std::vector<std::string> names;
  for (const LoadedBundle& bundle : bundles_) {
    if (bundle.name == name) {
      return bundle;
    }
    names.push_back(bundle.name);
  }
  throw UsageError("no bundle '" + name + "' is loaded" + DidYouMean(name, names, "; 'bundles' lists them"));
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
