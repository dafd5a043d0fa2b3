#include "windows/designer/report_function_hints.h"

#include "fetch/fetch_types.h"
#include "reports/report_list.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/function_hints.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace selfreport {

namespace {

using spreadsheet::ArgumentChoice;
using spreadsheet::FunctionHints;
using Read = std::function<std::vector<ArgumentChoice>(Connection&)>;

/// Who types a formula is neither to be kept waiting by every letter nor to be told of a database that is
/// away.
FunctionHints::Choices readOnce(ReportContext& context, const Read& read)
{
    auto known = std::make_shared<std::optional<std::vector<ArgumentChoice>>>();
    return [&context, read, known]() -> const std::vector<ArgumentChoice>& {
        if (!*known) {
            known->emplace();
            try {
                *known = context.database.asked<std::vector<ArgumentChoice>>(read);
            } catch (const std::exception&) {
                // there is nothing to choose then
            }
        }
        return **known;
    };
}

std::vector<ArgumentChoice> typeChoices(Connection& open)
{
    std::vector<ArgumentChoice> choices;
    for (const FetchType& type : fetchTypes(open))
        choices.push_back({QString::fromStdString(type.key), QString::fromStdString(type.name)});
    return choices;
}

std::vector<ArgumentChoice> reportChoices(Connection& open)
{
    std::vector<ArgumentChoice> choices;
    for (const ListedReport& report : storedReports(open))
        choices.push_back({QString::fromStdString(report.name), {}});
    return choices;
}

} // namespace

void describeReportFunctions(FunctionHints& hints, ReportContext& context)
{
    constexpr int typeArgument = 1, nameArgument = 0;
    hints.describe("Acct", QStringLiteral("科目,取数类型,货币,年度,起始期间,截目期间"),
                   QStringLiteral("总账取数公式"));
    hints.offer("Acct", typeArgument, readOnce(context, typeChoices));
    hints.describe("REF_F", QStringLiteral("表名,单元格名称,标签"), QStringLiteral("表间取数公式"));
    hints.offer("REF_F", nameArgument, readOnce(context, reportChoices));
}

} // namespace selfreport
