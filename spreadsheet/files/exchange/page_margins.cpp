#include "spreadsheet/files/exchange/page_margins.h"

#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/display/header_footer.h"

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
