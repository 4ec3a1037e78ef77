#ifndef HOST_BASE_WORDS_H_
#define HOST_BASE_WORDS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using Words = std::vector<std::string>;

/// Splits a command line into words. Pure function; any thread may call it.
///
///   line  = { blank } { word blank { blank } } ( word | [ "#" comment ] )
///   word  = piece { piece }; the first byte of the word is not "#"
///   piece = one byte that is neither blank nor quote, or two equal quotes (' or ") with the bytes between them
///   blank = space | tab | carriage return
///
/// Between quotes every byte is literal, also the other quote, '#' and the backslash; a text with both quotes
/// is written as adjacent pieces: 'say "it'"'"'s"'. '' is an empty word. '#' starts a comment only where a
/// word could start. \xNN is unchanged here; the commands that take such texts convert it.
///
/// Throws `LineError` for a quote that is not closed. `columns` (out, may be null) receives the start of each
/// word, counted from 1.
Words SplitWords(std::string_view line, std::vector<std::size_t>* columns = nullptr);

/// Copies the words from index `from` to the end. `from` is at most `words.size()`.
Words Rest(const Words& words, std::size_t from);

}  // namespace host

#endif  // HOST_BASE_WORDS_H_
