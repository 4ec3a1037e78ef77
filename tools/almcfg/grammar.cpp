#include "tools/almcfg/grammar.h"

#include <utility>

#include "tools/almcfg/visible.h"

namespace almcfg {

using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::LineFate;

constexpr std::size_t kLinesPerOwnTable = 256;  // Small enough to stay in the processor's cache.

std::string Shown(const NS_ASCII::AlarmKey& key) {
  return Quoted(key.key1) + ", " + Quoted(key.key2) + ", " + Quoted(key.key3) + ", " + Quoted(key.numKey);
}

Grammar::Grammar(Alarm_Config_Param* table) : table_(table) {
  if (table_ == nullptr) {
    own_ = std::make_unique<OwnTable>();
    table_ = own_.get();
  }
}

LineFate Grammar::Take(const Line& line) {
  if (own_ != nullptr && ++linesInOwn_ > kLinesPerOwnTable) {
    own_ = std::make_unique<OwnTable>();
    table_ = own_.get();
    linesInOwn_ = 0;
  }
  const LineFate fate = table_->TakeLine(line.text.data(), work_);
  if (fate == LineFate::kLogged) {
    message_ = std::move(BundleLog().back());
    BundleLog().clear();
  }
  return fate;
}

}  // namespace almcfg
