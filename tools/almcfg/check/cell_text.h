#ifndef TOOLS_ALMCFG_CHECK_CELL_TEXT_H_
#define TOOLS_ALMCFG_CHECK_CELL_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almgrammar.h"

/// Functions that classify and convert the text of a column. Used by the checker and by the repairs. Returned
/// views refer to the argument. Pure functions; any thread may call them.
namespace almcfg {

/// The offset of `part`, which is a part of `line`, in it.
inline std::size_t OffsetIn(std::string_view line, std::string_view part) {
  return static_cast<std::size_t>(part.data() - line.data());
}

/// The byte order mark of UTF-8.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// The parts between the separators; one more than there are separators.
std::vector<std::string> SplitAll(std::string_view text, char separator);

/// The text without the characters at its edges that look blank and that a load keeps: blank, CR, vertical tab,
/// form feed.
std::string_view TrimEdges(std::string_view text);

/// An optional sign and at least one digit, nothing else.
bool IsDecimal(std::string_view text);

/// The text of a cell that is wholly in quotation marks, as spreadsheets write it, with each "" inside
/// replaced by one quotation mark. None when the cell is not quoted.
std::optional<std::string> Unquoted(std::string_view cell);

/// The cells of a comma- or semicolon-separated line, with quotation marks read as spreadsheets write them.
/// Empty when the line has another separator, a TAB, an empty cell, or not exactly five cells.
std::vector<std::string> SplitDelimited(std::string_view line);

/// Columns 4 and 5 are words and no column is a number: the line looks like a heading. A load makes a record
/// of it if its columns are separated by TABs.
bool IsHeading(const std::vector<std::string>& cells);
bool IsHeading(const NS_ASCII::PartList& columns);

/// The plain decimal text of the number in column 4, which may be spelled "07", "+7" or " 7". Empty when the
/// column is not an integer of 32 bits.
std::string MeantNumber(std::string_view text);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_CELL_TEXT_H_
