#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <array>
#include <string>
#include <string_view>

namespace selfreport {

inline constexpr int mostDecimals = 15;

/// How a cell's figures are shown, as users choose it; a number format code says the same.
struct NumberFormatChoice {
    enum class Kind {
        byType, ///< no code: the cell's data type shows them
        number,
        percent,
        date,
        capitals, ///< amounts written out
        byHand,   ///< any other code
    };
    enum class Negative { minus, red, brackets };
    enum class Zero { digits, dash, blank };
    enum class Unit { yuan, thousands, tenThousands };

    Kind kind = Kind::number;
    bool isGrouped = true;
    int decimals = 2; ///< 0 to mostDecimals
    Negative negative = Negative::minus;
    Zero zero = Zero::digits;
    Unit unit = Unit::yuan;
    bool isApart = false; ///< a blank between the figure and the line beside it
    std::size_t date = 0; ///< of dateFormatCodes
    std::string byHand{};
    friend bool operator==(const NumberFormatChoice&, const NumberFormatChoice&) = default;
};

inline constexpr std::array<std::string_view, 6> dateFormatCodes{"yyyy-mm-dd",    R"(yyyy"年"m"月"d"日")",
                                                                 "yyyy/m/d",      R"(yyyy"年"m"月")",
                                                                 R"(m"月"d"日")", "yyyy-mm-dd hh:mm"};

/// The code of a choice; empty for the data type's own.
std::string formatCode(const NumberFormatChoice& choice);

/// What was chosen for a cell that looks like this, by hand if it was no other choice.
NumberFormatChoice choiceOf(const spreadsheet::CellStyle& style);

/// Whether its numbers are shown with commas between the thousands.
bool groupsThousands(const spreadsheet::CellStyle& style);
/// Gives a style those commas or takes them away; all else of its look stays. Days and times have none.
void groupThousands(spreadsheet::CellStyle& style, bool isGrouped);

} // namespace selfreport
