#include "spreadsheet/files/xlsx/XlsxSheetReader.h"

#include "spreadsheet/cells/papers.h"
#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/exchange/merged_cells.h"
#include "spreadsheet/files/exchange/page_margins.h"
#include "spreadsheet/files/xlsx/xml.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace spreadsheet {

// Everything in such a file may be missing: rows and cells without a name follow the one before, attributes
// fall back to what the format says they mean. Sizes are given in digits of the default font and in points;
// both are turned into twips here, so that a sheet stands where it stood.

namespace {

/// Twips of a length such as "184mm", "18.4cm" or "8.5in"; 0 if it is none.
int lengthTwips(std::string_view text)
{
    constexpr double mostMillimetres = 2000;
    static constexpr std::pair<std::string_view, double> units[]{
        {"mm", 1}, {"cm", 10}, {"in", 25.4}, {"pt", 25.4 / 72}, {"pc", 25.4 / 6}};
    double length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc())
        return 0;
    const std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
    for (const auto& [name, millimetres] : units)
        if (unit == name && length > 0 && length * millimetres <= mostMillimetres)
            return twipsOfMillimetres(length * millimetres);
    return 0;
}

} // namespace

XlsxSheetReader::XlsxSheetReader(Workbook& workbook, Sheet& sheet, XlsxStyles& styles, const XlsxBook& book,
                                 Warnings& warnings)
    : m_workbook(workbook)
    , m_sheet(sheet)
    , m_styles(styles)
    , m_book(book)
    , m_warnings(warnings)
    , m_sheetId([&workbook](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    })
    , m_settings(sheet.settings())
{
    const CellFont font = styles.defaultFont();
    m_digitPixels = digitPixels(font.family.view(), font.points);
    m_settings.print.marginTop = m_settings.print.marginBottom = 1080; // of a file that names none
    m_settings.print.marginLeft = m_settings.print.marginRight = 1008;
}

void XlsxSheetReader::read(pugi::xml_node root, std::span<char> data)
{
    m_isProtected = isTrue(attributeNamed(childNamed(root, "sheetProtection"), "sheet"));
    sizes(root);
    view(root);
    rows(data);
    sharedFormulas();
    arrays();
    spans(root);
    lists(root);
    print(root);
}

int XlsxSheetReader::twipsOf(double points)
{
    return points >= 0 && points <= 409.5 ? static_cast<int>(std::lround(points * twipsPerPoint)) : 0;
}

void XlsxSheetReader::reach(const CellRange& range)
{
    m_lastRow = std::max(m_lastRow, range.bottom);
    m_lastColumn = std::max(m_lastColumn, range.right);
}

void XlsxSheetReader::sizes(pugi::xml_node root)
{
    constexpr double usualDigits = 8, margin = 5, usualHeight = 15;
    const pugi::xml_node format = childNamed(root, "sheetFormatPr");
    m_settings.rows.defaultSize =
        std::max(1, twipsOf(numberOf(attributeNamed(format, "defaultRowHeight"), usualHeight)));
    const double digits = numberOf(attributeNamed(format, "defaultColWidth"));
    const double pixels =
        numberOf(attributeNamed(format, "baseColWidth"), usualDigits) * m_digitPixels + margin;
    m_settings.columns.defaultSize =
        digits > 0 ? columnTwips(digits, m_digitPixels)
                   : static_cast<int>(std::ceil(std::clamp(pixels, 8.0, 2000.0) / 8) * 8 * twipsPerPixel);
    eachChild(childNamed(root, "cols"), "col", [this](pugi::xml_node node) { columnSizes(node); });
}

