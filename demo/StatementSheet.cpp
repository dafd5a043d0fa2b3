#include "demo/StatementSheet.h"

#include "spreadsheet/values/CellAddress.h"

#include <stdexcept>

namespace selfreport::demo {

// The demo statements are made by code, so that they follow the generated ledger, and look as printed
// statutory ones do: that is what an accountant judges a report by first. All looks are settled here, and a
// statement's source says only what stands in its rows.

namespace {

using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::HorizontalAlignment;
using spreadsheet::LineStyle;
using spreadsheet::Text;

constexpr int twipsPerTenth = static_cast<int>(spreadsheet::twipsPerInch / 10); // of an inch
constexpr int sideWidth =
    static_cast<int>(spreadsheet::twipsPerInch); // twips for the text at the left under the title
constexpr int titleHeight = 600;
constexpr int rowHeight = 280; // 25 rows of a balance sheet fit on one landscape page
constexpr spreadsheet::Colour headingGrey = 0xE7E6E6;

// As printed statements have them: commas, nothing where nothing is, and air between texts and lines.
constexpr std::string_view textCode = "_ @";
constexpr std::string_view percentCode = "0.00%_ ";

std::string amountCode(int decimals)
{
    const std::string amount =
        "#,##0" + (decimals > 0 ? "." + std::string(static_cast<std::size_t>(decimals), '0') : std::string());
    return amount + "_ ;-" + amount + "_ ;_ ";
}

/// Thin lines between the cells; the outline of the whole table comes last.
void frame(CellStyle& style)
{
    for (spreadsheet::BorderLine* line : {&style.left, &style.right, &style.top, &style.bottom})
        *line = {LineStyle::fineSolid, 0};
    style.numberFormat = Text(textCode);
}

void takeFont(CellStyle& style, std::string_view family, float points, bool bold)
{
    style.font.family = Text(family);
    style.font.points = points;
    style.font.bold = bold;
}

} // namespace

StatementSheet::StatementSheet(spreadsheet::Sheet& sheet, std::span<const int> widths)
    : m_sheet(sheet)
    , m_columns(static_cast<int>(widths.size()))
{
    m_sheet.changeSettings([&](spreadsheet::SheetSettings& settings) {
        int column = 0;
        for (const int width : widths)
            settings.columns.sizes[++column] = width * twipsPerTenth;
    });
}

void StatementSheet::nextRow(int height)
{
    ++m_row;
    m_sheet.changeSettings(
        [&](spreadsheet::SheetSettings& settings) { settings.rows.sizes[m_row] = height; });
    m_sheet.restyle(wholeRow(), [](CellStyle& style) { takeFont(style, "宋体", 10, false); });
}

void StatementSheet::title(std::string_view text)
{
    nextRow(titleHeight);
    m_sheet.restyle(wholeRow(), [](CellStyle& style) {
        takeFont(style, "黑体", 18, true);
        style.horizontal = HorizontalAlignment::centre;
    });
    m_sheet.addSpan(wholeRow());
    m_sheet.setText({1, m_row}, text);
}

void StatementSheet::note(std::string_view text)
{
    nextRow(rowHeight);
    m_sheet.addSpan(wholeRow());
    m_sheet.setText({1, m_row}, text);
}

void StatementSheet::underTitle(std::string_view left, std::string_view centre, std::string_view right)
{
    nextRow(rowHeight);
    m_sheet.setText({1, m_row}, left);
    this->text(m_columns, right);
    m_sheet.restyle({m_columns, m_row, m_columns, m_row},
                    [](CellStyle& style) { style.horizontal = HorizontalAlignment::right; });
    if (centre.empty() || m_columns < 4)
        return;
    const int leftColumns = columnsOfAtLeast(sideWidth);
    if (leftColumns > 1)
        m_sheet.addSpan({1, m_row, leftColumns, m_row});
    m_sheet.addSpan({leftColumns + 1, m_row, m_columns - 1, m_row});
    centred(leftColumns + 1, centre);
}

/// How many of the first columns are that wide together; at least two are left.
int StatementSheet::columnsOfAtLeast(int twips) const
{
    int count = 1;
    for (int width = m_sheet.settings().columns.size(1); width < twips && count < m_columns - 2;)
        width += m_sheet.settings().columns.size(++count);
    return count;
}

void StatementSheet::headings(std::initializer_list<std::string_view> texts)
{
    headings(std::vector<std::string>(texts.begin(), texts.end()));
}

void StatementSheet::headings(std::span<const std::string> texts)
{
    beginRow();
    m_headingRow = m_row;
    int column = 0;
    for (const std::string& heading : texts)
        centred(++column, heading);
    emphasize();
    m_sheet.restyle(wholeRow(), [](CellStyle& style) { style.background = headingGrey; });
}

int StatementSheet::beginRow()
{
    nextRow(rowHeight);
    m_sheet.restyle(wholeRow(), frame);
    m_lastRow = m_row;
    return m_row;
}

void StatementSheet::text(int column, std::string_view text)
{
    m_sheet.setText({column, m_row}, text);
}

void StatementSheet::centred(int column, std::string_view text)
{
    this->text(column, text);
    m_sheet.restyle({column, m_row, column, m_row}, [](CellStyle& style) {
        style.horizontal = HorizontalAlignment::centre;
        style.numberFormat = {};
    });
}

void StatementSheet::setFormula(int column, const std::string& formula)
{
    if (const auto problem = m_sheet.setFormula({column, m_row}, formula))
        throw std::runtime_error("公式“" + formula + "”：" + problem.reason());
}

void StatementSheet::formula(int column, const std::string& formula, int decimals)
{
    setFormula(column, formula);
    m_sheet.restyle({column, m_row, column, m_row}, [&](CellStyle& style) {
        style.type = CellType::number;
        style.decimals = static_cast<std::uint8_t>(decimals);
        style.horizontal = HorizontalAlignment::right;
        style.numberFormat = Text(amountCode(decimals));
    });
}

void StatementSheet::percentage(int column, const std::string& formula)
{
    setFormula(column, formula);
    m_sheet.restyle({column, m_row, column, m_row}, [](CellStyle& style) {
        style.type = CellType::percent;
        style.horizontal = HorizontalAlignment::right;
        style.numberFormat = Text(percentCode);
    });
}

void StatementSheet::emphasize()
{
    m_sheet.restyle(wholeRow(), [](CellStyle& style) { style.font.bold = true; });
}

/// Around heading and rows.
void StatementSheet::outline()
{
    const spreadsheet::BorderLine line{LineStyle::solid, 0};
    const auto side = [&](const spreadsheet::CellRange& cells, spreadsheet::BorderLine CellStyle::*member) {
        m_sheet.restyle(cells, [&](CellStyle& style) { style.*member = line; });
    };
    side({1, m_headingRow, m_columns, m_headingRow}, &CellStyle::top);
    side({1, m_lastRow, m_columns, m_lastRow}, &CellStyle::bottom);
    side({1, m_headingRow, 1, m_lastRow}, &CellStyle::left);
    side({m_columns, m_headingRow, m_columns, m_lastRow}, &CellStyle::right);
}

void StatementSheet::finish()
{
    outline();
    m_sheet.changeSettings([&](spreadsheet::SheetSettings& settings) {
        settings.frozenRows = m_headingRow;
        settings.print.titleTop = 1;
        settings.print.titleBottom = m_headingRow;
        settings.print.fitAcross = 1;
    });
}

std::string StatementSheet::cell(int column) const
{
    return spreadsheet::cellName({column, m_row});
}

std::string acct(const Fetch& fetch)
{
    return "Acct(\"" + fetch.account + "\" ,\"" + fetch.type + "\" , \"" + fetch.currency + "\", \"" +
           fetch.year + "\",\"" + fetch.first + "\",\"" + fetch.last + "\")";
}

std::string reference(std::string_view report, std::string_view cell, std::string_view tab)
{
    return "REF_F(\"" + std::string(report) + "\" ,\"" + std::string(cell) + "\" , \"" + std::string(tab) +
           "\")";
}

} // namespace selfreport::demo
