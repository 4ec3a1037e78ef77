#include "host/ini_check.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/text_file.h"
#include "host/text_line.h"

namespace host {
namespace {

/// ACE reads into a buffer of 4096 bytes and takes what does not fit for the next line.
constexpr std::size_t kLongestLine = 4094;

/// What ACE takes for a section or an item.
constexpr std::size_t kLongestName = 255;

constexpr std::string_view kBlanks = " \t\r";

struct Mistake {
  std::size_t at;  ///< offset in the line
  std::string text;
};

/// A name as ACE compares it: whatever the case of its letters.
std::string Folded(std::string name) {
  for (char& c : name) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return name;
}

std::optional<Mistake> MistakeInName(std::string_view name, std::size_t at, const char* forbidden) {
  if (const std::size_t bad = name.find_first_of(forbidden); bad != std::string_view::npos) {
    return Mistake{at + bad, "a name cannot hold a bracket, and an item's no backslash"};
  }
  if (name.size() > kLongestName) {
    return Mistake{at + kLongestName, "the name is longer than 255 bytes"};
  }
  return std::nullopt;
}

/// A section's name as ACE takes it apart: at either slash, and without empty parts.
std::string PathOf(std::string_view section) {
  constexpr std::string_view kSlashes = "/\\";
  std::string path;
  for (std::size_t start = 0; (start = section.find_first_not_of(kSlashes, start)) != section.npos;) {
    const std::size_t end = std::min(section.find_first_of(kSlashes, start), section.size());
    path += (path.empty() ? "" : "\\") + std::string(section.substr(start, end - start));
    start = end;
  }
  return path;
}

std::optional<Mistake> MistakeInSection(std::string_view name, std::size_t at) {
  constexpr const char* kBlankProblem =
      "a blank within the brackets belongs to the section's name; write [NAME]";
  if (kBlanks.find(name.front()) != std::string_view::npos) {
    return Mistake{at, kBlankProblem};
  }
  if (kBlanks.find(name.back()) != std::string_view::npos) {
    return Mistake{at + name.size() - 1, kBlankProblem};
  }
  return MistakeInName(name, at, "[]");
}

/// Goes through the lines of one file.
class IniLines {
 public:
  std::optional<Mistake> Check(std::string_view line) {
    if (const std::size_t nul = line.find('\0'); nul != std::string_view::npos) {
      return Mistake{nul, kNulProblem};
    }
    if (line.size() > kLongestLine) {
      return Mistake{kLongestLine, "the line is longer than 4094 bytes; shorten or split it"};
    }
    const std::size_t start = line.find_first_not_of(kBlanks);
    if (start == std::string_view::npos || line[start] == ';' || line[start] == '#') {
      return std::nullopt;
    }
    if (line.substr(start, kByteOrderMark.size()) == kByteOrderMark) {
      return Mistake{start, kByteOrderMarkProblem};
    }
    return line[start] == '[' ? CheckSection(line, start) : CheckItem(line, start);
  }

 private:
  std::optional<Mistake> CheckSection(std::string_view line, std::size_t open) {
    const std::size_t close = line.rfind(']');
    if (close == std::string_view::npos) {
      return Mistake{line.size(), "the section's name is not closed; write [NAME]"};
    }
    const std::string_view name = line.substr(open + 1, close - open - 1);
    const std::string path = PathOf(name);
    if (path.empty()) {
      return Mistake{open + 1, "the section has no name; write [NAME]"};
    }
    if (auto mistake = MistakeInSection(name, open + 1)) {
      return mistake;
    }
    section_ = Folded(path);
    // Each section that this one lies in has a name, too.
    for (std::size_t end = 0; end < path.size();) {
      end = std::min(path.find('\\', end + 1), path.size());
      if (auto mistake = CheckSpelling(section_.substr(0, end), path.substr(0, end), open + 1)) {
        return mistake;
      }
    }
    return std::nullopt;
  }

  std::optional<Mistake> CheckItem(std::string_view line, std::size_t start) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
      return Mistake{start, "neither a [SECTION], NAME=INTEGER, nor a comment behind ';' or '#'"};
    }
    if (equals == start) {
      return Mistake{equals, "there is no name in front of the '='; write NAME=INTEGER"};
    }
    const std::string name(line.substr(start, line.find_last_not_of(kBlanks, equals - 1) + 1 - start));
    if (auto mistake = MistakeInName(name, start, "\\[]")) {
      return mistake;
    }
    if (section_.empty()) {
      return Mistake{start, "an item in front of the first section; write [items] above it"};
    }
    return CheckSpelling(section_ + ']' + Folded(name), name, start);
  }

  /// Of two spellings of a section ACE takes some for one, passes some over, and refuses the file for others,
  /// as the letters have it; of two items it takes the later for both. So there is one spelling of a name.
  std::optional<Mistake> CheckSpelling(const std::string& folded, const std::string& name, std::size_t at) {
    const auto& known = spellings_.emplace(folded, name).first->second;
    if (known == name) {
      return std::nullopt;
    }
    return Mistake{at, "'" + name + "' is '" + known + "' in other letters; spell them the same"};
  }

  std::string section_;  // Folded; empty before the first one.
  std::map<std::string, std::string> spellings_{{"items", "items"}};
};

}  // namespace

std::string CheckIniFile(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) {
    return file + ": cannot be opened: " + std::generic_category().message(errno);
  }
  if (!S_ISREG(status.st_mode)) {
    return file + ": is no regular file";
  }
  std::ifstream stream(file);
  if (!stream) {
    return file + ": cannot be opened: " + std::generic_category().message(errno);
  }
  IniLines lines;
  std::size_t number = 0;
  for (std::string line; GetTextLine(stream, line);) {
    ++number;
    if (const auto mistake = lines.Check(line)) {
      return file + ":" + std::to_string(number) + ":" + std::to_string(mistake->at + 1) + ": " +
             mistake->text;
    }
  }
  return stream.bad() ? file + ": cannot be read" : "";
}

}  // namespace host
