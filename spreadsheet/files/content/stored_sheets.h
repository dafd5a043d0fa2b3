#pragma once
#include "spreadsheet/files/content/stored_cells.h"

#include <string>

namespace spreadsheet {

/// One sheet with its settings and cells.
flatbuffers::Offset<stored::Sheet> writeSheet(flatbuffers::FlatBufferBuilder& builder, const Sheet& sheet,
                                              CellWriters writers);

/// Fills a fresh sheet; its name stays as it is.
/// @throws ContentError
void readSheet(const stored::Sheet& stored, Sheet& sheet, const CellMeanings& meanings,
               const FormulaPool& formulas);

} // namespace spreadsheet
