#include "spreadsheet/workbook/WorkbookContent.h"

namespace spreadsheet {

std::size_t bytesOf(const Book& book, const Recalculation& recalculation)
{
    std::size_t sum = book.texts.bytes() + book.formulas.bytes() + recalculation.bytes();
    for (const auto& sheet : book.sheets) {
        for (const Column& column : sheet->columns)
            sum += sizeof(Column) + column.bytes();
    }
    return sum;
}

} // namespace spreadsheet
