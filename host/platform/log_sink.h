#ifndef HOST_LOG_SINK_H_
#define HOST_LOG_SINK_H_

#include <chrono>
#include <string>
#include <vector>

#include "framework/visibility.h"

/// Where log records go: through `ACE_Log_Msg` to standard error or to a file.
///
/// One record is one line, `TIME [LEVEL] TAG:LINE FUNCTION: TEXT`, as in
///   2026-11-21T08:15:02.417Z [1] almconfig:118 unknown: almconfig.cfg file error. line=s%
/// with UTC time to the millisecond, "-" for an empty tag or function, and bytes outside printable ASCII in
/// the text as \xNN, so that no text can pretend to be another line.
///
/// Levels are what the callers pass: the higher, the more it matters. 0 is detail for debugging, 1 tells of
/// decisions and of errors in configuration, 2 of starts and of what keeps a service from starting.
///
/// ACE's own complaints come the same way, with "ACE" for the tag and "-" for the level; a thread that
/// collects them (`AceComplaints`) gets them instead.
///
/// State: of the process, never destroyed, so bundles may log until the very end.
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

/// A level above all that callers use: nothing is written.
inline constexpr int kLogOff = 1'000'000;

/// The line for a record, without its line end.
PLATFORM_API std::string LogLine(const LogRecord& record);

/// Hands the record to ACE, unless its level is below the set one, and to every open capture.
PLATFORM_API void WriteLog(const LogRecord& record);

/// Records below `level` are not written. 0, that is everything, at first.
PLATFORM_API void SetLogLevel(int level);
PLATFORM_API int LogLevel();

/// While it lives, ACE's output of the process goes to the sink: to `file`, appended to, or to standard error
/// when that is empty. One at a time.
///
/// A file that cannot be opened, or from some record on cannot be written to, is replaced by standard error;
/// the latter is said there, in one line, when it happens.
class PLATFORM_API LogOutput {
 public:
  explicit LogOutput(const std::string& file);
  ~LogOutput();
  LogOutput(const LogOutput&) = delete;
  LogOutput& operator=(const LogOutput&) = delete;

  /// Why the file cannot be opened; empty when it can.
  const std::string& OpenProblem() const { return openProblem_; }

  /// Whether all records have reached the file so far.
  bool IsComplete() const;

 private:
  std::string openProblem_;
};

/// Collects what all threads log while it lives, whatever the set level. Meanwhile nothing goes to standard
/// error, where it would stand twice; a log file still gets its lines.
class PLATFORM_API LogCapture {
 public:
  explicit LogCapture(bool keepTexts = true);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The records so far; empty when the texts are not kept.
  std::vector<LogRecord> Records() const;
  /// How many there were.
  std::size_t Count() const;

 private:
  friend PLATFORM_API void WriteLog(const LogRecord& record);
  void Add(const LogRecord& record);

  const bool keepTexts_;
  std::vector<LogRecord> records_;
  std::size_t count_ = 0;
};

/// Collects what ACE itself complains about on this thread while it lives; the last one made collects.
/// What nobody asked for by then goes where it would have gone without it.
class PLATFORM_API AceComplaints {
 public:
  AceComplaints();
  ~AceComplaints();
  AceComplaints(const AceComplaints&) = delete;
  AceComplaints& operator=(const AceComplaints&) = delete;

  /// All of them in one line, "; " between; empty when there was none.
  std::string Text() const;
  void Add(const std::string& text);

 private:
  AceComplaints* outer_;
  std::vector<std::string> texts_;
  mutable bool told_ = false;
};

}  // namespace host

#endif  // HOST_LOG_SINK_H_
