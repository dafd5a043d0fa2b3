#pragma once
#include "spreadsheet/values/Text.h"

#include <array>
#include <cstdint>
#include <optional>

namespace spreadsheet {

/// How a cell shows and takes its value. The codes are stored in the content file: never renumber.
enum class CellType : std::uint8_t {
    date = 0,
    edit = 1, ///< the type of a fresh cell: whatever is typed
    staticText = 5,
    time = 6,
    button = 7,
    dropDown = 8,
    checkBox = 10,
    currency = 12,
    number = 13,
    percent = 14,
    scientific = 15,
};

/// The type of a code; nothing if no type has it.
std::optional<CellType> cellTypeOf(int code);

enum class HorizontalAlignment : std::uint8_t {
    left = 0,
    right = 1,
    centre = 2,
    general = 3, ///< numbers right, texts left, truth values and errors centred
};

enum class VerticalAlignment : std::uint8_t { top = 0, centre = 1, bottom = 2 };

/// How a text is spread over its cell. The codes are stored in the content file: never renumber.
enum class Spread : std::uint8_t { none = 0, filled = 1, justified = 2, acrossCells = 3, distributed = 4 };

/// What other programs know of a cell's alignment beyond what commands set here. It is carried along, so that
/// a file goes back as it came.
struct CarriedAlignment {
    Spread across = Spread::none; ///< counts while the cell is aligned as what is shown in its place
    Spread down = Spread::none;   ///< likewise; justified or distributed
    std::uint8_t indent = 0;      ///< in steps of three blanks
    std::uint8_t rotation = 0;    ///< degrees: 1 to 90 upwards, 91 to 180 for 1 to 90 downwards;
                                  ///< stackedLetters
    static constexpr std::uint8_t stackedLetters = 255;
    friend bool operator==(const CarriedAlignment&, const CarriedAlignment&) = default;
};

/// Line styles of a border. The codes are stored in the content file: never renumber.
enum class LineStyle : std::uint8_t {
    none = 0,
    solid = 1,
    dash = 2,
    dot = 3,
    dashDot = 4,
    dashDotDot = 5,
    erase = 6, ///< takes border and grid line away
    fineSolid = 7,
    fineDash = 8,
    fineDot = 9,
    fineDashDot = 10,
    fineDashDotDot = 11,
    thick = 12,
    doubled = 13, ///< two lines beside each other
    medium = 14,  ///< between the plain line and the thick one
    slantedDashDot = 15,
};
inline constexpr LineStyle lastLineStyle = LineStyle::slantedDashDot;

/// 0xRRGGBB; `automatic` stands for the surroundings' own text or paper colour.
using Colour = std::uint32_t;
inline constexpr Colour automaticColour = 0xFFFFFFFF;

struct BorderLine {
    LineStyle style = LineStyle::none;
    Colour colour = 0;
    friend bool operator==(const BorderLine&, const BorderLine&) = default;
};

/// A side of a cell in a span that shows no line although the span's first cell has one there.
inline constexpr BorderLine openSide{LineStyle::none, automaticColour};

/// What a cell shows at the outline of its span: its own line, else that of the span's first cell.
inline const BorderLine& spanLine(const BorderLine& own, const BorderLine& first)
{
    return own.style != LineStyle::none || own == openSide ? own : first;
}

struct CellFont {
    Text family;      ///< empty: the workbook's default family
    float points = 9; ///< size in points
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeThrough = false;
    friend bool operator==(const CellFont&, const CellFont&) = default;
};

/// Everything about a cell's look. Equal styles share one entry of the style pool.
struct CellStyle {
    CellType type = CellType::edit;
    std::uint8_t decimals = 2; ///< of the number type, 0 to 15
    HorizontalAlignment horizontal = HorizontalAlignment::general;
    VerticalAlignment vertical = VerticalAlignment::centre;
    bool wrap = false;
    bool locked = false;
    Colour foreground = automaticColour;
    Colour background = automaticColour;
    CellFont font;
    BorderLine left, right, top, bottom;
    Text numberFormat; ///< format code brought along by an imported file; empty: the type decides
    CarriedAlignment carried;
    friend bool operator==(const CellStyle&, const CellStyle&) = default;
};

std::size_t hashOf(const CellStyle& style);

} // namespace spreadsheet
