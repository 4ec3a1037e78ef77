// The actions of commands that print a table. An action owns its function. Main thread only.

#include "host/commands/listing.h"

#include "host/base/problem.h"

host::Action host::ParseListing(const Words& words, Table (*list)(const Session&)) {
  if (words.size() > 1 && words[1] != "--json") {
    throw UsageError("'" + words[1] + "' is not an argument of a listing; there is only --json", 1);
  }
  return [list, print = words.size() > 1 ? PrintJson : PrintTable](Session& session) {
    print(session.out, list(session));
  };
}
