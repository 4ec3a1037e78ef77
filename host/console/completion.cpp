#include "host/completion.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/command.h"
#include "host/config_items.h"
#include "host/operations.h"

namespace host {
namespace {

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

/// Whether the name can be typed and shown as it is: printable ASCII that the splitter takes for one word.
bool IsPlainWord(const std::string& name) {
  const auto isPlain = [](char c) { return c > ' ' && c <= '~' && c != '\'' && c != '"'; };
  return !name.empty() && name.front() != '#' && std::all_of(name.begin(), name.end(), isPlain);
}

std::vector<std::string> BundleNames(const Session& session) {
  std::vector<std::string> names;
  for (const LoadedBundle& bundle : session.loader.Bundles()) {
    names.push_back(bundle.name);
  }
  return names;
}

/// The files of the directory that `word` begins to name, with the directory in front; directories end in
/// '/'.
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

std::vector<std::string> NamesFor(const Session& session, const Words& before, const std::string& word) {
  if (before.empty()) {
    return CommandNames();
  }
  const auto& all = Commands();
  const auto command =
      std::find_if(all.begin(), all.end(), [&](const Command& row) { return row.name == before[0]; });
  if (command == all.end()) {
    return {};
  }
  const bool isFirst = before.size() == 1;
  switch (command->completes) {
    case Completes::kCommands:
      return isFirst ? CommandNames() : std::vector<std::string>();
    case Completes::kOperations:
      if (command->name == "time") {
        return before.size() == 2   ? std::vector<std::string>{"call"}
               : before.size() == 3 ? OperationNames()
                                    : std::vector<std::string>();
      }
      return isFirst ? OperationNames() : std::vector<std::string>();
    case Completes::kBundles:
      return isFirst ? BundleNames(session) : std::vector<std::string>();
    case Completes::kItems:
      return isFirst ? ItemNames() : std::vector<std::string>();
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
    return {};  // A quote is open: what stands there is a text.
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
