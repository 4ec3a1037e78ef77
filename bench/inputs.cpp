// Generates the inputs of the comparisons from fixed seeds. No state, the results are copies; any thread may call.

#include "bench/inputs.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>

namespace bench {
namespace {

constexpr std::array<const char*, 32> kWords = {
    "alarm", "Link",        "down", "since", "threshold", "exceeded", "Power", "supply",
    "A",     "temperature", "is",   "above", "limit",     "on",       "board", "cleared",
    "by",    "fan",         "of",   "the",   "Signal",    "loss",     "rack",  "shelf",
    "slot",  "port",        "LOS",  "TX",    "88.5 C",    "ne-17",    "check", "cable"};
constexpr std::array<const char*, 24> kKeys = {
    "severity", "state",    "site",   "slot",     "shelf", "source", "node",  "name",
    "neType",   "number",   "port",   "position", "cause", "count",  "class", "category",
    "region",   "reported", "ticket", "type",     "time",  "first",  "last",  "user"};

/// Random numbers from a generator whose results the standard fixes, so inputs are the same everywhere.
class Generator {
 public:
  explicit Generator(unsigned seed) : engine_(seed) {}
  std::size_t Below(std::size_t end) { return engine_() % end; }
  template <class Range>
  auto Pick(const Range& range) {
    return range[Below(range.size())];
  }

 private:
  std::mt19937_64 engine_;
};

/// One to four words, and sometimes punctuation after one.
std::string Words(Generator& random) {
  std::string words = random.Pick(kWords);
  for (std::size_t more = random.Below(4); more > 0; --more) {
    words += random.Pick(std::array{" ", " ", " ", "; ", ": ", " - "});
    words += random.Pick(kWords);
  }
  return words;
}

std::string Value(Generator& random) {
  switch (random.Below(3)) {
    case 0:
      return std::to_string(random.Below(100));
    case 1:
      return "ne-" + std::to_string(1000 + random.Below(9000));
    default:
      return Words(random);
  }
}

Alarm MakeAlarm(Generator& random) {
  auto keys = kKeys;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    std::swap(keys[i], keys[random.Below(keys.size())]);
  }
  Alarm alarm;
  const std::size_t pairs = 8 + random.Below(9);
  for (std::size_t i = 0; i < pairs; ++i) {
    alarm.text += (i == 0 ? "" : random.Pick(std::array{",", ",", ", ", ",\r\n"})) + std::string(keys[i]) +
                  '=' + Value(random);
  }
  alarm.text += "\r\n";
  for (std::size_t i = 0; i < 8; ++i) {
    alarm.keys.emplace_back(keys[random.Below(8) < 7 ? i : pairs]);  // One in eight is absent.
  }
  alarm.list =
      "PATH=rack" + std::to_string(random.Below(10)) + "-shelf" + std::to_string(random.Below(10)) + "-slot1";
  for (std::size_t more = 3 + random.Below(5); more > 0; --more) {
    alarm.list += random.Pick(std::array{",", ", "}) + std::string(random.Pick(kKeys)) + '=' + Value(random);
    for (std::size_t items = random.Below(4); items > 0; --items) {
      alarm.list += '|' + Value(random);
    }
  }
  return alarm;
}

std::string Digits(std::size_t number, int width) {
  std::array<char, 24> digits;
  std::snprintf(digits.data(), digits.size(), "%0*zu", width, number);
  return digits.data();
}

/// A bijection below 2^64 with no visible order.
std::uint64_t Scatter(std::uint64_t i) {
  i = (i + 1) * 0x9E3779B97F4A7C15U;
  i = (i ^ i >> 30) * 0xBF58476D1CE4E5B9U;
  return i ^ i >> 27;
}

std::string Sixteen(std::size_t i) {
  std::string key;
  for (std::uint64_t left = Scatter(i); key.size() < 16; left = left / 31 ^ Scatter(left)) {
    key += "0123456789ABCDEFGHIJKLMNOPQRSTU"[left % 31];
  }
  return key;
}

/// The second word cancels what the first one contributes to h = mix(16 << 56 ^ word1) ^ word2.
std::string Colliding(std::size_t i) {
  std::string key;
  for (std::uint64_t attempt = i * 1000;; ++attempt) {
    std::string start = Digits(attempt, 8);
    std::reverse(start.begin(), start.end());  // The first byte decides the low bits, so it varies most.
    std::uint64_t word;
    std::memcpy(&word, start.data(), sizeof word);
    word = (word ^ std::uint64_t{16} << 56) * 0x9E3779B97F4A7C15U;
    word ^= word >> 32 ^ 0x6162636465666768U;
    char end[sizeof word];
    std::memcpy(end, &word, sizeof word);
    key.assign(start).append(end, sizeof end);
    const bool plain =
        std::none_of(end, end + sizeof end, [](char c) { return (c >= 0 && c <= ' ') || c == '/'; });
    if (plain) {
      return key;
    }
  }
}

/// Line number `i`.
Question LineOf(Keys keys, std::size_t i) {
  const auto value = static_cast<int>(i * 7 % 10000);
  switch (keys) {
    case Keys::kRandom:
      return {"NE" + Digits(i * 61803399 % 100000000, 8), "board" + std::to_string(i % 97),
              "LinkDown" + std::to_string(i % 13), static_cast<int>(i % 1000), value};
    case Keys::kSequential:
      return {"NodeB-" + Digits(i, 10), "board", "LinkDown", 7, value};
    case Keys::kSixteen:
      return {Sixteen(i), "board", "LinkDown", 7, value};
    default:
      return {Colliding(i), "board", "LinkDown", 7, value};
  }
}

}  // namespace

