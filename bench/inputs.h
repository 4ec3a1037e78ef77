#ifndef BENCH_INPUTS_H_
#define BENCH_INPUTS_H_

#include <cstddef>
#include <string>
#include <vector>

/// The inputs of the comparisons, modelled on an alarm agent's. They are the same on every run and machine,
/// and mostly there are many, so that a processor cannot predict their branches from the previous round.
namespace bench {

/// The inputs of a comparison of short texts.
inline constexpr std::size_t kTexts = 1024;

/// A key and the text of pairs to look it up in.
struct KeyAndText {
  std::string key;
  std::string text;
};

/// Sentences in mixed case with punctuation and line ends, `bytes` long. With `umlauts`, one letter in 46 is a
/// two-byte UTF-8 character that ISO-8859-1 has.
std::vector<std::string> Prose(std::size_t bytes, std::size_t count = kTexts, bool umlauts = false);

/// Texts of `bytes` characters of `alphabet`, each one drawn at random.
std::vector<std::string> Random(const std::string& alphabet, std::size_t bytes, std::size_t count = kTexts);

/// `text` with every `from` replaced by `to`; `to` is not searched again.
std::string Replaced(const std::string& text, const std::string& from, const std::string& to);

/// The input of an agent for one alarm.
struct Alarm {
  std::string text;               ///< 8 to 16 key=value pairs, 78 to 350 bytes
  std::vector<std::string> keys;  ///< the 8 keys whose values the agent needs; the text lacks one in eight
  std::string list;               ///< 4 to 8 entries name=item|item, one of them PATH=item-item
};
std::vector<Alarm> Alarms();

/// For each alarm one of its `keys`; with `present` false, its text's first key and an "x", which it lacks.
std::vector<KeyAndText> KeysOfAlarms(bool present);

/// Texts of 397 to 475 bytes in which every key, and every word of every value, starts with the first letter of
/// the key asked for, which is the last.
std::vector<KeyAndText> SharedFirstLetters();

/// A question to the alarm configuration, with its answer.
struct Question {
  std::string key1;
  std::string key2;
  std::string key3;
  int number = 0;
  int value = 0;  ///< what version 0 of the file configures; 0 when it has no such line
};

/// How the texts of column 1 are generated.
enum class Keys {
  kRandom,      ///< "NE" and 8 random digits; the other columns vary
  kSequential,  ///< "NodeB-" and 10 digits that count upwards; the other columns are constant
  kSixteen,     ///< 16 random letters and digits; the other columns are constant
  kColliding,   ///< 16 bytes, chosen to collide in an unkeyed hash of multiplications and shifts
};

/// A configuration file with `lines` lines; columns 1 and 2 hold `alternatives` alternatives each. Each
/// version has other values.
std::string ConfigFile(Keys keys, std::size_t lines, unsigned alternatives = 1, unsigned version = 0);

/// `count` questions about random lines of `ConfigFile(keys, lines)`; with `hit` false, about lines that
/// would follow its last one.
std::vector<Question> Questions(Keys keys, std::size_t lines, std::size_t count, bool hit = true);

/// "10^3" for 1000.
std::string PowerName(std::size_t count);

}  // namespace bench

#endif  // BENCH_INPUTS_H_
