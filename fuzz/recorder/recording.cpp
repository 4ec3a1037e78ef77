// The reader of recordings.
//
// Holds for every file: each line is a head, a record whose values have the kinds of its operation's signature,
// a tail, or a problem: one line of printable text with a column of that line. Holds for every text: written and
// read, it is unchanged. Input: the file; the same bytes are also the text.

#include <algorithm>
#include <sstream>
#include <string>

#include "fuzz/fuzz_input.h"
#include "tools/recorder/format/reader.h"
#include "tools/recorder/format/writer.h"

namespace {

using recording_format::Record;

void ExpectComplete(const Record& record) {
  const recording_format::Signature& signature = recording_format::SignatureOf(record.operation);
  fuzz::Expect(record.in.size() == signature.in.size() && record.before.size() == signature.out.size() &&
                   record.out.size() == signature.out.size(),
               "a record has the values of its signature");
  fuzz::Expect(record.result.has_value() != record.thrown.has_value(), "a call returns or throws");
}

void ExpectSurvives(const std::string& text) {
  std::string line = R"({"op":"ToUpper","in":[)";
  recording_format::AppendText(line, text);
  line += R"(],"result":"","thread":1,"start":2,"ns":3})";
  const recording_format::Line read = recording_format::ParseLine(line);
  const auto* const record = std::get_if<Record>(&read);
  fuzz::Expect(record != nullptr && record->in[0] == recording_format::Value(text),
               "a text comes back as it was written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::Input(data, size).Rest();
  ExpectSurvives(input);
  std::istringstream file(input);
  recording_format::Reader reader(file);
  std::size_t lines = 0;
  while (const auto line = reader.Next()) {
    ++lines;
    fuzz::Expect(reader.LineNumber() == lines, "lines are counted");
    if (const auto* const record = std::get_if<Record>(&*line)) {
      ExpectComplete(*record);
    } else if (const auto* const problem = std::get_if<recording_format::Problem>(&*line)) {
      fuzz::Expect(problem->column >= 1 && problem->column <= size + 1, "a problem is in its line");
      fuzz::Expect(std::all_of(problem->text.begin(), problem->text.end(),
                               [](char c) { return c >= ' ' && c <= '~'; }),
                   "a problem is one line of printable text");
    }
  }
  const auto ends = static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n'));
  fuzz::Expect(lines == ends + (input.empty() || input.back() == '\n' ? 0 : 1), "no line is lost");
  return 0;
}
