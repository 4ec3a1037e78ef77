// The commands run, expect and expect-error: run command files and check the output of commands. Main thread
// only.

#include <cctype>

#include "host/base/problem.h"
#include "host/commands/command.h"
#include "host/commands/script.h"

namespace host {
namespace {

Action ParseRun(const Words& words) {
  return [file = words[1]](Session& session) { RunScript(session, file); };
}

bool IsWordByte(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// Whether `part` occurs in `text` and neither end cuts a word or number: "result: 1" does not match in
/// "result: 15".
bool HasAsWords(const std::string& text, const std::string& part) {
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    const std::size_t end = at + part.size();
    const bool starts = at == 0 || !IsWordByte(part.front()) || !IsWordByte(text[at - 1]);
    const bool ends = end == text.size() || !IsWordByte(part.back()) || !IsWordByte(text[end]);
    if (starts && ends) {
      return true;
    }
  }
  return false;
}

std::string TextToExpect(const Words& words) {
  if (words[1].empty()) {
    throw UsageError(words[0] + ": '' occurs in every text; give a part of the expected one", 1);
  }
  return words[1];
}

std::string Quoted(std::string text) {
  text.erase(text.find_last_not_of('\n') + 1);
  return text.empty() ? "nothing" : "'" + text + "'";
}

Action ParseExpect(const Words& words) {
  return [text = TextToExpect(words)](Session& session) {
    if (!HasAsWords(session.printed.copy, text)) {
      throw Failure("expected '" + text + "', but the last command printed " + Quoted(session.printed.copy));
    }
  };
}

Action ParseExpectError(const Words& words) {
  return [text = TextToExpect(words)](Session& session) {
    if (session.problem.empty()) {
      throw Failure("expected the error '" + text + "', but the last command succeeded");
    }
    if (!HasAsWords(session.problem, text)) {
      throw Failure("expected the error '" + text + "', but the last command failed with " +
                    Quoted(session.problem));
    }
  };
}

}  // namespace

std::vector<Command> RunCommands() {
  return {
      {"run", "FILE", "run commands from a file, one per line; - is standard input",
       "Stops at the first command that fails and reports its place. With --keep-going, runs all commands,\n"
       "reports each that fails and counts them.\n",
       1, 1, Completes::kFiles, ParseRun},
      {"expect", "TEXT", "fail unless the last command printed the text",
       "TEXT matches anywhere in the output, but not in the middle of a word or number. Several expect\n"
       "commands in a row check the output of the same command.\n",
       1, 1, Completes::kNothing, ParseExpect},
      {"expect-error", "TEXT", "fail unless the last command failed with the text",
       "In a file the command before it may fail. TEXT matches parts of the message, as for expect.\n", 1, 1,
       Completes::kNothing, ParseExpectError},
  };
}

}  // namespace host
