// The text functions and the small operations: trimming, case, numbers, time stamps, percent encoding, code
// set.

#include <absl/strings/ascii.h>
#include <absl/strings/numbers.h>
#include <fmt/format.h>
#include <iconv.h>

#include <boost/url/encode.hpp>
#include <boost/url/pct_string_view.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>
#include <string>

#include "bench/by_hand.h"
#include "bench/comparison.h"
#include "bench/inputs.h"
#include "bench/register.h"
#include "tests/literal_rules.h"

namespace bench {
namespace {

using Text = std::string;
using Texts = std::vector<std::string>;
using TextComparison = Comparison<Text, Text>;

void CompareTrim(const Text& input, Texts texts, std::size_t blanks) {
  for (Text& text : texts) {
    text.replace(0, blanks, blanks, ' ');
    text.replace(text.size() - blanks, blanks, blanks, '\n');
  }
  TextComparison("Trim/" + input, std::move(texts), literal::Trim)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.Trim(text); })
      .Rival("by hand", [](const Text& text) { return Text(by_hand::Trim(text)); })
      .Rival("Abseil", [](const Text& text) { return Text(absl::StripAsciiWhitespace(text)); });
}

void CompareCase(const Text& input, const Texts& texts) {
  TextComparison("ToUpper/" + input, texts, literal::ToUpper)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.util().ToUpper(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::ToUpper(text); })
      .Rival("Abseil", [](const Text& text) { return absl::AsciiStrToUpper(text); });
  TextComparison("StrToLower/" + input, texts, literal::StrToLower)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.StrToLower(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::ToLower(text); })
      .Rival("Abseil", [](const Text& text) { return absl::AsciiStrToLower(text); });
}

void CompareNumbers(std::size_t digits) {
  const Text input = std::to_string(digits) + " digits";
  const Texts texts = Random("123456789", digits);
  using Number = std::pair<bool, int>;
  const auto withStrtol = [](const Text& text) {
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    return Number(*end == '\0', static_cast<int>(value));
  };
  const auto literalNumber = [](const Text& text) {
    int value = 0;
    const bool whole = literal::Str2Num(text, value, 10);
    return Number(whole, value);
  };
  Comparison<Text, Number>("Str2Num/" + input, texts, literalNumber)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) {
        int value = 0;
        const bool whole = bundle.util().Str2Num(text, value, 10);
        return Number(whole, value);
      })
      .Rival("strtol", withStrtol)
      .Rival("from_chars", [](const Text& text) { return by_hand::Str2Num(text); })
      .Rival("Abseil", [](const Text& text) {
        int value = 0;
        const bool whole = absl::SimpleAtoi(text, &value);
        return Number(whole, value);
      });
  std::vector<int> numbers;
  for (const Text& text : texts) {
    numbers.push_back(std::stoi(text));
  }
  Comparison<int, Text>("Num2Str/" + input, numbers, literal::Num2Str)
      .Literal()
      .Ours([](const Bundle& bundle, int number) { return bundle.Num2Str(number); })
      .Rival("to_string", [](int number) { return std::to_string(number); })
      .Rival("fmt", [](int number) { return fmt::to_string(number); });
}

/// Stamps change each second, so only their length is compared.
void CompareTimeStamp() {
  using Nothing = char;
  const auto length = [](const auto& stamp) { return stamp.size(); };
  Comparison<Nothing, std::size_t>("GetTimeStamp/now", {'\0'}, [](Nothing) { return std::size_t{19}; })
      .Ours([](const Bundle& bundle, Nothing) { return bundle.util().GetTimeStamp().size(); })
      .Rival(
          "strftime", [](Nothing) { return by_hand::GetTimeStamp(); }, length);
}

/// A rival's encoding in the library's spelling: lower-case digits, and '+' for a space.
Text InOurSpelling(Text text) {
  for (std::size_t at = text.find('%'); at != Text::npos; at = text.find('%', at + 1)) {
    text.replace(at + 1, 2, by_hand::ToLower(text.substr(at + 1, 2)));
  }
  return Replaced(text, "%20", "+");
}

Text EncodeLiteral(const Text& text) { return literal::EncodeLatin1(by_hand::Utf8ToLatin1(text)); }

