#pragma once
#include "spreadsheet/print/document_pages.h"

#include <QByteArray>

#include <stdexcept>

namespace spreadsheet {

/// The PDF could not be made; what() is a Chinese sentence in UTF-8.
struct PdfError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Pdf {
    QByteArray bytes;
    int pages = 0;
};

/// Draws sheets as one PDF of A4 or other paper with searchable text and embedded parts of the fonts
/// in use. Every sheet begins on a new page and counts its pages from 1, as if printed alone; the
/// viewer's page labels say so, with the sheet's name before the number if there are several.
///
/// A GUI application object must exist; a platform without a display ("offscreen") will do.
/// @throws PdfError  the sheet does not exist, margins leave no room, the range meets no page, or no font is
///                   there
/// @throws PrintCancelled
Pdf pdfOf(const Workbook& workbook, const PrintDocument& document);

} // namespace spreadsheet
