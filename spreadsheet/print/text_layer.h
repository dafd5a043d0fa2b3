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
///
/// @return  the font objects of the record's faces, in their order; fewer if a font kept its old map, which
///          is wrong for every document whose texts were all drawn with `record`
std::vector<int> correctTextLayer(PdfUpdate& update, const GlyphRecord& record);

} // namespace spreadsheet
