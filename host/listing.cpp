#include "host/listing.h"

#include "host/problem.h"

namespace host {

void CheckListing(const Words& arguments) {
  if (!arguments.empty() && arguments[0] != "--json") {
    throw UsageError("'" + arguments[0] + "' is no argument of a listing; there is only --json");
  }
}

void PrintListing(std::ostream& out, const Table& table, const Words& arguments) {
  if (arguments.empty()) {
    PrintTable(out, table);
  } else {
    PrintJson(out, table);
  }
}

}  // namespace host