TextComparison CompareEncoding(const Text& input, const Texts& texts) {
  return TextComparison("GetURLEncoding/" + input, texts, EncodeLiteral)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.GetURLEncoding(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::GetURLEncoding(text); });
}

/// For texts whose line ends are CR LF. The library writes an LF before a letter as "%a", and Boost as "%0A";
/// decoding "%a" takes the letter as the second digit.
void CompareCoding(const Text& input, const Texts& texts) {
  CompareEncoding(input, texts)
      .Rival(
          "Boost",
          [](const Text& text) {
            return boost::urls::encode(by_hand::Utf8ToLatin1(text),
                                       boost::urls::unreserved_chars - '~' + '*');
          },
          InOurSpelling);
  Texts encoded;
  for (const Text& text : texts) {
    encoded.push_back(EncodeLiteral(text));
  }
  TextComparison("GetURLDecoding/" + input, encoded, literal::GetURLDecoding)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.GetURLDecoding(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::GetURLDecoding(text); })
      .Rival("Boost", [](const Text& text) {
        return boost::urls::pct_string_view(text).decode(boost::urls::encoding_opts(true));
      });
}

void ComparePercents(const Text& input, const Texts& texts) {
  TextComparison("SetURLDecoding/" + input, texts, literal::SetURLDecoding)
      .Literal()
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.SetURLDecoding(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::SetURLDecoding(text); });
}

/// Converts with a descriptor that is opened for the call, and writes '?' for what ISO-8859-1 lacks.
Text ConvertWithIconv(const Text& text) {
  const iconv_t descriptor = iconv_open("ISO-8859-1", "UTF-8");
  Text out(text.size(), '\0');
  char* from = const_cast<char*>(text.data());
  char* to = out.data();
  std::size_t left = text.size();
  std::size_t space = out.size();
  while (iconv(descriptor, &from, &left, &to, &space) == static_cast<std::size_t>(-1)) {
    *to++ = '?';
    --space;
    const std::size_t length = (*from & 0x20) == 0 ? 2 : (*from & 0x10) == 0 ? 3 : 4;
    from += length;
    left -= length;
  }
  iconv_close(descriptor);
  out.resize(out.size() - space);
  return out;
}

void CompareConversion(const Text& input, const Texts& texts) {
  TextComparison("utf8toiso8859/" + input, texts, by_hand::Utf8ToLatin1)
      .Ours([](const Bundle& bundle, const Text& text) { return bundle.utf8toiso8859(text); })
      .Rival("by hand", [](const Text& text) { return by_hand::Utf8ToLatin1(text); })
      .Rival("iconv", ConvertWithIconv);
}

/// ISO-8859-1 has no euro sign.
Texts WithEuros(Texts texts) {
  for (Text& text : texts) {
    text = Replaced(text, "88.5", "\xE2\x82\xAC");
  }
  return texts;
}

}  // namespace

void RegisterTextFunctions() {
  CompareTrim("12 B", Prose(12), 1);
  CompareTrim("12 B, no blanks", Random("abcdefghij", 12), 0);
  CompareTrim("250 B", Prose(250), 2);
  CompareCase("12 B", Prose(12));
  CompareCase("250 B", Prose(250));
  CompareNumbers(3);
  CompareNumbers(9);
  CompareTimeStamp();
  CompareCoding("prose, 12 B", Prose(12));
  CompareCoding("prose, 250 B", Prose(250));
  CompareCoding("prose with umlauts, 250 B", Prose(250, kTexts, true));
  CompareCoding("escapes only, 250 B", Random("/:?&=#%+<>\"{}|,;@$", 250));
  CompareCoding("prose, 64 KiB", Prose(65536, 4));
  Texts lines = Prose(250);
  for (Text& text : lines) {
    text = Replaced(text, "\r\n", "\n");
  }
  CompareEncoding("prose with LF, 250 B", lines);
  ComparePercents("prose, 250 B", Prose(250));
  ComparePercents("percents, 250 B", Random("%%%%%5a", 250));
  CompareConversion("prose, 250 B", Prose(250));
  CompareConversion("prose with umlauts, 250 B", Prose(250, kTexts, true));
  CompareConversion("characters it lacks, 250 B", WithEuros(Prose(250)));
  CompareConversion("characters it lacks, 64 KiB", WithEuros(Prose(65536, 4)));
}

}  // namespace bench
