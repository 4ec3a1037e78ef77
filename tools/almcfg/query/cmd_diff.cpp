// almcfg diff: loads both files into tables of their own, which it owns, and reports the keys that are new,
// missing, or have another text as value. One thread.

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/query/load_files.h"
#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/place_json.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

enum class ChangeKind {
  kAdded,      ///< the key is new
  kChanged,    ///< callers get another answer
  kRewritten,  ///< another text with the same answer
  kStays,      ///< deleted from the file; the key stays in force until a restart
};

const char* NameOf(ChangeKind kind) {
  constexpr const char* kNames[] = {"added", "changed", "rewritten", "stays"};
  return kNames[static_cast<std::size_t>(kind)];
}

/// A key before and after.
struct Change {
  ChangeKind kind;
  std::optional<Entry> before;
  std::optional<Entry> after;

  [[nodiscard]] const NS_ASCII::AlarmKey& Key() const { return before ? before->key : after->key; }
};

/// How the two tables differ.
struct Changes {
  std::size_t counts[4] = {};
  Place endlessRunning;
  Place endlessNew;

  [[nodiscard]] std::size_t Of(ChangeKind kind) const { return counts[static_cast<std::size_t>(kind)]; }
  [[nodiscard]] bool IsClean() const {
    return Of(ChangeKind::kAdded) + Of(ChangeKind::kChanged) + Of(ChangeKind::kStays) == 0 &&
           !endlessRunning && !endlessNew;
  }
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
    const std::string kind = NameOf(change.kind) + std::string(":");
    out_ << kind << std::string(kIndent - kind.size(), ' ') << Shown(change.Key()) << '\n';
    WriteSide("was ", change.before);
    WriteSide("now ", change.after);
    if (change.kind == ChangeKind::kRewritten) {
      out_ << "             and the answer is the same\n";
    } else if (change.kind == ChangeKind::kStays) {
      out_ << "             and remains in force until a restart\n";
    }
  }

  void End(const Changes& changes) override {
    const std::size_t rewritten = changes.Of(ChangeKind::kRewritten);
    out_ << "reload:    " << Counted(changes.Of(ChangeKind::kChanged), "answer") << " changed, "
         << Counted(changes.Of(ChangeKind::kAdded), "key") << " added, ";
    if (rewritten != 0) {
      out_ << Counted(rewritten, "value") << " rewritten, ";
    }
    const std::size_t staying = changes.Of(ChangeKind::kStays);
    out_ << Counted(staying, "deleted key") << (staying == 1 ? " stays" : " stay") << " in force\n";
    WriteEndless("running:   its load NEVER ENDS at ", changes.endlessRunning);
    WriteEndless("reload:    NEVER ENDS at ", changes.endlessNew);
    if (changes.endlessNew) {
      WriteEndless("restart:   NEVER COMES UP: its load does not end at ", changes.endlessNew);
      return;
    }
    out_ << "restart:   the same, and ";
    if (staying == 0) {
      out_ << "nothing more\n";
    } else {
      out_ << Counted(staying, "deleted key") << (staying == 1 ? " ends: its" : " end: their")
           << " callers then get a successful 0\n";
    }
  }

 private:
  static constexpr std::size_t kIndent = 11;

  void WriteSide(const char* name, const std::optional<Entry>& entry) {
    if (entry) {
      out_ << "             " << name << Quoted(entry->value) << " by " << Shown(entry->place) << '\n';
    }
  }

  void WriteEndless(const char* what, Place place) {
    if (place) {
      out_ << what << Shown(place) << '\n';
    }
  }
};

Json ToJson(const std::optional<Entry>& entry) {
  if (!entry) {
    return nullptr;
  }
  Json json;
  SetText(json, "value", entry->value);
  SetText(json, "file", entry->place.text->Name());
  json["line"] = entry->place.line;
  return json;
}

class JsonWriter : public ChangeWriter {
 public:
  explicit JsonWriter(std::ostream& out) : ChangeWriter(out) { out_ << "{\"changes\":["; }

  void Write(const Change& change) override {
    const NS_ASCII::AlarmKey& key = change.Key();
    Json json;
    json["kind"] = NameOf(change.kind);
    SetText(json, "key1", key.key1);
    SetText(json, "key2", key.key2);
    SetText(json, "key3", key.key3);
    SetText(json, "number", key.numKey);
    json["running"] = ToJson(change.before);
    json["new"] = ToJson(change.after);
    out_ << (first_ ? "\n" : ",\n") << Dump(json);
    first_ = false;
  }

  void End(const Changes& changes) override {
    const std::size_t staying = changes.Of(ChangeKind::kStays);
    Json reload{{"changed", changes.Of(ChangeKind::kChanged)},
                {"added", changes.Of(ChangeKind::kAdded)},
                {"rewritten", changes.Of(ChangeKind::kRewritten)}};
    Json restart = reload;
    reload["staying"] = staying;
    restart["removed"] = staying;
    const Json endless{{"running", almcfg::ToJson(changes.endlessRunning)},
                       {"new", almcfg::ToJson(changes.endlessNew)}};
    out_ << "\n],\n\"reload\":" << Dump(reload)
         << ",\n\"restart\":" << Dump(changes.endlessNew ? Json(nullptr) : restart)
         << ",\n\"endlessLine\":" << Dump(endless) << "}\n";
  }

 private:
  bool first_ = true;
};

Changes Compare(const LoadedTable& running, const LoadedTable& fresh, ChangeWriter& writer) {
  Changes changes;
  const auto write = [&](const Change& change) {
    ++changes.counts[static_cast<std::size_t>(change.kind)];
    writer.Write(change);
  };
  std::size_t kept = 0;
  fresh.ForEach([&](const Entry& entry) {
    const std::optional<Entry> before = running.Find(entry.key);
    kept += before ? 1 : 0;
    if (!before) {
      write({ChangeKind::kAdded, {}, entry});
    } else if (before->value != entry.value) {
      const bool isSame = AnswerFor(before->value) == AnswerFor(entry.value);
      write({isSame ? ChangeKind::kRewritten : ChangeKind::kChanged, before, entry});
    }
  });
  if (kept != running.RecordCount()) {
    running.ForEach([&](const Entry& entry) {
      if (!fresh.Find(entry.key)) {
        write({ChangeKind::kStays, entry, {}});
      }
    });
  }
  changes.endlessRunning = running.EndlessLine();
  changes.endlessNew = fresh.EndlessLine();
  writer.End(changes);
  return changes;
}

}  // namespace

int RunDiff(const Options& options, const Outputs& outputs) {
  const std::optional<LoadedTable> running = LoadFiles({options.files[0]}, options, outputs);
  const std::optional<LoadedTable> fresh =
      running ? LoadFiles({options.files[1]}, options, outputs) : std::nullopt;
  if (!fresh) {
    return kCouldNotRun;
  }
  if (options.format == Format::kJson) {
    JsonWriter writer(outputs.out);
    return Compare(*running, *fresh, writer).IsClean() ? kClean : kFindings;
  }
  TextWriter writer(outputs.out);
  return Compare(*running, *fresh, writer).IsClean() ? kClean : kFindings;
}

}  // namespace almcfg
