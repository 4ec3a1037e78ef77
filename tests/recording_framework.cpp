// The provider that records every call. It shares no code with the host's, because each function, the base class
// of service objects included, first records its call.

#include "tests/recording_framework.h"

#include <ace/Thread_Mutex.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <ostream>
#include <tuple>

#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "framework/platform_util.h"
#include "framework/service_object_base.h"

namespace recording {
namespace {

/// A mutex attribute: the second lock by the same thread fails. Created once, never freed.
ACE_mutexattr_t* ErrorChecking() {
  static ACE_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
  return &attributes;
}

bool GlobalMutexIsHeld() {
  if (NS_BUNDLEMGR1::_g_actualmutex.tryacquire() != 0) {
    return true;
  }
  NS_BUNDLEMGR1::_g_actualmutex.release();
  return false;
}

std::string Join(const std::vector<std::string>& arguments) {
  std::string joined;
  for (const std::string& argument : arguments) {
    joined += (joined.empty() ? "" : ", ") + argument;
  }
  return joined;
}

bool IsAboutLog(const std::string& call) {
  const std::array<const char*, 5> starts = {"Log(", "LogF(", "GetLogger(", "CheckIFBuf(\"LogSvcInterface\")",
                                             "GetAllBundles("};
  return std::any_of(starts.begin(), starts.end(),
                     [&call](const char* start) { return call.rfind(start, 0) == 0; });
}

class BundleMgr : public NS_BUNDLEMGR1::BundleMgr {
 public:
  NS_BUNDLEMGR1::Bundle* GetBundle(const std::string& name) override {
    Framework::Instance().Called("GetBundle", name);
    for (NS_BUNDLEMGR1::Bundle* bundle : Framework::Instance().bundles) {
      if (auto* const known = dynamic_cast<Bundle*>(bundle); known != nullptr && known->name == name) {
        return known;
      }
    }
    return nullptr;
  }
  void GetAllBundles(std::list<NS_BUNDLEMGR1::Bundle*>& bundles) override {
    Framework::Instance().Called("GetAllBundles");
    bundles.insert(bundles.end(), Framework::Instance().bundles.begin(), Framework::Instance().bundles.end());
  }
};

}  // namespace

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      quoted += c;
    } else {
      std::array<char, 8> escape;
      std::snprintf(escape.data(), escape.size(), "\\x%02x",
                    static_cast<unsigned>(static_cast<unsigned char>(c)));
      quoted += escape.data();
    }
  }
  return quoted + '"';
}

bool Message::operator==(const Message& other) const {
  return std::tie(tag, function, line, level, text, value) ==
         std::tie(other.tag, other.function, other.line, other.level, other.text, other.value);
}

std::ostream& operator<<(std::ostream& out, const Message& message) {
  out << '{' << Quoted(message.tag) << ", " << Quoted(message.function) << ", " << message.line << ", "
      << message.level << ", " << Quoted(message.text);
  if (message.value) {
    out << ", " << Quoted(*message.value);
  }
  return out << '}';
}

// --- Framework ---------------------------------------------------------------------------------------------

Framework& Framework::Instance() {
  static Framework& framework = *new Framework;
  return framework;
}

Framework::Framework() { Reset(); }

void Framework::Reset() {
  ForgetCalls();
  SetRecording(true);
  actions_.clear();
  registry_.clear();
  cfgDir = "/no-such-directory/";
  intItems.clear();
  unreadable.reset();
  sprintfResult.reset();
  bundles.clear();
  convert = Utf8ToLatin1;
  num2Str = [](int number) { return std::to_string(number); };
  trim = [](const std::string& text) { return text; };
  logger = [this] { return &commonLogger_; };
  Register("LogSvcInterface", &logService_);
}

std::vector<std::string> Framework::Calls() const {
  const std::lock_guard<std::mutex> guard(lock_);
  return calls_;
}

std::vector<std::string> Framework::CallsWithoutLog() const {
  std::vector<std::string> calls = Calls();
  calls.erase(std::remove_if(calls.begin(), calls.end(), IsAboutLog), calls.end());
  return calls;
}

