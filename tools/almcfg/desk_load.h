#ifndef TOOLS_ALMCFG_DESK_LOAD_H_
#define TOOLS_ALMCFG_DESK_LOAD_H_

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "src/almconfig.h"
#include "tools/almcfg/checker.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/loaded_files.h"

/// What the commands that answer questions have in common: files loaded into a table of the bundle.
namespace almcfg {

/// One key in force. It looks into whatever it was made from.
struct Entry {
  NS_ASCII::AlarmKey key;
  std::string_view value;
  Place place;
};

/// Files loaded into a table, as a process has them.
///
/// Ownership: `table`, `err` and the progress line are borrowed and must outlive it.
class DeskLoad {
 public:
  /// Findings also go to `sink`, if there is one.
  DeskLoad(NS_ASCII::Alarm_Config_Param& table, const Outputs& outputs, FindingSink* sink = nullptr);

  /// Loads the files. What cannot be read is said on the error stream, and false returned; how many errors
  /// and warnings a file has is said there too, in one line, and in full that a load would never end.
  bool Load(const std::vector<std::string>& paths);

  /// Visits every key in force, by the lines that serve them.
  void ForEachInFileOrder(const std::function<void(const Entry&)>& visit) const;

  /// Visits every key in force in the table's order.
  void ForEachInTableOrder(const std::function<void(const Entry&)>& visit) const;

  [[nodiscard]] const LoadedFiles& files() const { return loaded_; }

  /// The value that the table has for the key; empty when it has none.
  [[nodiscard]] std::string ValueOf(const NS_ASCII::AlarmKey& key) const;

 private:
  /// Counts findings, tells of those that stop a load, and passes all on.
  class Listener : public FindingSink {
   public:
    Listener(const Outputs& outputs, FindingSink* next) : outputs_(outputs), next_(next) {}
    void Take(const SourceText& text, const Finding& finding) override;
    Tally TakeTally();

   private:
    const Outputs& outputs_;
    FindingSink* next_;
    Tally tally_;
  };

  NS_ASCII::Alarm_Config_Param& table_;
  const Outputs& outputs_;
  Listener listener_;
  Checker checker_;
  LoadedFiles loaded_;
};

/// "FILE:LINE", safe to print.
std::string Shown(Place place);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_DESK_LOAD_H_
