// Formats log records and passes them to ACE, a file and open captures. The state belongs to the process
// and has a lock of its own; any thread may log.

#include "host/platform/log_sink.h"

#include <ace/Log_Msg.h>
#include <ace/Log_Record.h>
#include <ace/OS_NS_sys_time.h>
#include <ace/OS_NS_unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <system_error>

#include "host/base/mutex.h"
#include "host/base/problem.h"
#include "host/base/text_escape.h"

namespace host {
namespace {

std::atomic<int> lowestLevel{0};

/// True while this thread writes a complete line of `WriteLog`; all other records are ACE's own.
thread_local bool writingOwnLine = false;
thread_local AceComplaints* complaints = nullptr;

struct Captures {
  Mutex lock;
  std::vector<LogCapture*> open HOST_THREAD_SAFETY(guarded_by(lock));
};

Captures& TheCaptures() {
  static auto& captures = *new Captures;
  return captures;
}

std::string OrDash(const std::string& text) { return text.empty() ? "-" : EscapeBytes(text); }

/// A message of ACE's service configurator without its prefix "ACE (17|17) [error 0] on line 1: ". The line
/// number there is meaningless: directives are passed to ACE one by one.
std::string WithoutAcePlace(const std::string& text) {
  constexpr std::string_view kStart = "ACE (";
  constexpr std::string_view kLine = "] on line ";
  const std::size_t line = text.find(kLine);
  const std::size_t end = line == std::string::npos ? line : text.find(": ", line);
  return text.compare(0, kStart.size(), kStart) == 0 && end != std::string::npos ? text.substr(end + 2)
                                                                                 : text;
}

/// Receives every record of the process; ACE calls `log` under its own lock.
class Backend : public ACE_Log_Msg_Backend {
 public:
  int open(const ACE_TCHAR* /*key*/) override { return 0; }
  int reset() override { return 0; }
  int close() override { return 0; }

  ssize_t log(ACE_Log_Record& record) override {
    if (writingOwnLine) {
      Write(record.msg_data());
      return 0;
    }
    std::string text = record.msg_data();
    text.erase(text.find_last_not_of("\n ") + 1);
    if (complaints != nullptr) {
      complaints->Add(WithoutAcePlace(text));
    } else {
      Write(TimeText(std::chrono::system_clock::now()) + " [-] ACE:0 -: " + EscapeBytes(text));
    }
    return 0;
  }

  /// Sets the file to write to, which this object then owns, and its name; null for standard error.
  void SetFile(std::FILE* file, const std::string& name) {
    const MutexLock guard(lock_);
    if (file_ != nullptr) {
      static_cast<void>(std::fclose(file_));
    }
    file_ = file;
    name_ = name;
    hasGivenUp_ = false;
  }

  bool WritesToFile() const {
    const MutexLock guard(lock_);
    return file_ != nullptr && !hasGivenUp_;
  }

  /// Whether a write to the file has failed; records have gone to standard error since.
  bool HasGivenUp() const {
    const MutexLock guard(lock_);
    return hasGivenUp_;
  }

 private:
  static bool WriteTo(std::FILE* out, const std::string& line) {
    return std::fprintf(out, "%s\n", line.c_str()) >= 0 && std::fflush(out) == 0;
  }

  void Write(const std::string& line) {
    const MutexLock guard(lock_);
    if (file_ != nullptr && !hasGivenUp_) {
      if (WriteTo(file_, line)) {
        return;
      }
      const std::string reason = std::generic_category().message(errno);
      hasGivenUp_ = true;
      WriteTo(stderr, OneLine("bundle_host: " + name_ + ": cannot be written: " + reason) +
                          "; the log continues here");
    }
    WriteTo(stderr, line);
  }

  // Needed besides ACE's lock: `WritesToFile` and `SetFile` are called without that one.
  mutable Mutex lock_;
  std::FILE* file_ HOST_THREAD_SAFETY(guarded_by(lock_)) = nullptr;
  std::string name_ HOST_THREAD_SAFETY(guarded_by(lock_));
  bool hasGivenUp_ HOST_THREAD_SAFETY(guarded_by(lock_)) = false;
};

Backend& TheBackend() {
  static auto& backend = *new Backend;
  return backend;
}

}  // namespace

void SetLogLevel(int level) { lowestLevel = level; }

int LogLevel() { return lowestLevel; }

std::string TimeText(std::chrono::system_clock::time_point time) {
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::duration_cast<milliseconds>(time.time_since_epoch());
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char date[40];
  const std::size_t length = std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &parts);
  char fraction[24];
  static_cast<void>(
      std::snprintf(fraction, sizeof fraction, ".%03dZ", static_cast<int>(sinceEpoch.count() % 1000)));
  return std::string(date, length) + fraction;
}

