#include "windows/printing/stored_page_setup.h"

#include "reports/commit_outcome.h"
#include "reports/report_statements.h"
#include "reports/report_texts.h"
#include "reports/ReportContext.h"
#include "reports/ReportStore.h"
#include "windows/printing/page_setup_statements.h"
#include "windows/printing/PrintedGrid.h"

#include <stdexcept>

namespace selfreport {

bool changeStoredPageSetup(PrintedGrid& grid, const std::string& statement,
                           const std::vector<SqlValue>& values,
                           const std::function<bool(const StoredPageSetup&)>& isStored,
                           const std::function<std::string(Connection&)>& refusal)
{
    ReportContext& context = grid.context;
    const auto work = [=, ownsRow = grid.ownershipOfRow(),
                       setup = pageSetupStatement(context.report.id)](Connection& open) {
        if (const std::string problem = refusal ? refusal(open) : std::string(); !problem.empty())
            throw std::runtime_error(problem);
        Transaction transaction(open);
        if (!ownsRow(open))
            throw std::runtime_error("这张报表的编号现在属于另一张报表，页面设置和页眉页脚没有存入数据库。");
        const bool mayBeGone = open.execute(statement, values) == 0; // a server may be set not to count
        if (mayBeGone && open.query(setup).isEmpty())
            throw std::runtime_error(std::string("页面设置和页眉页脚没有存入数据库。\n") +
                                     ReportMissing().what());
        commitOrFindOut(transaction,
                        [&](Connection& fresh) { return isStored(pageSetupOf(fresh.query(setup))); });
        return true;
    };
    return context.database.done(Icon::critical, [&] {
        try {
            context.database.changed<bool>(work);
        } catch (const WorkCancelled&) {
            throw std::runtime_error("操作已取消，页面设置和页眉页脚没有存入数据库。");
        }
    });
}

bool storePageSetup(PrintedGrid& grid, const StoredPageSetup& setup)
{
    const auto isStored = [setup](const StoredPageSetup& found) { return found == setup; };
    return changeStoredPageSetup(
        grid, storeWholePageSetupStatement(grid.context.report.id),
        {setup.top, setup.bottom, setup.left, setup.right, setup.direction, setup.header, setup.footer},
        isStored, [setup](Connection& open) {
            const std::string problem = headerRefusal(open, false, setup.header);
            return problem.empty() ? headerRefusal(open, true, setup.footer) : problem;
        });
}

} // namespace selfreport
