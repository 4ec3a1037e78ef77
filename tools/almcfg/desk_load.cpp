#include "tools/almcfg/desk_load.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "tools/almcfg/progress.h"
#include "tools/almcfg/report.h"
#include "tools/almcfg/visible.h"

namespace almcfg {

using NS_ASCII::AlarmKey;

DeskLoad::DeskLoad(NS_ASCII::Alarm_Config_Param& table, const Outputs& outputs, FindingSink* sink)
    : table_(table),
      outputs_(outputs),
      listener_(outputs, sink),
      checker_(listener_),
      loaded_(checker_, outputs.progress, &table) {}

void DeskLoad::Listener::Take(const SourceText& text, const Finding& finding) {
  tally_.Add(TrapOf(finding.code).severity);
  if (finding.code == Code::kOverlongLine) {
    outputs_.progress.Hide();
    WriteFinding(outputs_.err, text, finding, false);
  }
  if (next_ != nullptr) {
    next_->Take(text, finding);
  }
}

Tally DeskLoad::Listener::TakeTally() { return std::exchange(tally_, Tally{}); }

bool DeskLoad::Load(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (const Place endless = loaded_.endlessLine()) {
      outputs_.err << "almcfg: " << Printable(SourceText::NameOf(path)) << ": never read, since the load of "
                   << Shown(endless) << " does not end\n";
      continue;
    }
    try {
      loaded_.Load(SourceText::Read(path, outputs_.progress));
    } catch (const ReadError& error) {
      outputs_.progress.Hide();
      outputs_.err << "almcfg: " << Printable(SourceText::NameOf(path)) << ": " << error.what() << '\n';
      return false;
    }
    const Tally tally = listener_.TakeTally();
    outputs_.progress.Hide();
    if (tally.errors + tally.warnings != 0) {
      outputs_.err << "almcfg: " << Printable(SourceText::NameOf(path)) << ": " << Summary(tally)
                   << "; see almcfg check\n";
    }
  }
  return true;
}

void DeskLoad::ForEachInFileOrder(const std::function<void(const Entry&)>& visit) const {
  std::string value;
  loaded_.ForEachLine([&](Place place, const Records& records) {
    for (auto record = records.begin(); record != records.end(); ++record) {
      const AlarmKey& key = *record;
      // An alternative that is named twice is one entry.
      const bool isAgain =
          std::any_of(records.begin(), record, [&key](const auto& before) { return IsSameKey(before, key); });
      if (!isAgain && loaded_.ServedBy(key) == place && table_.GetValue(key, value) == 0) {
        visit({key, value, place});
      }
    }
  });
}

void DeskLoad::ForEachInTableOrder(const std::function<void(const Entry&)>& visit) const {
  table_.values().ForEach([&](const AlarmKey& key, std::string_view value) {
    visit({key, value, loaded_.ServedBy(key)});
  });
}

std::string DeskLoad::ValueOf(const AlarmKey& key) const {
  std::string value;
  static_cast<void>(table_.GetValue(key, value));
  return value;
}

std::string Shown(Place place) { return Printable(place.text->name()) + ':' + std::to_string(place.line); }

}  // namespace almcfg
