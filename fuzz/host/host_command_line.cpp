// The host's command lines: splitting into words, checking against the table of commands, escapes.
//
// Holds for every line: it is split, or refused with one line of text; the words, written in quotes, are split
// into the same words; a line that is split is parsed as a command, or refused with one line of text; unescaping
// an escaped text gives the text. Input: the line.

#include <string>

#include "fuzz/fuzz_input.h"
#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/base/words.h"
#include "host/commands/command.h"

namespace {

/// A word in single quotes, its own single quotes in double ones.
std::string Quoted(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) {
    if (c == '\'') {
      quoted += "'\"'\"'";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

void ExpectOneLine(const std::exception& problem) {
  const std::string text = problem.what();
  fuzz::Expect(!text.empty() && text.find('\n') == std::string::npos, "a refusal is one line of text");
}

void CheckLine(const std::string& line) {
  const host::Words words = host::SplitWords(line);
  std::string again;
  for (const std::string& word : words) {
    again += Quoted(word) + ' ';
  }
  fuzz::Expect(host::SplitWords(again) == words, "quoted words are split into themselves");
  if (!words.empty()) {
    host::ParseCommand(words);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line = fuzz::Input(data, size).Rest();
  try {
    CheckLine(line);
  } catch (const host::UsageError& problem) {
    ExpectOneLine(problem);
  } catch (const host::Failure& problem) {
    ExpectOneLine(problem);
  }
  fuzz::Expect(host::UnescapeBytes(host::EscapeBytes(line)) == line, "an escaped text is itself again");
  return 0;
}
