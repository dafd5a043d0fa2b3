#include "spreadsheet/files/xlsx/XlsxSheetWriter.h"

#include "spreadsheet/cells/papers.h"
#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/exchange/page_margins.h"
#include "spreadsheet/files/exchange/print_paper.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/exchange/written_losses.h"
#include "spreadsheet/files/xlsx/xlsx_names.h"
#include "spreadsheet/files/xlsx/XlsxCellWriter.h"
#include "text/quotes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <tuple>

namespace spreadsheet {

// Elements stand in the order of the schema; a reader that validates refuses the sheet otherwise. All
// columns are written with their widths, also the usual ones, because the usual width depends on a font that
// the other machine may lack.

namespace {

std::string rangeName(const CellRange& range)
{
    const std::string first = cellName({range.left, range.top});
    return range.isOneCell() ? first : first + ":" + cellName({range.right, range.bottom});
}

/// Width in digits of whole pixels, one at least: other programs hide a column of none.
double fileWidth(int twips, double digitPixels)
{
    const double pixels = std::max(1.0, std::round(twips / twipsPerPixel));
    return columnDigits(static_cast<int>(pixels * twipsPerPixel), digitPixels);
}

/// In millimetres, as short as comes back to the same twips: "93.1mm".
std::string lengthText(int twips)
{
    constexpr double perInch = 25.4;
    const double exact = twips * perInch / twipsPerInch;
    std::array<char, 16> digits{};
    std::to_chars_result end{};
    for (int decimals = 0; decimals <= 3; ++decimals) {
        const double power = std::pow(10, decimals);
        const double rounded = std::round(exact * power) / power;
        end = std::to_chars(digits.begin(), digits.end(), rounded, std::chars_format::fixed);
        if (twipsOfMillimetres(rounded) == twips)
            break;
    }
    return std::string(digits.begin(), end.ptr) + "mm";
}

} // namespace

XlsxSheetWriter::XlsxSheetWriter(XlsxParts& parts, const Sheet& sheet, std::string notes, XmlWriter& xml)
    : m_parts(parts)
    , m_sheet(sheet)
    , m_settings(sheet.settings())
    , m_notes(std::move(notes))
    , m_xml(xml)
{
}

void XlsxSheetWriter::write()
{
    m_xml.open("worksheet").attribute("xmlns", xlsx::mainSpace).attribute("xmlns:r", xlsx::relationSpace);
    if (m_settings.print.isFitted())
        m_xml.open("sheetPr").open("pageSetUpPr").attribute("fitToPage", 1).close().close();
    m_xml.open("dimension")
        .attribute("ref", rangeName({1, 1, std::max(1, m_sheet.lastDataColumn()),
                                     std::max(1, m_sheet.lastDataRow())}))
        .close();
    view();
    sizes();
    XlsxCellWriter cells(m_parts, m_sheet, m_xml);
    cells.write();
    if (cells.hasLocked()) {
        m_xml.open("sheetProtection");
        for (const char* what : {"sheet", "objects", "scenarios"})
            m_xml.attribute(what, 1);
        m_xml.close();
    }
    spans();
    lists();
    print();
    if (!m_notes.empty())
        m_xml.open("legacyDrawing").attribute("r:id", m_notes).close();
    m_xml.close();
}

void XlsxSheetWriter::view()
{
    m_xml.open("sheetViews").open("sheetView");
    if (m_parts.workbook.sheet(m_parts.workbook.activeSheet()).id() == m_sheet.id())
        m_xml.attribute("tabSelected", 1);
    m_xml.attribute("workbookViewId", 0);
    panes();
    m_xml.close().close();
}

void XlsxSheetWriter::panes()
{
    const int rows = m_settings.frozenRows, columns = m_settings.frozenColumns;
    if (rows <= 0 && columns <= 0)
        return;
    const char* const active = columns <= 0 ? "bottomLeft" : rows <= 0 ? "topRight" : "bottomRight";
    m_xml.open("pane");
    if (columns > 0)
        m_xml.attribute("xSplit", columns);
    if (rows > 0)
        m_xml.attribute("ySplit", rows);
    m_xml.attribute("topLeftCell", cellName({columns + 1, rows + 1}))
        .attribute("activePane", active)
        .attribute("state", "frozen")
        .close();
    m_xml.open("selection").attribute("pane", active).close();
}

void XlsxSheetWriter::sizes()
{
    const CellFont& font = m_parts.workbook.styles()[0].font;
    const double digit = digitPixels(fileFamily(font.family.view()), font.points);
    m_xml.open("sheetFormatPr")
        .attribute("defaultColWidth", fileWidth(m_settings.columns.defaultSize, digit))
        .attribute("defaultRowHeight", m_settings.rows.defaultSize / twipsPerPoint)
        .attribute("customHeight", 1)
        .close();
    columns();
}

/// Every column of the sheet, so that a reader knows how many it has.
void XlsxSheetWriter::columns()
{
    const CellFont& font = m_parts.workbook.styles()[0].font;
    const double digit = digitPixels(fileFamily(font.family.view()), font.points);
    const auto signature = [this](int column) {
        const auto style = m_settings.columnStyles.find(column);
        const auto size = m_settings.columns.sizes.find(column);
        return std::tuple(size == m_settings.columns.sizes.end() ? m_settings.columns.defaultSize
                                                                 : size->second,
                          m_settings.columns.hidden.contains(column),
                          style == m_settings.columnStyles.end() ? 0u : style->second);
    };
    const int last = std::min(m_settings.columnCount, maxColumns);
    m_xml.open("cols");
    for (int first = 1; first <= last;) {
        int end = first;
        while (end < last && signature(end + 1) == signature(first))
            ++end;
        const auto& [size, isHidden, style] = signature(first);
        m_xml.open("col").attribute("min", first).attribute("max", end);
        m_xml.attribute("width", fileWidth(size, digit));
        if (style != 0)
            m_xml.attribute("style", m_parts.styles.cellFormat(style));
        if (isHidden)
            m_xml.attribute("hidden", 1);
        m_xml.attribute("customWidth", 1).close();
        first = end + 1;
    }
    m_xml.close();
}

void XlsxSheetWriter::spans()
{
    std::vector<CellRange> spans = m_settings.spans;
    std::erase_if(spans, [](const CellRange& span) { return span.isOneCell(); }); // others know none
    if (spans.empty())
        return;
    m_xml.open("mergeCells").attribute("count", spans.size());
    for (const CellRange& span : spans)
        m_xml.open("mergeCell").attribute("ref", rangeName(span)).close();
    m_xml.close();
}

/// Input that is not in a list stays allowed, as in our cells.
void XlsxSheetWriter::lists()
{
    const std::vector<OfferedList> lists =
        writtenLists(m_sheet, m_parts.workbook.styles(), maxRows, m_parts.warnings);
    if (lists.empty())
        return;
    m_xml.open("dataValidations").attribute("count", lists.size());
    for (const OfferedList& list : lists) {
        std::string entries;
        for (const std::string& entry : *list.entries) {
            entries += entries.empty() ? '"' : ',';
            entries += quotes::doubled(entry, '"');
        }
        m_xml.open("dataValidation").attribute("type", "list").attribute("allowBlank", 1);
        m_xml.attribute("sqref", rangeName(list.range)).leaf("formula1", entries + '"').close();
    }
    m_xml.close();
}

void XlsxSheetWriter::print()
{
    const PrintSettings& print = m_settings.print;
    const std::pair<bool, const char*> options[]{{print.centredAcross, "horizontalCentered"},
                                                 {print.centredDown, "verticalCentered"},
                                                 {print.columnHeadings || print.rowHeadings, "headings"},
                                                 {print.gridLines, "gridLines"}};
    if (std::ranges::any_of(options, &std::pair<bool, const char*>::first)) {
        m_xml.open("printOptions");
        for (const auto& [isSet, name] : options) {
            if (isSet)
                m_xml.attribute(name, 1);
        }
        m_xml.close();
    }
    margins();
    pageSetup();
    headers();
    breaks("rowBreaks", print.rowBreaks, maxColumns);
    breaks("colBreaks", print.columnBreaks, maxRows);
}

void XlsxSheetWriter::margins()
{
    const PrintSettings& print = m_settings.print;
    const FileMargin above = fileMargin(print.marginTop, print.header);
    const FileMargin below = fileMargin(print.marginBottom, print.footer);
    m_xml.open("pageMargins")
        .attribute("left", print.marginLeft / twipsPerInch)
        .attribute("right", print.marginRight / twipsPerInch)
        .attribute("top", above.toCells)
        .attribute("bottom", below.toCells)
        .attribute("header", above.toHeader)
        .attribute("footer", below.toHeader)
        .close();
}

void XlsxSheetWriter::pageSetup()
{
    const PrintSettings& print = m_settings.print;
    warnOfPrintSetup(print, m_sheet.name(), m_parts.warnings);
    countLostChoices(m_settings, m_parts.warnings);
    m_xml.open("pageSetup");
    paper();
    if (print.scale != 100)
        m_xml.attribute("scale", print.scale);
    if (print.firstPage != 1)
        m_xml.attribute("firstPageNumber", print.firstPage).attribute("useFirstPageNumber", 1);
    if (!print.downFirst)
        m_xml.attribute("pageOrder", "overThenDown");
    if (print.isFitted()) // 0: as many pages as it takes
        m_xml.attribute("fitToWidth", print.fitAcross).attribute("fitToHeight", print.fitDown);
    m_xml.attribute("orientation", print.landscape ? "landscape" : "portrait");
    if (!print.colour)
        m_xml.attribute("blackAndWhite", 1);
    m_xml.close();
}

/// A size without a number stands as lengths; programs that read none of them take the number.
void XlsxSheetWriter::paper()
{
    const PrintSettings& print = m_settings.print;
    if (const unsigned number = paperNumber(print)) {
        m_xml.attribute("paperSize", number);
        return;
    }
    m_xml.attribute("paperSize", a4Number)
        .attribute("paperWidth", lengthText(print.paperWidth))
        .attribute("paperHeight", lengthText(print.paperHeight));
}

void XlsxSheetWriter::headers()
{
    constexpr std::size_t mostCharacters = 255;
    const std::string header = writeForeignHeader(m_settings.print.header);
    const std::string footer = writeForeignHeader(m_settings.print.footer);
    const bool headerFits = utf16Of(header).size() <= mostCharacters;
    const bool footerFits = utf16Of(footer).size() <= mostCharacters;
    if (!headerFits || !footerFits)
        m_parts.warnings.add("表“" + m_sheet.name() + "”的页眉或页脚太长 (超过 255 个字),没有写出");
    m_xml.open("headerFooter");
    if (!header.empty() && headerFits)
        m_xml.leaf("oddHeader", header);
    if (!footer.empty() && footerFits)
        m_xml.leaf("oddFooter", footer);
    m_xml.close();
}

/// @param across  rows or columns of a sheet along the break
void XlsxSheetWriter::breaks(const char* name, const std::map<int, bool>& starts, int across)
{
    constexpr std::size_t most = 1023; // more are refused
    if (starts.empty())
        return;
    if (starts.size() > most)
        m_parts.warnings.add("表“" + m_sheet.name() + "”的分页太多,只写出前面 1,023 处");
    std::size_t left = std::min(starts.size(), most);
    m_xml.open(name).attribute("count", left).attribute("manualBreakCount", left);
    for (auto start = starts.begin(); left > 0; ++start, --left)
        m_xml.open("brk")
            .attribute("id", start->first - 1)
            .attribute("max", across - 1)
            .attribute("man", 1)
            .close();
    m_xml.close();
}

} // namespace spreadsheet
