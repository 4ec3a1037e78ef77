#ifndef TOOLS_ALMCFG_READ_INPUT_FILE_H_
#define TOOLS_ALMCFG_READ_INPUT_FILE_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <streambuf>
#include <string>

/// Reads files and standard input, and refuses input that would never end. Threads: one at a time.
namespace almcfg {

/// The reason why a file cannot be read here. What a load does with the file depends on it.
enum class Obstacle {
  kNotOpened,     ///< it is missing, or the user may not read it
  kDirectory,     ///< a load ignores it
  kDevice,        ///< it may have no end
  kSilentPipe,    ///< it has no writer
  kReadFailed,    ///< it was opened, but not read to its end
  kNoInput,       ///< standard input is closed, or fails
  kTooManyLines,  ///< more than can be counted
};

/// Why a file could not be read; `what()` is the reason, the system's message where there is one.
class ReadError : public std::runtime_error {
 public:
  ReadError(const std::string& what, Obstacle why) : std::runtime_error(what), obstacle(why) {}
  Obstacle obstacle;
};

/// Reads the file `path`, or standard input for "-", to its end and passes its bytes to `take` in pieces.
/// Reads pipes, terminals and /dev/null, too. Throws `ReadError` for a pipe without a writer, for any other
/// device and for what cannot be read.
void ReadBytes(const std::string& path,
               const std::function<void(const char* bytes, std::size_t count)>& take);

/// Opens the same input for a stream. Opening and reading throw `ReadError`; a stream passes it on when its
/// exceptions include `badbit`. The file is closed with the buffer.
std::unique_ptr<std::streambuf> OpenInput(const std::string& path);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_READ_INPUT_FILE_H_
