// Reads lines by libedit and keeps the history file. The object owns the editor's state. Main thread only.

#include "host/console/line_editor.h"

#include <fcntl.h>
#include <histedit.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "host/commands/interrupt.h"

namespace host {
namespace {

constexpr int kHistoryLines = 1000;

/// The longest common prefix of the candidates.
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

/// The window's width in characters.
std::size_t Width() {
  winsize size{};
  constexpr std::size_t kUsual = 80;
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsual;
}

/// Arranges the texts, separated by two blanks, in rows of at most `width` characters.
std::string InRows(const std::vector<std::string>& texts, std::size_t width) {
  std::string rows;
  std::size_t used = 0;
  for (const std::string& text : texts) {
    const bool fits = used != 0 && used + 2 + text.size() <= width;
    rows += (fits ? "  " : used == 0 ? "" : "\n") + text;
    used = (fits ? used + 2 : 0) + text.size();
  }
  return rows + "\n";
}

/// Opens the file for appending and reading with mode 0600; null when that fails or `path` is empty.
std::FILE* OpenPrivate(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) {
    return nullptr;
  }
  static_cast<void>(fchmod(descriptor, S_IRUSR | S_IWUSR));  // The file may exist with a wider mode.
  std::FILE* const file = fdopen(descriptor, "a+");
  if (file == nullptr) {
    close(descriptor);
  }
  return file;
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
    el_set(editor, EL_GETCFN, &ReadKey);
    el_set(editor, EL_PROMPT, &Prompt);
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_HIST, ::history, history_.get());
    el_set(editor, EL_ADDFN, "host-complete", "Complete the word", &Complete);
    el_set(editor, EL_ADDFN, "host-abandon", "Abandon the line", &Abandon);
    el_set(editor, EL_BIND, "^I", "host-complete", nullptr);
    // While a line is edited, Ctrl-C is an ordinary key; while a command runs, it raises SIGINT.
    el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
    el_set(editor, EL_BIND, "^C", "host-abandon", nullptr);
  }

  std::optional<std::string> Read() {
    int length = 0;
    abandoned_ = false;
    // Set before the prompt appears: the terminal itself would otherwise handle an early Ctrl-D or Ctrl-C.
    el_set(editor_.get(), EL_PREP_TERM, 1);
    const char* const text = el_gets(editor_.get(), &length);
    if (abandoned_) {
      return std::string();
    }
    if (text == nullptr || length <= 0) {
      static_cast<void>(std::fputs("\n", stdout));
      return StopSignal() == SIGINT ? std::make_optional<std::string>() : std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(length));
    line.erase(line.find_last_not_of("\r\n") + 1);
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

  /// Reads a byte from the terminal; returns 0 when a signal is stored. Rereads the window's size first,
  /// which may have changed.
  static int ReadKey(EditLine* editor, wchar_t* key) {
    el_resize(editor);
    unsigned char byte = 0;
    do {
      if (!WaitForInput(STDIN_FILENO)) {
        return 0;
      }
      if (const ssize_t size = read(STDIN_FILENO, &byte, 1); size <= 0) {
        return static_cast<int>(size);
      }
    } while (byte > 0x7F);
    *key = byte;
    return 1;
  }

  static unsigned char Abandon(EditLine* editor, int /*key*/) {
    Of(editor).abandoned_ = true;
    static_cast<void>(std::fputs("^C", stdout));
    static_cast<void>(std::fflush(stdout));
    return CC_NEWLINE;
  }

  /// Catches all exceptions: libedit is C, and none may pass through it.
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
    static_cast<void>(std::fputs(("\n" + InRows(candidates, Width())).c_str(), stdout));
    return CC_REDISPLAY;
  }

  void Remember(const std::string& line) {
    if (line.find_first_not_of(" \t") == std::string::npos) {
      return;
    }
    HistEvent event;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenPrivate(historyFile_), std::fclose);
    // Reloads what other consoles have added meanwhile, so that no line is lost.
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
