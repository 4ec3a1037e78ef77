// GetURLEncoding (with a conversion that copies) and GetURLDecoding.
//
// The rivals spell escapes in their own way: capital hexadecimal digits, "%20" for a space, a line feed as it
// is. The check translates an answer into our spelling before it is compared; the timed runs do not.

#include <algorithm>
#include <memory>
#include <string>

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/texts.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_BOOST
#include <boost/url/encode.hpp>
#include <boost/url/pct_string_view.hpp>
#include <boost/url/rfc/unreserved_chars.hpp>
#endif
#if BENCH_WITH_CURL
#include <curl/curl.h>
#endif
#if BENCH_WITH_GLIB
#include <glib.h>
#endif
#if BENCH_WITH_POCO
#include <Poco/URI.h>
#endif

namespace bench {
namespace {

/// A rival's encoding in our spelling. The inputs hold no line feed but at line ends.
std::string InOurSpelling(std::string text) {
  for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
    for (std::size_t i = at + 1; i < at + 3; ++i) {
      text[i] = text[i] >= 'A' && text[i] <= 'F' ? static_cast<char>(text[i] + 'a' - 'A') : text[i];
    }
  }
  text = Replaced(Replaced(text, "%20", "+"), "%0d%0a", "%0a");
  return Replaced(text, "%0a", "%0d%0a");
}

/// What one writes by hand: one character after the other.
std::string EncodeByHand(const std::string& text) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
        c == '_') {
      out += c;
    } else if (c == ' ') {
      out += '+';
    } else {
      out += '%';
      out += kDigits[byte >> 4];
      out += kDigits[byte & 15];
    }
  }
  return out;
}

int HexDigit(char c) {
  return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : c - 'A' + 10;
}

std::string DecodeByHand(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      out += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      out += text[i] == '+' ? ' ' : text[i];
    }
  }
  return out;
}

void EnterEncoding(const std::string& kind, const std::string& text) {
  const Input input = Share(text);
  const Contest contest("GetURLEncoding/" + kind + ", " + SizeName(text.size()), text.size(),
                        [input] { return NS_ASCII::GetURLEncoding(*input); });
  // Written down step by step, repairing a line end begins at the start of the text: seconds for the longest
  // texts.
  if (text.size() <= 4096 || text.find('\n') == std::string::npos) {
    contest.Against("literal", [input] { return literal::EncodeLatin1(*input); });
  }
  contest.Against(
      "by hand", [input] { return EncodeByHand(*input); }, InOurSpelling);
#if BENCH_WITH_BOOST
  contest.Against(
      "Boost", [input] { return boost::urls::encode(*input, boost::urls::unreserved_chars); }, InOurSpelling);
#endif
#if BENCH_WITH_POCO
  contest.Against(
      "POCO",
      [input] {
        std::string encoded;
        Poco::URI::encode(*input, "!#$&'()*+,/:;=?@[]", encoded);
        return encoded;
      },
      InOurSpelling);
#endif
#if BENCH_WITH_GLIB
  contest.Against(
      "GLib",
      [input] {
        const std::unique_ptr<char, decltype(&g_free)> encoded(
            g_uri_escape_string(input->c_str(), nullptr, FALSE), &g_free);
        return std::string(encoded.get());
      },
      InOurSpelling);
#endif
#if BENCH_WITH_CURL
  contest.Against(
      "libcurl",
      [input] {
        const std::unique_ptr<char, decltype(&curl_free)> encoded(
            curl_easy_escape(nullptr, input->data(), static_cast<int>(input->size())), &curl_free);
        return std::string(encoded.get());
      },
      InOurSpelling);
#endif
  const std::string answer = NS_ASCII::GetURLEncoding(text);
  contest.Floor([answer] { return std::string(answer); });
}

/// `space` is how spaces are written: GLib and libcurl do not take a '+' for one and are left out then.
void EnterDecoding(const std::string& kind, const std::string& plain, const std::string& space) {
  const std::string text = Replaced(NS_ASCII::GetURLEncoding(plain), "+", space);
  const Input input = Share(text);
  const Contest contest("GetURLDecoding/" + kind + ", " + SizeName(plain.size()), text.size(),
                        [input] { return NS_ASCII::GetURLDecoding(*input); });
  contest.Against("literal", [input] { return literal::GetURLDecoding(*input); });
  contest.Against("by hand", [input] { return DecodeByHand(*input); });
#if BENCH_WITH_BOOST
  contest.Against("Boost", [input] {
    return boost::urls::pct_string_view(*input).decode(boost::urls::encoding_opts(true));
  });
#endif
  const std::string answer = NS_ASCII::GetURLDecoding(text);
  contest.Floor([answer] { return std::string(answer); });
  if (space == "+") {
    return;
  }
#if BENCH_WITH_POCO
  contest.Against("POCO", [input] {
    std::string decoded;
    Poco::URI::decode(*input, decoded, true);
    return decoded;
  });
#endif
#if BENCH_WITH_GLIB
  contest.Against("GLib", [input] {
    const std::unique_ptr<char, decltype(&g_free)> decoded(g_uri_unescape_string(input->c_str(), nullptr),
                                                           &g_free);
    return std::string(decoded.get());
  });
#endif
#if BENCH_WITH_CURL
  contest.Against("libcurl", [input] {
    int length = 0;
    const std::unique_ptr<char, decltype(&curl_free)> decoded(
        curl_easy_unescape(nullptr, input->data(), static_cast<int>(input->size()), &length), &curl_free);
    return std::string(decoded.get(), static_cast<std::size_t>(length));
  });
#endif
}

void EnterPercentEscaping() {
  const Input input = Share(Replaced(Words(4096), "on", "50%"));
  const Contest contest("SetURLDecoding/prose, " + std::to_string(input->size()) + " B", input->size(),
                        [input] { return NS_ASCII::SetURLDecoding(*input); });
  contest.Against("literal", [input] { return literal::SetURLDecoding(*input); });
  contest.Against("by hand", [input] {
    std::string text = *input;
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 3)) {
      text.replace(at, 1, "%25");
    }
    return text;
  });
  const std::string answer = NS_ASCII::SetURLDecoding(*input);
  contest.Floor([answer] { return std::string(answer); });
}

const bool entered = [] {
  for (const std::size_t bytes : {64, 4096, 1024 * 1024}) {
    EnterEncoding("prose", Words(bytes));
    EnterEncoding("dense", Dense(bytes));
    EnterEncoding("CRLF", Lines(bytes, "\r\n"));
    EnterEncoding("only LF", std::string(bytes, '\n'));
    EnterDecoding("prose", Words(bytes), "+");
    EnterDecoding("prose with %20", Words(bytes), "%20");
    EnterDecoding("dense", Dense(bytes), "%20");
    EnterDecoding("CRLF", Lines(bytes, "\r\n"), "+");
  }
  EnterPercentEscaping();
  return true;
}();

}  // namespace
}  // namespace bench
