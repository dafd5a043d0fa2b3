#include "spreadsheet/files/xlsx/XlsxCellWriter.h"

#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/exchange/written_losses.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>
#include <span>

namespace spreadsheet {

namespace {

constexpr std::size_t mostFormula = 8192; ///< characters; other programs take a file with more for damaged

/// The last row with a size, a look or a span of its own.
int lastNamedRow(const SheetSettings& settings)
{
    int last = 0;
    const auto reach = [&last](const auto& byRow) {
        last = byRow.empty() ? last : std::max(last, byRow.rbegin()->first);
    };
    reach(settings.rows.sizes);
    reach(settings.rows.hidden);
    reach(settings.rowStyles);
    for (const CellRange& span : settings.spans)
        last = std::max(last, span.bottom);
    return last;
}

} // namespace

XlsxCellWriter::XlsxCellWriter(XlsxParts& parts, const Sheet& sheet, XmlWriter& xml)
    : m_parts(parts)
    , m_sheet(sheet)
    , m_settings(sheet.settings())
    , m_xml(xml)
    , m_rows(sheet, maxColumns)
    , m_tallCells(sheet)
    , m_spans(m_settings.spans)
{
    std::ranges::sort(m_spans, {}, &CellRange::top);
}

void XlsxCellWriter::write()
{
    m_xml.open("sheetData");
    const int last = std::max(m_rows.lastRow(), lastNamedRow(m_settings));
    std::vector<StoredCell> cells;
    for (int row = 1; row <= last; ++row) {
        m_rows.collect(row, cells);
        addCovered(row, cells);
        this->row(row, cells);
    }
    m_xml.close();
}

/// Blank cells at the edges of spans take the look of the span's first cell: they show its borders.
void XlsxCellWriter::addCovered(int row, std::vector<StoredCell>& cells)
{
    for (; m_nextSpan < m_spans.size() && m_spans[m_nextSpan].top <= row; ++m_nextSpan)
        m_openSpans.push_back(m_spans[m_nextSpan]);
    std::erase_if(m_openSpans, [row](const CellRange& span) { return span.bottom < row; });
    const std::size_t stored = cells.size();
    for (const CellRange& span : m_openSpans) {
        const std::uint32_t style = m_sheet.styleNumber({span.left, span.top});
        const bool isOuter = row == span.top || row == span.bottom;
        for (int column = span.left; column <= span.right && style != 0;
             column = isOuter || column == span.right ? column + 1 : span.right) {
            const auto own = std::span(cells).first(stored);
            if (!std::ranges::binary_search(own, column, {}, &StoredCell::column))
                cells.push_back({column, style, &m_blank, 0});
        }
    }
    if (cells.size() > stored)
        std::ranges::sort(cells, {}, &StoredCell::column);
}

/// Whether the row's height is to be found by who shows it.
bool XlsxCellWriter::followsTexts(int row, const std::vector<StoredCell>& cells)
{
    return !m_settings.rows.sizes.contains(row) && std::ranges::any_of(cells, [&](const StoredCell& cell) {
        return m_tallCells.mayBeTall(*cell.block, cell.index, {cell.column, row});
    });
}

/// The usual height is said where texts need no other: programs would fit a row without one by their own
/// measures.
void XlsxCellWriter::row(int row, const std::vector<StoredCell>& cells)
{
    const auto size = m_settings.rows.sizes.find(row);
    const auto style = m_settings.rowStyles.find(row);
    const bool isHidden = m_settings.rows.hidden.contains(row),
               isStyled = style != m_settings.rowStyles.end();
    const bool isSized = size != m_settings.rows.sizes.end();
    if (cells.empty() && !isHidden && !isStyled && !isSized)
        return;
    m_xml.open("row").attribute("r", row);
    if (isStyled)
        m_xml.attribute("s", m_parts.styles.cellFormat(style->second)).attribute("customFormat", 1);
    const bool follows = followsTexts(row, cells);
    if (!follows)
        m_xml.attribute("ht", (isSized ? size->second : m_settings.rows.defaultSize) / twipsPerPoint);
    if (isHidden)
        m_xml.attribute("hidden", 1);
    if (!follows)
        m_xml.attribute("customHeight", 1);
    for (const StoredCell& stored : cells)
        cell({stored.column, row}, stored);
    m_xml.close();
}

void XlsxCellWriter::cell(CellAddress at, const StoredCell& cell)
{
    const CellStyle& style = m_parts.workbook.styles()[cell.style];
    m_hasLocked |= style.locked;
    countLostControl(style.type, m_parts.warnings);
    m_xml.open("c").attribute("r", cellName(at));
    if (const std::uint32_t format = m_parts.styles.cellFormat(cell.style))
        m_xml.attribute("s", format);
    if (!cell.isBlank()) {
        const std::uint32_t number = cell.formula();
        const std::optional<CellRange> range = number == 0 ? std::nullopt : arrayRange(at, number);
        const CellAddress base = range ? CellAddress{range->left, range->top} : at;
        const auto formula = number != 0 && base == at ? formulaText(at, number) : std::nullopt;
        const bool isResult = formula || base != at;
        constexpr const char* kinds[]{nullptr, nullptr, "s", "b", "e"};
        const char* const kind = kinds[static_cast<std::size_t>(cell.kind())];
        if (kind)
            m_xml.attribute("t", isResult && cell.kind() == ValueKind::text ? "str" : kind);
        if (formula) {
            m_xml.open("f");
            if (range)
                m_xml.attribute("t", "array")
                    .attribute("ref", cellName(base) + ":" + cellName({range->right, range->bottom}));
            m_xml.keepBlanks(*formula).text(*formula).close();
        }
        value(cell.block->value(cell.index), isResult);
    }
    m_xml.close();
}

std::optional<CellRange> XlsxCellWriter::arrayRange(CellAddress at, std::uint32_t formula) const
{
    return m_parts.workbook.formulas()[formula].isArrayFormula ? m_sheet.arrayRange(at) : std::nullopt;
}

/// Nothing, after a warning, if other programs would refuse the formula; its value is written then.
std::optional<std::string> XlsxCellWriter::formulaText(CellAddress base, std::uint32_t formula)
{
    std::string text =
        portableFormula(m_parts.workbook.formulas().text(formula, base), base, m_parts.sheetId);
    if (text.size() <= mostFormula || utf16Of(text).size() <= mostFormula)
        return text;
    m_parts.warnings.add("表“" + m_sheet.name() + "”的 " + cellName(base) +
                         " 写为上次算出的值: 公式超过 8,192 个字");
    return std::nullopt;
}

void XlsxCellWriter::value(const Value& value, bool isResult)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return;
    case ValueKind::number:
        m_xml.open("v").text(value.number()).close();
        return;
    case ValueKind::text:
        if (isResult)
            return resultText(value.textView());
        m_xml.open("v").raw(std::to_string(m_parts.texts.number(value.textView()))).close();
        return;
    case ValueKind::boolean:
        m_xml.open("v").raw(value.boolean() ? "1" : "0").close();
        return;
    case ValueKind::error:
        m_xml.open("v").raw(errorText(value.error())).close();
        return;
    }
}

void XlsxCellWriter::resultText(std::string_view text)
{
    if (const auto cut = cutText(text)) {
        m_parts.warnings.add(longTextWarning);
        m_xml.leaf("v", *cut);
    } else {
        m_xml.leaf("v", text);
    }
}

} // namespace spreadsheet
