#pragma once
#include "spreadsheet/print/document_pages.h"
#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PdfUpdate.h"

#include <QByteArray>
#include <QSize>

#include <vector>

namespace spreadsheet {

/// A page as it stands in a PDF.
struct PdfPage {
    QSize points;       ///< of the paper, as turned
    QByteArray content; ///< the body of a stream object
};

/// Draws all pages, which note their glyphs in the record.
/// @throws PrintCancelled
std::vector<PdfPage> contentsOf(const std::vector<SheetPages>& sheets, const PrintDocument& document,
                                GlyphRecord& record);

/// The page objects of a PDF, all of which the toolkit's writer lists in one node.
std::vector<int> pageObjects(const PdfUpdate& update);

/// Puts pages in place of a PDF's only page.
/// @param fonts  objects of the fonts that the pages call F1, F2 …
/// @return  the page objects
std::vector<int> replacePages(PdfUpdate& update, const std::vector<PdfPage>& pages,
                              const std::vector<int>& fonts);

} // namespace spreadsheet
