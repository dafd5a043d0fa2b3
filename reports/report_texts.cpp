#include "reports/report_texts.h"

#include "platform/database/Connection.h"
#include "platform/database/dialect/chinese_collation.h"
#include "platform/database/dialect/text_columns.h"
#include "text/ascii.h"

namespace selfreport {

namespace {

constexpr std::string_view reports = "tblCWSelfReport";
constexpr std::string_view menu = "tblsystemprivillenge";

std::string refusal(Connection& connection, std::string_view what, std::string_view text,
                    std::string_view table, std::string_view column)
{
    return misfit(what, text, connection.textColumns().column(table, column)).value_or("");
}

} // namespace

bool isBlankName(std::string_view name)
{
    return onlyBlanksFrom(name, 0);
}

std::string reportRefusal(Connection& connection, std::string_view name, std::string_view user)
{
    std::string problem = refusal(connection, "报表名称", name, reports, "fname");
    if (problem.empty())
        problem = refusal(connection, "菜单中的报表名称", ascii::trimmed(name, " "), menu, "fname");
    if (problem.empty())
        problem = refusal(connection, "用户编号", user, reports, "fbillerid");
    return problem;
}

std::string headerRefusal(Connection& connection, bool isFooter, std::string_view codes)
{
    return refusal(connection, isFooter ? "页脚" : "页眉", codes, reports, isFooter ? "fFooter" : "fHeader");
}

std::string collationWarning(Connection& connection)
{
    if (!misfit("", "中文", connection.textColumns().column(reports, "fname")))
        return {};
    return "这个数据库的排序规则不能保存中文，报表名称、页眉和页脚只能用英文和数字。";
}

} // namespace selfreport
