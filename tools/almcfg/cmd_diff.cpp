#include <ostream>
#include <string>

#include "tools/almcfg/commands.h"
#include "tools/almcfg/desk_load.h"
#include "tools/almcfg/json_text.h"
#include "tools/almcfg/progress.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

/// How many keys a reload treats in which way.
struct Changes {
  std::size_t changed = 0;
  std::size_t added = 0;
  std::size_t staying = 0;

  [[nodiscard]] bool Any() const { return changed + added + staying != 0; }
};

/// A key before and after; a side without a place does not have it.
struct Change {
  NS_ASCII::AlarmKey key;
  Place oldPlace;
  std::string oldValue;
  Place newPlace;
  std::string newValue;
};

class ChangeWriter {
 public:
  explicit ChangeWriter(std::ostream& out) : out_(out) {}
  virtual ~ChangeWriter() = default;
  virtual void Write(const Change& change) = 0;
  virtual void End(const Changes& changes) = 0;

 protected:
  std::ostream& out_;
};

class TextWriter : public ChangeWriter {
 public:
  using ChangeWriter::ChangeWriter;

  void Write(const Change& change) override {
    if (!change.oldPlace) {
      out_ << "added:   " << Shown(change.key) << "\n           now " << Quoted(change.newValue) << " by "
           << Shown(change.newPlace) << '\n';
      return;
    }
    out_ << (change.newPlace ? "changed: " : "stays:   ") << Shown(change.key) << "\n           was "
         << Quoted(change.oldValue) << " by " << Shown(change.oldPlace) << '\n';
    if (change.newPlace) {
      out_ << "           now " << Quoted(change.newValue) << " by " << Shown(change.newPlace) << '\n';
    } else {
      out_ << "           and remains in force until a restart\n";
    }
  }

  void End(const Changes& changes) override {
    out_ << "reload:  " << Counted(changes.changed, "value") << " changed, " << Counted(changes.added, "key")
         << " added, " << Counted(changes.staying, "deleted key")
         << (changes.staying == 1 ? " stays" : " stay") << " in force\n"
         << "restart: the same, and "
         << (changes.staying == 0 ? "nothing more"
                                  : Counted(changes.staying, "deleted key") +
                                        (changes.staying == 1 ? " ends: its" : " end: their") +
                                        " callers then get a successful 0")
         << '\n';
  }
};

Json Side(Place place, const std::string& value) {
  if (!place) {
    return nullptr;
  }
  Json json;
  SetText(json, "value", value);
  SetText(json, "file", place.text->name());
  json["line"] = place.line;
  return json;
}

class JsonWriter : public ChangeWriter {
 public:
  explicit JsonWriter(std::ostream& out) : ChangeWriter(out) { out_ << "{\"changes\":["; }

  void Write(const Change& change) override {
    Json json;
    json["kind"] = !change.oldPlace ? "added" : change.newPlace ? "changed" : "stays";
    SetText(json, "key1", change.key.key1);
    SetText(json, "key2", change.key.key2);
    SetText(json, "key3", change.key.key3);
    SetText(json, "number", change.key.numKey);
    json["running"] = Side(change.oldPlace, change.oldValue);
    json["new"] = Side(change.newPlace, change.newValue);
    out_ << (first_ ? "\n" : ",\n") << Dump(json);
    first_ = false;
  }

  void End(const Changes& changes) override {
    const Json reload{{"changed", changes.changed}, {"added", changes.added}, {"staying", changes.staying}};
    const Json restart{{"changed", changes.changed}, {"added", changes.added}, {"removed", changes.staying}};
    out_ << "\n],\n\"reload\":" << Dump(reload) << ",\n\"restart\":" << Dump(restart) << "}\n";
  }

 private:
  bool first_ = true;
};

Changes Compare(const DeskLoad& running, const DeskLoad& fresh, ChangeWriter& writer) {
  Changes changes;
  fresh.ForEachInFileOrder([&](const Entry& entry) {
    const Place old = running.files().ServedBy(entry.key);
    const std::string oldValue = running.ValueOf(entry.key);
    if (!old || oldValue != entry.value) {
      ++(old ? changes.changed : changes.added);
      writer.Write({entry.key, old, oldValue, entry.place, std::string(entry.value)});
    }
  });
  running.ForEachInFileOrder([&](const Entry& entry) {
    if (!fresh.files().ServedBy(entry.key)) {
      ++changes.staying;
      writer.Write({entry.key, entry.place, std::string(entry.value), {}, {}});
    }
  });
  writer.End(changes);
  return changes;
}

}  // namespace

int RunDiff(const Options& options, const Outputs& outputs) {
  NS_ASCII::Alarm_Config_Param runningTable;
  NS_ASCII::Alarm_Config_Param freshTable;
  DeskLoad running(runningTable, outputs);
  DeskLoad fresh(freshTable, outputs);
  if (!running.Load({options.files[0]}) || !fresh.Load({options.files[1]})) {
    return kCouldNotRun;
  }
  outputs.progress.Hide();
  if (options.format == Format::kJson) {
    JsonWriter writer(outputs.out);
    return Compare(running, fresh, writer).Any() ? kFindings : kClean;
  }
  TextWriter writer(outputs.out);
  return Compare(running, fresh, writer).Any() ? kFindings : kClean;
}

}  // namespace almcfg
