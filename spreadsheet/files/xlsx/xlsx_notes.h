#pragma once
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xlsx/XmlWriter.h"

namespace spreadsheet {

/// Notes of cells by cell, as a written .xlsx file holds them: never empty.
using XlsxNotes = std::map<CellAddress, std::string>;

/// The notes that fit the format. One that is too long is left out with a warning.
XlsxNotes writtenNotes(const SheetSettings& settings, Warnings& warnings);

void writeXlsxNotes(const XlsxNotes& notes, XmlWriter& xml);

/// The boxes that other programs show notes in.
/// @param firstCluster  shapes are numbered in clusters of 1,024 over all sheets, from 1
/// @return the first cluster that is still free
int writeXlsxNoteBoxes(const XlsxNotes& notes, int firstCluster, XmlWriter& xml);

} // namespace spreadsheet
