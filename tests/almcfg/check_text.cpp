#include "tests/almcfg/desk.h"

#include "tests/almcfg/run_program.h"

namespace almcfg_test {

std::vector<almcfg::Finding> CheckWhole(const std::string& content) {
  const TempFile file(content);
  Findings findings;
  almcfg::Progress progress(false);
  almcfg::Checker checker(findings);
  almcfg::LoadedFiles loaded(checker, progress);
  loaded.Load(almcfg::SourceText::Read(file.path(), progress));
  return findings.all;
}

std::vector<std::string> Check(const std::string& content) {
  std::vector<std::string> found;
  for (const almcfg::Finding& finding : CheckWhole(content)) {
    found.push_back(std::to_string(finding.line) + ':' + std::to_string(finding.column) + '+' +
                    std::to_string(finding.length) + ' ' + almcfg::TrapOf(finding.code).name);
  }
  return found;
}

std::vector<std::string> ContentOf(const NS_ASCII::Alarm_Config_Param& table) {
  std::vector<std::string> content;
  table.values().ForEach([&content](const NS_ASCII::AlarmKey& key, std::string_view value) {
    std::string entry;
    for (const std::string_view part : {key.key1, key.key2, key.key3, key.numKey, value}) {
      entry += std::string(part) + '\n';
    }
    content.push_back(entry);
  });
  return content;
}

}  // namespace almcfg_test
