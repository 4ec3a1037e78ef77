// Starts and stops a recording and runs the writer's thread. The recording owns the queue, the file and the
// thread. Calls are added from any thread; starts and stops come one at a time.

#include "tools/recorder/recording.h"

#include <pthread.h>
#include <signal.h>

#include <exception>
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
/// block, so the process's signal handlers never run on the writer's thread.
class SignalBlock {
 public:
  SignalBlock() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

void Recording::Start(const Options& options, recording_format::Head head,
                      void (*onProblem)(const std::string&), std::size_t capacity) {
  head.time = TimeNow();
  head.operations = NamesOf(options.operations);
  head.every = static_cast<std::int64_t>(options.every);
  began_.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
  file_ = std::make_unique<RecordingFile>(options.output, options.limit, head);
  totals_ = Totals();
  onProblem_ = onProblem;
  queue_.Open(capacity);
  {
    const SignalBlock block;
    writer_ = std::thread([this] { WriteLines(); });
  }
  every_.store(options.every, std::memory_order_relaxed);
  selected_.store(static_cast<std::uint32_t>(options.operations.to_ulong()), std::memory_order_relaxed);
}

Totals Recording::Stop() {
  if (!writer_.joinable()) {
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

void Recording::WriteLines() noexcept {
  try {
    WriteBatches();
  } catch (const std::exception& error) {
    selected_.store(0, std::memory_order_relaxed);
    queue_.Close();
    totals_.problem = error.what();
    onProblem_(totals_.problem);
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
