// Runs command lines and command files on a borrowed session. Main thread only.

#include "host/commands/script.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <istream>
#include <memory>
#include <streambuf>

#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/base/text_lines.h"
#include "host/commands/command.h"
#include "host/commands/interrupt.h"

namespace host {
namespace {

/// Reads standard input; a stored signal ends it. A read error makes the stream bad.
class InputBuffer : public std::streambuf {
 protected:
  int_type underflow() override {
    if (!WaitForInput(STDIN_FILENO)) {
      return traits_type::eof();
    }
    const ssize_t size = read(STDIN_FILENO, bytes_.data(), bytes_.size());
    if (size < 0) {
      throw Failure("read error");
    }
    setg(bytes_.data(), bytes_.data(), bytes_.data() + size);
    return size == 0 ? traits_type::eof() : traits_type::to_int_type(bytes_[0]);
  }

 private:
  std::array<char, 65536> bytes_{};
};

/// One buffer for the process: a command file and a file that it runs may both be standard input. A terminal
/// may have more input after an end, so the state of the previous reader is cleared.
std::istream& StandardInput() {
  static InputBuffer buffer;
  static std::istream stream(&buffer);
  stream.clear();
  return stream;
}

/// The offset of the first word; the line's length when there is none.
std::size_t StartOf(const std::string& line) {
  return std::min(line.find_first_not_of(" \t\r"), line.size());
}

/// Prints the line without counting it as output of a command.
void Echo(Session& session, const std::string& line) {
  const std::size_t kept = session.printed.copy.size();
  const std::size_t start = StartOf(line);
  const bool isCommand = start != line.size() && line[start] != '#';
  session.out << (isCommand ? "> " : "") << line << '\n' << std::flush;  // The log of the command follows.
  session.printed.copy.resize(kept);
}

/// Throws for a line that belongs to another kind of file, such as an INI file.
void RefuseForeignLine(const std::string& line) {
  const std::size_t start = StartOf(line);
  if (line[start] == '[') {
    throw LineError(start + 1,
                    "a section of an INI file is not a command; items are read from config_items.ini in the "
                    "configuration directory");
  }
  if (line[start] == ';') {
    throw LineError(start + 1, "a comment starts with '#', not with ';'");
  }
}

void RunWords(Session& session, const Words& words, const std::vector<std::size_t>& columns,
              std::size_t prefixSize) {
  try {
    ParseCommand(words)(session);
  } catch (const Problem& problem) {
    if (problem.Word() == 0) {
      throw;
    }
    throw LineError(columns.at(problem.Word() - prefixSize), problem.what());
  }
}

std::string FirstWord(const std::string& line) {
  const std::size_t start = StartOf(line);
  return line.substr(start, line.find_first_of(" \t\r", start) - start);
}

/// Runs the lines of one input.
class Script {
 public:
  Script(Session& session, TextLines& lines, const Words& prefix)
      : session_(session), lines_(lines), prefix_(prefix) {}

  /// Returns "M of N commands failed"; empty when none did.
  std::string Run() {
    for (std::string line; !session_.quitRequested && Next(line);) {
      if (StopSignal() != 0) {  // It may have cut the line short.
        throw Interrupted(lines_.Place(StartOf(line)));
      }
      if (session_.echo) {
        Echo(session_, line);
      }
      RunOne(line);
    }
    ThrowIfInterrupted();
    EndFailed();
    return failed_ == 0 ? ""
                        : std::to_string(failed_) + " of " + std::to_string(commands_) + " commands failed";
  }

 private:
  bool Next(std::string& line) {
    try {
      return lines_.Next(line);
    } catch (const Failure&) {
      EndFailed();
      throw;
    }
  }

  void RunOne(const std::string& line) {
    const std::string command = FirstWord(line);
    if (command.empty() || command[0] == '#') {
      return;
    }
    ++commands_;
    if (command != "expect-error" || !prefix_.empty()) {
      EndFailed();
    }
    problem_.clear();
    try {
      RunLine(session_, line, prefix_);
      session_.out.flush();
    } catch (const Interrupted&) {
      throw Interrupted(lines_.Place(StartOf(line)));
    } catch (const LineError& problem) {
      problem_ = lines_.Place(problem.Column() - 1) + problem.Reason();
    } catch (const std::exception& problem) {
      problem_ = lines_.Place(StartOf(line)) + problem.what();
    }
  }

  /// Throws the problem of the last command, or with `keepGoing` prints and counts it.
  void EndFailed() {
    if (problem_.empty()) {
      return;
    }
    if (!session_.keepGoing) {
      throw Failure(problem_);
    }
    std::cerr << "bundle_host: " << OneLine(problem_) << '\n';
    ++failed_;
  }

  Session& session_;
  TextLines& lines_;
  const Words& prefix_;
  int commands_ = 0;
  int failed_ = 0;
  std::string problem_;  // The last command's problem with its place; empty when it succeeded.
};

}  // namespace

void RunLine(Session& session, const std::string& line, const Words& prefix) {
  std::vector<std::size_t> columns;
  try {
    RefuseForeignLine(line);
    Words words = SplitWords(line, &columns);
    if (words.empty()) {
      return;
    }
    words.insert(words.begin(), prefix.begin(), prefix.end());
    if (words[0] != "expect" && words[0] != "expect-error") {
      session.printed.copy.clear();
      session.problem.clear();
    }
    RunWords(session, words, columns, prefix.size());
  } catch (const LineError& problem) {
    session.problem = problem.Reason();
    throw;
  } catch (const Problem& problem) {
    session.problem = problem.what();
    throw;
  }
}

void RunScript(Session& session, const std::string& file, const Words& prefix) {
  constexpr int kMaxDepth = 16;
  const std::string name = file == "-" ? "stdin" : file;
  if (session.runDepth == kMaxDepth) {
    throw Failure(name + " would be nested deeper than 16 files; does it run itself?");
  }
  const Temporarily depth(session.runDepth, session.runDepth + 1);
  const auto lines =
      file == "-" ? std::make_unique<TextLines>(StandardInput(), name) : std::make_unique<TextLines>(file);
  if (const std::string failed = Script(session, *lines, prefix).Run(); !failed.empty()) {
    throw Failure(name + ": " + failed);
  }
}

}  // namespace host
