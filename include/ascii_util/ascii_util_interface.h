#ifndef ASCII_UTIL_ASCII_UTIL_INTERFACE_H_
#define ASCII_UTIL_ASCII_UTIL_INTERFACE_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "framework/service_interface.h"
#include "framework/visibility.h"

/// The interface that other bundles fetch by the name "AsciiUtilInterface".
///
/// Texts are byte strings; no encoding is assumed. "White space" that is trimmed is exactly blank, tab, line
/// feed and carriage return. "(out)" marks the parameters that an operation writes. "Required" marks
/// behaviour that existing callers depend on, even if it looks like a mistake.
namespace NS_ASCII {

/// Maps each name to its list of items; see `AsciiUtilInterface::ParseListMap`. Owned by the caller.
using ListMap = std::map<std::string, std::vector<std::string>>;

/// String operations and lookups in the alarm configuration, for the bundles of a text alarm agent.
///
/// Binary contract: callers call operations by slot, so the operations keep exactly this order
/// (`GetSvcName` and `IsValid` of the base are slots 3 and 4); new ones may only be appended.
///
/// Ownership: the interface belongs to the service object that registered it. A caller borrows it and must
/// not use it after the bundle is unloaded.
/// Threads: the interface has no state. Every operation may be called from any thread at any time, also while
/// the configuration is being loaded; the caller synchronizes access to the maps and lists it passes.
/// Errors: bad input does not throw, except for an empty separator of `SplitStr`, which exhausts memory.
/// Exhausted memory throws `std::bad_alloc`. Exceptions of the platform's functions, of the registry and of a
/// logger's `Log` and `LogF` reach the caller; an exception of `GetLogger` only drops the message. When the log
/// service is not in the registry, the service objects of all bundles are searched; any exception of that
/// search, `std::bad_alloc` included, ends the process through the unexpected-exception handler. After an
/// exception, the map of `ParseListMap` and the list of `SplitStr` keep what was added; every other out value is
/// unchanged.
class PLATFORM_API AsciiUtilInterface : public NS_BUNDLEMGR1::ServiceInterface {
 public:
  /// Slot 5. Reads `text`, up to its first NUL, as an integer with `strtol` in `base` (0 or 2 to 36). `value`
  /// (out, always written) receives the low 32 bits of what could be read, 0 when nothing could. True when
  /// all of the text was read: leading white space and a sign are accepted, anything after the number is not.
  /// An empty text is true with 0. A number beyond 32 bits is true with its low 32 bits; a number beyond the
  /// range of `long` gives -1 (too large) or 0 (too small). For any other base `value` is 0, and the result
  /// is true only for an empty text.
  virtual bool Str2Num(const std::string& text, int& value, int base) = 0;

  /// Slot 6. The present time in UTC as "2026-11-15T09:11:44", the calendar form of ISO 8601: 19 characters,
  /// a year below 1000 padded with blanks. Empty when the time does not fit, as from the year 10000 on.
  virtual std::string GetTimeStamp() = 0;

  /// Slot 7. Whether callers apply the operator-specific translation, which is not part of this bundle: true
  /// when the integer configuration item "IsTransQuelt" is 1 or cannot be read, false for every other value.
  /// Every call reads the item and logs its decision.
  virtual bool IsTransQueltEnabled() = 0;

  /// Slot 8. Looks up the integer configured for columns 1 to 3 (`key1`, `key2`, `key3`) and column 4
  /// (`numKey`). Returns 0 and writes `value` (out) when `Str2Num` reads all of the configured text in base
  /// 10; returns 1 and leaves `value` unchanged when it does not. Column 4 must be the decimal text of
  /// `numKey`: "07" is never found.
  /// Required: for a key that is not configured it returns 0 and writes 0.
  virtual std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                                      const std::string& key3, const int& numKey) = 0;

  /// Slot 9. A copy of `text` in upper case, byte by byte in the calling thread's locale. Bytes are taken as
  /// signed values, so 0xFF never changes.
  virtual std::string ToUpper(const std::string& text) = 0;

  /// Slot 10. Whether `text` contains `sub`. False when `sub` is empty or starts with NUL; any other NUL is
  /// an ordinary byte.
  virtual bool IsContain(const std::string& sub, const std::string& text) = 0;

  /// Slot 11. Whether `GetKeyValue` of the same arguments starts with a base-10 number above 1. `Str2Num`
  /// reads the number and keeps its low 32 bits; text after the number is ignored. False when the key is
  /// missing.
  virtual bool IsKeyValueAboveOne(const std::string& key, const std::string& text) = 0;

  /// Slot 12. The value of `key` in a text of comma-separated key=value pairs; empty when there is none.
  /// Pairs are trimmed, but blanks next to the "=" belong to the key or the value. The first matching pair
  /// wins; its value ends before the next comma or at the end of the text. Required: for a value that is
  /// empty, is only white space or starts with a NUL, the result is the whole rest of the text, its right end
  /// trimmed (",B=2" for A in "A=,B=2 "). Keys end at their first NUL; a `key` that is then empty, starts
  /// with white space or contains "=" or "," is never found.
  virtual std::string GetKeyValue(const std::string& key, const std::string& text) = 0;

  /// Slot 13. Fills `map` (out, emptied first) from comma-separated entries name=item|item. Items of the
  /// entry named "PATH" are separated by "-" instead. Entries and items are trimmed; blanks between a name
  /// and its "=" are kept. Of several entries with one name the first is kept. An entry without "=" counts as
  /// the empty name with one empty item. Always 0.
  virtual std::int64_t ParseListMap(ListMap& map, const std::string& text) = 0;

  /// Slot 14. Copies the list of `name` into `items` (out, replaced) and returns 0; returns 1 and leaves
  /// `items` unchanged when the map has no such name or its list is empty.
  virtual std::int64_t GetMapList(const ListMap& map, const std::string& name,
                                  std::vector<std::string>& items) = 0;

  /// Slot 15. Appends the pieces of `text` between the occurrences of `separator`, each trimmed, empty
  /// ones included, to `pieces` (out, not emptied first). Always 0.
  /// `separator` must not be empty: the call would append empty pieces until memory runs out.
  virtual std::int64_t SplitStr(const std::string& text, const std::string& separator,
                                std::vector<std::string>& pieces) = 0;

  /// Slot 16. Logs `message` at level 0 with the calling thread's debug position. No operation sets the
  /// position, so file and function are empty and the line is 0. Returns 0, even if the message is dropped.
  virtual std::int64_t WriteDbgLog(const std::string& message) = 0;
};

}  // namespace NS_ASCII

#endif  // ASCII_UTIL_ASCII_UTIL_INTERFACE_H_
