// Values and lists from texts of pairs, and the whole sequence of calls that an agent makes for one alarm.

#include <absl/strings/ascii.h>
#include <absl/strings/str_split.h>

#include <array>
#include <string>
#include <string_view>
#include <tuple>

#include "bench/by_hand.h"
#include "bench/comparison.h"
#include "bench/inputs.h"
#include "bench/register.h"
#include "bench/tables.h"
#include "tests/literal_rules.h"

namespace bench {
namespace {

using NS_ASCII::ListMap;
using Pieces = std::vector<std::string>;

std::string FindWithAbseil(absl::string_view key, const std::string& text) {
  for (const absl::string_view piece : absl::StrSplit(text, ',')) {
    const std::pair<absl::string_view, absl::string_view> pair =
        absl::StrSplit(absl::StripAsciiWhitespace(piece), absl::MaxSplits('=', 1));
    if (pair.first == key) {
      return std::string(pair.second);
    }
  }
  return {};
}

void CompareGetKeyValue(const std::string& input, const std::vector<KeyAndText>& inputs) {
  Comparison<KeyAndText, std::string>(
      "GetKeyValue/" + input, inputs,
      [](const KeyAndText& in) { return literal::GetKeyValue(in.key, in.text); })
      .Literal()
      .Ours([](const Bundle& bundle, const KeyAndText& in) {
        return bundle.util().GetKeyValue(in.key, in.text);
      })
      .Rival("memchr", [](const KeyAndText& in) { return by_hand::GetKeyValue(in.key, in.text); })
      .Rival("Abseil", [](const KeyAndText& in) { return FindWithAbseil(in.key, in.text); });
}

void CompareIsContain(const std::string& input, const std::vector<KeyAndText>& inputs) {
  Comparison<KeyAndText, bool>("IsContain/" + input, inputs,
                               [](const KeyAndText& in) { return literal::IsContain(in.key, in.text); })
      .Literal()
      .Ours(
          [](const Bundle& bundle, const KeyAndText& in) { return bundle.util().IsContain(in.key, in.text); })
      .Rival("memmem",
             [](const KeyAndText& in) {
               return memmem(in.text.data(), in.text.size(), in.key.data(), in.key.size()) != nullptr;
             })
      .Rival("string::find", [](const KeyAndText& in) { return in.text.find(in.key) != std::string::npos; });
}

/// One text of "a" alone, with a key that nearly occurs everywhere.
std::vector<KeyAndText> Repetitive(std::size_t bytes) {
  return {{std::string(bytes / 2, 'a') + 'b', std::string(bytes, 'a')}};
}

/// `inputs` hold the separator as the key.
void CompareSplit(const std::string& input, const std::vector<KeyAndText>& inputs) {
  const bool isLong = inputs.front().key.size() > 1;
  Comparison<KeyAndText, Pieces> comparison("SplitStr/" + input, inputs, [](const KeyAndText& in) {
    Pieces pieces;
    literal::SplitStr(in.text, in.key, pieces);
    return pieces;
  });
  comparison.Literal().Ours([](const Bundle& bundle, const KeyAndText& in) {
    Pieces pieces;
    bundle.util().SplitStr(in.text, in.key, pieces);
    return pieces;
  });
  if (isLong) {
    comparison.Rival("memmem", [](const KeyAndText& in) { return by_hand::SplitStr(in.text, in.key); });
    return;
  }
  comparison.Rival("memchr", [](const KeyAndText& in) { return by_hand::SplitStr(in.text, in.key[0]); })
      .Rival("Abseil", [](const KeyAndText& in) {
        Pieces pieces;
        for (const absl::string_view piece : absl::StrSplit(in.text, in.key[0])) {
          pieces.emplace_back(absl::StripAsciiWhitespace(piece));
        }
        return pieces;
      });
}

ListMap ParseWithAbseil(const std::string& text) {
  ListMap map;
  for (const absl::string_view entry : absl::StrSplit(text, ',')) {
    const std::pair<absl::string_view, absl::string_view> pair =
        absl::StrSplit(absl::StripAsciiWhitespace(entry), absl::MaxSplits('=', 1));
    const auto [place, inserted] = map.try_emplace(std::string(pair.first));
    if (inserted) {
      for (const absl::string_view item : absl::StrSplit(pair.second, pair.first == "PATH" ? '-' : '|')) {
        place->second.emplace_back(absl::StripAsciiWhitespace(item));
      }
    }
  }
  return map;
}

ListMap ParseOurs(const Bundle& bundle, const std::string& text) {
  ListMap map;
  bundle.util().ParseListMap(map, text);
  return map;
}

ListMap ParseLiteral(const std::string& text) {
  ListMap map;
  literal::ParseListMap(map, text);
  return map;
}

void CompareParse(const std::string& input, const std::vector<std::string>& texts) {
  Comparison<std::string, ListMap>("ParseListMap/" + input, texts, ParseLiteral)
      .Literal()
      .Ours(ParseOurs)
      .Rival("memchr", [](const std::string& text) { return by_hand::ParseListMap(text); })
      .Rival("Abseil", ParseWithAbseil);
}

/// The values that an agent needs for one alarm. Stamps change each second, so only their length is compared.
struct Message {
  std::array<std::string, 8> values;
  ListMap lists;
  std::int64_t configured = -1;
  std::string stamp;
  std::string upper;
  std::string encoded;

