#pragma once
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/workbook/Sheet.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace spreadsheet {

/// All that a workbook holds, to be exchanged as a whole. Its sheets belong to that workbook, whose present
/// content it need not be.
struct WorkbookContent {
    std::unique_ptr<Book> book;
    std::vector<std::shared_ptr<Sheet>> sheets;   ///< those of the book
    std::unique_ptr<Recalculation> recalculation; ///< of the book; goes before it
    std::uint64_t number = 0;                     ///< no other content of the workbook has it
};

/// Bytes held by cells, formulas and the dependency graph.
std::size_t bytesOf(const Book& book, const Recalculation& recalculation);

} // namespace spreadsheet
