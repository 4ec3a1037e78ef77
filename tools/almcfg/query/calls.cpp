// Reads recordings and lists of queries into a map of copies. One thread at a time.

#include "tools/almcfg/query/calls.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <memory>
#include <ostream>
#include <string_view>
#include <vector>

#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"
#include "tools/recorder/format/reader.h"

namespace almcfg {
namespace {

constexpr std::size_t kMaxReported = 10;

/// Reports bad lines: the first `kMaxReported` one by one, then the number of the others.
class LineProblems {
 public:
  LineProblems(const std::string& name, const Outputs& outputs) : name_(name), outputs_(outputs) {}

  void Add(std::size_t line, std::size_t column, const std::string& text) {
    if (++count_ <= kMaxReported) {
      outputs_.progress.Hide();
      outputs_.err << "almcfg: " << Printable(name_) << ':' << line << ':' << column << ": "
                   << Printable(text) << "; the line is skipped\n";
    }
  }

  void End() const {
    if (count_ > kMaxReported) {
      outputs_.err << "almcfg: " << Printable(name_) << ": " << count_ - kMaxReported << " more such lines\n";
    }
  }

 private:
  const std::string& name_;
  const Outputs& outputs_;
  std::size_t count_ = 0;
};

void TakeRecord(const recording_format::Record& record, Calls& calls) {
  if (record.operation == recording_format::Operation::kGetAlmCfgValue) {
    ++calls.counts[{std::get<std::string>(record.in[0]), std::get<std::string>(record.in[1]),
                    std::get<std::string>(record.in[2]),
                    static_cast<int>(std::get<std::int64_t>(record.in[3]))}];
  }
}

void ReadRecording(std::istream& file, LineProblems& problems, Calls& calls) {
  recording_format::Reader reader(file);
  while (const auto line = reader.Next()) {
    if (const auto* const record = std::get_if<recording_format::Record>(&*line)) {
      TakeRecord(*record, calls);
    } else if (const auto* const head = std::get_if<recording_format::Head>(&*line)) {
      calls.every = head->every;
    } else if (const auto* const tail = std::get_if<recording_format::Tail>(&*line)) {
      calls.dropped += static_cast<std::uint64_t>(tail->dropped);
    } else {
      const auto& problem = std::get<recording_format::Problem>(*line);
      problems.Add(reader.LineNumber(), problem.column, problem.text);
    }
  }
}

/// A column and where it starts in the line, from 0.
struct Column {
  std::size_t at = 0;
  std::string_view text;
};

std::vector<Column> ColumnsOf(std::string_view line) {
  std::vector<Column> columns;
  for (std::size_t from = 0; from <= line.size();) {
    const std::size_t to = std::min(line.find('\t', from), line.size());
    columns.push_back({from, line.substr(from, to - from)});
    from = to + 1;
  }
  return columns;
}

template <class Number>
bool ParseNumber(std::string_view text, Number& number) {
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && stop == text.data() + text.size();
}

void ReadTable(std::istream& file, LineProblems& problems, Calls& calls) {
  std::string text;
  for (std::size_t number = 1; std::getline(file, text); ++number) {
    if (!text.empty() && text.back() == '\r') {
      text.pop_back();
    }
    if (text.empty() || text[0] == '#') {
      continue;
    }
    const std::vector<Column> columns = ColumnsOf(text);
    int wanted = 0;
    std::uint32_t count = 1;  // 32 bits, so that no sum overflows.
    if (columns.size() != 4 && columns.size() != 5) {
      problems.Add(number, 1,
                   "neither a record nor KEY1, KEY2, KEY3, NUMBER and an optional count, separated by TABs");
    } else if (!ParseNumber(columns[3].text, wanted)) {
      problems.Add(number, columns[3].at + 1, "the fourth column is not a 32-bit decimal integer");
    } else if (columns.size() == 5 && !ParseNumber(columns[4].text, count)) {
      problems.Add(number, columns[4].at + 1, "the count is not an integer from 0 to 4294967295");
    } else {
      calls.counts[{std::string(columns[0].text), std::string(columns[1].text), std::string(columns[2].text),
                    wanted}] += count;
    }
  }
}

}  // namespace

std::uint64_t CountOf(const Calls& calls, const NS_ASCII::AlarmKey& key) {
  int number = 0;
  // Callers ask with an integer, whose text has no leading zero and no plus sign.
  if (!ParseNumber(key.numKey, number) || std::to_string(number) != key.numKey) {
    return 0;
  }
  const auto found =
      calls.counts.find({std::string(key.key1), std::string(key.key2), std::string(key.key3), number});
  return found == calls.counts.end() ? 0 : found->second;
}

bool ReadCalls(const Options& options, const Outputs& outputs, Calls& calls) {
  const std::string& name = options.NameOf(options.calls);
  const auto report = [&](const std::string& reason) {
    outputs.progress.Hide();
    outputs.err << "almcfg: " + Printable(name) + ": " + reason + '\n';
  };
  try {
    const std::unique_ptr<std::streambuf> input = OpenInput(options.calls);
    std::istream file(input.get());
    file.exceptions(std::ios::badbit);
    LineProblems problems(name, outputs);
    (file.peek() == '{' ? ReadRecording : ReadTable)(file, problems, calls);
    problems.End();
  } catch (const ReadError& error) {
    report(error.what());
    return false;
  }
  if (calls.counts.empty()) {
    report(
        "holds no call of GetAlmCfgValue; give a recording, or lines of KEY1, KEY2, KEY3, NUMBER and an "
        "optional count, separated by TABs");
  }
  return !calls.counts.empty();
}

}  // namespace almcfg
