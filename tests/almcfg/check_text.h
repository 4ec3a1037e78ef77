#ifndef TESTS_ALMCFG_CHECK_TEXT_H_
#define TESTS_ALMCFG_CHECK_TEXT_H_

#include <string>
#include <vector>

#include "src/alarmconfig/almconfig.h"
#include "tools/almcfg/check/checker.h"
#include "tools/almcfg/read/loaded_table.h"
#include "tools/almcfg/write/progress.h"

/// Runs the checker on texts.
namespace almcfg_test {

/// Keeps all findings.
class Findings : public almcfg::FindingSink {
 public:
  void Take(const almcfg::SourceText& /*text*/, const almcfg::Finding& finding) override {
    all.push_back(finding);
  }

  std::vector<almcfg::Finding> all;
};

/// "LINE:COLUMN+LENGTH code" of every finding about a file with this content.
std::vector<std::string> Check(const std::string& content);

/// The findings themselves.
std::vector<almcfg::Finding> CheckWhole(const std::string& content);

/// A file with this content, loaded.
almcfg::LoadedTable TableOf(const std::string& content);

/// The keys and values of a table in its order, in one text each.
std::vector<std::string> ContentOf(const NS_ASCII::Alarm_Config_Param& table);
std::vector<std::string> ContentOf(const almcfg::LoadedTable& table);

}  // namespace almcfg_test

#endif  // TESTS_ALMCFG_CHECK_TEXT_H_
