#include "spreadsheet/cells/Book.h"

#include "spreadsheet/values/case_fold.h"

#include <algorithm>

namespace spreadsheet {

int Book::sheetIndex(std::string_view name) const
{
    const std::string folded = foldedName(name);
    const auto found =
        std::ranges::find_if(sheets, [&](const auto& sheet) { return foldedName(sheet->name()) == folded; });
    return found == sheets.end() ? 0 : static_cast<int>(found - sheets.begin()) + 1;
}

int Book::sheetIndexOfId(int id) const
{
    const auto found = std::ranges::find_if(sheets, [id](const auto& sheet) { return sheet->id == id; });
    return found == sheets.end() ? 0 : static_cast<int>(found - sheets.begin()) + 1;
}

} // namespace spreadsheet