std::vector<Message> Framework::Messages() const {
  const std::lock_guard<std::mutex> guard(lock_);
  return messages_;
}

void Framework::ForgetCalls() {
  const std::lock_guard<std::mutex> guard(lock_);
  calls_.clear();
  messages_.clear();
}

void Framework::SetRecording(bool on) { recording_ = on; }

void Framework::On(const std::string& operation, std::function<void()> action) {
  actions_[operation] = std::move(action);
}

void Framework::Register(const std::string& name, NS_BUNDLEMGR1::ServiceInterface* interface) {
  RegisterEmpty(name);
  registry_[name]->push_back(interface);
}

void Framework::RegisterEmpty(const std::string& name) {
  if (BufferOf(name) == nullptr) {
    auto buffer = std::make_unique<Buffer>();
    registry_.emplace(name, std::move(buffer));
  }
}

void Framework::Unregister(const std::string& name) { registry_.erase(name); }

Framework::Buffer* Framework::BufferOf(const std::string& name) {
  const auto entry = registry_.find(name);
  return entry == registry_.end() ? nullptr : entry->second.get();
}

void Framework::Write(const char* operation, const std::vector<std::string>& arguments) {
  const std::lock_guard<std::mutex> guard(lock_);
  calls_.push_back(operation + ('(' + Join(arguments) + ')') + (GlobalMutexIsHeld() ? " [mutex held]" : ""));
}

void Framework::RunAction(const char* operation) {
  if (const auto action = actions_.find(operation); action != actions_.end()) {
    action->second();
  }
}

void Framework::Add(Message message) {
  const std::lock_guard<std::mutex> guard(lock_);
  if (recording_) {
    messages_.push_back(std::move(message));
  }
}

void Framework::Withdraw(NS_BUNDLEMGR1::ServiceInterface* interface) {
  for (auto& [name, buffer] : registry_) {
    buffer->erase(std::remove(buffer->begin(), buffer->end(), interface), buffer->end());
  }
}

// --- Log service -------------------------------------------------------------------------------------------

Logger::~Logger() { Framework::Instance().Called("~Logger"); }

int Logger::Log(const std::string& file, const std::string& func, int line, int level,
                const std::string& message) {
  Framework::Instance().Called("Log", file, func, line, level, message);
  Framework::Instance().Add({file, func, line, level, message, std::nullopt});
  return -1;  // Callers must ignore it.
}

int Logger::LogF(const std::string& file, const std::string& func, int line, int level, const char* format,
                 ...) {
  va_list values;
  va_start(values, format);
  const std::string value = va_arg(values, const char*);
  va_end(values);
  Framework::Instance().Called("LogF", file, func, line, level, format, value);
  Framework::Instance().Add({file, func, line, level, format, value});
  return -1;
}

NS_LOG_SERVICE1::Logger* LogService::GetLogger(const std::string& bundle, const std::string& service,
                                               const std::string& channel) {
  Framework::Instance().Called("GetLogger", bundle, service, channel);
  return Framework::Instance().logger();
}

// --- Bundles, mutex, converters

void Bundle::GetServiceObjects(std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*>& found) {
  Framework::Instance().Called("GetServiceObjects", name);
  found = objects;
}

MutexHeld::MutexHeld() { NS_BUNDLEMGR1::_g_actualmutex.acquire(); }
MutexHeld::~MutexHeld() { NS_BUNDLEMGR1::_g_actualmutex.release(); }

int Utf8ToLatin1(const std::string& /*from*/, const std::string& /*to*/, const std::string& input,
                 std::string& output) {
  for (std::size_t i = 0; i < input.size(); ++i) {
    const auto c = static_cast<unsigned char>(input[i]);
    if (c < 0x80) {
      output += input[i];
    } else if ((c == 0xC2 || c == 0xC3) && i + 1 < input.size()) {
      output += static_cast<char>((c & 0x03U) << 6 | (static_cast<unsigned char>(input[++i]) & 0x3FU));
    } else if (c >= 0xC0) {  // The first byte of a longer character; its other bytes are skipped.
      output += '?';
    }
  }
  return 0;
}

