// Starts and stops a recording and runs the writer's thread. The recording owns the queue, the file and the
// thread. Calls are added from any thread; starts and stops come one at a time.

#include "tools/recorder/recording.h"

#include <pthread.h>
#include <signal.h>

#include <ctime>
#include <exception>
#include <limits>
#include <new>
#include <utility>

#include "tools/recorder/call_record.h"

namespace recorder {
namespace {

std::vector<std::string> NamesOf(const OperationSet& operations) {
  std::vector<std::string> names;
  for (std::size_t at = 0; at < operations.size(); ++at) {
    if (operations.test(at)) {
      names.emplace_back(recording_format::kSignatures[at].name);
    }
  }
  return names;
}

/// Blocks all signals on the calling thread while the object exists. Threads started in that time inherit the
/// block, so the process's signal handlers never run on the writer's thread. A write beyond the limit for the
/// size of files only fails: its signal is discarded.
class SignalBlock {
 public:
  SignalBlock() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalBlock() {
    sigset_t tooLarge;
    sigemptyset(&tooLarge);
    sigaddset(&tooLarge, SIGXFSZ);
    const timespec now{};
    sigtimedwait(&tooLarge, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

void Recording::Start(const Options& options, recording_format::Head head,
                      void (*onProblem)(const std::string&), std::uint32_t capacity) {
  head.time = TimeNow();
  head.operations = NamesOf(options.operations);
  head.every = static_cast<std::int64_t>(options.every);
  began_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
  const SignalBlock block;
  file_ = std::make_unique<RecordingFile>(options.output, options.limit, head);
  totals_ = Totals();
  onProblem_ = onProblem;
  try {
    queue_.Open(capacity);
    writer_ = std::thread([this] { WriteLines(); });
  } catch (...) {
    queue_.Close();
    queue_.Release();
    file_.reset();
    throw;
  }
  every_.store(options.every, std::memory_order_relaxed);
  largest_.store(capacity, std::memory_order_relaxed);
  selected_.store(static_cast<std::uint32_t>(options.operations.to_ulong()), std::memory_order_release);
}

Totals Recording::Stop() {
  if (!writer_.joinable() || isAbandoned_) {
    return {};
  }
  selected_.store(0, std::memory_order_relaxed);
  queue_.Close();
  writer_.join();
  queue_.Release();
  totals_.records = file_->Written();
  file_.reset();
  return std::exchange(totals_, {});
}

void Recording::AbandonAfterFork() noexcept {
  if (writer_.joinable()) {
    isAbandoned_ = true;
    selected_.store(0, std::memory_order_relaxed);
    // A call during which the process was forked has begun before this time, so its record is ignored.
    began_.store(std::numeric_limits<Clock::rep>::max(), std::memory_order_relaxed);
  }
}

void Recording::WriteLines() noexcept {
  try {
    WriteBatches();
  } catch (const std::exception& error) {
    ReportProblem(error);
  }
}

void Recording::ReportProblem(const std::exception& error) noexcept {
  selected_.store(0, std::memory_order_relaxed);
  queue_.Close();
  try {
    totals_.problem = error.what();
    onProblem_(totals_.problem);
  } catch (const std::bad_alloc&) {
    totals_.problem = "out of memory";  // Short enough to need no allocation.
  }
}

void Recording::WriteBatches() {
  std::string line;
  for (bool isLast = false; !isLast;) {
    RecordQueue::Batch batch = queue_.Take();
    isLast = batch.isLast;
    totals_.dropped += batch.dropped;
    file_->CountDropped(batch.dropped);
    while (!batch.records.empty()) {
      line.clear();
      FormatRecord(batch.records, line);
      file_->Add(line);
    }
    file_->Flush();
  }
  file_->Finish();
}

}  // namespace recorder
