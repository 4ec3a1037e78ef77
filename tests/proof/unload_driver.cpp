// A host that loads and unloads the bundle in one scenario. It includes no header of ACE and
// looks the platform's functions up by name, so that it can be linked with ACE or without, and by any
// compiler.
//
//   unload_driver BUNDLE SCENARIO [COUNT [PLATFORM]]
//   unload_driver BUNDLE replaced OTHER CALLER
//
//   thread-ends-after-unload  a thread logs, the bundle is unloaded, the thread ends
//   loads                     COUNT loads and unloads, each with log calls of two threads; nothing stays
//   exit-without-unload       two threads log, the process ends with the bundle loaded
//   log-at-exit               messages of an exit handler and of new threads while the process ends
//   concurrent-quiet          loads and unloads while threads of another bundle wait
//   replaced OTHER CALLER     the bundle is unloaded while a caller stays, and OTHER is loaded in its place
//
// Prints each check that fails; the exit code is then 1, otherwise 0.

#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "framework/log_service.h"
#include "tests/temp_directory.h"

namespace {

using NS_BUNDLEMGR1::ServiceInterface;

[[noreturn]] void Fail(const std::string& what) {
  std::cerr << "unload_driver: " << what << '\n';
  std::_Exit(1);
}

void Expect(bool holds, const std::string& what) {
  if (!holds) {
    Fail("does not hold: " + what);
  }
}

// --- The log service: counts

std::atomic<int> logged{0};
std::atomic<int> positions{0};  ///< of them, those with a debug position

class CountingLogger : public NS_LOG_SERVICE1::Logger {
 public:
  int Log(const std::string& /*file*/, const std::string& /*func*/, int /*line*/, int /*level*/,
          const std::string& message) override {
    positions += message == "position" ? 1 : 0;
    return ++logged;
  }
  int LogF(const std::string& /*file*/, const std::string& /*func*/, int /*line*/, int /*level*/,
           const char* /*format*/, ...) override {
    return ++logged;
  }
};

CountingLogger logger;

class CountingService : public NS_LOG_SERVICE1::LogSvcInterface {
 public:
  std::string GetSvcName() override { return "CountingService"; }
  std::int64_t IsValid() override { return 1; }
  NS_LOG_SERVICE1::Logger* GetLogger(const std::string& /*bundle*/, const std::string& /*service*/,
                                     const std::string& /*channel*/) override {
    return &logger;
  }
};

CountingService logService;

// --- The bundle

class Loaded {
 public:
  explicit Loaded(const std::string& path, int scopeOfSymbols = RTLD_LOCAL)
      : library_(dlopen(path.c_str(), RTLD_NOW | scopeOfSymbols)) {
    if (library_ == nullptr) {
      Fail(dlerror());
    }
    const std::string text = "RKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";
    const std::string scope = "_ZN13NS_BUNDLEMGR1";
    const auto setIfBuf = Find<int(const std::string&, ServiceInterface*)>(scope + "8SetIFBufE" + text +
                                                                           "PNS_16ServiceInterfaceE");
    const auto checkIfBuf =
        Find<std::vector<ServiceInterface*>*(const std::string&)>(scope + "10CheckIFBufE" + text);
    const std::vector<ServiceInterface*>* const known = checkIfBuf("LogSvcInterface");
    if (known == nullptr || known->front() != &logService) {
      setIfBuf("LogSvcInterface", &logService);
    }
    service_ = Find<void*(void (**)(void*))>("_make_ii_ascii_util")(&destroy_);
    util_ = dynamic_cast<NS_ASCII::AsciiUtilInterface*>(checkIfBuf("AsciiUtilInterface")->front());
    Expect(util_ != nullptr, "the interface has its type");
  }
  ~Loaded() {
    destroy_(service_);
    dlclose(library_);
  }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;

  /// Two messages: one with the thread's position, one through the shared logger.
  void Log() const {
    const int before = logged;
    util_->WriteDbgLog("position");
    static_cast<void>(util_->IsTransQueltEnabled());
    Expect(logged >= before + 2, "the record access succeeds and both messages arrive");
  }

