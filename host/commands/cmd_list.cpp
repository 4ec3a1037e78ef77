#include <algorithm>

#include "host/bundle_table.h"
#include "host/command.h"
#include "host/listing.h"
#include "host/registry.h"

namespace host {
namespace {

using NS_BUNDLEMGR1::ServiceInterface;

std::string NameOf(ServiceInterface* interface) {
  return interface == nullptr ? "-" : interface->GetSvcName();
}

std::string ValidityOf(ServiceInterface* interface) {
  return interface == nullptr ? "-" : std::to_string(interface->IsValid());
}

/// The bundle names that a loaded library's service object is listed under.
const ServiceEntry* EntryOf(const std::vector<ServiceEntry>& services, const LoadedBundle& bundle) {
  const auto found = std::find_if(services.begin(), services.end(),
                                  [&](const ServiceEntry& entry) { return entry.object == bundle.service; });
  return found == services.end() ? nullptr : &*found;
}

void RunBundles(Session& session, const Words& arguments) {
  Table table{{"NAME", "BUNDLE", "SERVICE", "LIBRARY"}, {}};
  const std::vector<ServiceEntry> services = ListServices();
  for (const LoadedBundle& bundle : session.loader.Bundles()) {
    const ServiceEntry* const entry = EntryOf(services, bundle);
    table.rows.push_back({bundle.name, entry == nullptr ? "-" : entry->bundle,
                          entry == nullptr ? "-" : entry->service, bundle.library});
  }
  PrintListing(session.out, table, arguments);
}

void RunServices(Session& session, const Words& arguments) {
  Table table{{"BUNDLE", "SERVICE", "INTERFACE", "VALID"}, {}};
  for (const ServiceEntry& entry : ListServices()) {
    ServiceInterface* const interface = entry.object->GetInterface();
    table.rows.push_back({entry.bundle, entry.service, NameOf(interface), ValidityOf(interface)});
  }
  PrintListing(session.out, table, arguments);
}

std::string StateOf(const InterfaceName& name) {
  if (!name.interfaces.empty()) {
    return "registered";
  }
  return name.everRegistered ? "withdrawn" : "never registered";
}

void RunInterfaces(Session& session, const Words& arguments) {
  Table table{{"NAME", "STATE", "COUNT", "LOOKUPS", "SERVICE", "VALID"}, {}};
  for (const InterfaceName& name : ListInterfaces()) {
    ServiceInterface* const first = name.interfaces.empty() ? nullptr : name.interfaces.front();
    table.rows.push_back({name.name, StateOf(name), std::to_string(name.interfaces.size()),
                          std::to_string(name.lookups), NameOf(first), ValidityOf(first)});
  }
  PrintListing(session.out, table, arguments);
}

}  // namespace

std::vector<Command> LookCommands() {
  return {
      {"bundles", "[--json]", "list the loaded bundles",
       "NAME is what unload and init take; BUNDLE and SERVICE are how its service object is listed.\n", 0, 1,
       Completes::kNothing, CheckListing, RunBundles},
      {"services", "[--json]", "list the living service objects and their interfaces",
       "INTERFACE is what the interface calls itself; VALID is its answer to IsValid.\n", 0, 1,
       Completes::kNothing, CheckListing, RunServices},
      {"interfaces", "[--json]", "list the names of the interface registry",
       "A name that is \"never registered\" was looked up by somebody and is still missing. COUNT tells how "
       "many\n"
       "living interfaces have the name; the one registered last is used.\n",
       0, 1, Completes::kNothing, CheckListing, RunInterfaces},
  };
}

}  // namespace host
