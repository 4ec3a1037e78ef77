#include "src/asciiutilifimpl.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "framework/config_items.h"
#include "framework/platform_util.h"
#include "src/almconfig.h"
#include "src/casemap.h"
#include "src/logmgr.h"
#include "src/logmsg.h"
#include "src/strfunctions.h"

namespace NS_ASCII {
namespace {

constexpr const char* kTag = "asciiutilifimpl";

constexpr char kPairSeparator = ',';
constexpr char kValueSeparator = '=';

/// Whether `text`, taken up to its first NUL, is not empty.
bool StartsWithText(std::string_view text) { return !text.empty() && text.front() != '\0'; }

/// How many characters are looked through at a time for the start of a pair.
constexpr std::size_t kPairBlock = 64;

/// False only if none of the characters at `block` is `first` with a separator or blank before it, as the
/// first character of a pair has. All of these are at most ','; that others are, too, costs a closer look. A
/// loop of constant length without exits becomes a few vector instructions, and a count is the form in which
/// compilers see that.
bool MayStartPair(const char* block, char first) {
  unsigned char starts = 0;
  for (std::size_t i = 0; i < kPairBlock; ++i) {
    const char before = block[static_cast<std::ptrdiff_t>(i) - 1];
    starts = static_cast<unsigned char>(starts +
                                        ((static_cast<unsigned char>(before) <= ',') & (block[i] == first)));
  }
  return starts != 0;
}

/// Whether the trimmed pair that `pos` lies in starts there.
bool StartsPair(std::string_view text, std::size_t pos) {
  while (pos > 0 && IsBlank(text[pos - 1])) {
    --pos;
  }
  return pos == 0 || text[pos - 1] == kPairSeparator;
}

constexpr bool IsSeparator(char c) { return c == kPairSeparator || c == kValueSeparator; }

/// Where the value starts if a pair with `key` starts at `pos`; else npos. A NUL stands behind `text`, which
/// is as good as a character that differs.
std::size_t ValueStart(std::string_view text, const char* key, std::size_t pos) {
  if (!StartsPair(text, pos)) {
    return std::string_view::npos;
  }
  const char* end = text.data() + pos;
  for (; *key != '\0'; ++key, ++end) {
    // A separator is no character of a pair's key, even if both have it.
    if (*key != *end || IsSeparator(*key)) {
      return std::string_view::npos;
    }
  }
  auto behind = static_cast<std::size_t>(end - text.data());
  if (behind < text.size() && text[behind] == '\0') {
    behind = text.find_first_of("=,", behind);  // The rest of the pair's key does not count.
  }
  return behind < text.size() && text[behind] == kValueSeparator ? behind + 1 : std::string_view::npos;
}

/// The value of `key` in a text of pairs: that of the first pair with this key. When it is empty or starts
/// with a NUL, all of the text behind the pair's "=" takes its place. Keys are compared up to their first
/// NUL.
std::string_view FindValue(const char* key, const std::string& wholeText) {
  const std::string_view text = wholeText;
  const char first = *key;
  if (first == '\0' || IsBlank(first)) {
    return {};  // No pair's key is empty or starts so.
  }
  // A pair at the very start is found without a search. `pos` is npos when a search finds nothing.
  for (std::size_t pos = 0; pos < text.size(); pos = text.find(first, pos)) {
    if (const std::size_t start = ValueStart(text, key, pos); start != std::string_view::npos) {
      const std::string_view rest = text.substr(start);
      const std::string_view value = TrimRightView(rest.substr(0, rest.find(kPairSeparator)));
      return StartsWithText(value) ? value : TrimRightView(rest);
    }
    ++pos;
    while (text.size() - pos >= kPairBlock && !MayStartPair(text.data() + pos, first)) {
      pos += kPairBlock;
    }
  }
  return {};
}

/// Makes room for `more` strings. At least doubles what there is, or a list that is appended to again and
/// again would be moved each time.
void ReserveMore(std::size_t more, std::vector<std::string>& list) {
  if (list.capacity() - list.size() < more) {
    list.reserve(std::max(list.size() + more, 2 * list.capacity()));
  }
}

}  // namespace

AsciiUtilInterfaceImpl::~AsciiUtilInterfaceImpl() = default;

std::string AsciiUtilInterfaceImpl::GetSvcName() { return "AsciiUtilService"; }

std::int64_t AsciiUtilInterfaceImpl::IsValid() { return 1; }

bool AsciiUtilInterfaceImpl::Str2Num(const std::string& text, int& value, int base) {
  const char* const start = text.c_str();
  char* end = const_cast<char*>(start);  // strtol does not set it for a base that it rejects.
  value = static_cast<int>(std::strtol(start, &end, base));
  return *end == '\0';
}

std::string AsciiUtilInterfaceImpl::GetTimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc;
  if (gmtime_r(&now, &utc) == nullptr) {
    return {};
  }
  // The sum may exceed an int; cut to one, it still has more than four digits, and no stamp is made of it.
  const int year = static_cast<int>(std::int64_t{utc.tm_year} + 1900);
  std::array<char, 20> stamp;
  if (sprintf_s(stamp.data(), stamp.size(), "%4d-%02d-%02d%s%02d:%02d:%02d", year, utc.tm_mon + 1,
                utc.tm_mday, "T", utc.tm_hour, utc.tm_min, utc.tm_sec) < 0) {
    LogMessage(kTag, 86, 1, "sprintf_s failed.");
    return {};
  }
  return stamp.data();
}