 private:
  template <class Function>
  Function* Find(const std::string& symbol) const {
    void* const address = dlsym(library_, symbol.c_str());
    if (address == nullptr) {
      Fail("no symbol " + symbol);
    }
    Function* function;
    std::memcpy(&function, &address, sizeof function);
    return function;
  }

  void* library_;
  void (*destroy_)(void*) = nullptr;
  void* service_ = nullptr;
  NS_ASCII::AsciiUtilInterface* util_ = nullptr;
};

// --- What the process holds

int MappingsOfBundle() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);) {
    count += line.find("/libii_ascii_util") == std::string::npos ? 0 : 1;
  }
  return count;
}

int Mappings() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);) {
    ++count;
  }
  return count;
}

int OpenDescriptors() {
  DIR* const directory = opendir("/proc/self/fd");
  int count = 0;
  while (readdir(directory) != nullptr) {
    ++count;
  }
  closedir(directory);
  return count;
}

int FreeThreadKeys() {
  std::vector<pthread_key_t> keys;
  for (pthread_key_t key = 0; pthread_key_create(&key, nullptr) == 0;) {
    keys.push_back(key);
  }
  for (const pthread_key_t key : keys) {
    pthread_key_delete(key);
  }
  return static_cast<int>(keys.size());
}

std::size_t AllocatedBytes() { return mallinfo2().uordblks; }

// --- Scenarios

/// A thread that is controlled step by step.
class SteppedThread {
 public:
  explicit SteppedThread(const Loaded*& bundle) : thread_([this, &bundle] { Run(bundle); }) {}
  void LogNow() { Reach(1, 2); }
  void End() {
    Reach(3, 3);
    thread_.join();
  }

 private:
  void Run(const Loaded*& bundle) {
    Await(1);
    bundle->Log();
    Set(2);
    Await(3);
  }
  void Reach(int state, int until) {
    Set(state);
    Await(until);
  }
  void Set(int step) {
    const std::lock_guard<std::mutex> guard(lock_);
    step_ = step;
    changed_.notify_all();
  }
  void Await(int step) {
    std::unique_lock<std::mutex> guard(lock_);
    changed_.wait(guard, [&] { return step_ >= step; });
  }

  std::mutex lock_;
  std::condition_variable changed_;
  int step_ = 0;
  std::thread thread_;
};

void ThreadEndsAfterUnload(const std::string& path) {
  for (int round = 0; round < 3; ++round) {
    const Loaded* current = nullptr;
    SteppedThread thread(current);
    {
      const Loaded bundle(path);
      current = &bundle;
      bundle.Log();
      thread.LogNow();
    }
    Expect(MappingsOfBundle() == 0, "an unload unmaps the bundle");
    thread.End();
  }
}

void LoadAndLogOnce(const std::string& path) {
  {
    const Loaded bundle(path);
    bundle.Log();
    std::thread([&bundle] { bundle.Log(); }).join();
  }
  Expect(MappingsOfBundle() == 0, "an unload unmaps the bundle");
}

void Loads(const std::string& path, int count) {
  constexpr int kWarmUp = 20;
  for (int i = 0; i < kWarmUp; ++i) {
    LoadAndLogOnce(path);
  }
  const int mappings = Mappings();
  const int descriptors = OpenDescriptors();
  const int keys = FreeThreadKeys();
  const std::size_t bytes = AllocatedBytes();
  for (int i = 0; i < count; ++i) {
    LoadAndLogOnce(path);
  }
  const std::size_t kept = AllocatedBytes() > bytes ? AllocatedBytes() - bytes : 0;
  std::cout << count << " loads: " << kept << " bytes kept, " << Mappings() - mappings << " mappings, "
            << OpenDescriptors() - descriptors << " descriptors, " << keys - FreeThreadKeys()
            << " thread keys\n";
  Expect(Mappings() <= mappings + 2, "no mapping is left");  // The allocator may take one for a new arena.
  Expect(OpenDescriptors() == descriptors, "no descriptor is left");
  Expect(FreeThreadKeys() == keys, "no thread key is left");
  Expect(kept <= 4096, "no memory is left");  // Memory that the allocator and the linker free later.
}

