#ifndef HOST_WORDS_H_
#define HOST_WORDS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using Words = std::vector<std::string>;

/// Splits a command line into words.
///
///   line  = { blank } { word blank { blank } } ( word | [ "#" comment ] )
///   word  = piece { piece }; the first one does not start with "#"
///   piece = one byte that is neither blank nor quote | "'" any but ' "'" | '"' any but " '"'
///   blank = space | tab | carriage return
///
/// Between quotes every byte stands for itself, also the other quote, '#' and the backslash; a text with both
/// quotes is written in pieces side by side: 'say "it'"'"'s"'. '' is an empty word. '#' starts a comment only
/// where a word could start. The splitter leaves \xNN alone; the commands that take such texts resolve it.
///
/// Throws `LineError` for a quote that is not closed.
Words SplitWords(std::string_view line);

/// The words from the one at `from` on, which must not be behind the end.
Words Rest(const Words& words, std::size_t from);

}  // namespace host

#endif  // HOST_WORDS_H_
