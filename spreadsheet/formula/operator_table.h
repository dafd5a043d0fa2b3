#pragma once
#include "spreadsheet/formula/Formula.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace spreadsheet {

/// An operator of formulas. Those between operands all group from the left: 2^3^2 is 64.
struct OperatorRow {
    enum class Place : std::uint8_t { before, between, behind }; ///< its operands
    std::string_view text;
    Place place;
    Op op;
    int precedence;        ///< higher ones bind tighter
    std::uint8_t xlsToken; ///< its number in .xls files
};

inline constexpr int signPrecedence = 6, percentPrecedence = 5; ///< a sign binds tighter: -2^2 is 4
inline constexpr int powerPrecedence = 4; ///< of the tightest one between values; above signs: references

inline constexpr std::array operatorTable{
    OperatorRow{":", OperatorRow::Place::between, Op::range, 9, 0x11},
    OperatorRow{" ", OperatorRow::Place::between, Op::intersect, 8, 0x0F},
    OperatorRow{",", OperatorRow::Place::between, Op::unite, 7, 0x10},
    OperatorRow{"-", OperatorRow::Place::before, Op::negate, signPrecedence, 0x13},
    OperatorRow{"+", OperatorRow::Place::before, Op::plus, signPrecedence, 0x12},
    OperatorRow{"%", OperatorRow::Place::behind, Op::percent, percentPrecedence, 0x14},
    OperatorRow{"^", OperatorRow::Place::between, Op::power, powerPrecedence, 0x07},
    OperatorRow{"*", OperatorRow::Place::between, Op::multiply, 3, 0x05},
    OperatorRow{"/", OperatorRow::Place::between, Op::divide, 3, 0x06},
    OperatorRow{"+", OperatorRow::Place::between, Op::add, 2, 0x03},
    OperatorRow{"-", OperatorRow::Place::between, Op::subtract, 2, 0x04},
    OperatorRow{"&", OperatorRow::Place::between, Op::concatenate, 1, 0x08},
    OperatorRow{"=", OperatorRow::Place::between, Op::equal, 0, 0x0B},
    OperatorRow{"<>", OperatorRow::Place::between, Op::notEqual, 0, 0x0E},
    OperatorRow{"<", OperatorRow::Place::between, Op::less, 0, 0x09},
    OperatorRow{"<=", OperatorRow::Place::between, Op::lessEqual, 0, 0x0A},
    OperatorRow{">", OperatorRow::Place::between, Op::greater, 0, 0x0D},
    OperatorRow{">=", OperatorRow::Place::between, Op::greaterEqual, 0, 0x0C},
};

/// By its text at a place; null if there is none.
constexpr const OperatorRow* findOperator(std::string_view text, OperatorRow::Place place)
{
    const auto found = std::ranges::find_if(
        operatorTable, [&](const OperatorRow& row) { return row.place == place && row.text == text; });
    return found == operatorTable.end() ? nullptr : &*found;
}

/// By its number in .xls files; null for the token of anything else.
constexpr const OperatorRow* findOperator(std::uint8_t xlsToken)
{
    const auto found = std::ranges::find(operatorTable, xlsToken, &OperatorRow::xlsToken);
    return found == operatorTable.end() ? nullptr : &*found;
}

} // namespace spreadsheet
