#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/files/xlsx/XlsxSheetReader.h"
#include "spreadsheet/files/xlsx/xml.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/values/range_overlap.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace spreadsheet {

// A sheet may have a million cells, so rows and cells are read as they come by, without a tree of them. Array
// formulas wait until all cells are read.

namespace {

constexpr std::int64_t mostArrayCells = 1 << 20;

int integer(std::string_view text, int otherwise)
{
    text = ascii::trimmed(text);
    int number = 0;
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, number).ptr == end && !text.empty() ? number : otherwise;
}

/// Texts of a text with runs; phonetic ones are left out.
std::string runsOf(XmlScanner& xml)
{
    std::string text;
    for (auto kind = xml.next(); kind != XmlScanner::Kind::end; kind = xml.next()) {
        if (kind != XmlScanner::Kind::start)
            continue;
        if (xml.name() == "t")
            text += textOf(xml.content());
        else if (xml.name() == "r")
            text += runsOf(xml);
        else
            xml.content();
    }
    return text;
}

/// "2026-12-31T13:45:00", "2026-12-31" or "13:45:00" as a serial number.
std::optional<double> dateOf(std::string_view text, bool from1904)
{
    text = ascii::trimmed(text);
    std::array<double, 6> parts{}; // year, month, day, hour, minute, second
    const bool isTime = std::min(text.find(':'), text.size()) < text.find_first_of("-T", 1);
    if (isTime && text.starts_with('T'))
        text.remove_prefix(1);
    std::size_t read = isTime ? 3 : 0;
    for (; read < parts.size() && !text.empty(); ++read) {
        const std::size_t end = std::min(text.find_first_of("-T:Z"), text.size());
        const auto number = parseNumber(text.substr(0, end));
        if (!number || *number < 0 || *number > 9999)
            break;
        parts[read] = *number;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const double ofDay = (parts[3] * 3600 + parts[4] * 60 + parts[5]) / 86400.0;
    if (isTime)
        return read > 4 ? std::optional(ofDay) : std::nullopt;
    if (read < 3)
        return std::nullopt;
    const auto serial =
        serialOfDay(static_cast<int>(parts[0]), static_cast<int>(parts[1]), static_cast<int>(parts[2]));
    const int shift = from1904 ? daysFrom1900To1904 : 0;
    return serial && *serial >= shift ? std::optional(*serial - shift + ofDay) : std::nullopt;
}

} // namespace

void XlsxSheetReader::rows(std::span<char> data)
{
    XmlScanner xml(data);
    int number = 0;
    for (auto kind = xml.next(); kind != XmlScanner::Kind::done; kind = xml.next()) {
        if (kind == XmlScanner::Kind::start && xml.name() == "row")
            row(xml, number);
        else if (kind == XmlScanner::Kind::start)
            xml.content();
    }
}

/// @param number  of the row before
void XlsxSheetReader::row(XmlScanner& xml, int& number)
{
    const RowHead head = rowHead(xml);
    number = head.number == 0 ? number + 1 : head.number;
    requireFile(number >= 1 && number <= maxRows, "行号超出范围");
    rowSettings(head, number);
    int column = 0;
    for (auto kind = xml.next(); kind != XmlScanner::Kind::end; kind = xml.next()) {
        if (kind != XmlScanner::Kind::start)
            continue;
        if (xml.name() != "c") {
            xml.content();
            continue;
        }
        const CellText text = cellText(xml);
        CellAddress at{column + 1, number};
        if (!text.name.empty()) {
            const auto parsed = parseCellName(text.name);
            requireFile(parsed.has_value(), "单元格的名称不对");
            at = *parsed;
        }
        requireFile(at.column <= maxColumns, "列号超出范围");
        column = at.column;
        cell(text, at);
    }
}

XlsxSheetReader::RowHead XlsxSheetReader::rowHead(const XmlScanner& xml)
{
    RowHead head;
    for (const auto& [name, value] : xml.attributes()) {
        if (name == "r")
            head.number = integer(value, -1);
        else if (name == "ht")
            head.height = twipsOf(fileNumber(value).value_or(0));
        else if (name == "hidden")
            head.isHidden = isTrue(value);
        else if (name == "customFormat")
            head.isFormatted = isTrue(value);
        else if (name == "s")
            head.format = static_cast<unsigned>(std::max(integer(value, 0), 0));
        else if (name == "outlineLevel")
            head.isOutlined = integer(value, 0) > 0;
    }
    return head;
}

