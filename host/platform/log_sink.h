#ifndef HOST_PLATFORM_LOG_SINK_H_
#define HOST_PLATFORM_LOG_SINK_H_

#include <ace/Log_Msg_Backend.h>

#include <chrono>
#include <string>
#include <vector>

#include "framework/visibility.h"

/// Writes log records through `ACE_Log_Msg` to standard error or to a file.
///
/// One record is one line, `TIME [LEVEL] TAG:LINE FUNCTION: TEXT`, as in
///   2026-11-21T08:15:02.417Z [1] almconfig:195 unknown: almconfig.cfg file error. line=s%
/// with UTC time to the millisecond, "-" for an empty tag or function, and the backslash and bytes outside
/// printable ASCII as \xNN, so that a text cannot forge another line.
///
/// Levels rise with importance: 0 details for debugging, 1 decisions and errors, 2 the start of a service and
/// its failure.
///
/// ACE's own messages are written the same way, with the tag "ACE" and the level "-"; on a thread with an
/// `AceComplaints` they are collected instead.
///
/// State: of the process, never destroyed, so bundles may log until the process ends.
/// Threads: any, at any time; lines of several threads do not mix.
namespace host {

/// One message as the log service received it.
struct LogRecord {
  std::chrono::system_clock::time_point time;
  int level = 0;
  std::string tag;
  std::string function;
  int line = 0;
  std::string text;
};

/// The level "off", above all that callers use: no record is written.
inline constexpr int kLogOff = 1'000'000;

/// Records below `level` are not written. Initially 0: all records are written.
PLATFORM_API void SetLogLevel(int level);
PLATFORM_API int LogLevel();

/// Parses "0", "1", "2" or "off"; throws `UsageError` for any other text.
PLATFORM_API int ParseLogLevel(const std::string& text);

/// UTC to the millisecond, as in "2026-11-21T08:15:02.417Z".
PLATFORM_API std::string TimeText(std::chrono::system_clock::time_point time);

/// The line for a record, without its line end.
PLATFORM_API std::string LogLine(const LogRecord& record);

/// Passes the record to every open capture, and to ACE unless its level is below the set one. While a capture is
/// open, ACE gets it only if the output is a file.
PLATFORM_API void WriteLog(const LogRecord& record);

/// While it exists, ACE's output of the process is appended to `file`, or written to standard error when
/// `file` is empty. The destructor restores the previous output. At most one exists at a time.
///
/// When writing to the file fails, one line on standard error reports it, and further records go there.
class PLATFORM_API LogOutput {
 public:
  /// Throws `Failure` when the file cannot be opened.
  explicit LogOutput(const std::string& file);
  ~LogOutput();
  LogOutput(const LogOutput&) = delete;
  LogOutput& operator=(const LogOutput&) = delete;

  /// Whether all records have reached the file so far.
  [[nodiscard]] bool IsComplete() const;

 private:
  ACE_Log_Msg_Backend* const previous_;
  const unsigned long previousFlags_;
};

/// Collects the records of all threads while it exists, at every level; ACE's own messages are not collected.
/// Meanwhile no record is written to standard error, where it would appear twice; a log file still receives them.
class PLATFORM_API LogCapture {
 public:
  /// Without `keepTexts`, only counts the records.
  explicit LogCapture(bool keepTexts = true);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The records so far; empty when the texts are not kept.
  [[nodiscard]] std::vector<LogRecord> Records() const;
  /// The number of records so far.
  [[nodiscard]] std::size_t Count() const;

 private:
  friend PLATFORM_API void WriteLog(const LogRecord& record);
  void Add(const LogRecord& record);

  const bool keepTexts_;
  std::vector<LogRecord> records_;
  std::size_t count_ = 0;
};

/// Collects ACE's own messages on this thread while it exists; of several objects, only the one constructed
/// last collects. The destructor logs the texts unless `Text` was called.
class PLATFORM_API AceComplaints {
 public:
  AceComplaints();
  ~AceComplaints();
  AceComplaints(const AceComplaints&) = delete;
  AceComplaints& operator=(const AceComplaints&) = delete;

  /// All texts in one line, separated by "; "; empty when there are none.
  std::string Text() const;
  void Add(const std::string& text);

 private:
  AceComplaints* outer_;
  std::vector<std::string> texts_;
  mutable bool reported_ = false;
};

}  // namespace host

#endif  // HOST_PLATFORM_LOG_SINK_H_
