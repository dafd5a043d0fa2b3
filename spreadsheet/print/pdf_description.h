#pragma once
#include "spreadsheet/print/document_pages.h"
#include "spreadsheet/print/PdfUpdate.h"

namespace spreadsheet {

/// Adds what a PDF says of itself: its properties, page labels and, with several sheets, an outline over
/// them.
/// @param sheets  in the order of the file's pages
/// @param pages   the objects of all pages
void describePdf(PdfUpdate& update, const PrintDocument& document, const std::vector<SheetPages>& sheets,
                 const std::vector<int>& pages);

} // namespace spreadsheet
