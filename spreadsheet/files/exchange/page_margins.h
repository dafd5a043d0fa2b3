#pragma once
#include <string_view>

namespace spreadsheet {

/// The upper or lower edge of a page as workbook files have it, in inches from the paper's edge: their margin
/// reaches to the cells and has header or footer inside it; ours ends where header or footer begins.
struct FileMargin {
    double toCells;
    double toHeader;
};

/// @param twips  our margin
/// @param codes  our code string of the header or footer there
FileMargin fileMargin(int twips, std::string_view codes);

/// The reverse: cells stand where the file has them.
int ownMargin(int twipsToCells, std::string_view codes);

} // namespace spreadsheet
