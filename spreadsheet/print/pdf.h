#pragma once
#include "spreadsheet/print/document_pages.h"

#include <QByteArray>

#include <stdexcept>

namespace spreadsheet {

/// The PDF could not be made; what() is a Chinese sentence in UTF-8 that names the file, if there is one.
struct PdfError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct PdfOptions : PrintDocument {
    QString path; ///< of the file; its folder must be there
};

/// Writes sheets as one PDF of A4 or other paper with searchable text and embedded parts of the fonts
/// in use. Every sheet begins on a new page and counts its pages from 1, as if printed alone; the
/// viewer's page labels say so, with the sheet's name before the number if there are several.
///
/// The file appears under its name only when it is whole; one that was there before stays until then.
/// A GUI application object must exist; a platform without a display ("offscreen") will do.
/// @return  the number of pages
/// @throws PdfError  the sheet does not exist, margins leave no room, the range meets no page, no font is
///                   there, or the file cannot be written
/// @throws PrintCancelled
int writePdf(const Workbook& workbook, const PdfOptions& options);

/// The same PDF in memory. @throws PdfError, PrintCancelled
QByteArray pdfOf(const Workbook& workbook, const PrintDocument& document);

} // namespace spreadsheet
