#include <vector>

#include "host/command.h"
#include "host/config_items.h"
#include "host/listing.h"
#include "host/problem.h"
#include "host/suggest.h"

namespace host {
namespace {

void RunItems(Session& session, const Words& arguments) {
  Table table{{"ITEM", "VALUE", "READABLE"}, {}};
  for (const auto& [name, value] : ListItems()) {
    table.rows.push_back({name, value, ParseInt(value) ? "yes" : "no, not an integer"});
  }
  PrintListing(session.out, table, arguments);
}

void CheckSet(const Words& arguments) {
  if (arguments[0].empty()) {
    throw UsageError("set: '' is no item; give its name");
  }
  if (!ParseInt(arguments[1])) {
    throw UsageError("set: '" + arguments[1] + "' is no integer from -2147483648 to 2147483647");
  }
}

void RunSet(Session& /*session*/, const Words& arguments) { SetItem(arguments[0], *ParseInt(arguments[1])); }

void RunUnset(Session& /*session*/, const Words& arguments) {
  if (UnsetItem(arguments[0])) {
    return;
  }
  throw Failure("unset: there is no item '" + arguments[0] + "'" +
                DidYouMean(arguments[0], ItemNames(), "; 'items' lists them"));
}

}  // namespace

std::vector<Command> ItemCommands() {
  return {
      {"items", "[--json]", "list the configuration items", "", 0, 1, Completes::kNothing, CheckListing,
       RunItems},
      {"set", "ITEM INTEGER", "set a configuration item", "The next read of the item sees it.\n", 2, 2,
       Completes::kItems, CheckSet, RunSet},
      {"unset", "ITEM", "remove a configuration item", "", 1, 1, Completes::kItems, nullptr, RunUnset},
  };
}

}  // namespace host
