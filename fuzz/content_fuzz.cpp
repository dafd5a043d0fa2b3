// Feeds any bytes to the content reader, as the content inside an intact frame: they are refused or make a
// workbook that can be computed and stored.
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    spreadsheet::Workbook workbook;
    try {
        spreadsheet::loadContent(workbook, spreadsheet::packContent(std::as_bytes(std::span(data, size)), 1));
    } catch (const spreadsheet::ContentError&) {
        return 0;
    }
    workbook.recalculate();
    spreadsheet::saveContent(workbook);
    return 0;
}
