// Finds completions in the table of commands, the session and the file system. The results are copies.
// Main thread only.

#include "host/console/completion.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/base/suggest.h"
#include "host/commands/command.h"
#include "host/commands/operations.h"
#include "host/platform/config_items.h"

namespace host {
namespace {

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

/// Whether the name can be typed without quotes: printable ASCII that `SplitWords` reads as one word.
bool IsPlainWord(const std::string& name) {
  const auto isPlain = [](char c) { return c > ' ' && c <= '~' && c != '\'' && c != '"'; };
  return !name.empty() && name.front() != '#' && std::all_of(name.begin(), name.end(), isPlain);
}

/// The files in the directory part of `word`, each prefixed with that directory; directories end in '/'.
std::vector<std::string> FileNames(const std::string& word) {
  const std::string directory = word.substr(0, word.rfind('/') + 1);
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator files(directory.empty() ? "." : directory, error);
  for (; !error && files != std::filesystem::directory_iterator(); files.increment(error)) {
    std::error_code none;
    names.push_back(directory + files->path().filename().string() + (files->is_directory(none) ? "/" : ""));
  }
  return names;
}

/// The operations after `call`, `call --json` or `time COUNT call`; otherwise nothing.
std::vector<std::string> NamesForCall(const Words& before) {
  const bool isTime = before[0] == "time";
  if (isTime && before.size() == 2) {
    return {"call"};
  }
  const std::size_t first = isTime ? 3 : before.size() > 1 && before[1] == "--json" ? 2 : 1;
  return before.size() == first ? NamesOf(Operations()) : std::vector<std::string>();
}

std::vector<std::string> NamesFor(const Session& session, const Words& before, const std::string& word) {
  if (before.empty()) {
    return NamesOf(Commands());
  }
  const Command* const command = FindNamed(Commands(), before[0]);
  if (command == nullptr) {
    return {};
  }
  const Completes kind = command->completes;
  if (before.size() > 1 && kind != Completes::kOperations && kind != Completes::kFiles) {
    return {};
  }
  switch (kind) {
    case Completes::kCommands:
      return NamesOf(Commands());
    case Completes::kOperations:
      return NamesForCall(before);
    case Completes::kBundles:
      return NamesOf(session.loader.Bundles());
    case Completes::kItems:
      return ItemNames();
    case Completes::kFiles:
      return FileNames(word);
    case Completes::kNothing:
      break;
  }
  return {};
}

}  // namespace

std::vector<std::string> Complete(const Session& session, const std::string& line) {
  const std::size_t blank = line.find_last_of(" \t");
  const std::string word = blank == std::string::npos ? line : line.substr(blank + 1);
  Words before;
  try {
    before = SplitWords(line.substr(0, line.size() - word.size()));
  } catch (const std::exception&) {
    return {};  // A quote is open: the word is a text, not a name.
  }
  std::vector<std::string> names = NamesFor(session, before, word);
  names.erase(
      std::remove_if(names.begin(), names.end(),
                     [&](const std::string& name) { return !IsPlainWord(name) || !StartsWith(name, word); }),
      names.end());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace host
