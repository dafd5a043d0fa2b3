// Feeds any bytes to the .xls reader, in a compound file or bare: they are refused or make a workbook that
// can be computed and written again.
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    spreadsheet::Workbook workbook;
    spreadsheet::Warnings warnings;
    try {
        spreadsheet::readXls(std::as_bytes(std::span(data, size)), workbook, warnings);
    } catch (const spreadsheet::ContentError&) {
        return 0;
    }
    workbook.recalculate();
    spreadsheet::writeXls(workbook, warnings);
    return 0;
}
