#include "explain/explain_figure.h"

#include "fetch/quoted_text.h"
#include "reports/report_run.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/amount_text.h"

#include <optional>

namespace selfreport {

namespace {

spreadsheet::CallPlace placeOf(const spreadsheet::Workbook& workbook, const std::string& text)
{
    const std::size_t mark = text.rfind('!');
    std::string sheet = mark == std::string::npos ? "" : text.substr(0, mark);
    if (sheet.size() > 1 && sheet.front() == '\'' && sheet.back() == '\'') {
        sheet = sheet.substr(1, sheet.size() - 2);
        for (std::size_t at = 0; (at = sheet.find("''", at)) != std::string::npos; ++at)
            sheet.erase(at, 1);
    }
    const int index = mark == std::string::npos ? 1 : workbook.sheetIndex(sheet);
    if (index == 0)
        throw ReportRunError("报表没有名为" + quoted(sheet) + "的表页");
    std::string name = mark == std::string::npos ? text : text.substr(mark + 1);
    std::erase(name, '$'); // copied from a formula
    const auto cell = spreadsheet::parseCellName(name);
    const spreadsheet::SheetSettings& settings = workbook.sheet(index).settings();
    if (!cell || cell->row > settings.rowCount || cell->column > settings.columnCount)
        throw ReportRunError("没有单元格" + quoted(text) + "，写法如 Sheet1!B7");
    return {index, cell->column, cell->row};
}

} // namespace

void openLevels(DrillTree& tree, DrillNode& node, DatabaseAccess& database, int levels)
{
    if (levels < 1)
        return;
    if (!node.isOpen && node.canOpen())
        tree.open(node, database);
    for (DrillNode& part : node.parts)
        openLevels(tree, part, database, levels - 1);
}

Explained explainFigure(const std::string& connectionString, std::int32_t reportId, const std::string& cell,
                        int depth, const std::function<void(std::string_view)>& progress)
{
    std::optional<Explained> explained;
    RunOptions options;
    options.kindsTold = true;
    options.progress = progress;
    options.computed = [&](const ReportRun& run, const RunRecord& record, DatabaseAccess& database) {
        DrillTree tree(run.name, *run.workbook, record, placeOf(*run.workbook, cell));
        tree.nameAccounts(database);
        openLevels(tree, tree.root(), database, depth);
        explained = {tree.head(), tree.root()};
    };
    runReport(connectionString, reportId, options);
    return std::move(*explained);
}

std::string firstFault(const DrillNode& node)
{
    if (node.isFault)
        return node.item + (node.amount ? " " + amountText(*node.amount) : "") +
               (node.remark.empty() ? "" : "：" + node.remark);
    for (const DrillNode& part : node.parts)
        if (std::string fault = firstFault(part); !fault.empty())
            return fault;
    return {};
}

} // namespace selfreport