void XlsxSheetReader::columnSizes(pugi::xml_node node)
{
    const int first = attributeNamed(node, "min").as_int(), last = attributeNamed(node, "max").as_int();
    if (first < 1 || last < first || first > maxColumns)
        return;
    const pugi::xml_attribute width = attributeNamed(node, "width");
    const int size = columnTwips(numberOf(width), m_digitPixels);
    const bool isHidden = isTrue(attributeNamed(node, "hidden")) || (width && size == 0);
    const std::uint32_t style = m_styles.style(attributeNamed(node, "style").as_uint(), m_isProtected);
    const bool isStyled = attributeNamed(node, "style").as_uint() != 0 && style != 0;
    const int end = std::min(last, maxColumns);
    for (int column = first; column <= end; ++column) {
        if (width && size > 0 && size != m_settings.columns.defaultSize)
            m_settings.columns.sizes[column] = size;
        if (isHidden)
            m_settings.columns.hidden[column] = true;
        if (isStyled)
            m_settings.columnStyles[column] = style;
    }
    if (last < 256) // up to the sheet's end it says nothing about what is used
        m_lastColumn = std::max(m_lastColumn, last);
}

void XlsxSheetReader::view(pugi::xml_node root)
{
    const pugi::xml_node pane = childNamed(childNamed(childNamed(root, "sheetViews"), "sheetView"), "pane");
    const std::string_view state = attributeNamed(pane, "state").value();
    if (state != "frozen" && state != "frozenSplit")
        return;
    m_settings.frozenColumns = std::clamp(attributeNamed(pane, "xSplit").as_int(), 0, maxColumns - 1);
    m_settings.frozenRows = std::clamp(attributeNamed(pane, "ySplit").as_int(), 0, maxRows - 1);
}

void XlsxSheetReader::spans(pugi::xml_node root)
{
    eachChild(childNamed(root, "mergeCells"), "mergeCell", [this](pugi::xml_node node) {
        const auto range = parseRangeName(attributeNamed(node, "ref").value());
        if (!range || (range->rows() == 1 && range->columns() == 1))
            return;
        m_settings.spans.push_back(*range);
        reach(*range);
    });
    keepSpansApart(m_settings.spans, m_sheet.name(), m_warnings);
}

/// Input checks against a list whose entries stand in the check itself.
void XlsxSheetReader::lists(pugi::xml_node root)
{
    eachChild(childNamed(root, "dataValidations"), "dataValidation", [this](pugi::xml_node node) {
        const std::string all = textOf(childNamed(node, "formula1"));
        const std::string_view text = all;
        const bool isLiteral = text.size() > 2 && text.front() == '"' && text.back() == '"';
        const std::string_view type = attributeNamed(node, "type").as_string("none");
        if (type != "list" || !isLiteral) {
            if (type != "none")
                m_warnings.count(type == "list" ? "{} 条从单元格取项目的下拉列表没有引入"
                                                : "{} 条数据有效性没有引入");
            return;
        }
        std::string plain;
        for (std::size_t i = 1; i + 1 < text.size(); ++i) {
            plain += text[i];
            if (text.substr(i, 2) == "\"\"") // a quote inside is doubled
                ++i;
        }
        const DropDownEntries entries(listEntries(plain, ','));
        for (const std::string& name : listEntries(attributeNamed(node, "sqref").value(), ' ')) {
            if (const auto range = parseRangeName(name))
                m_lists.push_back({*range, entries});
        }
    });
}

std::string XlsxSheetReader::headerText(pugi::xml_node node) const
{
    const CellFont font = m_styles.defaultFont();
    return readForeignHeader(textOf(node), {std::string(font.family.view()), font.points}, m_warnings);
}

void XlsxSheetReader::breaks(pugi::xml_node node, std::map<int, bool>& starts, int last)
{
    eachChild(node, "brk", [&](pugi::xml_node entry) {
        const int before = attributeNamed(entry, "id").as_int();
        if (before >= 1 && before < last)
            starts[before + 1] = true;
    });
}

