#ifndef HOST_LINE_EDITOR_H_
#define HOST_LINE_EDITOR_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Reads lines from the terminal: editing keys as in most shells, history with the arrow keys, completion
/// with Tab. Ctrl-C abandons the line, Ctrl-D on an empty line ends the input. Bytes outside ASCII are not
/// typed here; commands take them as \xNN.
///
/// The history is read from and added to `historyFile`, at most a thousand lines; when the file cannot be
/// used the history just ends with the process. Consoles that run at the same time share it line by line.
/// Threads: one.
class LineEditor {
 public:
  /// Answers what the last word of `line` could become; `line` is the text in front of the cursor.
  using Completer = std::function<std::vector<std::string>(const std::string& line)>;

  LineEditor(const std::string& prompt, const std::string& historyFile, Completer completer);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  /// The next line without its line end, empty for an abandoned one; nothing at the end of the input.
  std::optional<std::string> Read();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace host

#endif  // HOST_LINE_EDITOR_H_
