#pragma once
#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PdfUpdate.h"

#include <optional>
#include <vector>

namespace spreadsheet {

/// Adds a font for each face of a record: the letters that were drawn, under the record's codes, with their
/// widths and the texts that they stand for.
/// @param listsLetters  as archive files want it
/// @return  the font objects in the order of the faces; nothing if a face cannot or may not be embedded
std::optional<std::vector<int>> embedFonts(PdfUpdate& update, const GlyphRecord& record, bool listsLetters);

} // namespace spreadsheet
