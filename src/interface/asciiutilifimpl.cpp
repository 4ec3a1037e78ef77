// The fourteen operations of the interface. They keep no state, so any thread may call them.
// The configuration is a singleton; the loggers belong to the log service.

#include "src/interface/asciiutilifimpl.h"

#include <array>
#include <cstring>
#include <ctime>
#include <string_view>

#include "framework/config_items.h"
#include "framework/platform_util.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/keyvalue.h"
#include "src/interface/listmap.h"
#include "src/log/logmgr.h"
#include "src/log/logmsg.h"
#include "src/text/c_strtol.h"
#include "src/text/strfunctions.h"

namespace NS_ASCII {

AsciiUtilInterfaceImpl::~AsciiUtilInterfaceImpl() = default;

std::string AsciiUtilInterfaceImpl::GetSvcName() { return "AsciiUtilService"; }

std::int64_t AsciiUtilInterfaceImpl::IsValid() { return 1; }

bool AsciiUtilInterfaceImpl::Str2Num(const std::string& text, int& value, int base) {
  const char* const start = text.c_str();
  char* end = const_cast<char*>(start);  // strtol does not set it for a base that it rejects.
  value = static_cast<int>(c_strtol(start, &end, base));
  return *end == '\0';
}

std::string AsciiUtilInterfaceImpl::GetTimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc;
  if (gmtime_r(&now, &utc) == nullptr) {
    return {};
  }
  // The sum may exceed an `int`. The wrapped value has more than four digits too, so sprintf_s rejects it.
  const int year = static_cast<int>(std::int64_t{utc.tm_year} + 1900);
  std::array<char, 20> stamp;
  if (sprintf_s(stamp.data(), stamp.size(), "%4d-%02d-%02d%s%02d:%02d:%02d", year, utc.tm_mon + 1,
                utc.tm_mday, "T", utc.tm_hour, utc.tm_min, utc.tm_sec) < 0) {
    LogMessage(messages::kStampTooLong);
    return {};
  }
  return stamp.data();
}

bool AsciiUtilInterfaceImpl::IsTransQueltEnabled() {
  int item = 1;
  if (!NS_BUNDLEMGR1::CorbaConfigItems::Instance()->GetIntItemInfo("IsTransQuelt", item)) {
    LogMessage(messages::kItemUnreadable);
    item = 1;
  }
  if (item != 1) {
    LogMessage(messages::kTranslationOff);
    return false;
  }
  LogMessage(messages::kTranslationOn);
  return true;
}

std::int64_t AsciiUtilInterfaceImpl::GetAlmCfgValue(std::int64_t& value, const std::string& key1,
                                                    const std::string& key2, const std::string& key3,
                                                    const int& numKey) {
  const std::string number = NSTE_util::Trim(NSTE_util::Num2Str(numKey));
  // Required: for a missing key the text is empty, which converts to 0.
  const std::string configured(
      Alarm_Config_Param::Instance()->FindValue({key1, key2, key3, number}).value_or(std::string_view()));
  int converted = 0;
  if (!Str2Num(configured, converted, 10)) {
    return 1;
  }
  value = converted;
  return 0;
}

std::string AsciiUtilInterfaceImpl::ToUpper(const std::string& text) {
  std::string upper = text;
  MakeUpperSigned(upper);
  return upper;
}

bool AsciiUtilInterfaceImpl::IsContain(const std::string& sub, const std::string& text) {
  // Unlike `find`, `memmem` takes linear time for every text.
  return IsNonEmptyCString(sub) && memmem(text.data(), text.size(), sub.data(), sub.size()) != nullptr;
}

bool AsciiUtilInterfaceImpl::IsKeyValueAboveOne(const std::string& key, const std::string& text) {
  const std::string_view value = FindValue(key, text);
  if (!IsNonEmptyCString(value)) {
    return false;
  }
  int number = 0;
  // Required: text after the number is ignored; callers ask for values such as "5x".
  static_cast<void>(Str2Num(std::string(value), number, 10));
  return number > 1;
}

std::string AsciiUtilInterfaceImpl::GetKeyValue(const std::string& key, const std::string& text) {
  return std::string(FindValue(key, text));
}

std::int64_t AsciiUtilInterfaceImpl::ParseListMap(ListMap& map, const std::string& text) {
  ListMap previous;
  map.swap(previous);  // The old content is destroyed after the split: `text` may be one of its strings.
  std::vector<std::string> entries;
  SplitStr(text, ",", entries);
  previous.clear();
  for (const std::string& entry : entries) {
    std::string name;
    std::vector<std::string> items;
    ParseListEntry(entry, name, items);
    map.try_emplace(std::move(name), std::move(items));
  }
  return 0;
}

std::int64_t AsciiUtilInterfaceImpl::GetMapList(const ListMap& map, const std::string& name,
                                                std::vector<std::string>& items) {
  const auto entry = map.find(name);
  if (entry == map.end() || entry->second.empty()) {
    return 1;
  }
  std::vector<std::string> copy = entry->second;
  items.swap(copy);  // `items` is unchanged when copying runs out of memory.
  return 0;
}

std::int64_t AsciiUtilInterfaceImpl::SplitStr(const std::string& text, const std::string& separator,
                                              std::vector<std::string>& pieces) {
  AppendPieces(text, separator, pieces);
  return 0;
}

std::int64_t AsciiUtilInterfaceImpl::WriteDbgLog(const std::string& message) {
  if (LogMgr* const manager = LogMgr::Instance(); manager != nullptr) {
    manager->LogPos(message);
  }
  return 0;
}

bool AsciiUtilInterfaceImpl::SplitFirst(const std::string& source, std::string& head, std::string& tail,
                                        const std::string& delimiters) {
  const std::size_t at =
      delimiters.size() == 1 ? source.find(delimiters.front()) : source.find_first_of(delimiters);
  if (at == std::string::npos) {
    return false;
  }
  head.assign(source, 0, at);
  tail = source.substr(at + delimiters.size());
  return true;
}

void AsciiUtilInterfaceImpl::ParseListEntry(const std::string& entry, std::string& name,
                                            std::vector<std::string>& items) {
  std::string value;
  SplitFirst(entry, name, value, "=");
  // Required: names are compared up to their first NUL; "|" is an ordinary character in a path.
  SplitStr(value, std::string(1, std::strcmp(name.c_str(), "PATH") == 0 ? '-' : '|'), items);
}

}  // namespace NS_ASCII
