#include "platform/database/sqlite/acct_sql.h"

#include "platform/database/DatabaseError.h"
#include "platform/database/sql_text.h"
#include "platform/database/sqlite/sql_tokens.h"
#include "platform/database/sqlite/tsql_rewriter.h"

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

using Tokens = std::vector<SqlToken>;

struct TokenRange {
    std::size_t begin, end; // token places, end behind the last
};

bool isAliasUse(const Tokens& tokens, std::size_t at, std::string_view alias)
{
    return at + 1 < tokens.size() && tokens[at].isName(alias) && tokens[at + 1].isSymbol(".");
}

bool uses(const Tokens& tokens, TokenRange range, std::string_view alias)
{
    for (std::size_t at = range.begin; at < range.end; ++at)
        if (isAliasUse(tokens, at, alias))
            return true;
    return false;
}

/// The handed text, taken apart and changed piece by piece.
class HandedText {
public:
    explicit HandedText(std::string_view text)
        : m_text(text)
        , m_tokens(sqlTokens(text))
    {
        if (m_tokens.empty() || !m_tokens.front().isName("from"))
            throw DatabaseError(unspecifiedError, "取数条件不是 from 子句");
        m_where = nextOutside("where", 0);
        if (m_where == m_tokens.size())
            throw DatabaseError(unspecifiedError, "取数条件没有 where 子句");
    }

    bool joinsItems() const { return !joinOf("c").spelling.empty(); }

    /// " from ... where (...)" with item conditions per combination and without joins that nothing reads.
    std::string changed(std::string_view amountColumn)
    {
        SqlEdits edits;
        std::vector<std::string_view> kept{amountColumn.substr(0, amountColumn.find('.'))};
        if (replaceItemConditions(edits))
            kept.push_back("c");
        for (const Join& join : joins())
            if (!isNeeded(join, kept))
                edits.replace(m_tokens[join.range.begin].begin, m_tokens[join.range.end].begin, "");
        beginWithAccounts(edits);
        edits.insert(m_tokens[m_where].end(), " (");
        return edits.applied(m_text) + ")";
    }

    /// The conditions on the account alone, for another alias: "(p.fNumber>='1001' and ...)". Empty if every
    /// account matches, or if the only condition is one code, which no parent shares.
    std::string accountConditions(std::string_view alias, bool& atMostOne) const
    {
        std::string conditions;
        std::size_t count = 0;
        bool equality = false;
        for (const TokenRange& term : whereTerms()) {
            if (!uses(m_tokens, term, "b") || uses(m_tokens, term, "a") || uses(m_tokens, term, "c"))
                continue;
            conditions += " and " + withAlias(term, alias);
            ++count;
            equality = isCodeEquality(term);
        }
        atMostOne = count == 1 && equality;
        return conditions;
    }

private:
    struct Join {
        std::string_view spelling; ///< of the alias
        TokenRange range;
    };

    /// Place of the next such word outside brackets, from `at` on.
    std::size_t nextOutside(std::string_view word, std::size_t at) const
    {
        for (; at < m_tokens.size(); ++at) {
            if (m_tokens[at].isSymbol("("))
                at = closingBracket(m_tokens, at);
            if (at < m_tokens.size() && m_tokens[at].isName(word))
                return at;
        }
        return m_tokens.size();
    }

    std::vector<Join> joins() const
    {
        std::vector<Join> joins;
        for (std::size_t at = nextOutside("left", 0); at < m_where;) {
            const std::size_t next = std::min(nextOutside("left", at + 1), m_where);
            const std::size_t as = nextOutside("as", at);
            joins.push_back({as + 1 < next ? m_tokens[as + 1].spelling : "", {at, next}});
            at = next;
        }
        return joins;
    }

    Join joinOf(std::string_view alias) const
    {
        for (const Join& join : joins())
            if (sameName(join.spelling, alias))
                return join;
        return {};
    }

    /// Balances are found through their accounts, of which there are few: the order is forced, because
    /// without statistics the library may scan the whole ledger instead.
    void beginWithAccounts(SqlEdits& edits) const
    {
        const Join accounts = joinOf("b");
        if (accounts.range.begin == 0)
            throw DatabaseError(unspecifiedError, "取数条件没有科目表");
        const std::size_t on = nextOutside("on", accounts.range.begin);
        if (on + 1 >= accounts.range.end || accounts.range.begin != 4)
            throw DatabaseError(unspecifiedError, "取数条件不以余额表和科目表开始");
        const auto pieces = [&](std::size_t begin, std::size_t end) {
            return std::string(
                m_text.substr(m_tokens[begin].begin, m_tokens[end].end() - m_tokens[begin].begin));
        };
        edits.replace(m_tokens[1].begin, m_tokens[on - 1].end(),
                      pieces(on - 3, on - 1) + " cross join " + pieces(1, 3));
    }

    bool isNeeded(const Join& join, const std::vector<std::string_view>& kept) const
    {
        const auto isAlias = [&](std::string_view alias) { return sameName(alias, join.spelling); };
        if (std::ranges::any_of(kept, isAlias) || isAlias("b"))
            return true;
        if (isAlias("c")) // its conditions were looked at before
            return false;
        return uses(m_tokens, {0, join.range.begin}, join.spelling) ||
               uses(m_tokens, {join.range.end, m_tokens.size()}, join.spelling);
    }

