#include "platform/database/sqlite/HandedText.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/names.h"

#include <algorithm>

namespace selfreport {

// The text of a fetch is written for a server that plans by statistics. Run as it stands, the embedded
// database may walk through the whole ledger for one account. So the text is taken apart by tokens and put in
// an order that begins with the few rows. Its meaning stays, and a condition that is not understood stays as
// it is.

HandedText::HandedText(std::string_view text)
    : m_text(text)
    , m_tokens(sqlTokens(text))
{
    if (m_tokens.empty() || !m_tokens.front().isName("from"))
        throw DatabaseError(unspecifiedError, "取数条件不是 from 子句");
    m_where = nextOutside("where", 0);
    if (m_where == m_tokens.size())
        throw DatabaseError(unspecifiedError, "取数条件没有 where 子句");
    constexpr std::size_t behindBalances = 4; // from, table, as, a
    if (joinOf("b").range.begin != behindBalances)
        throw DatabaseError(unspecifiedError, "取数条件不以余额表和科目表开始");
}

std::string HandedText::changed(std::string_view amountColumn) const
{
    SqlEdits edits;
    std::vector<std::string_view> kept{"b", amountColumn.substr(0, amountColumn.find('.'))};
    if (replaceItemConditions(edits))
        kept.push_back("c");
    for (const Join& join : joins())
        if (!isNeeded(join, kept))
            edits.replace(m_tokens[join.range.begin].begin, m_tokens[join.range.end].begin, "");
    beginWithAccounts(edits);
    edits.insert(m_tokens[m_where].end(), " (");
    return edits.applied(m_text) + ")";
}

std::string HandedText::itemList() const
{
    const Range listed = listedCondition();
    if (listed.begin == listed.end)
        return {};
    return "with i as materialized (" + combinations(listed).replace(0, 6, "select distinct") + ") ";
}

std::string HandedText::accountConditions(std::string_view alias) const
{
    std::string conditions;
    for (const Range& term : accountTerms())
        conditions += " and " + withAlias(term, alias);
    return conditions;
}

bool HandedText::namesOneAccount() const
{
    const std::vector<Range> terms = accountTerms();
    return terms.size() == 1 && isCodeEquality(terms.front());
}

bool HandedText::isAliasUse(std::size_t at, std::string_view alias) const
{
    return at + 1 < m_tokens.size() && m_tokens[at].isName(alias) && m_tokens[at + 1].isSymbol(".");
}

bool HandedText::uses(Range range, std::string_view alias) const
{
    for (std::size_t at = range.begin; at < range.end; ++at)
        if (isAliasUse(at, alias))
            return true;
    return false;
}

/// Place of the next such word outside brackets, from `at` on; the number of tokens if there is none.
std::size_t HandedText::nextOutside(std::string_view word, std::size_t at) const
{
    for (; at < m_tokens.size(); ++at) {
        if (m_tokens[at].isSymbol("("))
            at = closingBracket(m_tokens, at);
        if (at < m_tokens.size() && m_tokens[at].isName(word))
            return at;
    }
    return m_tokens.size();
}

std::vector<HandedText::Join> HandedText::joins() const
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

HandedText::Join HandedText::joinOf(std::string_view alias) const
{
    for (const Join& join : joins())
        if (sameName(join.alias, alias))
            return join;
    return {};
}

bool HandedText::isNeeded(const Join& join, const std::vector<std::string_view>& kept) const
{
    if (std::ranges::any_of(kept, [&](std::string_view alias) { return sameName(alias, join.alias); }))
        return true;
    if (sameName(join.alias, "c")) // its conditions were looked at before
        return false;
    return uses({0, join.range.begin}, join.alias) || uses({join.range.end, m_tokens.size()}, join.alias);
}

/// Balances are found through their accounts, of which there are few, and those of items through the listed
/// combinations: the order is forced, because without statistics the library may scan the whole ledger
/// instead.
void HandedText::beginWithAccounts(SqlEdits& edits) const
{
    const Join accounts = joinOf("b");
    const std::size_t on = nextOutside("on", accounts.range.begin);
    if (on >= accounts.range.end)
        throw DatabaseError(unspecifiedError, "取数条件没有科目表的连接条件");
    const Range listed = listedCondition();
    const std::string items = listed.begin == listed.end ? "" : " cross join i";
    edits.replace(m_tokens[1].begin, m_tokens[on - 1].end(),
                  pieces({on - 3, on}) + items + " cross join " + pieces({1, accounts.range.begin}));
}

/// Makes "c.fitemid in (...)" a condition on the whole combination. True if other uses of c remain.
bool HandedText::replaceItemConditions(SqlEdits& edits) const
{
    const Range listed = listedCondition();
    bool others = false;
    for (std::size_t at = m_where; at < m_tokens.size(); ++at) {
        if (!isAliasUse(at, "c"))
            continue;
        const Range condition = itemConditionAt(at);
        if (condition.begin == condition.end) {
            others = true;
            continue;
        }
        edits.replace(m_tokens[at].begin, m_tokens[condition.end - 1].end(),
                      at == listed.begin && listed.end != 0
                          ? "a.fDetailId=i.fdetailId"
                          : "a.fDetailId in (" + combinations(condition) + ")");
    }
    return others;
}

/// "c.fitemid in (...)" at that place; an empty range if something else stands there.
HandedText::Range HandedText::itemConditionAt(std::size_t at) const
{
    if (at + 4 >= m_tokens.size() || !isAliasUse(at, "c") || !m_tokens[at + 2].isName("fitemid") ||
        !m_tokens[at + 3].isName("in") || !m_tokens[at + 4].isSymbol("("))
        return {};
    const std::size_t close = closingBracket(m_tokens, at + 4);
    return close == m_tokens.size() ? Range{} : Range{at, close + 1};
}

/// The first item condition that "and" joins with all else; an empty range if there is none.
HandedText::Range HandedText::listedCondition() const
{
    if (nextOutside("or", m_where) != m_tokens.size())
        return {};
    for (std::size_t at = m_where + 1; at < m_tokens.size(); at = nextOutside("and", at) + 1) {
        const Range condition = itemConditionAt(at);
        if (condition.begin != condition.end && condition.end == nextOutside("and", at))
            return condition;
    }
    return {};
}

/// The statement that selects the combinations which hold such an item.
std::string HandedText::combinations(Range condition) const
{
    return "select fdetailId from tblItemDetailV where fitemid in " +
           pieces({condition.begin + 4, condition.end});
}

std::string HandedText::pieces(Range range) const
{
    const std::size_t begin = m_tokens[range.begin].begin;
    return std::string(m_text.substr(begin, m_tokens[range.end - 1].end() - begin));
}

/// What "and" joins after "where" and reads nothing but the account. Nothing if an "or" stands among it.
std::vector<HandedText::Range> HandedText::accountTerms() const
{
    std::vector<Range> terms;
    if (nextOutside("or", m_where) != m_tokens.size())
        return terms;
    for (std::size_t at = m_where + 1; at < m_tokens.size();) {
        const Range term{at, nextOutside("and", at)};
        if (uses(term, "b") && !uses(term, "a") && !uses(term, "c"))
            terms.push_back(term);
        at = term.end + 1;
    }
    return terms;
}

std::string HandedText::withAlias(Range range, std::string_view alias) const
{
    SqlEdits edits;
    const std::size_t begin = m_tokens[range.begin].begin;
    for (std::size_t at = range.begin; at < range.end; ++at)
        if (isAliasUse(at, "b"))
            edits.replace(m_tokens[at].begin - begin, m_tokens[at].end() - begin, std::string(alias));
    return edits.applied(m_text.substr(begin, m_tokens[range.end - 1].end() - begin));
}

/// "(b.fNumber='...')" or "(b.fNumber=?1)"
bool HandedText::isCodeEquality(Range range) const
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

} // namespace selfreport
