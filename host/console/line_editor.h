#ifndef HOST_CONSOLE_LINE_EDITOR_H_
#define HOST_CONSOLE_LINE_EDITOR_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Reads lines from the terminal with the editing keys of most shells, history by the arrow keys and
/// completion by Tab. Ctrl-C abandons the line, Ctrl-D on an empty line ends the input. Bytes outside ASCII
/// are ignored; commands take them as \xNN.
///
/// The history, at most 1,000 lines, is stored in `historyFile`, which consoles that run at the same time
/// share; when the file cannot be used, the history lasts until the process ends. Owns the state of the
/// editor. Threads: the program's main thread.
class LineEditor {
 public:
  /// Returns the candidates for the last word of `line`, the text before the cursor.
  using Completer = std::function<std::vector<std::string>(const std::string& line)>;

  LineEditor(const std::string& prompt, const std::string& historyFile, Completer completer);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  /// Reads the next line, without its line end; empty for an abandoned one, nothing at the end of the input.
  std::optional<std::string> Read();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace host

#endif  // HOST_CONSOLE_LINE_EDITOR_H_
