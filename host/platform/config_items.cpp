// The configuration directory and items, which belong to the process and have a lock of their own. Any
// thread may call.

#include "host/platform/config_items.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/base/mutex.h"
#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/base/text_lines.h"

namespace host {
namespace {

using ItemMap = std::map<std::string, std::string>;

std::string WithFinalSlash(std::string directory) {
  if (!directory.empty() && directory.back() != '/') {
    directory += '/';
  }
  return directory;
}

struct Store {
  Mutex lock;
  std::string directory HOST_THREAD_SAFETY(guarded_by(lock));
  ItemMap items HOST_THREAD_SAFETY(guarded_by(lock));
};

Store& TheStore() {
  const auto fromEnvironment = [] {
    const char* const named = std::getenv(kConfigDirVariable);
    return WithFinalSlash(named == nullptr ? "" : named);
  };
  static auto& store = *new Store{{}, fromEnvironment(), {}};
  return store;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

/// Reads the lines of one INI file.
class ItemReader {
 public:
  explicit ItemReader(const std::string& file) : lines_(file) {}

  void Read() {
    for (std::string line; lines_.Next(line);) {
      const std::string_view text = Trimmed(line);
      if (text.empty() || text.front() == ';' || text.front() == '#') {
        continue;
      }
      const auto start = static_cast<std::size_t>(text.data() - line.data());
      if (text.front() == '[') {
        ReadSection(text, start);
      } else {
        ReadItem(text, start);
      }
    }
  }

  ItemMap items;
  std::vector<std::string> warnings;

 private:
  void ReadSection(std::string_view text, std::size_t start) {
    section_ = text.substr(1, text.size() - 2);
    if (text.back() != ']' || section_.empty() || Trimmed(section_) != section_ ||
        section_.find_first_of("[]") != std::string::npos) {
      lines_.Fail(start, "not the name of a section; write [NAME] and nothing else on the line");
    }
    if (section_ != kItems && !DidYouMean(section_, {kItems}).empty()) {
      lines_.Fail(start + 1, "there is no section '" + section_ + "'; did you mean [items]?");
    }
  }

  void ReadItem(std::string_view text, std::size_t start) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
      lines_.Fail(start, "neither a [SECTION], NAME=INTEGER, nor a comment, which starts with ';' or '#'");
    }
    const std::string name(Trimmed(text.substr(0, equals)));
    if (name.empty()) {
      lines_.Fail(start, "there is no name before the '='; write NAME=INTEGER");
    }
    if (section_.empty()) {
      lines_.Fail(start, "an item before the first section; write [items] above it");
    }
    if (section_ == kItems) {
      Add(name, std::string(Trimmed(text.substr(equals + 1))), start);
    }
  }

  void Add(const std::string& name, const std::string& value, std::size_t start) {
    if (!items.emplace(name, value).second) {
      lines_.Fail(start, "'" + name + "' is set a second time; keep one of the lines");
    }
    if (!ParseInt(value)) {
      Warn(start, name + ": '" + value +
                      "' is not an integer from -2147483648 to 2147483647; the item counts as missing");
    }
    if (const std::string meant = DidYouMean(name, {kKnownItem}); name != kKnownItem && !meant.empty()) {
      Warn(start, "'" + name + "' looks misspelt" + meant);
    }
  }

  void Warn(std::size_t start, const std::string& text) { warnings.push_back(lines_.Place(start) + text); }

  static constexpr const char* kItems = "items";
  static constexpr const char* kKnownItem = "IsTransQuelt";

  TextLines lines_;
  std::string section_;
};

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

void SetConfigDir(const std::string& directory) {
  Store& store = TheStore();
  const MutexLock guard(store.lock);
  store.directory = WithFinalSlash(directory);
}

std::vector<std::string> LoadItems(const std::string& file) {
  namespace fs = std::filesystem;
  // Checked before opening: opening a pipe would block until it has a writer.
  if (std::error_code none; fs::exists(file, none) && !fs::is_regular_file(file, none)) {
    throw Failure(file + ": is not a regular file");
  }
  ItemReader reader(file);
  reader.Read();
  Store& store = TheStore();
  const MutexLock guard(store.lock);
  for (auto& [name, value] : reader.items) {
    store.items[name] = std::move(value);
  }
  return reader.warnings;
}

void SetItem(const std::string& name, int value) {
  Store& store = TheStore();
  const MutexLock guard(store.lock);
  store.items[name] = std::to_string(value);
}

bool UnsetItem(const std::string& name) {
  Store& store = TheStore();
  const MutexLock guard(store.lock);
  return store.items.erase(name) != 0;
}

std::map<std::string, std::string> ListItems() {
  Store& store = TheStore();
  const MutexLock guard(store.lock);
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

std::string GetCfgDirPath() {
  host::Store& store = host::TheStore();
  const host::MutexLock guard(store.lock);
  return store.directory;
}

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}

bool CorbaConfigItems::GetIntItemInfo(const std::string& name, int& value) {
  host::Store& store = host::TheStore();
  const host::MutexLock guard(store.lock);
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
