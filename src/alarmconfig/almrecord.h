#ifndef SRC_ALARMCONFIG_ALMRECORD_H_
#define SRC_ALARMCONFIG_ALMRECORD_H_

#include <string>
#include <string_view>

namespace NS_ASCII {

/// The key of a record, in the order in which keys are compared. A plain value: views of the caller's texts.
struct AlarmKey {
  std::string_view key1;    ///< column 1, one of its alternatives
  std::string_view key2;    ///< column 2, one of its alternatives
  std::string_view key3;    ///< column 3
  std::string_view numKey;  ///< column 4
};

/// A record whose texts are all views, for example into one line.
struct AlarmRecordView : AlarmKey {
  std::string_view value;  ///< column 5
};

/// A record that owns its texts.
/// Required: column 4 is declared before column 3; records are filled by position.
struct AlarmConfigRecord {
  std::string key1;    ///< column 1, one of its alternatives
  std::string key2;    ///< column 2, one of its alternatives
  std::string numKey;  ///< column 4
  std::string key3;    ///< column 3
  std::string value;   ///< column 5
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMRECORD_H_
