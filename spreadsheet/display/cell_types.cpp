#include "spreadsheet/display/cell_types.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/decimal_text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace spreadsheet {

namespace {

std::string twoFigures(int number)
{
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

std::string shownDate(double serial, const CellStyle& /*style*/, bool from1904)
{
    constexpr double daysFrom1900To1904 = 1462;
    const auto day = dayOfSerial(from1904 && serial >= 0 ? serial + daysFrom1900To1904 : serial);
    if (!day)
        return generalNumberText(serial);
    return twoFigures(day->year / 100) + twoFigures(day->year) + "-" + twoFigures(day->month) + "-" +
           twoFigures(day->day);
}

std::string shownTime(double serial, const CellStyle& /*style*/, bool /*from1904*/)
{
    if (!(serial >= 0 && serial <= lastSerial))
        return generalNumberText(serial);
    const auto seconds = static_cast<int>(std::llround((serial - std::floor(serial)) * 86400.0)) % 86400;
    return twoFigures(seconds / 3600) + ":" + twoFigures(seconds / 60 % 60) + ":" + twoFigures(seconds % 60);
}

std::string shownCurrency(double number, const CellStyle& /*style*/, bool /*from1904*/)
{
    const std::string text = fixedNumberText(number, 2, true);
    return text.starts_with('-') ? "-￥" + text.substr(1) : "￥" + text;
}

std::string shownFixed(double number, const CellStyle& style, bool /*from1904*/)
{
    return fixedNumberText(number, style.decimals);
}

std::string shownPercent(double number, const CellStyle& /*style*/, bool /*from1904*/)
{
    // The point moves two places on the decimal digits: a product by 100 would bring its own error.
    Decimal share = shownDecimal(number);
    share.exponent += 2;
    return fixedText(share, 2, false) + "%";
}

std::string shownScientific(double number, const CellStyle& /*style*/, bool /*from1904*/)
{
    return scientificText(shownDecimal(number), 2);
}

std::string editedPercent(double number, const CellStyle& /*style*/)
{
    return generalNumberText(number * 100) + "%";
}

std::string editedMoment(double number, const CellStyle& style)
{
    return displayText(Value(number), style);
}

std::string fixedCode(const CellStyle& style)
{
    return style.decimals == 0 ? "0" : "0." + std::string(style.decimals, '0');
}

using Holds = CellHolds;

constexpr CellTypeRow typeRows[] = {
    {.type = CellType::date,
     .name = "日期型",
     .holds = Holds::days,
     .shows = shownDate,
     .edited = editedMoment,
     .formatCode = [](const CellStyle&) -> std::string { return "yyyy-mm-dd"; }},
    {.type = CellType::edit, .name = "字符型"},
    {.type = CellType::currency,
     .name = "货币型",
     .holds = Holds::numbers,
     .shows = shownCurrency,
     .formatCode = [](const CellStyle&) -> std::string { return R"("￥"#,##0.00)"; }},
    {.type = CellType::number,
     .name = "数字型",
     .holds = Holds::numbers,
     .takesDecimals = true,
     .shows = shownFixed,
     .formatCode = fixedCode},
    {.type = CellType::percent,
     .name = "百分比",
     .holds = Holds::numbers,
     .shows = shownPercent,
     .edited = editedPercent,
     .formatCode = [](const CellStyle&) -> std::string { return "0.00%"; }},
    {.type = CellType::scientific,
     .name = "科学计数法",
     .holds = Holds::numbers,
     .shows = shownScientific,
     .formatCode = [](const CellStyle&) -> std::string { return "0.00E+00"; }},
    {.type = CellType::staticText, .name = "静态文本框"},
    {.type = CellType::time,
     .name = "时间型",
     .holds = Holds::times,
     .shows = shownTime,
     .edited = editedMoment,
     .formatCode = [](const CellStyle&) -> std::string { return "hh:mm:ss"; }},
    {.type = CellType::button, .name = "按钮型", .isControl = true},
    {.type = CellType::dropDown, .name = "下拉框"},
    {.type = CellType::checkBox, .name = "复选框", .isControl = true},
};

constexpr std::size_t highestCode =
    static_cast<std::size_t>(std::ranges::max(typeRows, {}, &CellTypeRow::type).type);

/// For each code the index of its row; that of edit where no type has it.
constexpr auto rowOfCode = [] {
    std::array<std::uint8_t, highestCode + 1> found{};
    for (std::uint8_t row = 0; row < std::size(typeRows); ++row)
        if (typeRows[row].type == CellType::edit)
            found.fill(row);
    for (std::uint8_t row = 0; row < std::size(typeRows); ++row)
        found[static_cast<std::size_t>(typeRows[row].type)] = row;
    return found;
}();

} // namespace

std::span<const CellTypeRow> cellTypes()
{
    return typeRows;
}

const CellTypeRow& cellTypeRow(CellType type)
{
    const auto code = static_cast<std::size_t>(type);
    return typeRows[rowOfCode[code <= highestCode ? code : static_cast<std::size_t>(CellType::edit)]];
}

std::optional<CellType> cellTypeOf(int code)
{
    const auto found =
        std::ranges::find(typeRows, code, [](const CellTypeRow& row) { return static_cast<int>(row.type); });
    return found == std::end(typeRows) ? std::nullopt : std::optional(found->type);
}

std::string formatCodeOfType(const CellStyle& style)
{
    const CellTypeRow& row = cellTypeRow(style.type);
    return row.formatCode ? row.formatCode(style) : std::string();
}

} // namespace spreadsheet
