#ifndef TOOLS_ALMCFG_SOURCE_TEXT_H_
#define TOOLS_ALMCFG_SOURCE_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace almcfg {

class InputFile;
class Progress;

/// A line's number; lines are counted from 1, so 0 is no line.
using LineNumber = std::uint32_t;

/// The longest line, its CR counted and its LF not, that a load reads whole.
inline constexpr std::size_t kLongestLine = 1022;

/// One line, cut as a load's stream cuts it. It looks into its `SourceText`.
struct Line {
  std::string_view text;     ///< without the LF, at most `kLongestLine` bytes; a NUL stands behind it
  std::uint64_t length = 0;  ///< what the file holds

  /// The load never gets past such a line.
  [[nodiscard]] bool IsOverlong() const { return length > kLongestLine; }

  /// What the load makes of it: a C string, which ends at the first NUL.
  [[nodiscard]] std::string_view Loaded() const { return text.substr(0, text.find('\0')); }
};

/// What keeps a file from being read here. What a load does with the file depends on it.
enum class Obstacle {
  kNotOpened,     ///< it is missing, or not for this user
  kDirectory,     ///< a load passes it over
  kDevice,        ///< it may have no end
  kSilentPipe,    ///< nobody writes to it
  kReadFailed,    ///< it was opened, but not read to its end
  kNoInput,       ///< standard input is not there, or fails
  kTooManyLines,  ///< more than can be counted
};

/// Why a file could not be read; `what()` says it in the system's words.
class ReadError : public std::runtime_error {
 public:
  ReadError(const std::string& what, Obstacle why) : std::runtime_error(what), obstacle(why) {}
  Obstacle obstacle;
};

/// A file's text in memory, in lines. Of over-long lines only the start is kept, so a file without line feeds
/// takes next to no memory whatever its size.
///
/// Ownership: the lines' bytes live and stay where they are as long as this object or what it was moved to.
class SourceText {
 public:
  /// Reads the file `path` to its end, or standard input for "-". Pipes are read too; one that nobody writes
  /// to, a device or anything unreadable throws `ReadError`.
  static SourceText Read(const std::string& path, Progress& progress);

  /// A text without lines, for a file that could not be read.
  static SourceText Nothing(const std::string& path) { return SourceText(NameOf(path)); }

  /// What a path is called in messages: as given by the user; "<stdin>" for standard input.
  static std::string NameOf(const std::string& path) { return path == "-" ? "<stdin>" : path; }

  /// By `NameOf`.
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] LineNumber lineCount() const { return static_cast<LineNumber>(lines_.size()); }

  /// `number` must be from 1 to `lineCount()`.
  [[nodiscard]] Line line(LineNumber number) const;

  /// Whether the last line is complete. True for an empty file, which has none.
  [[nodiscard]] bool endsWithLineFeed() const { return endsWithLineFeed_; }

 private:
  explicit SourceText(std::string name) : name_(std::move(name)) {}
  void Take(const char* bytes, std::size_t count);
  void Keep(const char* bytes, std::size_t count);
  void EndLine();
  void ReadAll(const InputFile& file, Progress& progress);

  static constexpr std::size_t kChunkBytes = std::size_t{1} << 20;
  static constexpr unsigned kLengthBits = 10;  // 1,022 fits

  std::string name_;
  std::vector<std::unique_ptr<char[]>> chunks_;  // A line lies in one chunk.
  std::vector<std::uint64_t> lines_;  // Where it starts, counted over all chunks, and its kept length.
  std::vector<std::pair<LineNumber, std::uint64_t>> overlong_;  // Real lengths, by line.
  bool endsWithLineFeed_ = true;

  // The line being read.
  std::size_t used_ = kChunkBytes;  // of the last chunk, up to the start of the line
  std::size_t kept_ = 0;
  std::uint64_t length_ = 0;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_SOURCE_TEXT_H_
