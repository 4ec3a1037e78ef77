// Every operation with its first, second, third ... allocation failing, until a call meets no failure. Each
// time the operation throws `std::bad_alloc` or drops a message as documented; nothing stays allocated; out
// values are as documented; the same call works afterwards.

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "ascii_util/text_functions.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"
#include "src/service/asciiutilsvc.h"
#include "tests/proof/faults.h"
#include "tests/recording_fixture.h"
#include "tests/temp_directory.h"

namespace {

using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AlarmConfigRecord;
using Texts = std::vector<std::string>;

constexpr const char* kLong = "  a text that is too long for the small string optimisation\t";

class ExhaustedMemory : public recording::FrameworkTest {
 protected:
  // The journal allocates too; its allocations must not be counted as the bundle's.
  ExhaustedMemory() { framework.SetRecording(false); }

  enum class Swallowing { kForbidden, kAllowed };

  /// Returns how many calls met a failure. `call` does everything that a caller does, except for making its
  /// strings; `inspect` checks the out values after a failed call.
  static int FailEach(
      const std::function<void()>& call, const std::function<void()>& inspect = [] {},
      Swallowing swallowing = Swallowing::kForbidden) {
    for (int nth = 1;; ++nth) {
      const std::size_t before = faults::LiveAllocations();
      bool thrown = false;
      bool happened = false;
      {
        const faults::AllocationFails fault(static_cast<std::size_t>(nth));
        try {
          call();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        happened = fault.happened();
      }
      if (!happened) {
        EXPECT_FALSE(thrown);
        return nth - 1;
      }
      EXPECT_EQ(faults::LiveAllocations(), before) << "after failure " << nth;
      EXPECT_TRUE(thrown || swallowing == Swallowing::kAllowed) << "swallowed: failure " << nth;
      inspect();
    }
  }

  /// For operations without out values.
  template <class Call, class Result>
  static void FailEachOf(const Call& call, const Result& expected) {
    ASSERT_EQ(call(), expected);
    const int failures = FailEach([&call] { static_cast<void>(call()); },
                                  [&] { EXPECT_EQ(call(), expected) << "afterwards"; });
    EXPECT_GT(failures, 0);
  }

  NS_ASCII::AsciiUtilInterfaceImpl util;
};

TEST_F(ExhaustedMemory, GetSvcName) {
  FailEachOf([&] { return util.GetSvcName(); }, "AsciiUtilService");
}

TEST_F(ExhaustedMemory, Str2NumWritesItsValueWithoutMemory) {
  const std::string text = "-0000000000000000000000000000000000042";
  int value = 0;
  EXPECT_EQ(FailEach([&] { util.Str2Num(text, value, 10); }), 0);
  EXPECT_EQ(value, -42);
}

TEST_F(ExhaustedMemory, GetTimeStamp) {
  FailEachOf([&] { return util.GetTimeStamp().size(); }, std::size_t{19});
}

TEST_F(ExhaustedMemory, ToUpper) {
  const std::string text = "abcdefghijklmnopqrstuvwxyz";
  FailEachOf([&] { return util.ToUpper(text); }, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
}

TEST_F(ExhaustedMemory, IsContainNeedsNoMemory) {
  const std::string text = kLong;
  EXPECT_EQ(FailEach([&] { EXPECT_TRUE(util.IsContain(text, text)); }), 0);
}

TEST_F(ExhaustedMemory, IsKeyValueAboveOne) {
  const std::string text = "A=1,N=22222222222222222222";
  FailEachOf([&] { return util.IsKeyValueAboveOne("N", text); }, false);
}

TEST_F(ExhaustedMemory, GetKeyValue) {
  const std::string text = "A=1,B=a value that takes memory";
  FailEachOf([&] { return util.GetKeyValue("B", text); }, "a value that takes memory");
}

TEST_F(ExhaustedMemory, ParseListMapKeepsTheEntriesItHas) {
  const std::string text =
      "a first name that takes memory=x|an item that takes memory, a second name that takes memory=y|z";
  const NS_ASCII::ListMap whole = {{"a first name that takes memory", {"x", "an item that takes memory"}},
                                   {"a second name that takes memory", {"y", "z"}}};
  bool sawOneEntry = false;
  const int failures = FailEach([&] {
    NS_ASCII::ListMap map = {{"old", {"x"}}};
    try {
      util.ParseListMap(map, text);
    } catch (const std::bad_alloc&) {
      sawOneEntry = sawOneEntry || map.size() == 1;
      for (const auto& [name, items] : map) {
        EXPECT_EQ(items, whole.at(name));
      }
      throw;
    }
    EXPECT_EQ(map, whole);
  });
  EXPECT_GT(failures, 5);
  EXPECT_TRUE(sawOneEntry);
}

TEST_F(ExhaustedMemory, GetMapListReplacesItsListWholeOrNotAtAll) {
  const NS_ASCII::ListMap map = {{"A", {"an item that takes memory", "another item that takes memory"}}};
  const int failures = FailEach([&] {
    Texts out = {"one", "two", "three"};
    try {
      util.GetMapList(map, "A", out);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(out, (Texts{"one", "two", "three"}));
      throw;
    }
    EXPECT_EQ(out, map.at("A"));
  });
  EXPECT_GT(failures, 2);
}

TEST_F(ExhaustedMemory, SplitStrKeepsThePiecesItHas) {
  const std::string text = "a piece that takes memory, another piece that takes memory,c";
  const Texts whole = {"a piece that takes memory", "another piece that takes memory", "c"};
  const int failures = FailEach([&] {
    Texts pieces;
    try {
      util.SplitStr(text, ",", pieces);
    } catch (const std::bad_alloc&) {
      ASSERT_LE(pieces.size(), 2U);
      EXPECT_TRUE(std::equal(pieces.begin(), pieces.end(), whole.begin()));
      throw;
    }
    EXPECT_EQ(pieces, whole);
  });
  EXPECT_GE(failures, 3);  // The list and two long pieces.
}

TEST_F(ExhaustedMemory, GetAlmCfgValueLeavesItsValueAlone) {
  const AlarmConfigRecord record{"a first key that takes memory", "k2", "-1234567890", "k3",
                                 "000000000000000000000000000042"};
  Alarm_Config_Param::Instance()->InsertRecord(record);
  std::int64_t value = 99;
  const int number = -1234567890;
  framework.num2Str = [](int) { return std::string("  -1234567890       "); };
  framework.trim = NS_ASCII::Trim;
  const auto call = [&] { EXPECT_EQ(util.GetAlmCfgValue(value, record.key1, "k2", "k3", number), 0); };
  EXPECT_GT(FailEach(call,
                     [&] {
                       EXPECT_EQ(value, 99);
                       call();
                       EXPECT_EQ(value, 42);
                       value = 99;
                     }),
            1);
}

TEST_F(ExhaustedMemory, IsTransQueltEnabledOnceItHasItsLogger) {
  framework.intItems["IsTransQuelt"] = 0;
  FailEachOf([&] { return util.IsTransQueltEnabled(); }, false);
}

TEST_F(ExhaustedMemory, WhileALoggerIsObtainedDropsTheMessage) {
  // Building the names for the log service allocates; a failure drops the message, and the next message tries
  // again.
  framework.intItems["IsTransQuelt"] = 0;
  int dropped = 0;
  for (std::size_t nth = 1; nth <= 2; ++nth) {
    const faults::AllocationFails fault(nth);
    EXPECT_FALSE(util.IsTransQueltEnabled());
    EXPECT_TRUE(fault.happened());
    ++dropped;
  }
  EXPECT_EQ(dropped, 2);
  framework.SetRecording(true);
  EXPECT_FALSE(util.IsTransQueltEnabled());
  EXPECT_EQ(framework.Messages().size(), 1U);
}

TEST_F(ExhaustedMemory, WriteDbgLogDropsTheMessageAndLogsTheNext) {
  for (int nth = 1;; ++nth) {
    const faults::AllocationFails fault(static_cast<std::size_t>(nth));
    EXPECT_EQ(util.WriteDbgLog("position"), 0);
    if (!fault.happened()) {
      EXPECT_GT(nth, 1) << "the thread's record takes memory";
      break;
    }
  }
  framework.SetRecording(true);
  EXPECT_EQ(util.WriteDbgLog("next"), 0);
  ASSERT_EQ(framework.Messages().size(), 1U);
  EXPECT_EQ(framework.Messages()[0].text, "next");
}

TEST_F(ExhaustedMemory, TextFunctions) {
  const std::string text = kLong;
  const std::string plain = "abcdefghijklmnopqrstuvwxyz%25+0123456789";
  FailEachOf([&] { return NS_ASCII::Trim(text); }, text.substr(2, text.size() - 3));
  FailEachOf([&] { return NS_ASCII::StrToUpper(plain); }, "ABCDEFGHIJKLMNOPQRSTUVWXYZ%25+0123456789");
  FailEachOf([&] { return NS_ASCII::StrToLower(plain); }, plain);
  FailEachOf([&] { return NS_ASCII::utf8toiso8859(plain); }, plain);
  FailEachOf([&] { return NS_ASCII::GetURLEncoding(plain); }, "abcdefghijklmnopqrstuvwxyz%2525%2b0123456789");
  FailEachOf([&] { return NS_ASCII::GetURLDecoding(plain); }, "abcdefghijklmnopqrstuvwxyz% 0123456789");
  FailEachOf([&] { return NS_ASCII::SetURLDecoding(plain); }, "abcdefghijklmnopqrstuvwxyz%2525+0123456789");
  EXPECT_EQ(FailEach([] { static_cast<void>(NS_ASCII::Num2Str(-2147483647)); }), 0);
}

// --- Loading

constexpr int kLines = 120;

/// A file whose load grows every table at least once: names in the first column, each line's number in the
/// fifth.
std::string ConfigText() {
  std::ostringstream text;
  for (int i = 0; i < kLines; ++i) {
    text << "a first key that takes memory " << i << "/b" << i << "\tk2\tthird column " << i << "\t7\tvalue "
         << i << '\n';
  }
  return text.str();
}

std::map<std::string, std::string> ContentOf(const Alarm_Config_Param& config) {
  std::map<std::string, std::string> content;
  config.Values().ForEach([&content](const NS_ASCII::AlarmKey& key, std::string_view value) {
    content[std::string(key.key1)] = value;
  });
  return content;
}

TEST_F(ExhaustedMemory, LoadConfigStoresEachRecordWholeOrNotAtAll) {
  const TempDirectory directory;
  const std::string path = directory.Write("AlarmConfig.csv", ConfigText());
  Alarm_Config_Param reference;
  reference.LoadConfig(path.c_str());
  const std::map<std::string, std::string> whole = ContentOf(reference);
  ASSERT_EQ(whole.size(), 2U * kLines);
  const int failures = FailEach([&] {
    Alarm_Config_Param fresh;
    try {
      fresh.LoadConfig(path.c_str());
    } catch (const std::bad_alloc&) {
      for (const auto& [key, value] : ContentOf(fresh)) {
        ASSERT_EQ(value, whole.at(key));
      }
      fresh.LoadConfig(path.c_str());
      ASSERT_EQ(ContentOf(fresh), whole) << "afterwards";
      ASSERT_EQ(fresh.ThirdColumns().size(), static_cast<std::size_t>(kLines));
      throw;
    }
  });
  EXPECT_GT(failures, 10);  // At least each table, arena and file buffer allocates.
}

TEST_F(ExhaustedMemory, Init) {
  NS_ASCII::ii_ascii_util service;
  ASSERT_EQ(service.init(0, nullptr), 0);
  EXPECT_GT(FailEach([&] { service.init(0, nullptr); }, [&] { EXPECT_EQ(service.init(0, nullptr), 0); }), 1);
}

void MakeAndDestroy() {
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const object = _make_ii_ascii_util(&destroy);
  ASSERT_NE(object, nullptr);
  destroy(object);
}

TEST_F(ExhaustedMemory, AFailedFactoryFreesEverything) {
  MakeAndDestroy();  // The registry's buffer for the name stays, and with it the memory for one entry.
  const int failures = FailEach(MakeAndDestroy, [this] {
    EXPECT_TRUE(framework.BufferOf("AsciiUtilInterface")->empty());
    MakeAndDestroy();
  });
  EXPECT_GE(failures, 2);  // The service object and its interface.
}

}  // namespace
