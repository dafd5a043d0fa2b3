#include "spreadsheet/files/exchange/page_margins.h"

#include "spreadsheet/engine/header_footer.h"
#include "spreadsheet/engine/SheetSettings.h"

#include <algorithm>

namespace spreadsheet {

FileMargin fileMargin(int twips, std::string_view codes)
{
    return {(twips + headerHeight(readHeaderFooter(codes))) / twipsPerInch, twips / twipsPerInch};
}

int ownMargin(int twipsToCells, std::string_view codes)
{
    return std::max(0, twipsToCells - headerHeight(readHeaderFooter(codes)));
}

} // namespace spreadsheet
