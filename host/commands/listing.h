#ifndef HOST_COMMANDS_LISTING_H_
#define HOST_COMMANDS_LISTING_H_

#include "host/base/table.h"
#include "host/commands/command.h"

/// Parses the optional argument --json of the listing commands.
namespace host {

/// Returns an action that prints the table of `list`, as JSON with "--json". Throws `UsageError` for any
/// other argument.
Action ParseListing(const Words& words, Table (*list)(const Session&));

}  // namespace host

#endif  // HOST_COMMANDS_LISTING_H_
