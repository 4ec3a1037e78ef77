#ifndef HOST_PLATFORM_CONFIG_ITEMS_H_
#define HOST_PLATFORM_CONFIG_ITEMS_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/config_items.h"

/// The host's configuration directory and configuration items. An item is a name and a text; bundles can read
/// it when the text is a decimal integer.
/// State: of the process, never destroyed. Threads: any; the next read returns a changed value.
namespace host {

/// The environment variable that names the configuration directory when no option does.
inline constexpr const char* kConfigDirVariable = "BUNDLE_HOST_CONFIG_DIR";
inline constexpr const char* kConfigDirHint = "give --config-dir or set BUNDLE_HOST_CONFIG_DIR";

/// The file with the items, in the configuration directory.
inline constexpr const char* kItemsFile = "config_items.ini";

/// Sets the result of `GetCfgDirPath`; a missing final "/" is added, an empty text means that the directory
/// is not known. Before the first call the environment variable names it. Does not check that it exists.
PLATFORM_API void SetConfigDir(const std::string& directory);

/// Parses all of `text` as a decimal integer with an optional sign; nothing when it is malformed or exceeds
/// int.
PLATFORM_API std::optional<int> ParseInt(const std::string& text);

/// Adds the items of an INI file, replacing those of the same name: lines NAME=VALUE in the section [items],
/// blanks around both removed. ';' and '#' start a comment line. Other sections are parsed and ignored.
///
/// Throws `Failure` with the place of the first invalid line; no item is then added. Returns warnings, each
/// with its place, for values other than integers and for names that look misspelt.
PLATFORM_API std::vector<std::string> LoadItems(const std::string& file);

/// Sets an item, replacing an existing one.
PLATFORM_API void SetItem(const std::string& name, int value);

/// Removes an item; returns false when there is none.
PLATFORM_API bool UnsetItem(const std::string& name);

/// All items, name to text.
PLATFORM_API std::map<std::string, std::string> ListItems();

/// The names of all items, in byte order.
PLATFORM_API std::vector<std::string> ItemNames();

}  // namespace host

#endif  // HOST_PLATFORM_CONFIG_ITEMS_H_
