#include "fetch/ledger_query.h"

#include "platform/database/dialect/sql_text.h"
#include "text/ascii.h"

#include <algorithm>

namespace selfreport {

namespace {

constexpr std::string_view fromText =
    " from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid "
    " left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and "
    " a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid ) "
    " left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and "
    " a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid ) ";

std::vector<std::string> codesOf(std::string_view text)
{
    const std::vector<std::string_view> pieces = splitText(text, ':');
    return {pieces.begin(), pieces.end()};
}

std::string itemCondition(const std::string& itemTable, std::span<const std::string> codes)
{
    return " and c.fitemid in ( select fitemid from " + itemTable + "  where 1=1 " +
           codeCondition("fNumber", codes, " ") + ")";
}

} // namespace

std::vector<std::string_view> splitText(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    if (text.empty())
        return pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string_view trimmed(std::string_view text)
{
    return ascii::trimmed(text, " ");
}

AccountExpression parseAccountExpression(std::string_view text)
{
    const std::vector<std::string_view> parts = splitText(text, '|');
    AccountExpression expression;
    if (!parts.empty())
        expression.codes = codesOf(parts.front());
    for (std::size_t i = 1; i < parts.size(); i += 2) {
        ItemQualifier& qualifier = expression.qualifiers.emplace_back();
        qualifier.className = parts[i];
        if (i + 1 < parts.size())
            qualifier.codes = codesOf(parts[i + 1]);
    }
    return expression;
}

std::string itemClassStatement(std::string_view className)
{
    return "select * from tblItemClass where fItemname='" + sqlQuoted(className) + "'";
}

std::string codeCondition(std::string_view column, std::span<const std::string> codes, std::string_view tail)
{
    if (codes.empty())
        return {};
    const std::string name(column);
    if (codes.size() > 1)
        return " and (" + name + ">='" + sqlQuoted(codes[0]) + "' and " + name + "<='" + sqlQuoted(codes[1]) +
               "')";
    std::string code = codes[0];
    const bool isPattern = code.find('*') != std::string::npos;
    std::ranges::replace(code, '*', '_');
    return " and (" + name + (isPattern ? " like '" : "='") + sqlQuoted(code) + "'" + std::string(tail) + ")";
}

std::string ledgerQuery(const AccountExpression& expression,
                        std::span<const std::optional<std::string>> itemTables)
{
    std::string from(fromText);
    std::string where = " where  1=1  ";
    std::string condition = codeCondition("b.fNumber", expression.codes);
    if (!expression.qualifiers.empty()) {
        from += " left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId  ";
        where = " where a.fDetailId<>0 ";
    }
    for (std::size_t i = 0; i < expression.qualifiers.size(); ++i) {
        const std::vector<std::string>& codes = expression.qualifiers[i].codes;
        if (itemTables[i] && !codes.empty())
            condition += itemCondition(*itemTables[i], codes);
    }
    return from + where + condition;
}

} // namespace selfreport
