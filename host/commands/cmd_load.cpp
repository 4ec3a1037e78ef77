// The commands load, init, reload and unload, which call the session's loader. Main thread only.

#include <ostream>

#include "host/base/problem.h"
#include "host/commands/command.h"

namespace host {
namespace {

Action ParseLoad(const Words& words) {
  return [library = words[1], arguments = Rest(words, 2)](Session& session) {
    const LoadedBundle& bundle = session.loader.Load(library, arguments);
    session.out << "loaded " << bundle.name << " from " << bundle.library << '\n';
  };
}

Action ParseInit(const Words& words) {
  return [name = words[1], arguments = Rest(words, 2)](Session& session) {
    FindBundle(session, name, 1);
    session.loader.Init(name, arguments);
    session.out << "initialised " << name << '\n';
  };
}

Action ParseReload(const Words& words) {
  return [name = words[1]](Session& session) {
    FindBundle(session, name, 1);
    const LoadedBundle& bundle = session.loader.Reload(name);
    session.out << "reloaded " << bundle.name << " from " << bundle.library << '\n';
  };
}

void Unload(Session& session, const std::string& name) {
  const std::string library = FindBundle(session, name, 1).library;
  const UnloadReport report = session.loader.Unload(name);
  session.out << "unloaded " << name << "; " << library
              << (report.whyMapped.empty() ? " is unmapped\n"
                                           : " is still mapped: " + report.whyMapped + "\n");
  if (!report.problem.empty()) {
    throw Failure(report.problem);
  }
}

Action ParseUnload(const Words& words) {
  return [name = words[1]](Session& session) { Unload(session, name); };
}

}  // namespace

std::vector<Command> LoadCommands() {
  return {
      {"load", "LIBRARY [ARGUMENT...]", "load a bundle and initialise it with the arguments",
       "LIBRARY is a path, a file of the working directory, or a name that the dynamic linker finds or that\n"
       "is in the directory of bundle_host or of libbundle_host.so. libNAME.so is bundle NAME and has the\n"
       "factory _make_NAME. init gets the arguments unchanged.\n",
       1, kAnyNumber, Completes::kFiles, ParseLoad},
      {"init", "NAME [ARGUMENT...]", "call init of a loaded bundle again", "", 1, kAnyNumber,
       Completes::kBundles, ParseInit},
      {"reload", "NAME", "unload a bundle, load its file again and initialise it",
       "init gets the same arguments as before. Refused while another loaded bundle is linked against the\n"
       "library or, like the recorder, passes calls on to the bundle's interface, and when the library\n"
       "would stay mapped.\n",
       1, 1, Completes::kBundles, ParseReload},
      {"unload", "NAME", "call fini, destroy the service object and unmap the library",
       "Reports whether the library is still mapped and, if so, why. Other bundles must have dropped the\n"
       "interfaces that they fetched from it. Refused while another loaded bundle is linked\n"
       "against the library or, like the recorder, passes calls on to the bundle's interface.\n",
       1, 1, Completes::kBundles, ParseUnload},
  };
}

}  // namespace host
