// SplitStr and ParseListMap.

#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/util.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/strings/ascii.h>
#include <absl/strings/str_split.h>
#endif
#if BENCH_WITH_BOOST
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#endif
#if BENCH_WITH_GLIB
#include <glib.h>
#endif
#if BENCH_WITH_POCO
#include <Poco/StringTokenizer.h>
#endif

namespace bench {
namespace {

using NS_ASCII::ListMap;
using Pieces = std::vector<std::string>;

#if BENCH_WITH_ABSEIL
Pieces SplitWithAbseil(absl::string_view text, char separator) {
  Pieces pieces;
  for (const absl::string_view piece : absl::StrSplit(text, separator)) {
    pieces.emplace_back(absl::StripAsciiWhitespace(piece));
  }
  return pieces;
}

ListMap ParseWithAbseil(const std::string& text) {
  ListMap map;
  for (const absl::string_view entry : absl::StrSplit(text, ',')) {
    const std::pair<absl::string_view, absl::string_view> pair =
        absl::StrSplit(absl::StripAsciiWhitespace(entry), absl::MaxSplits('=', 1));
    map.emplace(std::string(pair.first), SplitWithAbseil(pair.second, pair.first == "PATH" ? '-' : '|'));
  }
  return map;
}
#endif

#if BENCH_WITH_GLIB
Pieces SplitWithGlib(const std::string& text) {
  gchar** const split = g_strsplit(text.c_str(), ",", -1);
  Pieces pieces;
  for (gchar** piece = split; *piece != nullptr; ++piece) {
    pieces.emplace_back(g_strstrip(*piece));
  }
  g_strfreev(split);
  return pieces;
}
#endif

void EnterSplit(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += (i == 0       ? ""
             : i % 4 == 0 ? ", "
                          : ",") +
            std::string("piece") + std::to_string(i * 7919 % 100003);
  }
  const Input input = Share(text);
  const Contest contest("SplitStr/" + std::to_string(count) + " pieces", text.size(), [input] {
    Pieces pieces;
    Util().SplitStr(*input, ",", pieces);
    return pieces;
  });
  contest.Against("literal", [input] {
    Pieces pieces;
    literal::SplitStr(*input, ",", pieces);
    return pieces;
  });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [input] { return SplitWithAbseil(*input, ','); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [input] {
    Pieces pieces;
    boost::split(pieces, *input, boost::is_any_of(","));
    for (std::string& piece : pieces) {
      boost::trim(piece);
    }
    return pieces;
  });
#endif
#if BENCH_WITH_GLIB
  contest.Against("GLib", [input] { return SplitWithGlib(*input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [input] {
    const Poco::StringTokenizer tokens(*input, ",", Poco::StringTokenizer::TOK_TRIM);
    return Pieces(tokens.begin(), tokens.end());
  });
#endif
  Pieces answer;
  Util().SplitStr(text, ",", answer);
  contest.Floor([answer] { return Pieces(answer); });
}

void EnterParse(int count) {
  std::string text = "PATH=rack1-shelf2-slot3";
  for (int i = 1; i < count; ++i) {
    text += ", ALM" + std::to_string(i * 7919 % 100003) + "=link down|LOS|" + std::to_string(i);
  }
  const Input input = Share(text);
  const Contest contest("ParseListMap/" + std::to_string(count) + " entries", text.size(), [input] {
    ListMap map;
    Util().ParseListMap(map, *input);
    return map;
  });
  contest.Against("literal", [input] {
    literal::ListMap map;
    literal::ParseListMap(map, *input);
    return map;
  });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [input] { return ParseWithAbseil(*input); });
#endif
  ListMap answer;
  Util().ParseListMap(answer, text);
  contest.Floor([answer] { return ListMap(answer); });
}

const bool entered = [] {
  EnterSplit(8);
  EnterSplit(10000);
  EnterParse(6);
  EnterParse(10000);
  return true;
}();

}  // namespace
}  // namespace bench
