#include "host/ini_check.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
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
  const char* text;
};

std::optional<Mistake> MistakeInName(std::string_view name, std::size_t at, const char* forbidden) {
  if (const std::size_t bad = name.find_first_of(forbidden); bad != std::string_view::npos) {
    return Mistake{at + bad, "a name cannot hold a bracket, and an item's no backslash"};
  }
  if (name.size() > kLongestName) {
    return Mistake{at + kLongestName, "the name is longer than 255 bytes"};
  }
  return std::nullopt;
}

std::optional<Mistake> MistakeInSection(std::string_view line, std::size_t open) {
  const std::size_t close = line.rfind(']');
  if (close == std::string_view::npos || close < open) {
    return Mistake{line.size(), "the section's name is not closed; write [NAME]"};
  }
  if (close == open + 1) {
    return Mistake{close, "the section has no name; write [NAME]"};
  }
  const std::string_view name = line.substr(open + 1, close - open - 1);
  if (kBlanks.find(name.front()) != std::string_view::npos ||
      kBlanks.find(name.back()) != std::string_view::npos) {
    return Mistake{open + 1, "a blank within the brackets belongs to the section's name; write [NAME]"};
  }
  if (name.front() == '\\' || name.back() == '\\' || name.find("\\\\") != std::string_view::npos) {
    return Mistake{open + 1, "a part of the section's name is empty; write [NAME] or [NAME\\NAME]"};
  }
  return MistakeInName(name, open + 1, "[]");
}

std::optional<Mistake> MistakeInItem(std::string_view line, std::size_t start) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) {
    return Mistake{start, "neither a [SECTION], NAME=INTEGER, nor a comment behind ';' or '#'"};
  }
  if (equals == start) {
    return Mistake{equals, "there is no name in front of the '='; write NAME=INTEGER"};
  }
  const std::size_t end = line.find_last_not_of(kBlanks, equals - 1) + 1;
  return MistakeInName(line.substr(start, end - start), start, "\\[]");
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
    if (line[start] == '[') {
      inSection_ = true;
      return MistakeInSection(line, start);
    }
    const auto mistake = MistakeInItem(line, start);
    return mistake || inSection_
               ? mistake
               : Mistake{start, "an item in front of the first section; write [items] above it"};
  }

 private:
  bool inSection_ = false;
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