void XlsxSheetReader::rowSettings(const RowHead& head, int row)
{
    if (head.height > 0 && head.height != m_settings.rows.defaultSize)
        m_settings.rows.sizes[row] = head.height;
    if (head.isHidden)
        m_settings.rows.hidden[row] = true;
    if (head.isOutlined)
        m_warnings.count("{} 行的分级显示没有引入");
    if (head.isFormatted) {
        if (const std::uint32_t style = m_styles.style(head.format, m_isProtected))
            m_settings.rowStyles[row] = style;
    }
    m_lastRow = std::max(m_lastRow, row);
}

/// The element that the scanner stands in, as a whole.
XlsxSheetReader::CellText XlsxSheetReader::cellText(XmlScanner& xml)
{
    CellText cell;
    for (const auto& [name, value] : xml.attributes()) {
        if (name == "r")
            cell.name = value;
        else if (name == "s")
            cell.format = static_cast<unsigned>(std::max(integer(value, 0), 0));
        else if (name == "t")
            cell.type = value;
    }
    for (auto kind = xml.next(); kind != XmlScanner::Kind::end; kind = xml.next()) {
        if (kind != XmlScanner::Kind::start)
            continue;
        if (xml.name() == "v")
            cell.value = xml.content();
        else if (xml.name() == "f")
            cell.formula = cellFormula(xml);
        else if (xml.name() == "is")
            cell.rich = runsOf(xml);
        else
            xml.content();
    }
    return cell;
}

XlsxSheetReader::CellFormula XlsxSheetReader::cellFormula(XmlScanner& xml)
{
    CellFormula formula;
    for (const auto& [name, value] : xml.attributes()) {
        if (name == "t")
            formula.kind = value;
        else if (name == "ref")
            formula.range = value;
        else if (name == "si")
            formula.group = integer(value, 0);
    }
    formula.text = xml.content();
    return formula;
}

void XlsxSheetReader::cell(const CellText& text, CellAddress at)
{
    reach({at.column, at.row, at.column, at.row});
    const Column::Place place = m_sheet.loadColumn(at.column).writable(at.row);
    place.block.setStyle(place.index, m_styles.style(text.format, m_isProtected));
    if (text.value || text.rich)
        place.block.setValue(place.index, value(text));
    if (text.formula)
        formula(*text.formula, at, place);
}

Value XlsxSheetReader::value(const CellText& cell) const
{
    const std::string_view type = cell.type, text = cell.value.value_or(std::string_view());
    if (type == "s") {
        const auto number = static_cast<std::size_t>(integer(text, std::numeric_limits<int>::max()));
        if (number >= m_book.texts.size())
            m_warnings.add("有单元格的文本编号超出文本表,按空白引入");
        return number < m_book.texts.size() ? Value(m_book.texts[number]) : Value();
    }
    if (type == "inlineStr")
        return m_workbook.texts().intern(cell.rich ? *cell.rich : textOf(text));
    if (type == "str")
        return textResult(textOf(text));
    if (type == "b")
        return Value::boolean(text == "1" || text == "true");
    if (type == "e")
        return parseErrorText(text).value_or(CellError::value);
    return numberValue(text, type == "d");
}

Value XlsxSheetReader::numberValue(std::string_view text, bool isDate) const
{
    if (ascii::trimmed(text).empty())
        return {};
    if (const std::optional<double> number =
            isDate ? dateOf(text, m_workbook.countsFrom1904()) : fileNumber(text))
        return *number;
    m_warnings.add("有单元格的数字看不懂,按文本引入");
    return Value::text(text);
}

/// Programs that leave all computing to the reader write errors and truth values of formulas as texts.
Value XlsxSheetReader::textResult(std::string_view text) const
{
    if (m_book.leavesComputing) {
        if (const auto error = parseErrorText(text))
            return *error;
        if (text == "TRUE" || text == "FALSE")
            return Value::boolean(text == "TRUE");
    }
    return m_workbook.texts().intern(text);
}

