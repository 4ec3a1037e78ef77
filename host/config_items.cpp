#include "host/config_items.h"

#include <ace/Configuration.h>
#include <ace/Configuration_Import_Export.h>

#include <charconv>
#include <mutex>

#include "host/ini_check.h"

namespace host {
namespace {

using ItemMap = std::map<std::string, std::string>;

struct ItemStore {
  std::mutex lock;
  ItemMap items;
};

ItemStore& TheStore() {
  static auto& store = *new ItemStore;
  return store;
}

void AddSection(ACE_Configuration& configuration, const ACE_Configuration_Section_Key& section,
                ItemMap& items) {
  ACE_TString name;
  ACE_Configuration::VALUETYPE type{};
  for (int index = 0; configuration.enumerate_values(section, index, name, type) == 0; ++index) {
    ACE_TString value;
    if (type == ACE_Configuration::STRING &&
        configuration.get_string_value(section, name.c_str(), value) == 0) {
      items[name.c_str()] = value.c_str();
    }
  }
}

}  // namespace

std::optional<int> ParseInt(const std::string& text) {
  const char* first = text.data();
  const char* const last = first + text.size();
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
    ++first;
  }
  int value = 0;
  const auto [end, error] = std::from_chars(first, last, value);
  if (error != std::errc() || end != last) {
    return std::nullopt;
  }
  return value;
}

std::string LoadItems(const std::string& file) {
  if (std::string problem = CheckIniFile(file); !problem.empty()) {
    return problem;
  }
  ACE_Configuration_Heap configuration;
  if (configuration.open() != 0) {
    return file + ": no memory to read it";
  }
  if (ACE_Ini_ImpExp(configuration).import_config(file.c_str()) != 0) {
    return file + ": cannot be imported";
  }
  ItemMap read;
  ACE_Configuration_Section_Key section;
  if (configuration.open_section(configuration.root_section(), "items", 0, section) == 0) {
    AddSection(configuration, section, read);
  }
  ItemStore& store = TheStore();
  const std::lock_guard<std::mutex> guard(store.lock);
  for (auto& [name, value] : read) {
    store.items[name] = std::move(value);
  }
  return {};
}

void SetItem(const std::string& name, int value) {
  ItemStore& store = TheStore();
  const std::lock_guard<std::mutex> guard(store.lock);
  store.items[name] = std::to_string(value);
}

bool UnsetItem(const std::string& name) {
  ItemStore& store = TheStore();
  const std::lock_guard<std::mutex> guard(store.lock);
  return store.items.erase(name) != 0;
}

std::map<std::string, std::string> ListItems() {
  ItemStore& store = TheStore();
  const std::lock_guard<std::mutex> guard(store.lock);
  return store.items;
}

std::vector<std::string> ItemNames() {
  std::vector<std::string> names;
  for (const auto& [name, value] : ListItems()) {
    names.push_back(name);
  }
  return names;
}

}  // namespace host

namespace NS_BUNDLEMGR1 {

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}

bool CorbaConfigItems::GetIntItemInfo(const std::string& name, int& value) {
  host::ItemStore& store = host::TheStore();
  const std::lock_guard<std::mutex> guard(store.lock);
  const auto found = store.items.find(name);
  if (found == store.items.end()) {
    return false;
  }
  const std::optional<int> number = host::ParseInt(found->second);
  if (number) {
    value = *number;
  }
  return number.has_value();
}

}  // namespace NS_BUNDLEMGR1
