#pragma once
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/xls/RecordStream.h"
#include "spreadsheet/files/xls/RecordWriter.h"

namespace spreadsheet {

/// Writes lists as the records of a sheet's input checks; nothing if there are none.
void writeLists(const std::vector<OfferedList>& lists, RecordWriter& writer);

/// Reads one input check; one that is no list, or takes its entries from cells, is left out and counted.
void readListCheck(RecordStream& stream, std::vector<OfferedList>& lists, Warnings& warnings);

} // namespace spreadsheet
