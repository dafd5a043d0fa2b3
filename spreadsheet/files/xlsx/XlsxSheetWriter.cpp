#include "spreadsheet/files/xlsx/XlsxSheetWriter.h"

#include "spreadsheet/files/exchange/column_widths.h"
#include "spreadsheet/files/exchange/drop_down_lists.h"
#include "spreadsheet/files/exchange/font_family.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/exchange/line_styles.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/exchange/page_margins.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <xlsxwriter.h>

namespace spreadsheet {

namespace {

constexpr double twipsOfPoint = 20, twipsOfInch = 1440, twipsOfPixel = 15;
constexpr std::size_t mostCharacters = 32'767;

lxw_color_t fileColour(Colour colour)
{
    constexpr lxw_color_t black = LXW_COLOR_BLACK;
    return colour == 0 || colour == automaticColour ? black : colour; // 0 means none to the library
}

/// The library writes 16 digits, rounded: what would round above the largest number stays just below it.
double fileNumber(double number)
{
    constexpr double largest = 1.797693134862315e308;
    return std::clamp(number, -largest, largest);
}

/// Holds a content or a look of its own.
bool isWritten(const CellBlock& block, int index)
{
    return block.kinds()[index] != ValueKind::empty || block.style(index) != 0 || block.formula(index) != 0;
}

std::string withDoubledQuotes(const std::string& text)
{
    std::string doubled;
    for (const char c : text)
        doubled.append(c == '"' ? 2 : 1, c);
    return doubled;
}

lxw_row_t rowOf(CellAddress at)
{
    return static_cast<lxw_row_t>(at.row - 1);
}

lxw_col_t columnOf(CellAddress at)
{
    return static_cast<lxw_col_t>(at.column - 1);
}

lxw_format_alignments horizontalCode(HorizontalAlignment alignment)
{
    switch (alignment) {
    case HorizontalAlignment::left:
        return LXW_ALIGN_LEFT;
    case HorizontalAlignment::right:
        return LXW_ALIGN_RIGHT;
    case HorizontalAlignment::centre:
        return LXW_ALIGN_CENTER;
    case HorizontalAlignment::general:
        break;
    }
    return LXW_ALIGN_NONE;
}

lxw_format_alignments verticalCode(VerticalAlignment alignment)
{
    switch (alignment) {
    case VerticalAlignment::top:
        return LXW_ALIGN_VERTICAL_TOP;
    case VerticalAlignment::centre:
        return LXW_ALIGN_VERTICAL_CENTER;
    case VerticalAlignment::bottom:
        break;
    }
    return LXW_ALIGN_VERTICAL_BOTTOM;
}

void setFont(lxw_format* format, const CellFont& font)
{
    format_set_font_name(format, std::string(fileFamily(font.family.view())).c_str());
    format_set_font_size(format, static_cast<double>(font.points));
    if (font.bold)
        format_set_bold(format);
    if (font.italic)
        format_set_italic(format);
    if (font.underline)
        format_set_underline(format, LXW_UNDERLINE_SINGLE);
    if (font.strikeThrough)
        format_set_font_strikeout(format);
}

void setBorders(lxw_format* format, const CellStyle& style)
{
    using Set = void (*)(lxw_format*, std::uint8_t);
    using SetColour = void (*)(lxw_format*, lxw_color_t);
    const struct {
        const BorderLine& line;
        Set set;
        SetColour setColour;
    } sides[]{{style.left, format_set_left, format_set_left_color},
              {style.right, format_set_right, format_set_right_color},
              {style.top, format_set_top, format_set_top_color},
              {style.bottom, format_set_bottom, format_set_bottom_color}};
    for (const auto& side : sides) {
        const unsigned code = fileLineStyle(side.line.style);
        if (code == 0)
            continue;
        side.set(format, static_cast<std::uint8_t>(code));
        side.setColour(format, fileColour(side.line.colour));
    }
}

} // namespace

XlsxFormats::XlsxFormats(const StylePool& pool, lxw_workbook* book, Warnings& warnings)
    : m_pool(pool)
    , m_book(book)
    , m_warnings(warnings)
    , m_formats(pool.size())
{
    // The format of cells that nobody touched: its font is the one that widths of columns are counted in.
    setFont(STAILQ_FIRST(book->formats), pool[0].font);
}

lxw_format* XlsxFormats::format(std::uint32_t style)
{
    lxw_format*& format = m_formats[style];
    if (!format)
        format = made(m_pool[style]);
    return format;
}

lxw_format* XlsxFormats::made(const CellStyle& style)
{
    lxw_format* const format = workbook_add_format(m_book);
    setFont(format, style.font);
    if (style.foreground != automaticColour)
        format_set_font_color(format, fileColour(style.foreground));
    const std::string code = formatCodeOf(style);
    if (code != "General")
        format_set_num_format(format, code.c_str());
    if (style.horizontal != HorizontalAlignment::general)
        format_set_align(format, static_cast<std::uint8_t>(horizontalCode(style.horizontal)));
    format_set_align(format, static_cast<std::uint8_t>(verticalCode(style.vertical)));
    if (style.wrap)
        format_set_text_wrap(format);
    if (style.background != automaticColour) {
        format_set_pattern(format, LXW_PATTERN_SOLID);
        format_set_bg_color(format, fileColour(style.background));
    }
    setBorders(format, style);
    if (!style.locked)
        format_set_unlocked(format);
    if (style.type == CellType::button || style.type == CellType::checkBox)
        m_warnings.add("按钮和复选框单元格写为普通单元格");
    return format;
}

XlsxSheetWriter::XlsxSheetWriter(const XlsxSheetSource& source, lxw_worksheet* target)
    : m_source(source)
    , m_settings(source.sheet.settings())
    , m_target(target)
{
    const CellFont& font = source.workbook.styles()[0].font;
    m_digitPixels = digitPixels(fileFamily(font.family.view()), font.points);
}

void XlsxSheetWriter::write()
{
    sizes();
    spans(); // before the cells, which it fills
    cells();
    print();
    notes();
    lists();
    protect();
}

void XlsxSheetWriter::sizes()
{
    worksheet_set_default_row(m_target, m_settings.rows.defaultSize / twipsOfPoint, LXW_FALSE);
    columns();
    rows();
    if (m_settings.frozenRows > 0 || m_settings.frozenColumns > 0)
        worksheet_freeze_panes(m_target, static_cast<lxw_row_t>(m_settings.frozenRows),
                               static_cast<lxw_col_t>(m_settings.frozenColumns));
}

/// Every column of the sheet: the library offers no default width. It takes digits to be 7 pixels wide and
/// writes the pixels that it is given divided by 7, so it is given sevenths of our digits.
void XlsxSheetWriter::columns()
{
    const auto signature = [this](int column) {
        const auto style = m_settings.columnStyles.find(column);
        const auto size = m_settings.columns.sizes.find(column);
        return std::tuple(size == m_settings.columns.sizes.end() ? m_settings.columns.defaultSize
                                                                 : size->second,
                          m_settings.columns.hidden.contains(column),
                          style == m_settings.columnStyles.end() ? 0u : style->second);
    };
    constexpr double sevenths = 7;
    const int last = std::min(m_settings.columnCount, maxColumns);
    for (int first = 1; first <= last;) {
        int end = first;
        while (end < last && signature(end + 1) == signature(first))
            ++end;
        const auto& [size, isHidden, style] = signature(first);
        lxw_row_col_options options{};
        options.hidden = isHidden;
        const int whole = static_cast<int>(std::round(size / twipsOfPixel) * twipsOfPixel);
        const double width = std::max(1.0, std::round(columnDigits(whole, m_digitPixels) * sevenths));
        worksheet_set_column_pixels_opt(m_target, static_cast<lxw_col_t>(first - 1),
                                        static_cast<lxw_col_t>(end - 1), static_cast<std::uint32_t>(width),
                                        style == 0 ? nullptr : m_source.formats.format(style), &options);
        first = end + 1;
    }
}

/// Rows that the file names: with cells, or with settings of their own.
std::vector<bool> XlsxSheetWriter::namedRows() const
{
    std::vector<bool> rows;
    const auto name = [&rows](int row) {
        if (rows.size() <= static_cast<std::size_t>(row))
            rows.resize(static_cast<std::size_t>(row) + 1);
        rows[static_cast<std::size_t>(row)] = true;
    };
    for (const auto& [row, size] : m_settings.rows.sizes)
        name(row);
    for (const auto& [row, hidden] : m_settings.rows.hidden)
        name(row);
    for (const auto& [row, style] : m_settings.rowStyles)
        name(row);
    for (int column = 1; column <= m_source.sheet.storedColumns(); ++column) {
        for (const Column::Slot& slot : m_source.sheet.column(column)->slots()) {
            for (int i = 0; i < slot.block->count(); ++i) {
                if (isWritten(*slot.block, i))
                    name(slot.firstRow + i);
            }
        }
    }
    return rows;
}

/// The usual height is said too: programs would fit a row without one to its texts.
void XlsxSheetWriter::rows()
{
    const std::vector<bool> named = namedRows();
    for (int row = 1; row < static_cast<int>(named.size()); ++row) {
        if (!named[static_cast<std::size_t>(row)])
            continue;
        const auto size = m_settings.rows.sizes.find(row);
        const auto style = m_settings.rowStyles.find(row);
        const int twips = size == m_settings.rows.sizes.end() ? m_settings.rows.defaultSize : size->second;
        constexpr double nearly = 0.0001; // the library leaves a height out that is the sheet's usual one
        lxw_row_col_options options{};
        options.hidden = m_settings.rows.hidden.contains(row);
        worksheet_set_row_opt(
            m_target, static_cast<lxw_row_t>(row - 1), twips / twipsOfPoint + nearly,
            style == m_settings.rowStyles.end() ? nullptr : m_source.formats.format(style->second), &options);
    }
}

void XlsxSheetWriter::spans()
{
    for (const CellRange& span : m_settings.spans) {
        if (span.isOneCell()) // other programs know none
            continue;
        const std::uint32_t style = m_source.sheet.styleNumber({span.left, span.top});
        worksheet_merge_range(m_target, static_cast<lxw_row_t>(span.top - 1),
                              static_cast<lxw_col_t>(span.left - 1), static_cast<lxw_row_t>(span.bottom - 1),
                              static_cast<lxw_col_t>(span.right - 1), "", m_source.formats.format(style));
    }
}

void XlsxSheetWriter::cells()
{
    for (int column = 1; column <= m_source.sheet.storedColumns(); ++column) {
        for (const Column::Slot& slot : m_source.sheet.column(column)->slots()) {
            for (int i = 0; i < slot.block->count(); ++i)
                cell({column, slot.firstRow + i}, *slot.block, i);
        }
    }
}

void XlsxSheetWriter::cell(CellAddress at, const CellBlock& block, int index)
{
    if (!isWritten(block, index))
        return;
    const std::uint32_t own = block.style(index), formulaNumber = block.formula(index);
    const std::uint32_t style = own != 0 ? own : m_source.sheet.styleNumber(at);
    m_hasLocked |= m_source.workbook.styles()[style].locked;
    lxw_format* const format = m_source.formats.format(style);
    if (formulaNumber != 0)
        formula(at, formulaNumber, block.value(index), format);
    else
        constant(at, block.value(index), format);
}

void XlsxSheetWriter::constant(CellAddress at, const Value& value, lxw_format* format)
{
    const lxw_row_t row = rowOf(at);
    const lxw_col_t column = columnOf(at);
    if (value.isText()) {
        std::string text(value.textView());
        if (text.size() > mostCharacters && utf16Of(text).size() > mostCharacters) {
            text = utf8Of(utf16Of(text).substr(0, mostCharacters));
            m_source.warnings.add("超过 32,767 个字的文本只写出前面部分");
        }
        worksheet_write_string(m_target, row, column, text.c_str(), format);
    } else if (value.isNumber()) {
        worksheet_write_number(m_target, row, column, fileNumber(value.number()), format);
    } else if (value.isBoolean()) {
        worksheet_write_boolean(m_target, row, column, value.boolean(), format);
    } else if (value.isError()) { // the library has no cells of errors
        const std::string text(errorText(value.error()));
        worksheet_write_formula_str(m_target, row, column, ("=" + text).c_str(), format, text.c_str());
    } else {
        worksheet_write_blank(m_target, row, column, format);
    }
}

void XlsxSheetWriter::formula(CellAddress at, std::uint32_t number, const Value& value, lxw_format* format)
{
    const bool isArray = m_source.workbook.formulas()[number].isArrayFormula;
    const std::optional<CellRange> range = isArray ? m_source.sheet.arrayRange(at) : std::nullopt;
    const CellAddress base = range ? CellAddress{range->left, range->top} : at;
    if (range && base != at) // its value stands in the cell, the formula in the range's first one
        return constant(at, value, format);
    const std::string text =
        "=" + portableFormula(m_source.workbook.formulas().text(number, base), base, m_source.sheetId);
    const double result = value.isNumber()    ? fileNumber(value.number())
                          : value.isBoolean() ? value.boolean()
                                              : 0;
    if (range) {
        worksheet_write_array_formula_num(
            m_target, rowOf(base), columnOf(base), static_cast<lxw_row_t>(range->bottom - 1),
            static_cast<lxw_col_t>(range->right - 1), text.c_str(), format, result);
        return;
    }
    if (value.isText() || value.isError() || value.isBoolean()) {
        const std::string shown = value.isText()      ? std::string(value.textView())
                                  : value.isBoolean() ? (value.boolean() ? "TRUE" : "FALSE")
                                                      : std::string(errorText(value.error()));
        worksheet_write_formula_str(m_target, rowOf(at), columnOf(at), text.c_str(), format, shown.c_str());
        return;
    }
    worksheet_write_formula_num(m_target, rowOf(at), columnOf(at), text.c_str(), format, result);
}

void XlsxSheetWriter::print()
{
    constexpr std::uint8_t a4 = 9;
    const PrintSettings& print = m_settings.print;
    worksheet_set_paper(m_target, a4);
    if (print.landscape)
        worksheet_set_landscape(m_target);
    worksheet_set_margins(m_target, print.marginLeft / twipsOfInch, print.marginRight / twipsOfInch,
                          fileMargin(print.marginTop, print.header).toCells,
                          fileMargin(print.marginBottom, print.footer).toCells);
    if (print.columnHeadings || print.rowHeadings)
        worksheet_print_row_col_headers(m_target);
    worksheet_gridlines(m_target, print.gridLines ? LXW_SHOW_ALL_GRIDLINES : LXW_SHOW_SCREEN_GRIDLINES);
    if (print.centredAcross)
        worksheet_center_horizontally(m_target);
    if (print.centredDown)
        worksheet_center_vertically(m_target);
    if (print.fitWidth)
        worksheet_fit_to_pages(m_target, 1, 0);
    if (!print.colour)
        m_source.warnings.add("单色打印没有写出");
    if (print.titleTop >= 1 && print.titleBottom >= print.titleTop)
        worksheet_repeat_rows(m_target, static_cast<lxw_row_t>(print.titleTop - 1),
                              static_cast<lxw_row_t>(print.titleBottom - 1));
    headers();
    breaks();
}

void XlsxSheetWriter::headers()
{
    const PrintSettings& print = m_settings.print;
    const std::string header = writeForeignHeader(print.header);
    const std::string footer = writeForeignHeader(print.footer);
    lxw_header_footer_options above{}, below{};
    above.margin = fileMargin(print.marginTop, print.header).toHeader;
    below.margin = fileMargin(print.marginBottom, print.footer).toHeader;
    const bool headerFits =
        header.empty() || worksheet_set_header_opt(m_target, header.c_str(), &above) == LXW_NO_ERROR;
    const bool footerFits =
        footer.empty() || worksheet_set_footer_opt(m_target, footer.c_str(), &below) == LXW_NO_ERROR;
    if (!headerFits || !footerFits)
        m_source.warnings.add("表“" + m_source.sheet.name() + "”的页眉或页脚太长 (超过 255 个字),没有写出");
}

void XlsxSheetWriter::breaks()
{
    std::vector<lxw_row_t> rows;
    for (const auto& [row, isBreak] : m_settings.print.rowBreaks)
        rows.push_back(static_cast<lxw_row_t>(row - 1));
    std::vector<lxw_col_t> columns;
    for (const auto& [column, isBreak] : m_settings.print.columnBreaks)
        columns.push_back(static_cast<lxw_col_t>(column - 1));
    rows.push_back(0); // ends the list
    columns.push_back(0);
    if (rows.size() > 1)
        worksheet_set_h_pagebreaks(m_target, rows.data());
    if (columns.size() > 1)
        worksheet_set_v_pagebreaks(m_target, columns.data());
}

void XlsxSheetWriter::notes()
{
    for (const auto& [at, text] : m_settings.notes) {
        if (worksheet_write_comment(m_target, rowOf(at), columnOf(at), text.c_str()) != LXW_NO_ERROR)
            m_source.warnings.add("表“" + m_source.sheet.name() + "”的 " + cellName(at) +
                                  " 的批注太长,没有写出");
    }
}

/// Input that is not in a list stays allowed, as in our cells.
void XlsxSheetWriter::lists()
{
    constexpr std::size_t mostLists = 255; // the library counts them in 8 bits
    const std::vector<DropDownList> lists =
        writtenLists(m_source.sheet, m_source.workbook.styles(), maxRows, m_source.warnings);
    if (lists.size() > mostLists)
        m_source.warnings.add("表“" + m_source.sheet.name() + "”的下拉列表太多,只写出前面 255 处");
    for (const DropDownList& list : std::span(lists).first(std::min(lists.size(), mostLists))) {
        std::vector<std::string> entries;
        for (const std::string& entry : *list.entries)
            entries.push_back(withDoubledQuotes(entry));
        std::vector<const char*> texts;
        for (const std::string& entry : entries)
            texts.push_back(entry.c_str());
        texts.push_back(nullptr);
        lxw_data_validation check{};
        check.validate = LXW_VALIDATION_TYPE_LIST;
        check.value_list = const_cast<char**>(texts.data()); // NOLINT: the library copies them
        check.show_error = LXW_VALIDATION_OFF;
        worksheet_data_validation_range(m_target, static_cast<lxw_row_t>(list.range.top - 1),
                                        static_cast<lxw_col_t>(list.range.left - 1),
                                        static_cast<lxw_row_t>(list.range.bottom - 1),
                                        static_cast<lxw_col_t>(list.range.right - 1), &check);
    }
}

/// A cell marked as locked says that somebody meant it.
void XlsxSheetWriter::protect()
{
    if (m_hasLocked)
        worksheet_protect(m_target, nullptr, nullptr);
}

} // namespace spreadsheet
