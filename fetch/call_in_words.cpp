#include "fetch/call_in_words.h"

#include "fetch/code_hint.h"
#include "fetch/compound_statement.h"
#include "fetch/plain_arguments.h"
#include "fetch/quoted_text.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <string_view>
#include <utility>

namespace selfreport {

// Codes are looked up while the user types, and what the ledger does not know is answered with what it does
// know: the nearest code. A half-written argument must be named, not hidden behind a query that
// finds nothing.

namespace {

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        if (!part.empty())
            text += (text.empty() ? "" : ",") + part;
    return text;
}

/// "1001", "10**", "1001 至 1099".
std::string codesText(const std::vector<std::string>& codes)
{
    return codes.size() > 1 ? codes[0] + " 至 " + codes[1] : codes[0];
}

std::size_t distance(const std::string& left, const std::string& right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t changed = diagonal + (left[i - 1] != right[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

std::vector<std::string> textsOf(const Recordset& rows, std::size_t column)
{
    std::vector<std::string> texts;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        texts.push_back(rows.text(row, column));
    return texts;
}

std::string periodWords(const LedgerArguments& arguments)
{
    const std::string first = arguments.firstPeriod.empty() ? "1" : arguments.firstPeriod;
    const std::string& last = arguments.lastPeriod;
    const std::string year = arguments.year.empty() ? "最近年度" : arguments.year + " 年";
    if (last.empty())
        return year + " " + first + " 期至最近一期";
    return year + " " + (first == last ? first : first + "–" + last) + " 期";
}

constexpr std::string_view localCurrency = "综合本位币";

/// A table that gives names to keys.
struct KeyTable {
    std::string what; ///< "货币"
    std::string table, keyColumn, nameColumn;

    std::string question(const std::string& key) const
    {
        return nameColumn + " as fname from " + table + " where " + keyColumn + "='" + sqlQuoted(key) + "'";
    }
};

const KeyTable& fetchTypes()
{
    static const KeyTable types{"取数类型", "tblSelfReportFieldKey", "fKey", "fKeyName"};
    return types;
}

const KeyTable& currencies()
{
    static const KeyTable currencies{"货币", "tblCurrency", "fnumber", "fname"};
    return currencies;
}

/// The names of keys; of an unknown one what it is and the key.
std::map<std::string, std::string> namesOf(Connection& connection, const KeyTable& keys,
                                           const std::set<std::string>& wanted)
{
    const std::vector<std::string> list(wanted.begin(), wanted.end());
    std::vector<std::string> questions;
    for (const std::string& key : list)
        questions.push_back(keys.question(key));
    std::map<std::string, std::string> names;
    askTogether(connection, questions, [&](std::size_t question, const Recordset& rows, std::size_t row) {
        names.try_emplace(list[question], rows.text(row, "fname"));
    });
    for (const std::string& key : list)
        names.try_emplace(key, keys.what + quoted(key));
    return names;
}

/// One call being put into words.
class Wording {
public:
    explicit Wording(Connection& connection)
        : m_connection(connection)
    {
    }

    CallInWords of(const LedgerArguments& call)
    {
        const LedgerArguments arguments = plainArguments(call);
        const AccountExpression expression = parseAccountExpression(arguments.account);
        std::vector<std::string> parts{typeWords(arguments), accountWords(expression)};
        for (const ItemQualifier& qualifier : expression.qualifiers)
            parts.push_back(itemWords(qualifier));
        parts.push_back(currencyWords(arguments));
        parts.push_back(periodWords(arguments));
        m_result.words = joined(parts);
        return std::move(m_result);
    }

private:
    /// The name that a table gives to a key; the key itself and a problem if it has none.
    std::string nameOf(const KeyTable& keys, const std::string& key)
    {
        const Recordset rows = m_connection.query("select " + keys.question(key));
        if (!rows.isEmpty())
            return rows.text(0, 0);
        unknown(keys.what, key,
                textsOf(m_connection.query("select " + keys.keyColumn + " from " + keys.table), 0));
        return keys.what + quoted(key);
    }

    void unknown(const std::string& what, const std::string& code, const std::vector<std::string>& known)
    {
        std::string hint = codeHint({&code, 1});
        if (const std::string nearest = nearestCode(code, known);
            hint.empty() && !code.empty() && !nearest.empty())
            hint = ",最接近的是" + quoted(nearest);
        m_result.problems.push_back(what + quoted(code) + "不存在" + hint);
    }

    void unknownCodes(const std::string& what, const std::string& table,
                      const std::vector<std::string>& codes)
    {
        const std::vector<std::string> known =
            textsOf(m_connection.query("select fNumber from " + table + " order by fNumber"), 0);
        const std::size_t before = m_result.problems.size();
        for (std::size_t index = 0; index < std::min<std::size_t>(codes.size(), 2); ++index)
            if (std::ranges::find(known, codes[index]) == known.end())
                unknown(what, codes[index], known);
        const std::string hint = codeHint(codes);
        if (m_result.problems.size() == before && !hint.empty())
            m_result.problems.push_back(what + quoted(codesText(codes)) + "不存在" + hint);
    }

    std::string accountWords(const AccountExpression& expression)
    {
        if (expression.codes.empty())
            return expression.qualifiers.empty() ? "未给科目" : "全部科目";
        findAccounts(expression.codes);
        const auto& accounts = m_result.accounts;
        if (accounts.empty()) {
            unknownCodes("科目", "tblAccount", expression.codes);
            return codesText(expression.codes);
        }
        const bool isOne = expression.codes.size() == 1 && accounts.size() == 1;
        return isOne ? accounts[0].code + " " + accounts[0].name
                     : codesText(expression.codes) + " (" + std::to_string(m_matched) + " 个科目)";
    }

    void findAccounts(const std::vector<std::string>& codes)
    {
        constexpr std::size_t mostListed = 1000;
        const Recordset rows = m_connection.query(
            "select b.fitemid,b.fParentId,b.fNumber,b.fName from tblAccount as b where 1=1" +
            codeCondition("b.fNumber", codes) + " order by b.fNumber");
        m_matched = rows.rowCount();
        std::set<std::int64_t> ids;
        for (std::size_t row = 0; row < m_matched; ++row)
            ids.insert(rows.integer(row, "fitemid"));
        for (std::size_t row = 0; row < std::min(m_matched, mostListed); ++row)
            m_result.accounts.push_back({rows.text(row, "fNumber"), rows.text(row, "fName"),
                                         ids.contains(rows.integer(row, "fParentId"))});
    }

    std::string typeWords(const LedgerArguments& arguments)
    {
        return nameOf(fetchTypes(), arguments.fetchType);
    }

    std::string currencyWords(const LedgerArguments& arguments)
    {
        return arguments.currency.empty() ? std::string(localCurrency)
                                          : nameOf(currencies(), arguments.currency);
    }

    std::string itemWords(const ItemQualifier& qualifier)
    {
        const auto table = itemTableOf(m_connection, qualifier.className);
        if (!table)
            unknown(
                "核算项目类别", qualifier.className,
                textsOf(m_connection.query("select fItemname from tblItemClass order by fitemclassid"), 0));
        if (qualifier.codes.empty())
            return qualifier.className + "不限";
        if (table && m_connection
                         .query("select top 1 fNumber from " + *table + " where 1=1" +
                                codeCondition("fNumber", qualifier.codes))
                         .isEmpty())
            unknownCodes(qualifier.className, *table, qualifier.codes);
        return qualifier.className + " " + codesText(qualifier.codes);
    }

    Connection& m_connection;
    CallInWords m_result;
    std::size_t m_matched = 0;
};

} // namespace

CallInWords callInWords(Connection& connection, const LedgerArguments& arguments)
{
    return Wording(connection).of(arguments);
}

std::vector<std::string> measuresInWords(Connection& connection, std::span<const LedgerArguments> measures)
{
    std::set<std::string> typeKeys, currencyKeys;
    for (const LedgerArguments& measure : measures) {
        typeKeys.insert(measure.fetchType);
        if (!measure.currency.empty())
            currencyKeys.insert(measure.currency);
    }
    const auto types = namesOf(connection, fetchTypes(), typeKeys);
    auto currencyNames = namesOf(connection, currencies(), currencyKeys);
    currencyNames.try_emplace("", localCurrency);
    std::vector<std::string> words;
    for (const LedgerArguments& measure : measures)
        words.push_back(
            joined({types.at(measure.fetchType), currencyNames.at(measure.currency), periodWords(measure)}));
    return words;
}

std::string nearestCode(const std::string& code, const std::vector<std::string>& codes)
{
    const auto difference = [&](const std::string& other) {
        const auto sameUpTo = std::ranges::mismatch(code, other).in1 - code.begin();
        return std::pair(distance(code, other), -sameUpTo);
    };
    const auto nearest = std::ranges::min_element(codes, {}, difference);
    return nearest == codes.end() ? std::string() : *nearest;
}

} // namespace selfreport
