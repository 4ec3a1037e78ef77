// The TSV and JSON outputs of `almcfg show`. Writers borrow their stream. One thread at a time.

#include "tools/almcfg/write/table_writer.h"

#include <ostream>

#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/place_json.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

class TsvWriter : public TableWriter {
 public:
  TsvWriter(std::ostream& out, bool isTerminal) : out_(out), isTerminal_(isTerminal) {
    out_ << "#key1\tkey2\tkey3\tnumber\tvalue\tsource\n";
  }

  void Write(const Entry& entry) override {
    line_.clear();
    for (const std::string_view column :
         {entry.key.key1, entry.key.key2, entry.key.key3, entry.key.numKey, entry.value}) {
      if (isTerminal_) {
        line_ += Printable(column);
      } else {
        line_ += column;
      }
      line_ += '\t';
    }
    out_ << line_.append(Shown(entry.place)).append(1, '\n');
  }

  void End(const LoadedTable& /*table*/) override {}

 private:
  std::ostream& out_;
  bool isTerminal_;
  std::string line_;
};

class JsonWriter : public TableWriter {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) { out_ << "{\"records\":["; }

  void Write(const Entry& entry) override {
    Json json;
    SetText(json, "key1", entry.key.key1);
    SetText(json, "key2", entry.key.key2);
    SetText(json, "key3", entry.key.key3);
    SetText(json, "number", entry.key.numKey);
    SetText(json, "value", entry.value);
    SetText(json, "file", entry.place.text->Name());
    json["line"] = entry.place.line;
    out_ << (first_ ? "\n" : ",\n") << Dump(json);
    first_ = false;
  }

  void End(const LoadedTable& table) override {
    out_ << "\n],\n\"endlessLine\":" << Dump(ToJson(table.EndlessLine())) << "}\n";
  }

 private:
  std::ostream& out_;
  bool first_ = true;
};

}  // namespace

std::unique_ptr<TableWriter> MakeTsvWriter(std::ostream& out, bool isTerminal) {
  return std::make_unique<TsvWriter>(out, isTerminal);
}

std::unique_ptr<TableWriter> MakeJsonWriter(std::ostream& out) { return std::make_unique<JsonWriter>(out); }

}  // namespace almcfg
