#include "spreadsheet/files/xls/SheetReader.h"

#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/merged_cells.h"
#include "spreadsheet/files/exchange/page_margins.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/cell_codes.h"
#include "spreadsheet/files/xls/list_checks.h"
#include "spreadsheet/files/xls/lost_records.h"
#include "spreadsheet/files/xls/records.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

SheetReader::SheetReader(Workbook& workbook, Sheet& sheet, XlsGlobals& globals)
    : m_workbook(workbook)
    , m_sheet(sheet)
    , m_globals(globals)
    , m_formulaReader(globals.links)
    , m_settings(sheet.settings())
    , m_sheetId([&workbook](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    })
{
    const CellFont font = globals.styles.defaultFont();
    m_digitPixels = digitPixels(font.family.view(), font.points);
    m_settings.print.marginTop = m_settings.print.marginBottom =
        static_cast<int>(twipsPerInch); // of a file that names none
    m_settings.print.marginLeft = m_settings.print.marginRight = 1080;
}

void SheetReader::read(RecordStream& stream)
{
    int charts = 0; // substreams inside this one
    for (;;) {
        if (!stream.next())
            refuseFile("表“" + m_sheet.name() + "”没有结尾,文件可能被截断");
        const std::uint16_t id = stream.record().id;
        if (id == xls::beginOfFile) {
            m_globals.warnings.count("{} 个图表没有引入");
            ++charts;
        } else if (id == xls::endOfFile) {
            if (charts-- == 0)
                break;
        } else if (charts == 0) {
            readAsFarAsItGoes(id, m_globals.warnings, [&] { record(stream); });
        }
    }
    finish();
}

void SheetReader::record(RecordStream& stream)
{
    const std::uint16_t id = stream.record().id;
    if (!cellRecord(stream) && !settingRecord(stream) && !printRecord(stream))
        countLostRecord(id, m_globals.warnings);
}

bool SheetReader::cellRecord(RecordStream& stream)
{
    const XlsRecord& record = stream.record();
    switch (record.id) {
    case xls::sharedTextCell:
        sharedTextCell(record);
        return true;
    case xls::number:
        putAt(record, record.at<double>(6));
        return true;
    case xls::rk:
        putAt(record, numberOfRk(record.at<std::uint32_t>(6)));
        return true;
    case xls::multipleRk:
        multipleRk(record);
        return true;
    case xls::blank:
        putAt(record, {});
        return true;
    case xls::multipleBlank:
        multipleBlank(record);
        return true;
    case xls::boolOrError:
        boolOrError(record);
        return true;
    case xls::label:
    case xls::richText:
        label(stream);
        return true;
    case xls::formula:
        formula(stream);
        return true;
    default:
        return false;
    }
}

bool SheetReader::settingRecord(RecordStream& stream)
{
    const XlsRecord& record = stream.record();
    switch (record.id) {
    case xls::row:
        row(record);
        return true;
    case xls::columnInfo:
        columnInfo(record);
        return true;
    case xls::defaultColumnWidth:
        m_defaultDigits = record.wordAt(0);
        return true;
    case xls::standardWidth:
        m_standardWidth = record.wordAt(0) / 256.0;
        return true;
    case xls::defaultRowHeight:
        m_settings.rows.defaultSize = std::clamp<int>(record.wordAt(2), 1, 8190);
        return true;
    case xls::mergedCells:
        mergedCells(record);
        return true;
    case xls::window2:
        m_isFrozen = record.wordAt(0) & 0x08;
        return true;
    case xls::pane:
        pane(record);
        return true;
    case xls::protect:
        m_isProtected = record.wordAt(0) != 0;
        return true;
    case xls::object:
        m_notes.readObject(record);
        countLostObject(record, m_globals.warnings);
        return true;
    case xls::textObject:
        m_notes.readTextObject(stream);
        return true;
    case xls::inputCheck:
        readListCheck(stream, m_lists, m_globals.warnings);
        return true;
    case xls::note:
        if (m_globals.version == xls::version8)
            m_notes.readNote(record);
        else
            m_notes.readOldNote(record, m_globals.codePage);
        return true;
    default:
        return false;
    }
}

void SheetReader::setDefaultWidth()
{
    constexpr double margin = 5; // pixels; the whole is rounded up to 8
    const double pixels = std::ceil((std::min(m_defaultDigits, 255) * m_digitPixels + margin) / 8) * 8;
    m_settings.columns.defaultSize = m_standardWidth > 0 ? columnTwips(m_standardWidth, m_digitPixels)
                                                         : static_cast<int>(pixels * twipsPerPixel);
}

void SheetReader::finish()
{
    setDefaultWidth();
    std::erase_if(m_settings.columns.sizes,
                  [this](const auto& entry) { return entry.second == m_settings.columns.defaultSize; });
    std::erase_if(m_settings.rows.sizes,
                  [this](const auto& entry) { return entry.second == m_settings.rows.defaultSize; });
    keepSpansApart(m_settings.spans, m_sheet.name(), m_globals.warnings);
    placeArrays();
    m_settings.notes = m_notes.notes();
    for (const auto& [place, text] : m_settings.notes) {
        m_lastRow = std::max(m_lastRow, place.row);
        m_lastColumn = std::max(m_lastColumn, place.column);
    }
    PrintSettings& print = m_settings.print;
    if (!m_fitsPage) // else numbers of pages are kept that do not count
        print.fitAcross = print.fitDown = 0;
    print.marginTop = ownMargin(print.marginTop, print.header);
    print.marginBottom = ownMargin(print.marginBottom, print.footer);
    m_settings.rowCount = std::max(m_settings.rowCount, m_lastRow);
    m_settings.columnCount = std::max(m_settings.columnCount, m_lastColumn);
    placeLists(m_lists, m_sheet, m_settings, m_workbook.styles(), m_globals.warnings);
    m_sheet.changeSettings([this](SheetSettings& settings) { settings = std::move(m_settings); });
}

} // namespace spreadsheet
