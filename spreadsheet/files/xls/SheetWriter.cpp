#include "spreadsheet/files/xls/SheetWriter.h"

#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/exchange/page_margins.h"
#include "spreadsheet/files/exchange/print_paper.h"
#include "spreadsheet/files/exchange/written_losses.h"
#include "spreadsheet/files/xls/list_checks.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/write_notes.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// Records stand in the order that readers expect, not in the order of our settings; several programs refuse
// a sheet whose records come in another. What lies beyond the 65,536 rows and 256 columns of the format is
// left out.

namespace {

} // namespace

SheetWriter::SheetWriter(XlsParts& parts, int index, RecordWriter& writer)
    : m_parts(parts)
    , m_index(index)
    , m_sheet(parts.workbook.sheet(index))
    , m_settings(m_sheet.settings())
    , m_writer(writer)
    , m_rows(m_sheet, xls::maxColumns)
    , m_tallCells(m_sheet)
{
    const CellFont& font = parts.workbook.styles()[0].font;
    m_digitPixels = digitPixels(fileFamily(font.family.view()), font.points);
    m_lastColumn = std::min(m_sheet.storedColumns(), xls::maxColumns);
    m_lastRow = std::min(m_rows.lastRow(), xls::maxRows);
    const auto reach = [this](const auto& entries) {
        if (!entries.empty())
            m_lastRow = std::max(m_lastRow, std::min(entries.rbegin()->first, xls::maxRows));
    };
    reach(m_settings.rows.sizes);
    reach(m_settings.rows.hidden);
    reach(m_settings.rowStyles);
}

void SheetWriter::write()
{
    begin();
    printSettings();
    columns();
    dimensions();
    rows();
    writeNotes(m_settings.notes, m_index, m_writer, m_parts.warnings);
    window();
    spans();
    writeLists(writtenLists(m_sheet, m_parts.workbook.styles(), xls::maxRows, m_parts.warnings), m_writer);
    m_writer.begin(xls::endOfFile);
    m_writer.end();
}

void SheetWriter::begin()
{
    m_writer.begin(xls::beginOfFile);
    m_writer.put16(xls::version8);
    m_writer.put16(xls::worksheet);
    m_writer.put16(0x0DBB); // a build and its year, which readers ask for
    m_writer.put16(0x07CC);
    m_writer.put32(0);
    m_writer.put32(6);
    m_writer.end();
}

void SheetWriter::printSettings()
{
    const PrintSettings& print = m_settings.print;
    warnOfPrintSetup(print, m_sheet.name(), m_parts.warnings);
    countLostChoices(m_sheet.settings(), m_parts.warnings);
    m_writer.record16(xls::printHeaders, print.columnHeadings || print.rowHeadings);
    m_writer.record16(xls::printGridLines, print.gridLines);
    m_writer.record16(xls::gridSet, 1);
    m_writer.begin(xls::guts);
    m_writer.putZeros(8);
    m_writer.end();
    m_writer.begin(xls::defaultRowHeight);
    m_writer.put16(1); // not what the font would make it
    m_writer.put16(static_cast<unsigned>(m_settings.rows.defaultSize));
    m_writer.end();
    m_writer.record16(xls::sheetFlags, 0x04C1 | (print.isFitted() ? 0x100u : 0u));
    pageBreaks();
    for (const auto& [id, codes] :
         {std::pair(xls::header, &print.header), std::pair(xls::footer, &print.footer)}) {
        const std::string foreign = writeForeignHeader(*codes);
        m_writer.begin(id);
        if (!foreign.empty())
            m_writer.putLongText(foreign);
        m_writer.end();
    }
    m_writer.record16(xls::centredAcross, print.centredAcross);
    m_writer.record16(xls::centredDown, print.centredDown);
    margins();
    setup();
    if (isProtected())
        m_writer.record16(xls::protect, 1);
}

void SheetWriter::pageBreaks()
{
    const auto write = [this](std::uint16_t id, const std::map<int, bool>& starts, unsigned last) {
        if (starts.empty())
            return;
        m_writer.begin(id);
        const std::size_t count = std::min<std::size_t>(starts.size(), 1026); // as many as readers take
        m_writer.put16(static_cast<unsigned>(count));
        auto start = starts.begin();
        for (std::size_t i = 0; i < count; ++i, ++start) {
            m_writer.put16(static_cast<unsigned>(std::min(start->first, xls::maxRows) - 1));
            m_writer.put16(0);
            m_writer.put16(last);
        }
        m_writer.end();
    };
    write(xls::horizontalBreaks, m_settings.print.rowBreaks, 255);
    write(xls::verticalBreaks, m_settings.print.columnBreaks, 65535);
}

void SheetWriter::margins()
{
    const PrintSettings& print = m_settings.print;
    const std::pair<std::uint16_t, double> margins[]{
        {xls::leftMargin, print.marginLeft / twipsPerInch},
        {xls::rightMargin, print.marginRight / twipsPerInch},
        {xls::topMargin, fileMargin(print.marginTop, print.header).toCells},
        {xls::bottomMargin, fileMargin(print.marginBottom, print.footer).toCells}};
    for (const auto& [id, inches] : margins) {
        m_writer.begin(id);
        m_writer.put(inches);
        m_writer.end();
    }
}