  friend bool operator==(const Message& a, const Message& b) {
    return std::tie(a.values, a.lists, a.configured, a.upper, a.encoded) ==
               std::tie(b.values, b.lists, b.configured, b.upper, b.encoded) &&
           a.stamp.size() == b.stamp.size();
  }
};

/// An alarm and its question to the configuration.
struct AlarmCall {
  Alarm alarm;
  Question question;
};

/// The sequence; `api` has an operation for each step.
template <class Api>
Message MakeMessage(const Api& api, const AlarmCall& in) {
  Message message;
  for (std::size_t i = 0; i < message.values.size(); ++i) {
    message.values[i] = api.GetKeyValue(in.alarm.keys[i], in.alarm.text);
  }
  message.lists = api.ParseListMap(in.alarm.list);
  message.configured = api.GetAlmCfgValue(in.question);
  message.stamp = api.GetTimeStamp();
  message.upper = api.ToUpper(message.values[0]);
  message.encoded = api.GetURLEncoding(in.alarm.text);
  return message;
}

struct OurApi {
  const Bundle& bundle;
  const OurTable& table;
  std::string GetKeyValue(const std::string& key, const std::string& text) const {
    return bundle.util().GetKeyValue(key, text);
  }
  ListMap ParseListMap(const std::string& text) const { return ParseOurs(bundle, text); }
  std::int64_t GetAlmCfgValue(const Question& question) const { return table.Ask(question); }
  std::string GetTimeStamp() const { return bundle.util().GetTimeStamp(); }
  std::string ToUpper(const std::string& text) const { return bundle.util().ToUpper(text); }
  std::string GetURLEncoding(const std::string& text) const { return bundle.GetURLEncoding(text); }
};

/// For each step the fastest known rival.
struct BestRivals {
  const AbseilTable& table;
  static std::string GetKeyValue(const std::string& key, const std::string& text) {
    return by_hand::GetKeyValue(key, text);
  }
  static ListMap ParseListMap(const std::string& text) { return by_hand::ParseListMap(text); }
  std::int64_t GetAlmCfgValue(const Question& question) const { return table.Ask(question); }
  static std::string GetTimeStamp() { return by_hand::GetTimeStamp(); }
  static std::string ToUpper(const std::string& text) { return by_hand::ToUpper(text); }
  static std::string GetURLEncoding(const std::string& text) { return by_hand::GetURLEncoding(text); }
};

struct LiteralRules {
  const LiteralTable& table;
  static std::string GetKeyValue(const std::string& key, const std::string& text) {
    return literal::GetKeyValue(key, text);
  }
  static ListMap ParseListMap(const std::string& text) { return ParseLiteral(text); }
  std::int64_t GetAlmCfgValue(const Question& question) const { return table.Ask(question); }
  static std::string GetTimeStamp() { return by_hand::GetTimeStamp(); }
  static std::string ToUpper(const std::string& text) { return literal::ToUpper(text); }
  static std::string GetURLEncoding(const std::string& text) {
    return literal::EncodeLatin1(by_hand::Utf8ToLatin1(text));
  }
};

void CompareSequence() {
  constexpr std::size_t kLines = 1000;
  const std::vector<Alarm> alarms = Alarms();
  const std::vector<Question> questions = Questions(Keys::kSequential, kLines, alarms.size());
  std::vector<AlarmCall> inputs;
  for (std::size_t i = 0; i < alarms.size(); ++i) {
    inputs.push_back({alarms[i], questions[i]});
  }
  const ConfigOf config{Keys::kSequential, kLines};
  const Comparison<AlarmCall, Message> comparison(
      "Alarm/8 values, lists, configured value, stamp, case, encoding", inputs,
      [table = LazyRival<LiteralTable>(config)](const AlarmCall& in) {
        return MakeMessage(LiteralRules{*table}, in);
      });
  comparison.Literal();
  for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
    comparison.Rival(bundle->name(),
                     [&bundle = *bundle, table = LazyOurs(*bundle, config)](const AlarmCall& in) {
                       return MakeMessage(OurApi{bundle, *table}, in);
                     });
  }
  comparison.Rival("best rivals", [table = LazyRival<AbseilTable>(config)](const AlarmCall& in) {
    return MakeMessage(BestRivals{*table}, in);
  });
}

}  // namespace

void RegisterFields() {
  CompareSequence();
  CompareGetKeyValue("usual alarm", KeysOfAlarms(true));
  CompareGetKeyValue("absent", KeysOfAlarms(false));
  CompareGetKeyValue("shared first letters, 400 B", SharedFirstLetters());
  std::vector<KeyAndText> single;
  std::vector<KeyAndText> parts;
  std::vector<KeyAndText> lines;
  std::vector<KeyAndText> commas;
  std::vector<std::string> lists;
  for (const Alarm& alarm : Alarms()) {
    const std::string& text = alarm.text;
    const std::size_t middle = text.size() / 4 + alarm.list.size() % (text.size() / 2);
    parts.push_back({alarm.list.size() % 3 == 0 ? "cleared at" : text.substr(middle, 8), text});
    single.push_back(
        {"slot", "slot=" + std::to_string(alarm.list.size()) + ",p=" + std::to_string(alarm.keys.size())});
    commas.push_back({",", text});
    lines.push_back({"\r\n", text});
    lists.push_back(alarm.list);
  }
  CompareGetKeyValue("12 B", single);
  CompareIsContain("usual alarm", parts);
  CompareIsContain("a^n, 1 KiB", Repetitive(1024));
  CompareIsContain("a^n, 64 KiB", Repetitive(65536));
  CompareSplit("usual alarm", commas);
  CompareSplit("usual alarm at CR LF", lines);
  CompareSplit("a^n, 64 KiB", Repetitive(65536));
  CompareParse("usual alarm", lists);
}

}  // namespace bench
