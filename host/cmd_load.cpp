#include <ostream>

#include "host/command.h"
#include "host/problem.h"

namespace host {
namespace {

void RunLoad(Session& session, const Words& arguments) {
  const LoadedBundle& bundle = session.loader.Load(arguments[0], Rest(arguments, 1));
  session.out << "loaded " << bundle.name << " from " << bundle.library << '\n';
}

void RunInit(Session& session, const Words& arguments) {
  session.loader.Init(arguments[0], Rest(arguments, 1));
  session.out << "initialised " << arguments[0] << '\n';
}

void RunUnload(Session& session, const Words& arguments) {
  const std::string library = session.loader.Find(arguments[0]).library;
  const UnloadReport report = session.loader.Unload(arguments[0]);
  session.out << "unloaded " << arguments[0] << "; " << library
              << (report.whyMapped.empty() ? " is unmapped\n"
                                           : " is still mapped: " + report.whyMapped + "\n");
  if (!report.problem.empty()) {
    throw Failure(report.problem);
  }
}

}  // namespace

std::vector<Command> LoadCommands() {
  return {
      {"load", "LIBRARY [ARGUMENT...]", "load a bundle and initialise it with the arguments",
       "LIBRARY is a path, or a name that the dynamic linker finds; libNAME.so is bundle NAME and has the "
       "factory\n"
       "_make_NAME. Arguments must not hold quotes, backslashes or '$'.\n",
       1, kAnyNumber, Completes::kFiles, nullptr, RunLoad},
      {"init", "NAME [ARGUMENT...]", "call init of a loaded bundle once more", "", 1, kAnyNumber,
       Completes::kBundles, nullptr, RunInit},
      {"unload", "NAME", "call fini, destroy the service object and unmap the library",
       "Says whether the process has the library still mapped and, if so, why. What other bundles fetched "
       "from it\n"
       "they must have dropped before. Refused while another loaded bundle is linked against the library.\n",
       1, 1, Completes::kBundles, nullptr, RunUnload},
  };
}

}  // namespace host