    /// Makes "c.fitemid in (...)" a condition on the whole combination. True if other uses of c remain.
    bool replaceItemConditions(SqlEdits& edits) const
    {
        bool others = false;
        for (std::size_t at = m_where; at < m_tokens.size(); ++at) {
            if (!isAliasUse(m_tokens, at, "c"))
                continue;
            const bool condition = at + 4 < m_tokens.size() && m_tokens[at + 2].isName("fitemid") &&
                                   m_tokens[at + 3].isName("in") && m_tokens[at + 4].isSymbol("(");
            const std::size_t close = condition ? closingBracket(m_tokens, at + 4) : m_tokens.size();
            if (close == m_tokens.size()) {
                others = true;
                continue;
            }
            edits.replace(m_tokens[at].begin, m_tokens[at + 3].end(),
                          "a.fDetailId in (select fdetailId from tblItemDetailV where fitemid in");
            edits.insert(m_tokens[close].end(), ")");
        }
        return others;
    }

    /// What "and" joins after "where". Nothing if an "or" stands among it.
    std::vector<TokenRange> whereTerms() const
    {
        std::vector<TokenRange> terms;
        if (nextOutside("or", m_where) != m_tokens.size())
            return terms;
        for (std::size_t at = m_where + 1; at < m_tokens.size();) {
            const std::size_t end = nextOutside("and", at);
            terms.push_back({at, end});
            at = end + 1;
        }
        return terms;
    }

    std::string withAlias(TokenRange range, std::string_view alias) const
    {
        SqlEdits edits;
        const std::size_t begin = m_tokens[range.begin].begin;
        for (std::size_t at = range.begin; at < range.end; ++at)
            if (isAliasUse(m_tokens, at, "b"))
                edits.replace(m_tokens[at].begin - begin, m_tokens[at].end() - begin, std::string(alias));
        return edits.applied(m_text.substr(begin, m_tokens[range.end - 1].end() - begin));
    }

    /// "(b.fNumber='...')" or "(b.fNumber=?1)"
    bool isCodeEquality(TokenRange range) const
    {
        const auto name = [&](std::size_t at, std::string_view word) {
            return m_tokens[range.begin + at].isName(word);
        };
        const auto symbol = [&](std::size_t at, std::string_view sign) {
            return m_tokens[range.begin + at].isSymbol(sign);
        };
        const std::size_t length = range.end - range.begin;
        const bool comparesCode = length >= 7 && symbol(0, "(") && name(1, "b") && symbol(2, ".") &&
                                  name(3, "fNumber") && symbol(4, "=");
        return comparesCode && ((length == 7 && m_tokens[range.begin + 5].kind == SqlToken::Kind::text) ||
                                (length == 8 && symbol(5, "?")));
    }

    std::string_view m_text;
    Tokens m_tokens;
    std::size_t m_where = 0;
};

std::string periodCondition(const AcctSelection& selection)
{
    switch (selection.kind->periods) {
    case AcctPeriods::first:
        return " and a.fPeriod=" + selection.firstPeriod;
    case AcctPeriods::last:
        return " and a.fPeriod=" + selection.lastPeriod;
    case AcctPeriods::all:
        break;
    }
    return " and a.fPeriod>=" + selection.firstPeriod + " and a.fPeriod<=" + selection.lastPeriod;
}

/// Conditions besides the handed ones, each with " and " before it.
std::string selectionConditions(const HandedText& handed, const AcctSelection& selection)
{
    std::string conditions;
    if (!handed.joinsItems())
        conditions += " and a.fDetailId=0";
    conditions += " and a.fYear=" + selection.year + periodCondition(selection);
    if (!selection.currency.empty())
        conditions += " and a.fCurrencyid=" + selection.currency;
    bool atMostOne = false;
    const std::string matched = handed.accountConditions("p", atMostOne);
    if (!atMostOne)
        conditions +=
            " and not exists(select 1 from tblAccount as p where p.fitemid=b.fParentId" + matched + ")";
    return conditions;
}

} // namespace

std::string acctSql(std::string_view fromAndWhere, const AcctSelection& selection)
{
    const AcctKind& kind = *selection.kind;
    const std::string amount(selection.currency.empty() ? kind.column : kind.original);
    HandedText handed(fromAndWhere);
    const std::string rows = toEmbeddedSql(handed.changed(amount) + selectionConditions(handed, selection));
    // Four decimals hold every amount and quantity and take the noise of binary sums away.
    if (kind.side == AcctSide::both) {
        const std::string signedAmount = kind.byDirection ? amount + "*b.fDirection" : amount;
        return "select round(sum(" + signedAmount + "),4) as f" + rows + " having count(" + amount + ")>0";
    }
    const std::string sign = kind.side == AcctSide::debit ? "" : "-";
    return "select round(sum(max(" + sign + "s,0)),4) as f from (select sum(" + amount + ") as s" + rows +
           " group by a.faccountid,a.fDetailId) having count(*)>0";
}

LiftedSql liftTexts(std::string_view sql)
{
    LiftedSql lifted;
    lifted.shape.reserve(sql.size());
    for (std::size_t at = 0; at < sql.size();) {
        const std::size_t quote = std::min(sql.find('\'', at), sql.size());
        lifted.shape += sql.substr(at, quote - at);
        if (quote == sql.size())
            break;
        std::string text;
        for (at = quote + 1;; ++at) {
            const std::size_t end = sql.find('\'', at);
            if (end == std::string_view::npos)
                throw DatabaseError(unspecifiedError, "取数条件中的引号没有结束");
            text += sql.substr(at, end - at);
            at = end + 1;
            if (at == sql.size() || sql[at] != '\'')
                break;
            text += '\''; // doubled
        }
        lifted.texts.push_back(std::move(text));
        lifted.shape += "?" + std::to_string(lifted.texts.size());
    }
    return lifted;
}

} // namespace selfreport