void XlsxSheetReader::print(pugi::xml_node root)
{
    PrintSettings& print = m_settings.print;
    if (const pugi::xml_node margins = childNamed(root, "pageMargins")) {
        const auto margin = [&](const char* side) {
            const double inches = numberOf(attributeNamed(margins, side));
            return inches >= 0 && inches <= 49 ? static_cast<int>(std::lround(inches * twipsPerInch)) : 0;
        };
        print.marginLeft = margin("left");
        print.marginRight = margin("right");
        print.marginTop = margin("top");
        print.marginBottom = margin("bottom");
    }
    const pugi::xml_node options = childNamed(root, "printOptions");
    print.columnHeadings = print.rowHeadings = isTrue(attributeNamed(options, "headings"));
    print.gridLines = isTrue(attributeNamed(options, "gridLines"));
    print.centredAcross = isTrue(attributeNamed(options, "horizontalCentered"));
    print.centredDown = isTrue(attributeNamed(options, "verticalCentered"));
    const pugi::xml_node texts = childNamed(root, "headerFooter");
    print.header = headerText(childNamed(texts, "oddHeader"));
    print.footer = headerText(childNamed(texts, "oddFooter"));
    print.marginTop = ownMargin(print.marginTop, print.header);
    print.marginBottom = ownMargin(print.marginBottom, print.footer);
    breaks(childNamed(root, "rowBreaks"), print.rowBreaks, maxRows);
    breaks(childNamed(root, "colBreaks"), print.columnBreaks, maxColumns);
    pageSetup(root);
}

void XlsxSheetReader::pageSetup(pugi::xml_node root)
{
    const pugi::xml_node setup = childNamed(root, "pageSetup");
    PrintSettings& print = m_settings.print;
    print.landscape = std::string_view(attributeNamed(setup, "orientation").value()) == "landscape";
    print.colour = !isTrue(attributeNamed(setup, "blackAndWhite"));
    print.downFirst = std::string_view(attributeNamed(setup, "pageOrder").value()) != "overThenDown";
    const auto number = [&](const char* name, int usual, int least, int most) {
        return std::clamp(attributeNamed(setup, name).as_int(usual), least, most);
    };
    print.scale = number("scale", 100, smallestPrintScale, largestPrintScale);
    if (isTrue(attributeNamed(setup, "useFirstPageNumber")))
        print.firstPage = number("firstPageNumber", 1, 1, largestFirstPage);
    if (isTrue(attributeNamed(childNamed(childNamed(root, "sheetPr"), "pageSetUpPr"), "fitToPage"))) {
        print.fitAcross = number("fitToWidth", 1, 0, mostFittedPages);
        print.fitDown = number("fitToHeight", 1, 0, mostFittedPages);
    }
    paper(setup);
}

void XlsxSheetReader::paper(pugi::xml_node setup)
{
    PrintSettings& print = m_settings.print;
    print.paperWidth = lengthTwips(attributeNamed(setup, "paperWidth").value());
    print.paperHeight = lengthTwips(attributeNamed(setup, "paperHeight").value());
    const pugi::xml_attribute number = attributeNamed(setup, "paperSize");
    const Paper* const known = paperOfNumber(number.as_int());
    if (print.paperWidth > 0 && print.paperHeight > 0)
        return;
    print.paperWidth = known ? known->width() : 0;
    print.paperHeight = known ? known->height() : 0;
    if (number.as_int() > 0 && !known)
        m_warnings.add("表“" + m_sheet.name() + "”的纸张 (编号 " + number.value() +
                       ") 没有引入,用打印机的纸张");
}

void XlsxSheetReader::readComments(pugi::xml_node root)
{
    eachChild(childNamed(root, "commentList"), "comment", [this](pugi::xml_node node) {
        const auto at = parseCellName(attributeNamed(node, "ref").value());
        const std::string text = richText(childNamed(node, "text"));
        if (!at || text.empty())
            return;
        m_settings.notes[*at] = text;
        reach({at->column, at->row, at->column, at->row});
    });
}

void XlsxSheetReader::finish()
{
    m_settings.rowCount = std::max(m_settings.rowCount, m_lastRow);
    m_settings.columnCount = std::max(m_settings.columnCount, m_lastColumn);
    placeLists(m_lists, m_sheet, m_settings, m_workbook.styles(), m_warnings);
    m_sheet.changeSettings([this](SheetSettings& settings) { settings = std::move(m_settings); });
}

} // namespace spreadsheet
