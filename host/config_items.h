#ifndef HOST_CONFIG_ITEMS_H_
#define HOST_CONFIG_ITEMS_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/config_items.h"

/// The host's configuration items: names and texts, of which those that are decimal integers can be read.
/// Threads: any; a change is seen by the next read.
namespace host {

/// The file with the items, below the configuration directory.
inline constexpr const char* kItemsFile = "config_items.ini";

/// `text` as a decimal integer that fits an int, an optional sign in front and nothing around it.
PLATFORM_API std::optional<int> ParseInt(const std::string& text);

/// Reads the items of an INI file: lines NAME=VALUE in the section [items]; ';' and '#' start a comment
/// line. They are added to those there are, the same name replaced. Other sections are not looked at. A file
/// that cannot be read or understood changes nothing and is reported by the returned text; empty when all
/// went well. That a value is no integer is no error here: the item just cannot be read as one.
PLATFORM_API std::string LoadItems(const std::string& file);

/// Sets an item, an existing one included.
PLATFORM_API void SetItem(const std::string& name, int value);

/// Removes an item; false when there was none.
PLATFORM_API bool UnsetItem(const std::string& name);

/// All items with their texts.
PLATFORM_API std::map<std::string, std::string> ListItems();

/// Their names, in byte order.
PLATFORM_API std::vector<std::string> ItemNames();

}  // namespace host

#endif  // HOST_CONFIG_ITEMS_H_
