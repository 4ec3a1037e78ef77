#include "host/script.h"

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <system_error>

#include "host/command.h"
#include "host/problem.h"

namespace host {
namespace {

void Echo(std::ostream& out, const std::string& line) {
  const std::size_t start = line.find_first_not_of(" \t\r");
  const bool isCommand = start != std::string::npos && line[start] != '#';
  out << (isCommand ? "> " : "") << line << '\n' << std::flush;  // Before what the command logs.
}

}  // namespace

void RunLine(Session& session, const std::string& line) {
  if (const std::size_t nul = line.find('\0'); nul != std::string::npos) {
    throw UsageError("column " + std::to_string(nul + 1) + ": a NUL byte; texts take it as \\x00");
  }
  const Words words = SplitWords(line);
  if (!words.empty()) {
    RunCommand(session, words);
  }
}

void RunScript(Session& session, std::istream& input, const std::string& name) {
  int number = 0;
  for (std::string line; !session.leave && std::getline(input, line);) {
    ++number;
    if (session.echo) {
      Echo(session.out, line);
    }
    try {
      RunLine(session, line);
      session.out.flush();
    } catch (const std::exception& problem) {
      throw Failure(name + ":" + std::to_string(number) + ": " + problem.what());
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
  std::ifstream stream(file);
  if (!stream) {
    throw Failure(file + ": cannot be opened: " + std::generic_category().message(errno));
  }
  RunScript(session, stream, file);
}

}  // namespace host
