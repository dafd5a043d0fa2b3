#include "spreadsheet/cells/papers.h"
#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/SheetReader.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr std::uint16_t usualCellFormat = 15; ///< of cells that nobody formatted

int marginTwips(const XlsRecord& record)
{
    const auto inches = record.at<double>(0);
    return inches >= 0 && inches <= 49 ? static_cast<int>(std::lround(inches * twipsPerInch)) : 0;
}

} // namespace

void SheetReader::row(const XlsRecord& record)
{
    constexpr std::uint16_t defaultHeight = 0x8000;
    constexpr std::uint32_t isHidden = 0x20, hasFormat = 0x80;
    const int number = record.wordAt(0) + 1;
    const std::uint16_t height = record.wordAt(6);
    const auto flags = record.at<std::uint32_t>(12);
    const int twips = height & 0x7FFF;
    if (!(height & defaultHeight) && twips > 0)
        m_settings.rows.sizes[number] = twips;
    if ((flags & isHidden) || (!(height & defaultHeight) && twips == 0))
        m_settings.rows.hidden[number] = true;
    if (flags & hasFormat) {
        if (const std::uint32_t style = m_globals.styles.style(flags >> 16 & 0xFFF, m_isProtected))
            m_settings.rowStyles[number] = style;
    }
    if (m_settings.rows.hidden.contains(number) || (flags & hasFormat))
        m_lastRow = std::max(m_lastRow, number);
}

void SheetReader::columnInfo(const XlsRecord& record)
{
    const int first = record.wordAt(0) + 1;
    const int last = std::min<int>(record.wordAt(2) + 1, xls::maxColumns);
    const int twips = columnTwips(record.wordAt(4) / 256.0, m_digitPixels);
    const std::uint16_t format = record.wordAt(6);
    const bool isHidden = record.size() >= 10 && (record.wordAt(8) & 1);
    for (int column = first; column <= last; ++column) {
        if (twips > 0)
            m_settings.columns.sizes[column] = twips;
        if (isHidden || twips == 0)
            m_settings.columns.hidden[column] = true;
        if (format == usualCellFormat)
            continue;
        if (const std::uint32_t style = m_globals.styles.style(format, m_isProtected))
            m_settings.columnStyles[column] = style;
    }
    if (last < xls::maxColumns) // up to the sheet's end it says nothing about what is used
        m_lastColumn = std::max(m_lastColumn, last);
}

void SheetReader::mergedCells(const XlsRecord& record)
{
    const std::size_t count = record.wordAt(0);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = 2 + i * 8;
        const CellRange range{(record.wordAt(at + 4) & 0xFF) + 1, record.wordAt(at) + 1,
                              (record.wordAt(at + 6) & 0xFF) + 1, record.wordAt(at + 2) + 1};
        if (range.left > range.right || range.top > range.bottom ||
            range.columns() * std::int64_t(range.rows()) == 1)
            continue;
        m_settings.spans.push_back(range);
        m_lastRow = std::max(m_lastRow, range.bottom);
        m_lastColumn = std::max(m_lastColumn, range.right);
    }
}

void SheetReader::pane(const XlsRecord& record)
{
    if (!m_isFrozen) // else it is split by a bar, in twips
        return;
    m_settings.frozenColumns = std::min<int>(record.wordAt(0), xls::maxColumns - 1);
    m_settings.frozenRows = std::min<int>(record.wordAt(2), xls::maxRows - 1);
}

std::string SheetReader::headerText(const XlsRecord& record)
{
    if (record.size() == 0)
        return {};
    RecordCursor cursor(record);
    const std::string foreign = m_globals.version == xls::version8
                                    ? cursor.longText()
                                    : m_globals.codePage.decoded(cursor.bytes(cursor.take<std::uint8_t>()));
    const CellFont font = m_globals.styles.defaultFont();
    return readForeignHeader(foreign, {std::string(font.family.view()), font.points}, m_globals.warnings);
}

bool SheetReader::printRecord(RecordStream& stream)
{
    const XlsRecord& record = stream.record();
    PrintSettings& print = m_settings.print;
    switch (record.id) {
    case xls::header:
        print.header = headerText(record);
        return true;
    case xls::footer:
        print.footer = headerText(record);
        return true;
    case xls::leftMargin:
        print.marginLeft = marginTwips(record);
        return true;
    case xls::rightMargin:
        print.marginRight = marginTwips(record);
        return true;
    case xls::topMargin:
        print.marginTop = marginTwips(record);
        return true;
    case xls::bottomMargin:
        print.marginBottom = marginTwips(record);
        return true;
    case xls::printHeaders:
        print.columnHeadings = print.rowHeadings = record.wordAt(0) != 0;
        return true;
    case xls::printGridLines:
        print.gridLines = record.wordAt(0) != 0;
        return true;
    case xls::centredAcross:
        print.centredAcross = record.wordAt(0) != 0;
        return true;
    case xls::centredDown:
        print.centredDown = record.wordAt(0) != 0;
        return true;
    case xls::setup:
        setup(record);
        return true;
    case xls::sheetFlags:
        m_fitsPage = record.wordAt(0) & 0x100;
        return true;
    case xls::horizontalBreaks:
        breaks(record, print.rowBreaks);
        return true;
    case xls::verticalBreaks:
        breaks(record, print.columnBreaks);
        return true;
    default:
        return false;
    }
}

void SheetReader::setup(const XlsRecord& record)
{
    constexpr std::uint16_t acrossFirst = 0x01, isPortrait = 0x02, isUnset = 0x04, isMonochrome = 0x08,
                            noOrientation = 0x40, hasFirstPage = 0x80;
    const std::uint16_t flags = record.wordAt(10);
    PrintSettings& print = m_settings.print;
    if (!(flags & (isUnset | noOrientation)))
        print.landscape = !(flags & isPortrait);
    print.colour = !(flags & isMonochrome);
    print.downFirst = !(flags & acrossFirst);
    print.fitAcross = std::min<int>(record.wordAt(6), mostFittedPages);
    print.fitDown = std::min<int>(record.wordAt(8), mostFittedPages);
    if (flags & hasFirstPage)
        print.firstPage = std::clamp<int>(record.wordAt(4), 1, largestFirstPage);
    if (flags & isUnset)
        return;
    print.scale = std::clamp<int>(record.wordAt(2), smallestPrintScale, largestPrintScale);
    if (const Paper* const paper = paperOfNumber(record.wordAt(0))) {
        print.paperWidth = paper->width();
        print.paperHeight = paper->height();
    } else if (record.wordAt(0) > 0) {
        m_globals.warnings.add("表“" + m_sheet.name() + "”的纸张 (编号 " + std::to_string(record.wordAt(0)) +
                               ") 没有引入,用打印机的纸张");
    }
}

/// A break stands before the row or column that the record names, counted from 0.
void SheetReader::breaks(const XlsRecord& record, std::map<int, bool>& starts) const
{
    const std::size_t entrySize = m_globals.version == xls::version8 ? 6 : 2;
    const std::size_t count = std::min<std::size_t>(record.wordAt(0), (record.size() - 2) / entrySize);
    for (std::size_t i = 0; i < count; ++i) {
        const int first = record.wordAt(2 + i * entrySize) + 1;
        if (first > 1)
            starts[first] = true;
    }
}

} // namespace spreadsheet
