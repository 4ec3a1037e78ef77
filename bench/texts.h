#ifndef BENCH_TEXTS_H_
#define BENCH_TEXTS_H_

#include <cstddef>
#include <string>

/// The texts that are measured on. The same on every run and machine.
namespace bench {

/// English words in lower and upper case, separated by single spaces, exactly `bytes` long; the first and the
/// last character are letters.
std::string Words(std::size_t bytes);

/// Words in lines, each line ended by `lineEnd` instead of a space.
std::string Lines(std::size_t bytes, const std::string& lineEnd);

/// Bytes of which nearly every one has to be escaped: separators and letters beyond ASCII.
std::string Dense(std::size_t bytes);

/// Blanks of all four kinds.
std::string Blanks(std::size_t bytes);

/// The text with every occurrence of `from` replaced by `to`; `to` is not searched again.
std::string Replaced(const std::string& text, const std::string& from, const std::string& to);

/// "64 B", "4 KiB", "1 MiB".
std::string SizeName(std::size_t bytes);

}  // namespace bench

#endif  // BENCH_TEXTS_H_
