#include "host/line_editor.h"

#include <histedit.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace host {
namespace {

constexpr int kHistoryLines = 1000;

/// The longest text that all candidates start with.
std::string CommonStart(const std::vector<std::string>& candidates) {
  std::string start = candidates.front();
  for (const std::string& candidate : candidates) {
    const auto differ = std::mismatch(start.begin(), start.end(), candidate.begin(), candidate.end());
    start.erase(differ.first, start.end());
  }
  return start;
}

std::string LastWord(const std::string& line) {
  const std::size_t blank = line.find_last_of(" \t");
  return blank == std::string::npos ? line : line.substr(blank + 1);
}

}  // namespace

class LineEditor::Impl {
 public:
  Impl(std::string prompt, std::string historyFile, Completer completer)
      : prompt_(std::move(prompt)),
        historyFile_(std::move(historyFile)),
        completer_(std::move(completer)),
        editor_(el_init("bundle_host", stdin, stdout, stderr), el_end),
        history_(history_init(), history_end) {
    HistEvent event;
    history(history_.get(), &event, H_SETSIZE, kHistoryLines);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    if (!historyFile_.empty()) {
      history(history_.get(), &event, H_LOAD, historyFile_.c_str());
    }
    EditLine* const editor = editor_.get();
    el_set(editor, EL_CLIENTDATA, this);
    el_set(editor, EL_PROMPT, &Prompt);
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_HIST, ::history, history_.get());
    el_set(editor, EL_ADDFN, "host-complete", "Complete the word", &Complete);
    el_set(editor, EL_ADDFN, "host-abandon", "Abandon the line", &Abandon);
    el_set(editor, EL_BIND, "^I", "host-complete", nullptr);
    // While a line is edited Ctrl-C is a key like others; while a command runs it ends the program as usual.
    el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
    el_set(editor, EL_BIND, "^C", "host-abandon", nullptr);
  }

  std::optional<std::string> Read() {
    int length = 0;
    abandoned_ = false;
    // Before the prompt, not behind it: a Ctrl-D or Ctrl-C that comes at once would still be the terminal's.
    el_set(editor_.get(), EL_PREP_TERM, 1);
    const char* const text = el_gets(editor_.get(), &length);
    if (text == nullptr || length <= 0) {
      static_cast<void>(std::fputs("\n", stdout));
      return std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(length));
    line.erase(line.find_last_not_of("\r\n") + 1);
    if (abandoned_) {
      return std::string();
    }
    Remember(line);
    return line;
  }

 private:
  static Impl& Of(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<Impl*>(self);
  }

  static char* Prompt(EditLine* editor) { return Of(editor).prompt_.data(); }

  static unsigned char Abandon(EditLine* editor, int /*key*/) {
    Of(editor).abandoned_ = true;
    static_cast<void>(std::fputs("^C", stdout));
    static_cast<void>(std::fflush(stdout));
    return CC_NEWLINE;
  }

  /// Nothing may be thrown through libedit, which is C.
  static unsigned char Complete(EditLine* editor, int /*key*/) {
    try {
      return CompleteWord(editor);
    } catch (...) {
      return CC_REFRESH_BEEP;
    }
  }

  static unsigned char CompleteWord(EditLine* editor) {
    const LineInfo* const info = el_line(editor);
    const std::string line(info->buffer, static_cast<std::size_t>(info->cursor - info->buffer));
    const std::vector<std::string> candidates = Of(editor).completer_(line);
    if (candidates.empty()) {
      return CC_REFRESH_BEEP;
    }
    const std::string start = CommonStart(candidates);
    const bool isWhole = candidates.size() == 1 && start.back() != '/';
    const std::string more = start.substr(LastWord(line).size()) + (isWhole ? " " : "");
    if (!more.empty()) {
      return el_insertstr(editor, more.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
    }
    std::string list = "\n";
    for (const std::string& candidate : candidates) {
      list += candidate + "  ";
    }
    static_cast<void>(std::fprintf(stdout, "%s\n", list.c_str()));
    return CC_REDISPLAY;
  }

  void Remember(const std::string& line) {
    if (line.find_first_not_of(" \t") == std::string::npos) {
      return;
    }
    HistEvent event;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        historyFile_.empty() ? nullptr : std::fopen(historyFile_.c_str(), "a+e"), std::fclose);
    // What other consoles have added meanwhile is taken over, so that none of them loses a line.
    const bool isShared = file != nullptr && flock(fileno(file.get()), LOCK_EX) == 0;
    if (isShared) {
      history(history_.get(), &event, H_CLEAR);
      history(history_.get(), &event, H_LOAD, historyFile_.c_str());
    }
    history(history_.get(), &event, H_ENTER, line.c_str());
    if (isShared && ftruncate(fileno(file.get()), 0) == 0) {
      history(history_.get(), &event, H_SAVE_FP, file.get());
    }
  }

  std::string prompt_;
  std::string historyFile_;
  Completer completer_;
  std::unique_ptr<EditLine, void (*)(EditLine*)> editor_;
  std::unique_ptr<History, void (*)(History*)> history_;
  bool abandoned_ = false;
};

LineEditor::LineEditor(const std::string& prompt, const std::string& historyFile, Completer completer)
    : impl_(std::make_unique<Impl>(prompt, historyFile, std::move(completer))) {}

LineEditor::~LineEditor() = default;

std::optional<std::string> LineEditor::Read() { return impl_->Read(); }

}  // namespace host
