#include "demo/labelled_cell.h"

#include <stdexcept>
#include <string>

namespace selfreport::demo {

namespace {

std::string_view withoutIndent(std::string_view text)
{
    constexpr std::string_view wideBlank = "　";
    while (text.starts_with(wideBlank) || text.starts_with(' '))
        text.remove_prefix(text.starts_with(' ') ? 1 : wideBlank.size());
    return text;
}

} // namespace

spreadsheet::CellAddress cellBeside(const spreadsheet::Sheet& sheet, std::string_view label, int columnsRight)
{
    const int lastRow = sheet.lastDataRow();
    const int lastColumn = sheet.lastDataColumn();
    for (int row = 1; row <= lastRow; ++row)
        for (int column = 1; column <= lastColumn; ++column)
            if (withoutIndent(sheet.displayText({column, row})) == label)
                return {column + columnsRight, row};
    throw std::runtime_error("表页“" + sheet.name() + "”中没有“" + std::string(label) + "”");
}

} // namespace selfreport::demo
