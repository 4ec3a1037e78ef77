#include "host/script.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "host/command.h"
#include "host/problem.h"
#include "host/text_file.h"
#include "host/text_line.h"

namespace host {
namespace {

/// Where the first word starts; the line's end when there is none.
std::size_t StartOf(const std::string& line) {
  return std::min(line.find_first_not_of(" \t\r"), line.size());
}

void Echo(std::ostream& out, const std::string& line) {
  const std::size_t start = StartOf(line);
  const bool isCommand = start != line.size() && line[start] != '#';
  out << (isCommand ? "> " : "") << line << '\n' << std::flush;  // Before what the command logs.
}

/// Tells what looks like a line of some other kind of file.
void RefuseForeignLine(const std::string& line) {
  if (line.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    throw LineError(1, kByteOrderMarkProblem);
  }
  if (line.size() > kLongestTextLine) {
    throw LineError(kLongestTextLine + 1, kLongLineProblem);
  }
  if (const std::size_t nul = line.find('\0'); nul != std::string::npos) {
    throw LineError(nul + 1, "a NUL byte; texts take it as \\x00");
  }
  const std::size_t start = StartOf(line);
  if (line[start] == '[') {
    throw LineError(start + 1,
                    "a section of an INI file is no command; items are read from config_items.ini in the "
                    "configuration directory");
  }
  if (line[start] == ';') {
    throw LineError(start + 1, "a comment starts with '#', not with ';'");
  }
}

}  // namespace

void RunLine(Session& session, const std::string& line) {
  RefuseForeignLine(line);
  const Words words = SplitWords(line);
  if (!words.empty()) {
    RunCommand(session, words);
  }
}

void RunScript(Session& session, std::istream& input, const std::string& name) {
  int number = 0;
  for (std::string line; !session.leave && GetTextLine(input, line);) {
    ++number;
    if (session.echo) {
      Echo(session.out, line);
    }
    try {
      RunLine(session, line);
      session.out.flush();
    } catch (const LineError& problem) {
      FailAt(name, number, problem.Column(), problem.Reason());
    } catch (const std::exception& problem) {
      FailAt(name, number, StartOf(line) + 1, problem.what());
    }
  }
  if (input.bad() || (&input == &std::cin && std::ferror(stdin) != 0)) {
    throw Failure(name + ": cannot be read");
  }
}

void RunScriptFile(Session& session, const std::string& file) {
  if (file == "-") {
    RunScript(session, std::cin, "stdin");
    return;
  }
  std::ifstream stream = OpenTextFile(file);
  RunScript(session, stream, file);
}

}  // namespace host
