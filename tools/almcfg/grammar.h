#ifndef TOOLS_ALMCFG_GRAMMAR_H_
#define TOOLS_ALMCFG_GRAMMAR_H_

#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "src/almconfig.h"
#include "tools/almcfg/desk_platform.h"
#include "tools/almcfg/source_text.h"

namespace almcfg {

/// What a line stands for. The records look into the line. Each is its own key.
using Record = NS_ASCII::AlarmRecordView;
using Records = std::vector<Record>;

inline bool IsSameKey(const NS_ASCII::AlarmKey& a, const NS_ASCII::AlarmKey& b) {
  return std::tie(a.key1, a.key2, a.key3, a.numKey) == std::tie(b.key1, b.key2, b.key3, b.numKey);
}

/// The four columns in quotes, for a message.
std::string Shown(const NS_ASCII::AlarmKey& key);

/// The bundle's decision on one line after the other, as a load makes it. Nothing is decided here.
class Grammar {
 public:
  /// Lines are loaded into `table`, which is borrowed. Without one they go to a table that is thrown away
  /// now and again, for whom only the decisions matter.
  explicit Grammar(NS_ASCII::Alarm_Config_Param* table = nullptr);

  NS_ASCII::LineFate Take(const Line& line);

  /// What the bundle logged, after `kLogged`.
  [[nodiscard]] const LoggedMessage& message() const { return message_; }

  /// What the line stands for, after `kStored`; until the next line.
  [[nodiscard]] const Records& records() const { return work_.all; }

 private:
  /// A table that a pointer may own: the base keeps its destructor out of the virtual table.
  class OwnTable : public NS_ASCII::Alarm_Config_Param {
   public:
    virtual ~OwnTable() = default;
  };

  NS_ASCII::Alarm_Config_Param::LineWork work_;
  LoggedMessage message_;
  std::unique_ptr<OwnTable> own_;
  NS_ASCII::Alarm_Config_Param* table_;
  std::size_t linesInOwn_ = 0;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_GRAMMAR_H_
