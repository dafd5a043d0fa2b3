#include "spreadsheet/cells/papers.h"

#include "spreadsheet/values/twips.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace spreadsheet {

namespace {

// Continuous paper is named by its width; what follows are the parts that a sheet of 11 inches is torn into.
constexpr Paper known[] = {
    {"A4", "A4", 210, 297, 9},
    {"A3", "A3", 297, 420, 8},
    {"A5", "A5", 148, 210, 11},
    {"B4", "B4", 257, 364, 12},
    {"B5", "B5", 182, 257, 13},
    {"", "16K", 184, 260, 0},
    {"", "16K (195×270)", 195, 270, 0},
    {"", "连续纸 241-1", 241, 279.4, 0},
    {"", "连续纸 241-2 (二等分)", 241, 139.7, 0},
    {"", "连续纸 241-3 (三等分)", 241, 93.1, 0},
    {"", "连续纸 381-1", 381, 279.4, 0},
    {"", "连续纸 381-2 (二等分)", 381, 139.7, 0},
    {"Letter", "信纸", 215.9, 279.4, 1},
    {"Legal", "法律用纸", 215.9, 355.6, 5},
};

const Paper* found(auto isIt)
{
    const auto* const paper = std::ranges::find_if(known, isIt);
    return paper == std::end(known) ? nullptr : paper;
}

} // namespace

int twipsOfMillimetres(double millimetres)
{
    constexpr double perInch = 25.4;
    return static_cast<int>(std::lround(millimetres * twipsPerInch / perInch));
}

int Paper::width() const
{
    return twipsOfMillimetres(millimetresWide);
}

int Paper::height() const
{
    return twipsOfMillimetres(millimetresHigh);
}

std::span<const Paper> papers()
{
    return known;
}

const Paper* paperOfSize(int width, int height)
{
    constexpr int near = 57; // twips of a millimetre
    return found([&](const Paper& paper) {
        return std::abs(paper.width() - width) < near && std::abs(paper.height() - height) < near;
    });
}

const Paper* paperOfNumber(int number)
{
    return number > 0 ? found([&](const Paper& paper) { return paper.number == number; }) : nullptr;
}

const Paper* paperOfName(std::string_view name)
{
    return name.empty() ? nullptr : found([&](const Paper& paper) { return paper.name == name; });
}

} // namespace spreadsheet
