#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <array>

namespace spreadsheet {

/// The 56 colours that a workbook file counts from number 8; below them stand the first eight once more.
class Palette {
public:
    static constexpr unsigned first = 8;
    static constexpr unsigned count = 56;
    static constexpr unsigned text = 64;       ///< the window's text colour
    static constexpr unsigned background = 65; ///< the window's paper colour

    Palette(); ///< the colours of a file that names none

    /// automaticColour for a number that stands for the surroundings' own.
    Colour operator[](unsigned number) const;
    void set(unsigned place, Colour colour) { m_colours[place] = colour; }
    const std::array<Colour, count>& colours() const { return m_colours; }

private:
    std::array<Colour, count> m_colours;
};

/// Gives colours their numbers in a file: that of an equal one, else a place that nothing uses; when all
/// 56 are taken the nearest one.
class PaletteBuilder {
public:
    unsigned number(Colour colour);
    const Palette& palette() const { return m_palette; }
    bool isChanged() const { return m_isChanged; }
    bool hasApproximated() const { return m_hasApproximated; }

private:
    unsigned nearest(Colour colour) const;

    Palette m_palette;
    std::array<bool, Palette::count> m_used{};
    bool m_isChanged = false;
    bool m_hasApproximated = false;
};

} // namespace spreadsheet
