// The commands bundles, services and interfaces: list the state of the loader and the platform. The listed
// objects are borrowed. Main thread only.

#include <algorithm>

#include "host/base/problem.h"
#include "host/commands/command.h"
#include "host/platform/bundle_mgr.h"
#include "host/platform/interface_registry.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

using NS_BUNDLEMGR1::ServiceInterface;

std::string NameOf(ServiceInterface* interface) {
  return interface == nullptr ? "-" : interface->GetSvcName();
}

std::string ValidityOf(ServiceInterface* interface) {
  return interface == nullptr ? "-" : std::to_string(interface->IsValid());
}

/// Finds the entry of the bundle's service object in `services`; null when it is not listed.
const ServiceEntry* EntryOf(const std::vector<ServiceEntry>& services, const LoadedBundle& bundle) {
  const auto found = std::find_if(services.begin(), services.end(),
                                  [&](const ServiceEntry& entry) { return entry.object == bundle.service; });
  return found == services.end() ? nullptr : &*found;
}

Table BundleTable(const Session& session) {
  Table table{{"NAME", "BUNDLE", "SERVICE", "LIBRARY", "LOADED", "FILE", "BUILD"}, {}};
  const std::vector<ServiceEntry> services = ListServices();
  for (const LoadedBundle& bundle : session.loader.Bundles()) {
    const ServiceEntry* const entry = EntryOf(services, bundle);
    table.rows.push_back(
        {bundle.name, entry == nullptr ? "-" : entry->bundle, entry == nullptr ? "-" : entry->service,
         bundle.library, TimeText(bundle.loadTime).substr(0, 19) + "Z",
         bundle.ChangedOnDisk() ? "changed" : "unchanged", bundle.buildId.empty() ? "-" : bundle.buildId});
  }
  return table;
}

Table ServiceTable(const Session& /*session*/) {
  Table table{{"BUNDLE", "SERVICE", "INTERFACE", "VALID"}, {}};
  for (const ServiceEntry& entry : ListServices()) {
    ServiceInterface* const interface = entry.object->GetInterface();
    table.rows.push_back({entry.bundle, entry.service, NameOf(interface), ValidityOf(interface)});
  }
  return table;
}

std::string StateOf(const InterfaceName& name) {
  if (!name.interfaces.empty()) {
    return "registered";
  }
  return name.everRegistered ? "withdrawn" : "never registered";
}

Table InterfaceTable(const Session& /*session*/) {
  Table table{{"NAME", "STATE", "COUNT", "LOOKUPS", "SERVICE", "VALID"}, {}};
  for (const InterfaceName& name : ListInterfaces()) {
    ServiceInterface* const first = name.interfaces.empty() ? nullptr : name.interfaces.front();
    table.rows.push_back({name.name, StateOf(name), std::to_string(name.interfaces.size()),
                          std::to_string(name.lookups), NameOf(first), ValidityOf(first)});
  }
  return table;
}

Action ParseBundles(const Words& words) { return ParseListing(words, BundleTable); }
Action ParseServices(const Words& words) { return ParseListing(words, ServiceTable); }
Action ParseInterfaces(const Words& words) { return ParseListing(words, InterfaceTable); }

}  // namespace

Action ParseListing(const Words& words, Table (*list)(const Session&)) {
  if (words.size() > 1 && words[1] != "--json") {
    throw UsageError("'" + words[1] + "' is not an argument of a listing; there is only --json", 1);
  }
  return [list, print = words.size() > 1 ? PrintJson : PrintTable](Session& session) {
    print(session.out, list(session));
  };
}

std::vector<Command> ListCommands() {
  return {
      {"bundles", "[--json]", "list the loaded bundles",
       "NAME is what reload, unload and init take; BUNDLE and SERVICE are the names of its service object.\n"
       "FILE is \"changed\" when the library's file is not the one that was loaded; BUILD is the build id\n"
       "of the code that runs.\n",
       0, 1, Completes::kNothing, ParseBundles},
      {"services", "[--json]", "list the existing service objects and their interfaces",
       "INTERFACE is the name that the interface returns; VALID is the result of its IsValid.\n", 0, 1,
       Completes::kNothing, ParseServices},
      {"interfaces", "[--json]", "list the names of the interface registry",
       "A name that is \"never registered\" was looked up and is still missing. COUNT is the number of\n"
       "interfaces that have the name now; callers get the one registered last.\n",
       0, 1, Completes::kNothing, ParseInterfaces},
  };
}

}  // namespace host
