#include "spreadsheet/files/exchange/alignments.h"

#include "spreadsheet/display/cell_indent.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr unsigned mostIndent = 250, mostTurn = 180;

struct Row {
    Spread carried;
    unsigned number; ///< in files
};

template <class Shown>
struct SpreadRow : Row {
    Shown shown; ///< in its place
};

using Across = HorizontalAlignment;
using Down = VerticalAlignment;

constexpr std::array spreadAcross{SpreadRow<Across>{{Spread::filled, 4}, Across::left},
                                  SpreadRow<Across>{{Spread::justified, 5}, Across::left},
                                  SpreadRow<Across>{{Spread::acrossCells, 6}, Across::centre},
                                  SpreadRow<Across>{{Spread::distributed, 7}, Across::centre}};
constexpr std::array spreadDown{SpreadRow<Down>{{Spread::justified, 3}, Down::top},
                                SpreadRow<Down>{{Spread::distributed, 4}, Down::centre}};

constexpr std::array plainAcross{Across::general, Across::left, Across::centre, Across::right};
constexpr std::array plainDown{Down::top, Down::centre, Down::bottom};

/// The number of what is carried, else that of what is shown.
unsigned numberOf(const auto& spread, const auto& plain, Spread carried, auto shown)
{
    for (const auto& row : spread) {
        if (row.carried == carried && row.shown == shown)
            return row.number;
    }
    return static_cast<unsigned>(std::ranges::find(plain, shown) - plain.begin());
}

/// @return what is carried of a number; the rest is put into `shown`
Spread readNumber(const auto& spread, const auto& plain, unsigned number, auto& shown)
{
    if (number < plain.size())
        shown = plain[number];
    for (const auto& row : spread) {
        if (row.number == number) {
            shown = row.shown;
            return row.carried;
        }
    }
    return Spread::none;
}

} // namespace

void readAlignment(unsigned horizontal, unsigned vertical, CellStyle& style)
{
    style.horizontal = HorizontalAlignment::general;
    style.vertical = VerticalAlignment::bottom;
    style.carried.across = readNumber(spreadAcross, plainAcross, horizontal, style.horizontal);
    style.carried.down = readNumber(spreadDown, plainDown, vertical, style.vertical);
}

void readIndentAndTurn(unsigned indent, unsigned rotation, CellStyle& style)
{
    style.carried.indent = static_cast<std::uint8_t>(std::min(indent, mostIndent));
    const bool isKnown = rotation <= mostTurn || rotation == CarriedAlignment::stackedLetters;
    style.carried.rotation = static_cast<std::uint8_t>(isKnown ? rotation : 0);
}

unsigned horizontalNumber(const CellStyle& style)
{
    return numberOf(spreadAcross, plainAcross, style.carried.across, style.horizontal);
}

unsigned verticalNumber(const CellStyle& style)
{
    return numberOf(spreadDown, plainDown, style.carried.down, style.vertical);
}

unsigned indentSteps(const CellStyle& style)
{
    constexpr unsigned distributed = 7;
    return takesIndent(style) || horizontalNumber(style) == distributed ? style.carried.indent : 0;
}

} // namespace spreadsheet
