#pragma once
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Font of one run of a header or footer.
struct HeaderFont {
    std::string family; ///< UTF-8; empty: the default family
    double points = 9;  ///< size in points, fractions kept
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeThrough = false;
    friend bool operator==(const HeaderFont&, const HeaderFont&) = default;
};

/// A piece of text in one font, or the number of the page being printed.
struct HeaderRun {
    HeaderFont font;
    std::string text; ///< UTF-8; empty for the page number
    bool pageNumber = false;
    friend bool operator==(const HeaderRun&, const HeaderRun&) = default;
};

enum class HeaderPart { left = 0, centre = 1, right = 2 };

/// One line of a header or footer.
struct HeaderLine {
    std::array<std::vector<HeaderRun>, 3> parts; ///< by HeaderPart
    double points = 9; ///< size of its largest run; of an empty line the size in force there
    bool empty() const { return parts[0].empty() && parts[1].empty() && parts[2].empty(); }
};

/// Reads a header or footer code string for printing.
///
/// "/n" ends a line; "/l", "/c", "/r" choose the part for what follows; "/p" is the page number;
/// /fn"family" and /fz"points" set family and size, "/fb", "/fi", "/fu", "/fk" with a character after
/// them switch bold, italic, underline and strike-through (off for "0", else on). Part and font stay in
/// force until they are changed, across lines too. A slash that starts no code, and a code that breaks
/// off, print as they stand; a size that is no number from 1 to 409 is ignored.
/// The line that a final "/n" would open is none; an empty string has no lines.
std::vector<HeaderLine> readHeaderFooter(std::string_view codes);

/// Height in twips that a line takes on paper, the same with every installed font.
int headerLineHeight(const HeaderLine& line);

/// Twips that a header or footer takes with all its lines and the gap between it and the cells; 0 without
/// lines.
int headerHeight(const std::vector<HeaderLine>& lines);

} // namespace spreadsheet
