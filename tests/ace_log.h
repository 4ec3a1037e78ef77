#ifndef TESTS_ACE_LOG_H_
#define TESTS_ACE_LOG_H_

#include <ace/Log_Msg.h>
#include <ace/Log_Msg_Callback.h>
#include <ace/Log_Record.h>

#include <string>
#include <vector>

/// Collects the messages of its thread to ACE's log while it exists; none reaches standard error.
class AceLog : private ACE_Log_Msg_Callback {
 public:
  struct Entry {
    std::string file;
    int line;
    ACE_Log_Priority priority;
    std::string text;
    int status;
  };

  AceLog() : flags_(ACE_LOG_MSG->flags()) {
    ACE_LOG_MSG->clr_flags(ACE_Log_Msg::STDERR);
    ACE_LOG_MSG->set_flags(ACE_Log_Msg::MSG_CALLBACK);
    ACE_LOG_MSG->msg_callback(this);
  }
  ~AceLog() override {
    ACE_LOG_MSG->msg_callback(nullptr);
    ACE_LOG_MSG->clr_flags(ACE_Log_Msg::MSG_CALLBACK);
    ACE_LOG_MSG->set_flags(flags_);
  }
  AceLog(const AceLog&) = delete;
  AceLog& operator=(const AceLog&) = delete;

  std::vector<Entry> entries;

 private:
  void log(ACE_Log_Record& record) override {
    entries.push_back({ACE_LOG_MSG->file(), ACE_LOG_MSG->linenum(),
                       static_cast<ACE_Log_Priority>(record.type()), record.msg_data(),
                       ACE_LOG_MSG->op_status()});
  }

  u_long flags_;
};

#endif  // TESTS_ACE_LOG_H_