std::vector<std::string> Prose(std::size_t bytes, std::size_t count, bool umlauts) {
  Generator random(1);
  std::vector<std::string> texts(count);
  for (std::string& text : texts) {
    while (text.size() < bytes) {
      text += Words(random) + random.Pick(std::array{", ", ". ", " (", ") ", "/", "\r\n"});
    }
    if (umlauts) {
      text = Replaced(Replaced(text, "ow", "\xC3\xB6w"), "up", "\xC3\xBCp");
    }
    text.resize(bytes);
    text.back() = '.';
    char& cut = text[bytes - 2];
    cut = cut == '\xC3' || cut == '\r' ? 'o' : cut;
  }
  return texts;
}

std::vector<std::string> Random(const std::string& alphabet, std::size_t bytes, std::size_t count) {
  Generator random(2);
  std::vector<std::string> texts(count, std::string(bytes, '\0'));
  for (std::string& text : texts) {
    std::generate(text.begin(), text.end(), [&] { return random.Pick(alphabet); });
  }
  return texts;
}

std::string Replaced(const std::string& text, const std::string& from, const std::string& to) {
  std::string result;
  std::size_t pos = 0;
  for (std::size_t at; (at = text.find(from, pos)) != std::string::npos; pos = at + from.size()) {
    result.append(text, pos, at - pos);
    result += to;
  }
  return result.append(text, pos);
}

std::vector<Alarm> Alarms() {
  Generator random(3);
  std::vector<Alarm> alarms(kTexts);
  std::generate(alarms.begin(), alarms.end(), [&] { return MakeAlarm(random); });
  return alarms;
}

std::vector<KeyAndText> KeysOfAlarms(bool present) {
  Generator random(4);
  std::vector<KeyAndText> inputs;
  for (const Alarm& alarm : Alarms()) {
    const std::string key = alarm.text.substr(0, alarm.text.find('='));
    inputs.push_back({present ? random.Pick(alarm.keys) : key + 'x', alarm.text});
  }
  return inputs;
}

std::vector<KeyAndText> SharedFirstLetters() {
  Generator random(5);
  const std::array words{"state", "slot", "severe", "since", "shelf", "supply", "site"};
  std::vector<KeyAndText> inputs(kTexts);
  for (KeyAndText& input : inputs) {
    input.key = "source";
    while (input.text.size() < 388) {
      input.text += std::string(random.Pick(words)) + std::to_string(random.Below(10)) + '=';
      for (std::size_t more = random.Below(12); more > 0; --more) {
        input.text += std::string(random.Pick(words)) + ' ';
      }
      input.text += ',';
    }
    input.text += "source=" + std::to_string(random.Below(1000));
  }
  return inputs;
}

std::string ConfigFile(Keys keys, std::size_t lines, unsigned alternatives, unsigned version) {
  std::string file = "# column 1\tcolumn 2\tcolumn 3\tnumber\tvalue\n";
  for (std::size_t i = 0; i < lines; ++i) {
    const Question line = LineOf(keys, i);
    std::string key1s = line.key1;
    std::string key2s = line.key2;
    for (unsigned other = 1; other < alternatives; ++other) {
      key1s += '/' + line.key1 + static_cast<char>('a' + other);
      key2s += '/' + line.key2 + static_cast<char>('a' + other);
    }
    file += key1s + '\t' + key2s + '\t' + line.key3 + '\t' + std::to_string(line.number) + '\t' +
            std::to_string(line.value + static_cast<int>(version)) + '\n';
  }
  return file;
}

std::vector<Question> Questions(Keys keys, std::size_t lines, std::size_t count, bool hit) {
  Generator random(6);
  std::vector<Question> questions(count);
  for (Question& question : questions) {
    question = LineOf(keys, random.Below(lines) + (hit ? 0 : lines));
    question.value = hit ? question.value : 0;
  }
  return questions;
}

std::string PowerName(std::size_t count) { return "10^" + std::to_string(std::to_string(count).size() - 1); }

}  // namespace bench
