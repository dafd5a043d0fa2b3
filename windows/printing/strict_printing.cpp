#include "windows/printing/strict_printing.h"

#include "platform/services/Dialogs.h"
#include "reports/ReportContext.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace selfreport {

std::vector<CellWithoutData> withheldCells(const spreadsheet::Workbook& workbook,
                                           std::vector<CellWithoutData> cells, bool ofAllSheets)
{
    std::erase_if(cells, [&](const CellWithoutData& each) {
        return !workbook.sheet(each.sheet).settings().print.strict ||
               (!ofAllSheets && each.sheet != workbook.activeSheet());
    });
    return cells;
}

std::vector<CellWithoutData> withheldCells(PrintedGrid& grid, bool ofAllSheets)
{
    return withheldCells(grid.workbook(), grid.cellsWithoutData(), ofAllSheets);
}

std::string withheldText(const std::vector<CellWithoutData>& cells)
{
    std::set<std::pair<int, spreadsheet::CellAddress>> places;
    for (const CellWithoutData& each : cells)
        places.emplace(each.sheet, each.cell);
    return cells.empty() ? std::string() : "※ 未取到数据 " + std::to_string(places.size()) + " 处";
}

WithheldAnswer askAboutWithheld(const PrintedGrid& grid, const spreadsheet::Workbook& workbook,
                                const std::vector<CellWithoutData>& cells)
{
    constexpr std::size_t mostListed = 10;
    std::string list;
    for (std::size_t i = 0; i < std::min(cells.size(), mostListed); ++i)
        list += "\n" + workbook.sheet(cells[i].sheet).name() + "!" + spreadsheet::cellName(cells[i].cell) +
                "  " + cells[i].reason;
    if (cells.size() > mostListed)
        list += "\n……";
    const auto chosen =
        dialogs().choose(Icon::exclamation, grid.context.title,
                         withheldText(cells) + "，是否仍然打印？" + list, {"转到", "仍然打印（加注）"});
    if (!chosen)
        return WithheldAnswer::cancel;
    return *chosen == 0 ? WithheldAnswer::goThere : WithheldAnswer::print;
}

NotedCells::NotedCells(spreadsheet::Workbook& workbook, const std::vector<CellWithoutData>& cells)
    : m_workbook(workbook)
    , m_former(workbook.textInstead())
{
    std::set<std::pair<int, spreadsheet::CellAddress>> places;
    for (const CellWithoutData& each : cells)
        places.emplace(workbook.sheet(each.sheet).id(), each.cell);
    if (places.empty())
        return;
    m_workbook.setTextInstead(
        [former = m_former, places](const spreadsheet::Sheet& sheet, spreadsheet::CellAddress cell) {
            auto text = former ? former(sheet, cell) : std::nullopt;
            if (!places.contains({sheet.id(), cell}))
                return text;
            return std::optional("※" + text.value_or(sheet.textOfValue(cell)));
        });
}

NotedCells::~NotedCells()
{
    m_workbook.setTextInstead(m_former);
}

} // namespace selfreport