bool AsciiUtilInterfaceImpl::IsTransQueltEnabled() {
  int item = 1;
  if (!NS_BUNDLEMGR1::CorbaConfigItems::Instance()->GetIntItemInfo("IsTransQuelt", item)) {
    LogMessage(kTag, 49, 0, "read conf item IsTransQuelt failed.");
    item = 1;
  }
  if (item != 1) {
    LogMessage(kTag, 53, 1, "acces QueltTools ");
    return false;
  }
  LogMessage(kTag, 57, 1, "Trans QueltTools ");
  return true;
}

std::int64_t AsciiUtilInterfaceImpl::GetAlmCfgValue(std::int64_t& value, const std::string& key1,
                                                    const std::string& key2, const std::string& key3,
                                                    const int& numKey) {
  const std::string number = NSTE_util::Trim(NSTE_util::Num2Str(numKey));
  std::string configured;
  // A key that no line serves is no failure here: its text stays empty, and that reads as 0.
  static_cast<void>(Alarm_Config_Param::Instance()->GetValue(AlarmKey{key1, key2, key3, number}, configured));
  int converted = 0;
  if (!Str2Num(configured, converted, 10)) {
    return 1;
  }
  value = converted;
  return 0;
}

std::string AsciiUtilInterfaceImpl::ToUpper(const std::string& text) {
  std::string upper = text;
  MapCase(upper, SignedUpper());
  return upper;
}

bool AsciiUtilInterfaceImpl::IsContain(const std::string& sub, const std::string& text) {
  return StartsWithText(sub) && text.find(sub) != std::string::npos;
}

bool AsciiUtilInterfaceImpl::IsKeyValueAboveOne(const std::string& key, const std::string& text) {
  const std::string_view value = FindValue(key.c_str(), text);
  if (!StartsWithText(value)) {
    return false;
  }
  int number = 0;
  // Whatever number the value starts with counts, so it does not matter whether all of it was read.
  static_cast<void>(Str2Num(std::string(value), number, 10));
  return number > 1;
}

std::string AsciiUtilInterfaceImpl::GetKeyValue(const std::string& key, const std::string& text) {
  return std::string(FindValue(key.c_str(), text));
}

std::int64_t AsciiUtilInterfaceImpl::ParseListMap(ListMap& map, const std::string& text) {
  ListMap former;
  map.swap(former);  // The text may be one of its own, so these live until it is split.
  std::vector<std::string> entries;
  SplitStr(text, ",", entries);
  former.clear();
  std::string value;
  for (const std::string& entry : entries) {
    std::string name;
    std::vector<std::string> items;
    ParseListEntry(entry, value, name, items);
    map.emplace(std::move(name), std::move(items));  // Does nothing when the name is there already.
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
  items.swap(copy);  // Nothing is lost when the copy takes more memory than there is.
  return 0;
}

std::int64_t AsciiUtilInterfaceImpl::SplitStr(const std::string& text, const std::string& separator,
                                              std::vector<std::string>& pieces) {
  if (IsElementOf(text, pieces) || IsElementOf(separator, pieces)) {
    return AsciiUtilInterfaceImpl::SplitStr(std::string(text), std::string(separator), pieces);
  }
  const std::string_view whole = text;
  const bool single = separator.size() == 1;
  if (single) {
    ReserveMore(CountOf(separator.front(), whole) + 1, pieces);
  }
  const auto find = [&](std::size_t from) {
    return single ? whole.find(separator.front(), from) : whole.find(separator, from);
  };
  std::size_t pos = 0;
  for (std::size_t end = find(pos); end != std::string_view::npos; end = find(pos)) {
    pieces.emplace_back(TrimView(whole.substr(pos, end - pos)));
    pos = end + separator.size();
  }
  pieces.emplace_back(TrimView(whole.substr(pos)));
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
  // A set of one is searched for much faster as a character.
  const std::size_t at =
      delimiters.size() == 1 ? source.find(delimiters.front()) : source.find_first_of(delimiters);
  if (at == std::string::npos) {
    return false;
  }
  head.assign(source, 0, at);
  tail.assign(source, at + delimiters.size(), std::string::npos);
  return true;
}

void AsciiUtilInterfaceImpl::ParseListEntry(const std::string& entry, std::string& name,
                                            std::vector<std::string>& items) {
  std::string value;
  ParseListEntry(entry, value, name, items);
}

void AsciiUtilInterfaceImpl::ParseListEntry(const std::string& entry, std::string& value, std::string& name,
                                            std::vector<std::string>& items) {
  value.clear();
  SplitFirst(entry, name, value, "=");
  // The items of a path are separated by "-", and "|" is then a character like any other.
  SplitStr(value, std::strcmp(name.c_str(), "PATH") == 0 ? "-" : "|", items);
}

}  // namespace NS_ASCII
