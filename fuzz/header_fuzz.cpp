// Feeds any text to the readers of header and footer codes: the pages', the editor's and the translator's to
// and from other programs' workbooks. What one of them wrote, it reads back as the same.
#include "spreadsheet/display/header_footer.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "windows/printing/header_codes.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void readForPages(std::string_view codes)
{
    std::size_t shown = 0;
    for (const spreadsheet::HeaderLine& line : spreadsheet::readHeaderFooter(codes)) {
        require(line.points >= 1 && line.points <= 409 && spreadsheet::headerLineHeight(line) > 0);
        for (const auto& part : line.parts)
            for (const spreadsheet::HeaderRun& run : part)
                shown += run.text.size();
    }
    require(shown <= codes.size());
}

void readInEditor(std::string_view codes)
{
    selfreport::HeaderGrid grid, again;
    selfreport::HeaderReaderState state;
    selfreport::readHeaderCodes(codes, grid, state);
    require(selfreport::readHeaderCodes(selfreport::headerCodes(grid), again, state).empty());
    for (std::size_t line = 0; line < grid.size(); ++line)
        for (std::size_t part = 0; part < grid[line].size(); ++part)
            require(grid[line][part].text == again[line][part].text);
}

void translate(std::string_view foreign)
{
    spreadsheet::Warnings warnings;
    const spreadsheet::HeaderSurroundings surroundings{"Sheet1"};
    const std::string own = spreadsheet::readForeignHeader(foreign, surroundings, warnings);
    readForPages(own);
    const std::string written = spreadsheet::writeForeignHeader(own);
    const std::string back = spreadsheet::readForeignHeader(written, surroundings, warnings);
    require(spreadsheet::writeForeignHeader(back) == written);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    readForPages(text);
    readInEditor(text);
    translate(text);
    translate(spreadsheet::writeForeignHeader(text));
    return 0;
}
