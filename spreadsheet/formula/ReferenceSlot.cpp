#include "spreadsheet/formula/ReferenceSlot.h"

#include "spreadsheet/values/CellError.h"
#include "text/ascii.h"
#include "text/quotes.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace spreadsheet {

namespace {

void appendColumn(AxisPoint point, int base, std::uint8_t lowerCase, std::string& text)
{
    if (point.absolute)
        text += '$';
    std::string letters = columnName(point.at(base));
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (lowerCase >> i & 1)
            letters[i] = ascii::lower(letters[i]);
    }
    text += letters;
}

void appendRow(AxisPoint point, int base, std::string& text)
{
    if (point.absolute)
        text += '$';
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), point.at(base));
    text.append(digits.data(), end.ptr);
}

/// "R1C1", "RC", "c2": a reference in a notation that other programs know.
bool isCellByNumbers(std::string_view name)
{
    const auto take = [&name](char letter) {
        if (name.empty() || ascii::upper(name.front()) != letter)
            return;
        do
            name.remove_prefix(1);
        while (!name.empty() && ascii::isDigit(name.front()));
    };
    take('R');
    take('C');
    return name.empty();
}

bool needsQuotes(std::string_view name)
{
    if (name.empty() || ascii::isDigit(name.front()) || name.front() == '.' || parseCellName(name) ||
        isCellByNumbers(name) || ascii::equalFolded(name, "TRUE") || ascii::equalFolded(name, "FALSE"))
        return true;
    for (const std::string_view sign : {"（", "）", "，", "；", "\u3000"}) { // formulas take them as signs
        if (name.find(sign) != std::string_view::npos)
            return true;
    }
    return !std::ranges::all_of(name, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || byte == '_' || byte == '.' || ascii::isDigit(c) || ascii::isLetter(c);
    });
}

} // namespace

std::optional<CellRange> ReferenceSlot::range(CellAddress base) const
{
    if (shape == Shape::broken)
        return std::nullopt;
    CellRange cells{1, 1, maxColumns, maxRows};
    if (shape != Shape::rows) {
        cells.left = left.at(base.column);
        cells.right = shape == Shape::cell ? cells.left : right.at(base.column);
        if (cells.left > cells.right)
            std::swap(cells.left, cells.right);
    }
    if (shape != Shape::columns) {
        cells.top = top.at(base.row);
        cells.bottom = shape == Shape::cell ? cells.top : bottom.at(base.row);
        if (cells.top > cells.bottom)
            std::swap(cells.top, cells.bottom);
    }
    if (cells.left < 1 || cells.right > maxColumns || cells.top < 1 || cells.bottom > maxRows)
        return std::nullopt;
    return cells;
}

void ReferenceSlot::render(CellAddress base, std::string& text) const
{
    text += sheetText;
    if (!range(base)) {
        text += errorText(CellError::ref);
        return;
    }
    if (shape != Shape::rows)
        appendColumn(left, base.column, lowerCaseLeft, text);
    if (shape != Shape::columns)
        appendRow(top, base.row, text);
    if (shape == Shape::cell)
        return;
    text += ':';
    if (shape != Shape::rows)
        appendColumn(right, base.column, lowerCaseRight, text);
    if (shape != Shape::columns)
        appendRow(bottom, base.row, text);
}

void ReferenceSlot::appendKey(std::string& key) const
{
    const auto append = [&key](int number) {
        key.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    key += static_cast<char>('A' + static_cast<int>(shape));
    key += static_cast<char>(left.absolute | top.absolute << 1 | right.absolute << 2 | bottom.absolute << 3);
    key += static_cast<char>(lowerCaseLeft | lowerCaseRight << 3);
    append(left.value);
    append(top.value);
    if (shape != Shape::cell) {
        append(right.value);
        append(bottom.value);
    }
    if (firstSheet != 0) {
        append(firstSheet);
        append(lastSheet);
    }
    key += sheetText; // a broken reference may still name a sheet that is gone
}

std::string sheetPrefix(std::string_view sheetName, std::string_view lastSheetName, bool quoted)
{
    std::string names(sheetName);
    if (!lastSheetName.empty())
        names.append(":").append(lastSheetName);
    if (!quoted && !needsQuotes(sheetName) && (lastSheetName.empty() || !needsQuotes(lastSheetName)))
        return names + "!";
    return quotes::around(names, '\'') + "!";
}

std::optional<std::string> takeSheetName(std::string_view& reference)
{
    const std::size_t mark = reference.rfind('!');
    if (mark == reference.npos)
        return std::nullopt;
    const std::string_view prefix = reference.substr(0, mark);
    reference.remove_prefix(mark + 1);
    if (prefix.size() < 2 || !prefix.starts_with('\'') || !prefix.ends_with('\''))
        return std::string(prefix);
    return quotes::within(prefix);
}

} // namespace spreadsheet