void SheetWriter::setup()
{
    constexpr unsigned acrossFirst = 1, isPortrait = 2, isMonochrome = 8, hasFirstPage = 0x80;
    const PrintSettings& print = m_settings.print;
    m_writer.begin(xls::setup);
    m_writer.put16(paperNumber(print, m_sheet.name(), m_parts.warnings));
    m_writer.put16(static_cast<unsigned>(print.scale));
    m_writer.put16(static_cast<unsigned>(print.firstPage));
    m_writer.put16(static_cast<unsigned>(print.fitAcross)); // 0: as many as it takes
    m_writer.put16(static_cast<unsigned>(print.fitDown));
    m_writer.put16((print.downFirst ? 0 : acrossFirst) | (print.landscape ? 0 : isPortrait) |
                   (print.colour ? 0 : isMonochrome) | (print.firstPage != 1 ? hasFirstPage : 0));
    m_writer.put16(600);
    m_writer.put16(600);
    m_writer.put(fileMargin(print.marginTop, print.header).toHeader);
    m_writer.put(fileMargin(print.marginBottom, print.footer).toHeader);
    m_writer.put16(1);
    m_writer.end();
}

/// A cell marked as locked says that somebody meant it.
bool SheetWriter::isProtected() const
{
    const StylePool& pool = m_parts.workbook.styles();
    for (int column = 1; column <= m_sheet.storedColumns(); ++column) {
        for (const Column::Slot& slot : m_sheet.column(column)->slots()) {
            for (int i = 0; slot.block->hasStyles() && i < slot.block->count(); ++i) {
                if (pool[slot.block->style(i)].locked)
                    return true;
            }
        }
    }
    return false;
}

void SheetWriter::columns()
{
    const double usual = columnDigits(m_settings.columns.defaultSize, m_digitPixels);
    m_writer.record16(xls::defaultColumnWidth, static_cast<unsigned>(std::max(1.0, usual)));
    const int last = std::min(m_settings.columnCount, xls::maxColumns);
    const auto signature = [this](int column) {
        const auto size = m_settings.columns.sizes.find(column);
        const auto style = m_settings.columnStyles.find(column);
        return std::tuple(size == m_settings.columns.sizes.end() ? -1 : size->second,
                          m_settings.columns.hidden.contains(column),
                          style == m_settings.columnStyles.end() ? 0u : style->second);
    };
    const std::tuple untouched(-1, false, 0u);
    for (int first = 1; first <= last;) {
        int end = first;
        while (end < last && signature(end + 1) == signature(first))
            ++end;
        if (signature(first) != untouched)
            columnRun(first, end);
        first = end + 1;
    }
}

void SheetWriter::columnRun(int first, int last)
{
    const auto size = m_settings.columns.sizes.find(first);
    const auto style = m_settings.columnStyles.find(first);
    const int twips = size == m_settings.columns.sizes.end() ? m_settings.columns.defaultSize : size->second;
    m_writer.begin(xls::columnInfo);
    m_writer.put16(static_cast<unsigned>(first - 1));
    m_writer.put16(static_cast<unsigned>(last - 1));
    m_writer.put16(static_cast<unsigned>(std::lround(columnDigits(twips, m_digitPixels) * 256)));
    m_writer.put16(style == m_settings.columnStyles.end() ? XlsStyles::usual
                                                          : m_parts.styles.cellFormat(style->second));
    m_writer.put16(m_settings.columns.hidden.contains(first) ? 1 : 0);
    m_writer.put16(0);
    m_writer.end();
}

void SheetWriter::dimensions()
{
    m_writer.begin(xls::dimensions);
    m_writer.put32(0);
    m_writer.put32(static_cast<std::uint32_t>(m_lastRow));
    m_writer.put16(0);
    m_writer.put16(static_cast<unsigned>(m_lastColumn));
    m_writer.put16(0);
    m_writer.end();
}

void SheetWriter::window()
{
    constexpr unsigned usual = 0x00B6, isFrozen = 0x0108, isSelected = 0x0600;
    const bool frozen = m_settings.frozenRows > 0 || m_settings.frozenColumns > 0;
    m_writer.begin(xls::window2);
    m_writer.put16(usual | (frozen ? isFrozen : 0) |
                   (m_index == m_parts.workbook.activeSheet() ? isSelected : 0));
    m_writer.putZeros(4);
    m_writer.put32(64); // colour of the grid lines: automatic
    m_writer.putZeros(8);
    m_writer.end();
    if (!frozen)
        return;
    const auto rows = static_cast<unsigned>(std::min(m_settings.frozenRows, xls::maxRows - 1));
    const auto columns = static_cast<unsigned>(std::min(m_settings.frozenColumns, xls::maxColumns - 1));
    m_writer.begin(xls::pane);
    m_writer.put16(columns);
    m_writer.put16(rows);
    m_writer.put16(rows);
    m_writer.put16(columns);
    m_writer.put16(columns > 0 && rows > 0 ? 0 : rows > 0 ? 2 : 1); // the pane that is active
    m_writer.end();
}

void SheetWriter::spans()
{
    m_writer.begin(xls::standardWidth);
    m_writer.put16(static_cast<unsigned>(
        std::lround(columnDigits(m_settings.columns.defaultSize, m_digitPixels) * 256)));
    m_writer.end();
    std::vector<CellRange> spans = m_settings.spans;
    std::erase_if(spans, &CellRange::isOneCell); // other programs know none
    constexpr std::size_t mostInRecord = 1026;
    for (std::size_t first = 0; first < spans.size(); first += mostInRecord) {
        const std::size_t count = std::min(mostInRecord, spans.size() - first);
        m_writer.begin(xls::mergedCells);
        m_writer.put16(static_cast<unsigned>(count));
        for (std::size_t i = first; i < first + count; ++i) {
            const CellRange& span = spans[i];
            m_writer.put16(static_cast<unsigned>(span.top - 1));
            m_writer.put16(static_cast<unsigned>(span.bottom - 1));
            m_writer.put16(static_cast<unsigned>(span.left - 1));
            m_writer.put16(static_cast<unsigned>(span.right - 1));
        }
        m_writer.end();
    }
}

} // namespace spreadsheet