/// True if the column's formula before this one shows this text here: it is the same then and need not be
/// read. An error's text may stand for a reference that leads out of the sheet, or for itself.
bool XlsxSheetReader::continuesAbove(std::string_view text, CellAddress at) const
{
    const auto column = static_cast<std::size_t>(at.column);
    const std::uint32_t above = column < m_above.size() ? m_above[column] : 0;
    return above != 0 && text.find('#') == std::string_view::npos &&
           m_workbook.formulas().text(above, at) == text;
}

std::uint32_t XlsxSheetReader::interned(std::string_view text, CellAddress at, bool isArray)
{
    const std::string plain = m_book.names.plain(plainFormula(text), m_sheet.name(), at);
    if (!isArray && continuesAbove(plain, at))
        return m_above[static_cast<std::size_t>(at.column)];
    std::string problem = "引用其他文件";
    if (plain.find('[') == std::string::npos || plain.find('"') < plain.find('[')) {
        const auto parsed = m_workbook.formulas().intern(plain, at, m_sheetId, isArray);
        if (const auto* number = std::get_if<std::uint32_t>(&parsed)) {
            m_above.resize(std::max(m_above.size(), static_cast<std::size_t>(at.column) + 1));
            if (!isArray)
                m_above[static_cast<std::size_t>(at.column)] = *number;
            return *number;
        }
        problem = std::get<Refusal>(parsed).reason();
    }
    m_warnings.add("表“" + m_sheet.name() + "”的 " + cellName(at) + " 保留了上次算出的值: " + problem);
    return 0;
}

void XlsxSheetReader::formula(const CellFormula& formula, CellAddress at, const Column::Place& place)
{
    const std::string_view kind = formula.kind;
    std::string text = textOf(formula.text);
    if (text.starts_with('=')) // as some programs write it
        text.erase(0, 1);
    if (kind == "dataTable") {
        m_warnings.add("模拟运算表保留了上次算出的值");
        return;
    }
    if (kind == "array") {
        const auto range = parseRangeName(formula.range);
        const CellRange own = range.value_or(CellRange{at.column, at.row, at.column, at.row});
        if (const std::uint32_t number = interned(text, {own.left, own.top}, true))
            m_arrays.push_back({own, number});
        return;
    }
    if (m_book.leavesComputing && parseErrorText(text)) // a constant that could only be written as a formula
        return;
    std::uint32_t number = 0;
    if (kind == "shared") {
        // In relative form it is the same for all cells that share it.
        const int group = formula.group;
        if (!text.empty())
            m_shared[group] = interned(text, at, false);
        const auto found = m_shared.find(group);
        if (found == m_shared.end())
            m_sharing.emplace_back(group, at);
        else
            number = found->second;
    } else if (!text.empty()) {
        number = interned(text, at, false);
    }
    if (number != 0)
        place.block.setFormula(place.index, number);
}

/// Formulas of cells that stand before the one whose formula they share.
void XlsxSheetReader::sharedFormulas()
{
    for (const auto& [group, at] : m_sharing) {
        const auto [shared, isMissing] = m_shared.try_emplace(group, 0);
        if (isMissing) // told once
            m_warnings.add("表“" + m_sheet.name() + "”的 " + cellName(at) +
                           " 等单元格保留了上次算出的值: 共用的公式不在文件中");
        const Column::Place place = m_sheet.loadColumn(at.column).writable(at.row);
        if (shared->second != 0)
            place.block.setFormula(place.index, shared->second);
    }
}

void XlsxSheetReader::arrays()
{
    std::vector<CellRange> ranges;
    std::int64_t cells = 0;
    for (const ArrayFormula& array : m_arrays) {
        ranges.push_back(array.range);
        cells += std::int64_t(array.range.rows()) * array.range.columns();
    }
    if (cells > mostArrayCells || anyOverlap(ranges)) {
        m_warnings.add("表“" + m_sheet.name() + "”的数组公式互相重叠或太大,保留了上次算出的值");
        return;
    }
    for (const ArrayFormula& array : m_arrays) {
        for (int column = array.range.left; column <= array.range.right; ++column) {
            for (int row = array.range.top; row <= array.range.bottom; ++row) {
                const Column::Place place = m_sheet.loadColumn(column).writable(row);
                place.block.setFormula(place.index, array.number);
            }
        }
        reach(array.range);
    }
    m_settings.arrays = std::move(ranges);
}

} // namespace spreadsheet
