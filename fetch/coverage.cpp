#include "fetch/coverage.h"

#include "fetch/compound_statement.h"
#include "platform/database/Connection.h"

#include <algorithm>
#include <functional>
#include <map>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace selfreport {

namespace {

using AccountIds = std::unordered_set<std::int64_t>;

/// The accounts that each expression names.
std::vector<AccountIds> idsOf(Connection& connection, std::span<const std::vector<std::string>> expressions)
{
    std::vector<std::string> questions;
    for (const std::vector<std::string>& codes : expressions)
        questions.push_back("b.fitemid as fitemid from tblAccount as b where 1=1" +
                            codeCondition("b.fNumber", codes));
    std::vector<AccountIds> ids(expressions.size());
    askTogether(connection, questions, [&](std::size_t question, const Recordset& rows, std::size_t row) {
        ids[question].insert(rows.integer(row, "fitemid"));
    });
    return ids;
}

auto measureOf(const LedgerArguments& arguments)
{
    return std::tie(arguments.fetchType, arguments.currency, arguments.year, arguments.firstPeriod,
                    arguments.lastPeriod);
}

/// The chart of accounts, and which calls reach which account.
class Chart {
public:
    explicit Chart(Connection& connection)
        : m_connection(connection)
        , m_rows(connection.query("select fitemid,fNumber,fName,fParentId,fIsDetail from tblAccount "
                                  "order by fNumber"))
    {
        for (std::size_t row = 0; row < m_rows.rowCount(); ++row)
            m_parentOf[m_rows.integer(row, "fitemid")] = m_rows.integer(row, "fParentId");
    }

    /// @param stretch  its codes
    std::vector<AccountCoverage> coverage(const std::vector<std::string>& stretch,
                                          const LedgerArguments& measure, std::span<const CellCall> calls)
    {
        const AccountIds wanted = askReaches(stretch, measure, calls);
        std::vector<AccountCoverage> found;
        for (std::size_t row = 0; row < m_rows.rowCount(); ++row) {
            const std::int64_t id = m_rows.integer(row, "fitemid");
            if (m_rows.integer(row, "fIsDetail") == 0 || !reaches(wanted, id))
                continue;
            AccountCoverage account{m_rows.text(row, "fNumber"), m_rows.text(row, "fName"), {}, {}, false};
            for (std::size_t call = 0; call < calls.size(); ++call)
                if (measureOf(calls[call].arguments) == measureOf(measure))
                    addCall(account, id, call, calls[call].arguments.account);
            found.push_back(std::move(account));
        }
        return found;
    }

private:
    struct Reach {
        AccountIds accounts;
        bool hasItems = false;
    };

    void addCall(AccountCoverage& account, std::int64_t id, std::size_t call, const std::string& expression)
    {
        const Reach& reach = m_reaches.at(expression);
        if (!reaches(reach.accounts, id))
            return;
        account.calls.push_back(call);
        account.isPartial = account.isPartial || reach.hasItems;
    }

    /// Whether the account or one above it is among the matched ones: a parent holds the amounts below it.
    bool reaches(const AccountIds& matched, std::int64_t id) const
    {
        std::size_t steps = 0; // a chart that is its own parent ends, too
        for (auto at = m_parentOf.find(id); at != m_parentOf.end() && steps <= m_parentOf.size();
             at = m_parentOf.find(at->second), ++steps)
            if (matched.contains(at->first))
                return true;
        return false;
    }

    /// What the calls reach, and the accounts of the stretch.
    AccountIds askReaches(const std::vector<std::string>& stretch, const LedgerArguments& measure,
                          std::span<const CellCall> calls)
    {
        std::vector<std::vector<std::string>> expressions{stretch};
        std::vector<Reach*> reaches;
        for (const CellCall& call : calls) {
            const std::string& expression = call.arguments.account;
            if (measureOf(call.arguments) != measureOf(measure))
                continue;
            const auto [found, isNew] = m_reaches.try_emplace(expression);
            if (!isNew || expression.empty()) // an empty one fetches nothing
                continue;
            const AccountExpression parsed = parseAccountExpression(expression);
            for (const ItemQualifier& qualifier : parsed.qualifiers)
                found->second.hasItems = found->second.hasItems || !qualifier.codes.empty();
            expressions.push_back(parsed.codes);
            reaches.push_back(&found->second);
        }
        std::vector<AccountIds> ids = idsOf(m_connection, expressions);
        for (std::size_t at = 0; at < reaches.size(); ++at)
            reaches[at]->accounts = std::move(ids[at + 1]);
        return std::move(ids.front());
    }

    Connection& m_connection;
    Recordset m_rows;
    std::unordered_map<std::int64_t, std::int64_t> m_parentOf;
    std::map<std::string, Reach> m_reaches;
};

void addAmounts(Connection& connection, const LedgerArguments& measure,
                std::vector<AccountCoverage>& accounts)
{
    std::vector<LedgerArguments> fetches;
    for (const AccountCoverage& account : accounts) {
        fetches.push_back(measure);
        fetches.back().account = account.code;
    }
    const std::vector<std::optional<LedgerAnswer>> answers = fetchLedger(connection, fetches);
    for (std::size_t index = 0; index < accounts.size(); ++index)
        if (answers[index] && answers[index]->failure.empty())
            accounts[index].amount = answers[index]->amount;
}

} // namespace

std::vector<CoverageMeasure> measuresOf(std::span<const CellCall> calls)
{
    std::vector<CoverageMeasure> measures;
    for (const CellCall& call : calls) {
        LedgerArguments arguments = call.arguments;
        arguments.account.clear();
        auto found = std::ranges::find(measures, arguments, &CoverageMeasure::arguments);
        if (found == measures.end())
            found = measures.insert(found, {std::move(arguments), 0});
        ++found->calls;
    }
    std::ranges::stable_sort(measures, std::ranges::greater(), &CoverageMeasure::calls);
    return measures;
}

std::vector<AccountCoverage> accountCoverage(Connection& connection, const std::string& first,
                                             const std::string& last, const LedgerArguments& measure,
                                             std::span<const CellCall> calls)
{
    std::vector<std::string> stretch;
    if (!first.empty() || !last.empty())
        stretch = {first.empty() ? last : first, last.empty() ? first : last};
    std::vector<AccountCoverage> accounts = Chart(connection).coverage(stretch, measure, calls);
    addAmounts(connection, measure, accounts);
    return accounts;
}

} // namespace selfreport
