#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/view/commands/TextSearch.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

class Sheet;
class Workbook;

enum class SearchIn {
    values,   ///< what cells show
    formulas, ///< what would stand in the editor: formulas as texts, constants as they show
};

struct Search {
    std::string what;
    SearchOptions options = {};
    SearchIn in = SearchIn::formulas;
    CellRange within = {1, 1, maxColumns, maxRows};
};

/// The next cell in reading order (rows from left to right) that holds the text; behind the last one it goes
/// on from the beginning. The cell `from` itself comes last.
/// @param backwards  the other way round
std::optional<CellAddress> findNext(const Sheet& sheet, const Search& search, CellAddress from,
                                    bool backwards = false);

/// All such cells in reading order, at most `limit`.
std::vector<CellAddress> findAll(const Sheet& sheet, const Search& search, std::size_t limit = SIZE_MAX);

struct Replacement {
    int replaced = 0;              ///< cells
    std::vector<CellAddress> kept; ///< found, but the new text would be no formula, or the cell is computed
};

/// Replaces the text in formulas and constants of the cells, as one undo step. A constant is read anew as if
/// typed. Cells that only show the text (computed ones, when values are searched) are left.
Replacement replaceIn(Workbook& workbook, Sheet& sheet, const std::vector<CellAddress>& cells,
                      const Search& search, std::string_view replacement);

} // namespace spreadsheet