int ParseLogLevel(const std::string& text) {
  if (text == "off") {
    return kLogOff;
  }
  if (text == "0" || text == "1" || text == "2") {
    return text[0] - '0';
  }
  throw UsageError("'" + text + "' is not a log level; there are 0, 1, 2 and off");
}

std::string LogLine(const LogRecord& record) {
  return TimeText(record.time) + " [" + std::to_string(record.level) + "] " + OrDash(record.tag) + ":" +
         std::to_string(record.line) + " " + OrDash(record.function) + ": " + EscapeBytes(record.text);
}

void WriteLog(const LogRecord& record) {
  bool captured = false;
  {
    Captures& captures = TheCaptures();
    const MutexLock guard(captures.lock);
    for (LogCapture* const capture : captures.open) {
      capture->Add(record);
      captured = true;
    }
  }
  if (record.level < LogLevel() || (captured && !TheBackend().WritesToFile())) {
    return;
  }
  ACE_Log_Record line(LM_INFO, ACE_OS::gettimeofday(), ACE_OS::getpid());
  line.msg_data(LogLine(record).c_str());
  writingOwnLine = true;
  ACE_Log_Msg::instance()->log(line);
  writingOwnLine = false;
}

LogOutput::LogOutput(const std::string& file)
    : previous_(ACE_Log_Msg::msg_backend()), previousFlags_(ACE_Log_Msg::instance()->flags()) {
  if (!file.empty()) {
    std::FILE* const opened = std::fopen(file.c_str(), "ae");
    if (opened == nullptr) {
      throw Failure(file + ": cannot be opened for writing: " + std::generic_category().message(errno));
    }
    TheBackend().SetFile(opened, file);
  }
  ACE_Log_Msg::msg_backend(&TheBackend());
  ACE_Log_Msg::instance()->clr_flags(previousFlags_);
  ACE_Log_Msg::instance()->set_flags(ACE_Log_Msg::CUSTOM);
}

LogOutput::~LogOutput() {
  ACE_Log_Msg::instance()->clr_flags(ACE_Log_Msg::CUSTOM);
  ACE_Log_Msg::instance()->set_flags(previousFlags_);
  ACE_Log_Msg::msg_backend(previous_);
  TheBackend().SetFile(nullptr, {});
}

bool LogOutput::IsComplete() const { return !TheBackend().HasGivenUp(); }

LogCapture::LogCapture(bool keepTexts) : keepTexts_(keepTexts) {
  Captures& captures = TheCaptures();
  const MutexLock guard(captures.lock);
  captures.open.push_back(this);
}

LogCapture::~LogCapture() {
  Captures& captures = TheCaptures();
  const MutexLock guard(captures.lock);
  captures.open.erase(std::remove(captures.open.begin(), captures.open.end(), this), captures.open.end());
}

std::vector<LogRecord> LogCapture::Records() const {
  const MutexLock guard(TheCaptures().lock);
  return records_;
}

std::size_t LogCapture::Count() const {
  const MutexLock guard(TheCaptures().lock);
  return count_;
}

void LogCapture::Add(const LogRecord& record) {
  ++count_;
  if (keepTexts_) {
    records_.push_back(record);
  }
}

AceComplaints::AceComplaints() : outer_(complaints) { complaints = this; }

AceComplaints::~AceComplaints() {
  complaints = outer_;
  for (const std::string& text : reported_ ? std::vector<std::string>() : texts_) {
    ACE_Log_Record record(LM_ERROR, ACE_OS::gettimeofday(), ACE_OS::getpid());
    record.msg_data(text.c_str());
    ACE_Log_Msg::instance()->log(record);
  }
}

std::string AceComplaints::Text() const {
  reported_ = true;
  std::string all;
  for (const std::string& text : texts_) {
    all += (all.empty() ? "" : "; ") + text;
  }
  return all;
}

void AceComplaints::Add(const std::string& text) {
  if (!text.empty()) {
    texts_.push_back(text);
  }
}

}  // namespace host
