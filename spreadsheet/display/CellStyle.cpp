#include "spreadsheet/display/CellStyle.h"

#include <functional>
#include <string_view>

namespace spreadsheet {

std::size_t hashOf(const CellStyle& style)
{
    std::size_t hash = 1469598103934665603ULL;
    const auto mix = [&hash](std::size_t part) { hash = (hash ^ part) * 1099511628211ULL; };
    mix(static_cast<std::size_t>(style.type) << 24 | static_cast<std::size_t>(style.decimals) << 16 |
        static_cast<std::size_t>(style.horizontal) << 8 | static_cast<std::size_t>(style.vertical));
    mix(static_cast<std::size_t>(style.wrap) | static_cast<std::size_t>(style.locked) << 1 |
        static_cast<std::size_t>(style.font.bold) << 2 | static_cast<std::size_t>(style.font.italic) << 3 |
        static_cast<std::size_t>(style.font.underline) << 4 |
        static_cast<std::size_t>(style.font.strikeThrough) << 5);
    mix(static_cast<std::size_t>(style.carried.across) << 24 |
        static_cast<std::size_t>(style.carried.down) << 16 |
        static_cast<std::size_t>(style.carried.indent) << 8 | style.carried.rotation);
    mix(style.foreground);
    mix(style.background);
    mix(std::hash<float>()(style.font.points));
    mix(std::hash<std::string_view>()(style.font.family.view()));
    mix(std::hash<std::string_view>()(style.numberFormat.view()));
    for (const BorderLine* line : {&style.left, &style.right, &style.top, &style.bottom})
        mix(static_cast<std::size_t>(line->style) << 32 | line->colour);
    return hash;
}

} // namespace spreadsheet
