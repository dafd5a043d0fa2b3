#include "spreadsheet/files/exchange/Palette.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::array<Colour, Palette::count> usualColours{
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF, 0x800000, 0x008000,
    0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080, 0x9999FF, 0x993366, 0xFFFFCC, 0xCCFFFF,
    0x660066, 0xFF8080, 0x0066CC, 0xCCCCFF, 0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000,
    0x008080, 0x0000FF, 0x00CCFF, 0xCCFFFF, 0xCCFFCC, 0xFFFF99, 0x99CCFF, 0xFF99CC, 0xCC99FF, 0xFFCC99,
    0x3366FF, 0x33CCCC, 0x99CC00, 0xFFCC00, 0xFF9900, 0xFF6600, 0x666699, 0x969696, 0x003366, 0x339966,
    0x003300, 0x333300, 0x993300, 0x993366, 0x333399, 0x333333,
};

int channel(Colour colour, int shift)
{
    return static_cast<int>(colour >> shift & 0xFF);
}

int distance(Colour a, Colour b)
{
    int sum = 0;
    for (const int shift : {0, 8, 16})
        sum += (channel(a, shift) - channel(b, shift)) * (channel(a, shift) - channel(b, shift));
    return sum;
}

} // namespace

Palette::Palette()
    : m_colours(usualColours)
{
}

Colour Palette::operator[](unsigned number) const
{
    if (number < first)
        return usualColours[number];
    return number < first + count ? m_colours[number - first] : automaticColour;
}

unsigned PaletteBuilder::nearest(Colour colour) const
{
    const auto& colours = m_palette.colours();
    const auto found = std::ranges::min_element(
        colours, {}, [colour](Colour candidate) { return distance(candidate, colour); });
    return Palette::first + static_cast<unsigned>(found - colours.begin());
}

unsigned PaletteBuilder::number(Colour colour)
{
    const auto& colours = m_palette.colours();
    const auto found = std::ranges::find(colours, colour);
    if (found != colours.end()) {
        m_used[static_cast<std::size_t>(found - colours.begin())] = true;
        return Palette::first + static_cast<unsigned>(found - colours.begin());
    }
    // The last places hold the colours that are used least; black and white stay.
    for (unsigned place = Palette::count; place-- > 2;) {
        if (!m_used[place]) {
            m_palette.set(place, colour);
            m_used[place] = true;
            m_isChanged = true;
            return Palette::first + place;
        }
    }
    m_hasApproximated = true;
    return nearest(colour);
}

} // namespace spreadsheet
