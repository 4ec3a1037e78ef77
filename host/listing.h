#ifndef HOST_LISTING_H_
#define HOST_LISTING_H_

#include "host/table.h"
#include "host/words.h"

/// What the listing commands share: their one argument.
namespace host {

/// Throws `UsageError` unless the arguments are none or "--json".
void CheckListing(const Words& arguments);

/// Prints the table as the arguments want it.
void PrintListing(std::ostream& out, const Table& table, const Words& arguments);

}  // namespace host

#endif  // HOST_LISTING_H_
