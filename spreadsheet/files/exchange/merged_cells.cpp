#include "spreadsheet/files/exchange/merged_cells.h"

#include "spreadsheet/values/range_overlap.h"

#include <algorithm>
#include <string>

namespace spreadsheet {

void keepSpansApart(std::vector<CellRange>& spans, std::string_view sheet, Warnings& warnings)
{
    constexpr std::size_t mostNamed = 10;
    const std::vector<CellRange> taken = takeOverlapping(spans);
    if (taken.empty())
        return;
    std::string names;
    for (std::size_t i = 0; i < std::min(taken.size(), mostNamed); ++i) {
        const CellRange& range = taken[i];
        names += (i == 0 ? "" : "、") + cellName({range.left, range.top}) + ":" +
                 cellName({range.right, range.bottom});
    }
    if (taken.size() > mostNamed)
        names += " 等 " + std::to_string(taken.size()) + " 处";
    warnings.add("表“" + std::string(sheet) + "”的合并单元格 " + names + " 与别的合并单元格重叠,没有引入");
}

} // namespace spreadsheet
