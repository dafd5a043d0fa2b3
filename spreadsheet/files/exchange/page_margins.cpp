#include "spreadsheet/files/exchange/page_margins.h"

#include "spreadsheet/engine/header_footer.h"

#include <algorithm>

namespace spreadsheet {

FileMargin fileMargin(int twips, std::string_view codes)
{
    constexpr double twipsOfInch = 1440;
    return {(twips + headerHeight(readHeaderFooter(codes))) / twipsOfInch, twips / twipsOfInch};
}

int ownMargin(int twipsToCells, std::string_view codes)
{
    return std::max(0, twipsToCells - headerHeight(readHeaderFooter(codes)));
}

} // namespace spreadsheet
