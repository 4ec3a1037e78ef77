// Runs almcfg's checker inside the test program, on a text instead of a file.

#include "tests/almcfg/check_text.h"

#include <utility>

namespace almcfg_test {

almcfg::LoadedTable TableOf(const std::string& content) {
  almcfg::Progress progress(false);
  std::vector<almcfg::SourceText> texts;
  texts.push_back(almcfg::SourceText::FromBytes("test.csv", content));
  return {std::move(texts), progress};
}

std::vector<almcfg::Finding> CheckWhole(const std::string& content) {
  Findings findings;
  almcfg::Progress progress(false);
  const almcfg::LoadedTable table = TableOf(content);
  almcfg::CheckText(table, table.Text(0), progress, findings);
  return findings.all;
}

std::vector<std::string> Check(const std::string& content) {
  std::vector<std::string> found;
  for (const almcfg::Finding& finding : CheckWhole(content)) {
    found.push_back(std::to_string(finding.line) + ':' + std::to_string(finding.column) + '+' +
                    std::to_string(finding.length) + ' ' + almcfg::RuleOf(finding.code).name);
  }
  return found;
}

std::string EntryText(const NS_ASCII::AlarmKey& key, std::string_view value) {
  std::string entry;
  for (const std::string_view part : {key.key1, key.key2, key.key3, key.numKey, value}) {
    entry += std::string(part) + '\n';
  }
  return entry;
}

std::vector<std::string> ContentOf(const NS_ASCII::Alarm_Config_Param& table) {
  std::vector<std::string> content;
  table.Values().ForEach([&content](const NS_ASCII::AlarmKey& key, std::string_view value) {
    content.push_back(EntryText(key, value));
  });
  return content;
}

std::vector<std::string> ContentOf(const almcfg::LoadedTable& table) {
  std::vector<std::string> content;
  table.ForEachInTableOrder(
      [&content](const almcfg::Entry& entry) { content.push_back(EntryText(entry.key, entry.value)); });
  return content;
}

}  // namespace almcfg_test
