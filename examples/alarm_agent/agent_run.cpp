// One run of the agent: reads lines, composes messages and writes them, on the pool's threads. The object owns
// its files and threads and borrows the interface. Its owner's thread constructs, finishes and destroys it.

#include "examples/alarm_agent/agent_run.h"

#include <ace/Log_Msg.h>

#include <exception>

#include "examples/alarm_agent/setup_error.h"

namespace alarm_agent {

void Report(const std::string& text) {
  ACE_ERROR((LM_ERROR, ACE_TEXT("alarm_agent_example: %C\n"), text.c_str()));
}

AgentRun::AgentRun(const AgentOptions& options, NS_ASCII::AsciiUtilInterface& util)
    : reader_(options.feed),
      writer_(options.out),
      composer_(util, options.link),
      pool_([this](FeedLine& line) { return TakeLine(line); },
            [this](const FeedLine& line) { return MessageFor(line); },
            [this](const std::string& message) { Deliver(message); }) {
  if (reader_.IsSameFile(writer_.Descriptor())) {
    throw SetupError("\"" + options.feed + "\" is the feed and the message file at once; they must differ");
  }
  try {
    pool_.Start(options.workers);
  } catch (...) {
    Finish();
    throw;
  }
}

AgentRun::~AgentRun() { Finish(); }

bool AgentRun::Finish() {
  reader_.Finish();
  pool_.Join();
  return writer_.Lost() == 0;
}

bool AgentRun::TakeLine(FeedLine& line) {
  const bool isTaken = reader_.Next(line);
  if (!isTaken && !reader_.Problem().empty()) {
    Report(reader_.Problem());
  }
  return isTaken;
}

std::string AgentRun::MessageFor(const FeedLine& line) const {
  try {
    return composer_.Compose(line);
  } catch (const std::exception& error) {
    // Exhausted memory, or a logger that throws. Every line yields a message.
    return "line " + std::to_string(line.number) + " of the feed got no message: " + error.what();
  }
}

void AgentRun::Deliver(const std::string& message) {
  // Only the first loss is reported; `Finish` returns whether there was one.
  if (!writer_.Write(message) && writer_.Lost() == 1) {
    Report(writer_.Problem());
  }
}

}  // namespace alarm_agent
