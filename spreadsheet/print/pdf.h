#pragma once
#include "spreadsheet/print/PageLayout.h"

#include <QString>

#include <optional>
#include <stdexcept>

namespace spreadsheet {

class Workbook;

/// The PDF could not be made; what() is a Chinese sentence in UTF-8 that names the file.
struct PdfError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct PdfOptions {
    QString path;             ///< of the file; its folder must be there
    QString title;            ///< of the document; empty: the name of its first sheet
    std::optional<int> sheet; ///< from 1; without it all sheets
    PageRequest page;
};

/// Writes sheets as one PDF of A4 or other paper with searchable text and embedded parts of the fonts
/// in use. Every sheet begins on a new page and counts its pages from 1, as if printed alone; the
/// viewer's page labels say so, with the sheet's name before the number if there are several.
///
/// The file appears under its name only when it is whole; one that was there before stays until then.
/// A GUI application object must exist; a platform without a display ("offscreen") will do.
/// @return  the number of pages
/// @throws PdfError  the sheet does not exist, margins leave no room, no font is there, or the file
///                   cannot be written
int writePdf(const Workbook& workbook, const PdfOptions& options);

} // namespace spreadsheet
