// The commands items, set and unset: list and change the configuration items of the process. Main thread
// only.

#include <vector>

#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/commands/command.h"
#include "host/platform/config_items.h"

namespace host {
namespace {

Table ItemTable(const Session& /*session*/) {
  Table table{{"ITEM", "VALUE", "READABLE"}, {}};
  for (const auto& [name, value] : ListItems()) {
    table.rows.push_back({name, value, ParseInt(value) ? "yes" : "no, not an integer"});
  }
  return table;
}

Action ParseItems(const Words& words) { return ParseListing(words, ItemTable); }

Action ParseSet(const Words& words) {
  if (words[1].empty()) {
    throw UsageError("set: '' is not an item; give its name", 1);
  }
  const auto value = ParseInt(words[2]);
  if (!value) {
    throw UsageError("set: '" + words[2] + "' is not an integer from -2147483648 to 2147483647", 2);
  }
  return [name = words[1], value = *value](Session&) { SetItem(name, value); };
}

Action ParseUnset(const Words& words) {
  return [name = words[1]](Session&) {
    if (!UnsetItem(name)) {
      throw Failure(
          "unset: there is no item '" + name + "'" + DidYouMean(name, ItemNames(), "; 'items' lists them"),
          1);
    }
  };
}

}  // namespace

std::vector<Command> ItemCommands() {
  return {
      {"items", "[--json]", "list the configuration items", "", 0, 1, Completes::kNothing, ParseItems},
      {"set", "ITEM INTEGER", "set a configuration item", "The next read of the item returns it.\n", 2, 2,
       Completes::kItems, ParseSet},
      {"unset", "ITEM", "remove a configuration item", "", 1, 1, Completes::kItems, ParseUnset},
  };
}

}  // namespace host
