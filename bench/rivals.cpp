#include "bench/rivals.h"

#include <gnu/libc-version.h>

#if BENCH_WITH_ABSEIL
#include <absl/base/config.h>
#endif
#if BENCH_WITH_BOOST
#include <boost/version.hpp>
#endif
#if BENCH_WITH_CURL
#include <curl/curlver.h>
#endif
#if BENCH_WITH_FMT
#include <fmt/core.h>
#endif
#if BENCH_WITH_GLIB
#include <glib.h>
#endif
#if BENCH_WITH_POCO
#include <Poco/Version.h>
#endif
#if BENCH_WITH_TBB
#include <tbb/version.h>
#endif

namespace bench {
namespace {

std::string Dotted(int major, int minor, int patch) {
  return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

}  // namespace

std::string RivalVersions() {
  std::string found = std::string("C library ") + gnu_get_libc_version();
  std::string missing;
  const auto say = [&](bool present, const std::string& name, const std::string& version) {
    if (present) {
      found += ", " + name + ' ' + version;
    } else {
      missing += (missing.empty() ? "; missing: " : ", ") + name;
    }
  };
#if BENCH_WITH_ABSEIL
  say(true, "Abseil", std::to_string(ABSL_LTS_RELEASE_VERSION));
#else
  say(false, "Abseil", {});
#endif
#if BENCH_WITH_BOOST
  say(true, "Boost", Dotted(BOOST_VERSION / 100000, BOOST_VERSION / 100 % 1000, BOOST_VERSION % 100));
#else
  say(false, "Boost", {});
#endif
#if BENCH_WITH_CURL
  say(true, "libcurl", LIBCURL_VERSION);
#else
  say(false, "libcurl", {});
#endif
#if BENCH_WITH_FMT
  say(true, "{fmt}", Dotted(FMT_VERSION / 10000, FMT_VERSION / 100 % 100, FMT_VERSION % 100));
#else
  say(false, "{fmt}", {});
#endif
#if BENCH_WITH_GLIB
  say(true, "GLib", Dotted(GLIB_MAJOR_VERSION, GLIB_MINOR_VERSION, GLIB_MICRO_VERSION));
#else
  say(false, "GLib", {});
#endif
#if BENCH_WITH_POCO
  say(true, "POCO", Dotted(POCO_VERSION >> 24, POCO_VERSION >> 16 & 0xFF, POCO_VERSION >> 8 & 0xFF));
#else
  say(false, "POCO", {});
#endif
#if BENCH_WITH_TBB
  say(true, "TBB", TBB_VERSION_STRING);
#else
  say(false, "TBB", {});
#endif
  return found + missing;
}

}  // namespace bench