[[noreturn]] void ExitWithoutUnload(const std::string& path) {
  static const Loaded& bundle = *new Loaded(path);
  bundle.Log();
  std::thread([] { bundle.Log(); }).join();
  std::exit(0);
}

/// Every message must arrive, and ACE must report no error on standard error, which the test looks at.
[[noreturn]] void LogAtExit(const std::string& path) {
  static const Loaded* bundle;
  static std::atomic<bool> done{false};
  static std::atomic<int> sent{0};
  static std::thread starter;
  const auto log = [] {
    ++sent;
    bundle->Log();
  };
  // Registered before the bundle is loaded, so it runs after the bundle's static objects are destroyed.
  std::atexit([] {
    bundle->Log();
    std::thread([] { bundle->Log(); }).join();
    done = true;
    starter.join();
    Expect(positions == sent + 2, "no message at exit is lost");
  });
  bundle = new Loaded(path);
  log();
  starter = std::thread([log] {
    while (!done) {
      std::thread(log).join();
    }
  });
  while (sent < 20) {
    std::this_thread::yield();
  }
  std::exit(0);
}

/// The result of `CALLER`. The caller stays loaded.
std::string NameSeenBy(const char* caller) {
  void* const library = dlopen(caller, RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr) {
    Fail(dlerror());
  }
  void* const address = dlsym(library, "service_name");
  const char* (*function)();
  std::memcpy(&function, &address, sizeof function);
  return function();
}

/// Opened with global symbols, which libraries that are loaded later can use, as ACE does.
void Replaced(const std::string& path, const std::string& other, const char* caller) {
  const TempDirectory directory;
  const std::string place = directory / "libii_ascii_util.so";
  std::filesystem::copy_file(path, place);
  std::string before;
  std::string after;
  {
    const Loaded bundle(place, RTLD_GLOBAL);
    before = NameSeenBy(caller);
  }
  const int mappings = MappingsOfBundle();
  std::filesystem::copy_file(other, directory / "new");
  std::filesystem::rename(directory / "new", place);
  {
    const Loaded bundle(place, RTLD_GLOBAL);
    after = NameSeenBy(caller);
  }
  Expect(before == "AsciiUtilService", "the caller reaches the bundle");
  Expect(mappings == 0, "a caller that stays does not keep the bundle mapped");
  Expect(after == "OtherService", "the caller reaches the library in the bundle's place");
}

void ConcurrentQuiet(const std::string& path, int count) {
  std::vector<std::thread> quiet;
  std::mutex lock;
  std::condition_variable changed;
  bool done = false;
  for (int i = 0; i < 4; ++i) {
    quiet.emplace_back([&] {
      std::unique_lock<std::mutex> guard(lock);
      changed.wait(guard, [&] { return done; });
    });
  }
  for (int i = 0; i < count; ++i) {
    LoadAndLogOnce(path);
  }
  {
    const std::lock_guard<std::mutex> guard(lock);
    done = true;
  }
  changed.notify_all();
  for (std::thread& thread : quiet) {
    thread.join();
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 3) {
    Fail("expected a bundle and a scenario");
  }
  const std::string path = argv[1];
  const std::string scenario = argv[2];
  if (scenario == "replaced" && argc == 5) {
    Replaced(path, argv[3], argv[4]);
    return 0;
  }
  const int count = argc > 3 ? std::atoi(argv[3]) : 1;
  if (argc > 4 && dlopen(argv[4], RTLD_NOW | RTLD_LOCAL) == nullptr) {
    Fail(dlerror());
  }
  if (scenario == "thread-ends-after-unload") {
    ThreadEndsAfterUnload(path);
  } else if (scenario == "loads") {
    Loads(path, count);
  } else if (scenario == "exit-without-unload") {
    ExitWithoutUnload(path);
  } else if (scenario == "log-at-exit") {
    LogAtExit(path);
  } else if (scenario == "concurrent-quiet") {
    ConcurrentQuiet(path, count);
  } else {
    Fail("there is no scenario " + scenario);
  }
  return 0;
}