int CopyThrough(const std::string& /*from*/, const std::string& /*to*/, const std::string& input,
                std::string& output) {
  output = input;
  return 0;
}

}  // namespace recording

// --- What framework/ declares

using recording::Framework;

namespace NS_BUNDLEMGR1 {

ACE_Thread_Mutex _g_actualmutex(nullptr, recording::ErrorChecking());

int SetIFBuf(const std::string& name, ServiceInterface* interface) {
  Framework::Instance().Called("SetIFBuf", name);
  Framework::Instance().RegisterEmpty(name);
  Framework::Buffer& buffer = *Framework::Instance().BufferOf(name);
  buffer.insert(buffer.begin(), interface);
  return -1;  // Callers must ignore it.
}

std::vector<ServiceInterface*>* CheckIFBuf(const std::string& name) {
  Framework::Instance().Called("CheckIFBuf", name);
  return Framework::Instance().BufferOf(name);
}

std::string GetCfgDirPath() {
  Framework::Instance().Called("GetCfgDirPath");
  return Framework::Instance().cfgDir;
}

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}

bool CorbaConfigItems::GetIntItemInfo(const std::string& name, int& value) {
  Framework::Instance().Called("GetIntItemInfo", name, value);
  const auto item = Framework::Instance().intItems.find(name);
  if (item == Framework::Instance().intItems.end()) {
    value = Framework::Instance().unreadable.value_or(value);
    return false;
  }
  value = item->second;
  return true;
}

BundleMgr* BundleMgr::Instance() {
  static recording::BundleMgr manager;
  return &manager;
}

ServiceObjectBase::ServiceObjectBase(const char* bundle, const char* service) : name_(service) {
  Framework::Instance().Called("ServiceObjectBase", bundle, service);
}

ServiceObjectBase::~ServiceObjectBase() {
  Framework::Instance().Called("~ServiceObjectBase", name_);
  Framework::Instance().Withdraw(interface_);
  ServiceObjectBase::RemoveInterface();
}

int ServiceObjectBase::UnRegistSvc() {
  Framework::Instance().Called("UnRegistSvc", name_);
  Framework::Instance().Withdraw(interface_);
  return 0;
}

const char* ServiceObjectBase::GetName() const { return name_; }

void ServiceObjectBase::SvcHook() { Framework::Instance().Called("SvcHook"); }

ServiceInterface* ServiceObjectBase::GetInterface() { return interface_; }

ServiceInterface* ServiceObjectBase::CreateInterface() { return nullptr; }

void ServiceObjectBase::RemoveInterface() {
  delete interface_;
  interface_ = nullptr;
}

}  // namespace NS_BUNDLEMGR1

namespace NSTE_util {

std::string Trim(const std::string& text) {
  Framework::Instance().Called("Trim", text);
  return Framework::Instance().trim(text);
}

std::string Num2Str(int number) {
  Framework::Instance().Called("Num2Str", number);
  return Framework::Instance().num2Str(number);
}

}  // namespace NSTE_util

namespace KelpGlobalUtils {

int KelpCodeSetConvert(const std::string& fromCode, const std::string& toCode, const std::string& input,
                       std::string& output) {
  Framework::Instance().Called("KelpCodeSetConvert", fromCode, toCode, input, output);
  return Framework::Instance().convert(fromCode, toCode, input, output);
}

}  // namespace KelpGlobalUtils

extern "C" int sprintf_s(char* buffer, std::size_t size, const char* format, ...) {
  Framework::Instance().Called("sprintf_s", size, std::string(format));
  if (Framework::Instance().sprintfResult) {
    buffer[0] = '\0';
    return *Framework::Instance().sprintfResult;
  }
  va_list values;
  va_start(values, format);
  const int length = std::vsnprintf(buffer, size, format, values);
  va_end(values);
  return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}
