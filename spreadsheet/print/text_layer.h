#pragma once
#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PdfUpdate.h"

#include <vector>

namespace spreadsheet {

/// Makes the text of a PDF what was drawn: a text search finds 科目 and not its look-alike.
///
/// The toolkit's writer keeps one Type 0 font per font face, numbers its glyphs from 1 in the order of
/// their first use, creates the fonts in the order of theirs, and asks each font which character stands
/// for a glyph. With common Chinese fonts that answer is a radical for 月, 日, 目 and many more, a tab
/// for the blank, and nothing beyond the basic plane. Here each font's ToUnicode map is written anew
/// from the record. A font whose old map contradicts the record keeps it.
void correctTextLayer(PdfUpdate& update, const GlyphRecord& record);

/// The ToUnicode map (ISO 32000-1, 9.10.3) of a font that has a face's letters under their codes in the
/// record. Letters that scripts put together from several have the text that their font knows them by, if
/// any.
QByteArray characterMap(const GlyphRecord::Face& face);

} // namespace spreadsheet
