#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordWriter.h"
#include "spreadsheet/values/CellAddress.h"

#include <map>
#include <string>
#include <vector>

namespace spreadsheet {

/// Writes notes as text boxes of the sheet's drawing, hidden until the mouse points at the cell; of one sheet
/// at most 1,000, the others are told.
/// @param index  of the sheet, from 1
void writeNotes(const std::map<CellAddress, std::string>& notes, int index, RecordWriter& writer,
                Warnings& warnings);

/// The record before the sheets that counts the drawings' shapes; nothing if no sheet has notes.
/// @param notes  how many each sheet has
void writeDrawingGroup(const std::vector<std::size_t>& notes, RecordWriter& writer);

} // namespace spreadsheet
