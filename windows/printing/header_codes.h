#pragma once
#include <array>
#include <string>
#include <string_view>

namespace selfreport {

inline constexpr int headerRows = 9;
inline constexpr std::string_view pageNumberText = "<Page Number>";

/// The three parts of a line, in the order in which they are written. Also the editor grid's text columns.
inline constexpr std::array<int, 3> headerColumns{1, 3, 5};

struct HeaderCellFont {
    std::string family = "宋体"; ///< UTF-8, without quotes
    float points = 9;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeThrough = false;
    friend bool operator==(const HeaderCellFont&, const HeaderCellFont&) = default;
};

/// One part of a line as the editor shows it.
struct HeaderCell {
    std::string text; ///< UTF-8; `pageNumberText` prints as the page's number
    HeaderCellFont font;
    bool showsPageNumber = false; ///< grey and read-only
    friend bool operator==(const HeaderCell&, const HeaderCell&) = default;
};

/// What the editor holds: lines from the top, each with a left, a centre and a right part.
using HeaderGrid = std::array<std::array<HeaderCell, 3>, headerRows>;

/// The font codes met so far. They carry over from one string to the next.
struct HeaderReaderState {
    std::string family;
    int points = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeThrough = false;
};

/// Reads a header or footer code string into the editor's cells. It is stricter than the reader of the pages,
/// and reads what the editor wrote like that one:
/// a text, font name or size may have 99 characters; a text in a cell is replaced by a later one in the same
/// cell; a code or text that begins with the string's last character is not read; a slash that starts no code
/// is passed over with the letter behind it; sizes become whole numbers, halves even; one that is no number
/// from 1 to 409 is ignored.
///
/// @param grid   lines and parts that the string does not mention stay as they are
/// @return  empty, or the message that tells where reading stopped; what was read until then is in the grid
std::string_view readHeaderCodes(std::string_view codes, HeaderGrid& grid, HeaderReaderState& state);

/// The codes of one part that is not empty.
/// @param column  1 left, 3 centre, 5 right; no alignment is written for any other
std::string headerCellCodes(const HeaderCell& cell, int column);

/// The code string of all lines down to the last that holds text; empty if none does.
std::string headerCodes(const HeaderGrid& grid);

} // namespace selfreport
