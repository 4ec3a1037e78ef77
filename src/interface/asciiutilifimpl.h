#ifndef SRC_INTERFACE_ASCIIUTILIFIMPL_H_
#define SRC_INTERFACE_ASCIIUTILIFIMPL_H_

#include <cstdint>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

namespace NS_ASCII {

/// The only implementation of the interface; `AsciiUtilInterface` describes the operations.
///
/// Invariants: no data members, no state between calls. Required: operations that use another one
/// (`GetAlmCfgValue` and `IsKeyValueAboveOne`: `Str2Num`; `ParseListMap` and its entries: `SplitStr`) call it
/// through the virtual table, so that a derived class may override it.
///
/// Every call calls the C library (`strtol`, `time`, `gmtime_r`) and the platform (`sprintf_s`, `NSTE_util`,
/// the configuration items) again and looks up the locale; nothing is cached. Threads: any, at any time.
class AsciiUtilInterfaceImpl : public AsciiUtilInterface {
 public:
  ~AsciiUtilInterfaceImpl() override;

  /// Always "AsciiUtilService".
  std::string GetSvcName() override;

  /// Always 1.
  std::int64_t IsValid() override;

  bool Str2Num(const std::string& text, int& value, int base) override;
  std::string GetTimeStamp() override;
  bool IsTransQueltEnabled() override;
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override;
  std::string ToUpper(const std::string& text) override;
  bool IsContain(const std::string& sub, const std::string& text) override;
  bool IsKeyValueAboveOne(const std::string& key, const std::string& text) override;
  std::string GetKeyValue(const std::string& key, const std::string& text) override;
  std::int64_t ParseListMap(ListMap& map, const std::string& text) override;
  std::int64_t GetMapList(const ListMap& map, const std::string& name,
                          std::vector<std::string>& items) override;
  std::int64_t SplitStr(const std::string& text, const std::string& separator,
                        std::vector<std::string>& pieces) override;
  std::int64_t WriteDbgLog(const std::string& message) override;

 private:
  /// Finds the first character of `source` that is one of `delimiters`. Sets `head` to the text before it and
  /// returns true; returns false, `head` and `tail` unchanged, when there is none.
  /// Required: `tail` begins `delimiters.size()` characters after the start of that delimiter, not one. When
  /// `source` ends before that, `std::out_of_range` is thrown, with `head` set.
  /// Required: this function and `ParseListEntry` are members of the class.
  static bool SplitFirst(const std::string& source, std::string& head, std::string& tail,
                         const std::string& delimiters);

  /// Parses one entry name=item|item, or PATH=item-item. Sets `name`, unless `entry` has no "=", and appends
  /// to `items`.
  void ParseListEntry(const std::string& entry, std::string& name, std::vector<std::string>& items);
};

}  // namespace NS_ASCII

#endif  // SRC_INTERFACE_ASCIIUTILIFIMPL_H_
