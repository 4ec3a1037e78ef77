#include "host/svc_conf.h"

#include <vector>

#include "host/problem.h"
#include "host/text_file.h"

namespace host {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// A place in the file, both counted from 1.
struct Place {
  int line = 0;
  std::size_t column = 0;
};

/// Gathers directives from lines and processes each as soon as it is whole.
class Directives {
 public:
  Directives(Loader& loader, const std::string& file) : loader_(loader), file_(file) {}

  void TakeLine(std::string_view line) {
    at_ = {at_.line + 1, 1};
    if (at_.line == 1 && line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      Fail(at_, kByteOrderMarkProblem);
    }
    while (at_.column <= line.size() && Take(line[at_.column - 1])) {
      ++at_.column;
    }
    if (IsQuoted()) {
      FailUnclosed();  // ACE's strings end with their line.
    }
    Append('\n');
    if (open_.empty()) {
      Process();
    }
  }

  void End() const {
    if (!open_.empty()) {
      FailUnclosed();
    }
  }

 private:
  /// A brace or a quote that the directive is within.
  struct Open {
    char mark;
    Place place;
  };

  [[noreturn]] void Fail(Place place, const std::string& reason) const {
    throw Failure(file_ + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " +
                  reason);
  }

  [[noreturn]] void FailUnclosed() const {
    Fail(open_.back().place, std::string("the '") + open_.back().mark + "' is not closed");
  }

  bool IsQuoted() const { return !open_.empty() && open_.back().mark != '{'; }

  /// False where a comment begins.
  bool Take(char c) {
    if (c == '\0') {
      Fail(at_, kNulProblem);
    }
    if (IsQuoted()) {
      if (c == open_.back().mark) {
        open_.pop_back();
      }
    } else if (c == '#') {
      return false;
    } else if (c == '"' || c == '\'' || c == '{') {
      open_.push_back({c, at_});
    } else if (c == '}') {
      if (open_.empty()) {
        Fail(at_, "a '}' without a '{' before it");
      }
      open_.pop_back();
    }
    Append(c);
    return true;
  }

  void Append(char c) {
    if (text_.empty()) {
      if (kBlanks.find(c) != std::string_view::npos) {
        return;
      }
      start_ = at_;
    }
    text_ += c;
  }

  void Process() {
    if (text_.empty()) {
      return;
    }
    try {
      loader_.Process(text_.substr(0, text_.find_last_not_of(kBlanks) + 1));
    } catch (const std::exception& problem) {
      Fail(start_, problem.what());
    }
    text_.clear();
  }

  Loader& loader_;
  const std::string& file_;
  Place at_;     // the character at hand
  Place start_;  // of the directive at hand
  std::string text_;
  std::vector<Open> open_;
};

}  // namespace

void ProcessSvcConf(Loader& loader, const std::string& file) {
  std::ifstream stream = OpenTextFile(file);
  Directives directives(loader, file);
  for (std::string line; std::getline(stream, line);) {
    directives.TakeLine(line);
  }
  if (stream.bad()) {
    throw Failure(file + ": cannot be read");
  }
  directives.End();
}

}  // namespace host
