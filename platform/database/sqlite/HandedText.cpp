#include "platform/database/sqlite/HandedText.h"

#include "platform/database/session/DatabaseError.h"

namespace selfreport {

// The text of a fetch is written for a server that plans by statistics. Run as it stands, the embedded
// database may walk through the whole ledger for one account. So only what the text asks for is read from it,
// and the statement is made anew in an order that begins with the few rows.

namespace {

constexpr std::string_view balances =
    "from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid "
    "left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and "
    "a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid) "
    "left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and "
    "a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid)";

bool isSame(const SqlToken& token, const SqlToken& wanted)
{
    return token.kind == wanted.kind && (token.spelling == wanted.spelling || token.isName(wanted.spelling));
}

[[noreturn]] void refuse()
{
    throw DatabaseError(unspecifiedError, "取数条件不是报表取数的写法");
}

} // namespace

HandedText::HandedText(std::string_view text)
    : m_tokens(sqlTokens(text))
{
    take(balances);
    m_joinsItems = takes("left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId");
    take(m_joinsItems ? "where a.fDetailId<>0" : "where 1=1");
    if (takes("and (b.fNumber"))
        m_account = takeCondition("b.fNumber");
    while (m_joinsItems && takes("and c.fitemid in (select fitemid from"))
        takeItemCondition();
    if (m_at != m_tokens.size())
        refuse();
    m_tokens.clear(); // they point into a text that need not live longer
}

std::string HandedText::accountCondition(std::string_view alias) const
{
    if (m_account.comparison.empty())
        return {};
    const std::string column = std::string(alias) + ".fNumber";
    const std::string condition = " and (" + column + " " + m_account.comparison + " " + m_account.code;
    return condition + (m_account.last.empty() ? ")" : " and " + column + "<=" + m_account.last + ")");
}

/// Goes on behind the tokens of `piece` if they come next.
bool HandedText::takes(std::string_view piece)
{
    const std::vector<SqlToken> wanted = sqlTokens(piece);
    if (m_tokens.size() - m_at < wanted.size())
        return false;
    for (std::size_t at = 0; at < wanted.size(); ++at)
        if (!isSame(m_tokens[m_at + at], wanted[at]))
            return false;
    m_at += wanted.size();
    return true;
}

void HandedText::take(std::string_view piece)
{
    if (!takes(piece))
        refuse();
}

std::string HandedText::takeCode()
{
    if (takes("?") && m_at < m_tokens.size() && m_tokens[m_at].kind == SqlToken::Kind::number)
        return "?" + std::string(m_tokens[m_at++].spelling);
    if (m_at == m_tokens.size() || m_tokens[m_at].kind != SqlToken::Kind::text)
        refuse();
    return std::string(m_tokens[m_at++].spelling);
}

std::string HandedText::takeName()
{
    if (m_at == m_tokens.size() ||
        (m_tokens[m_at].kind != SqlToken::Kind::name && m_tokens[m_at].kind != SqlToken::Kind::quotedName))
        refuse();
    return std::string(m_tokens[m_at++].spelling);
}

/// Behind the column, up to the closing bracket and with it.
HandedText::CodeCondition HandedText::takeCondition(std::string_view column)
{
    CodeCondition condition;
    for (const char* comparison : {"=", "like", ">="})
        if (condition.comparison.empty() && takes(comparison))
            condition.comparison = comparison;
    condition.code = takeCode();
    if (condition.comparison == ">=") {
        take("and " + std::string(column) + "<=");
        condition.last = takeCode();
    }
    take(")");
    return condition;
}

void HandedText::takeItemCondition()
{
    std::string table = takeName();
    if (takes("."))
        table += "." + takeName();
    take("where 1=1 and (fNumber");
    const CodeCondition items = takeCondition("fNumber");
    take(")");
    m_combinations.push_back("select fdetailId from tblItemDetailV where fitemid in (select fitemid from " +
                             table + " where fNumber " + items.comparison + " " + items.code +
                             (items.last.empty() ? ")" : " and fNumber<=" + items.last + ")"));
}

} // namespace selfreport
