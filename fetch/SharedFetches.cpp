#include "fetch/SharedFetches.h"

#include "access/DatabaseAccess.h"
#include "access/driver_call.h"
#include "fetch/frmEditor1.h"
#include "fetch/report_functions.h"

#include <exception>
#include <utility>
#include <vector>

namespace selfreport {

/// A referenced report after its evaluation, or why there is none.
struct SharedFetches::LoadedReport {
    LoadedReport(DatabaseAccess& database, SharedFetches* shared)
        : hidden(database, shared)
    {
    }
    frmEditor1 hidden;
    ReportProblem problem;
};

SharedFetches::SharedFetches(DatabaseAccess& database, bool tellsKinds)
    : m_database(database)
    , m_tellsKinds(tellsKinds)
{
}

SharedFetches::~SharedFetches() = default;

/// A connection of its own for all waves: the common one stays free for the calls. Null after a failed
/// opening.
std::unique_ptr<Connection>& SharedFetches::waveConnection()
{
    if (!m_connection && m_database.open())
        m_connection = std::exchange(m_database.connection, nullptr);
    return m_connection;
}

std::unique_ptr<Connection> SharedFetches::takeConnection()
{
    return std::move(m_connection);
}

void SharedFetches::prepare(std::span<spreadsheet::PreparedCall> calls)
{
    std::set<std::string> names;
    for (const spreadsheet::PreparedCall& call : calls)
        if (const auto reference = referenceOf(call.asCall()))
            names.insert(reference->report);
    loadReports(names, ledgerCallsAmong(calls));
    for (spreadsheet::PreparedCall& call : calls) {
        const auto wanted = referenceOf(call.asCall());
        if (!wanted || !m_reports.contains(wanted->report))
            continue;
        spreadsheet::FunctionCall answered = call.asCall();
        answered.setResult(reference(*wanted)->answer.text);
        call.expected = answered.result();
    }
    prepareLedger(calls);
}

void SharedFetches::prepareLedger(std::span<spreadsheet::PreparedCall> calls)
{
    fetchLedgerAnswers(ledgerCallsAmong(calls));
    for (spreadsheet::PreparedCall& call : calls) {
        const auto arguments = ledgerArgumentsOf(call.asCall());
        const auto found = arguments ? m_ledger.find(*arguments) : m_ledger.end();
        if (found != m_ledger.end())
            call.expected = spreadsheet::Value(found->second->answer.amount.value_or(0));
    }
}

void SharedFetches::fetchLedgerAnswers(const std::set<LedgerArguments>& wanted)
{
    std::vector<LedgerArguments> fetches;
    for (const LedgerArguments& arguments : wanted)
        if (!arguments.account.empty() && !m_ledger.contains(arguments))
            fetches.push_back(arguments);
    if (fetches.empty())
        return;
    std::unique_ptr<Connection>& connection = waveConnection();
    if (!connection)
        return;
    try {
        using Answers = std::vector<std::optional<LedgerAnswer>>;
        Answers answers = driverCall<Answers>(
            connection, [fetches](Connection& open) { return fetchLedger(open, fetches); });
        for (std::size_t i = 0; i < fetches.size(); ++i)
            if (answers[i])
                m_ledger.emplace(fetches[i], std::make_shared<const LedgerFetch>(
                                                 LedgerFetch{fetches[i], std::move(*answers[i])}));
    } catch (const std::exception&) {
        connection.reset(); // each call fetches for itself and keeps its own reason
    }
}

/// What is stored of the reports that are not known yet: no content of one that is not there.
std::map<std::string, std::optional<std::vector<std::byte>>>
SharedFetches::contentsOf(const std::set<std::string>& names)
{
    std::map<std::string, std::optional<std::vector<std::byte>>> contents;
    try {
        for (const std::string& name : names) {
            if (m_reports.contains(name))
                continue;
            if (!waveConnection())
                break;
            contents.emplace(name, fetchedContent(m_connection, name));
        }
    } catch (const std::exception& error) {
        m_connection.reset(); // what was read so far is good; the other calls fetch for themselves
        const auto* const refused = dynamic_cast<const DatabaseError*>(&error);
        if (refused && refused->isTimeOut) // each of them alone would be waited for as long
            for (const std::string& name : names)
                if (!contents.contains(name) && !m_reports.contains(name))
                    m_reports.emplace(name, std::make_unique<LoadedReport>(m_database, this))
                        .first->second->problem = unreadableReport(name, error);
    }
    return contents;
}

/// All of them ask the ledger together, and for what else is wanted with them.
void SharedFetches::loadReports(const std::set<std::string>& names, std::set<LedgerArguments> alsoWanted)
{
    std::map<std::string, std::unique_ptr<LoadedReport>> opened;
    for (const auto& [name, content] : contentsOf(names)) {
        LoadedReport& report =
            *opened.emplace(name, std::make_unique<LoadedReport>(m_database, this)).first->second;
        if (!content) {
            report.problem = missingReport(name);
            continue;
        }
        try {
            report.hidden.open(*content);
            alsoWanted.merge(report.hidden.firstCalls());
        } catch (const std::exception& error) {
            report.problem = unreadableReport(name, error);
        }
    }
    if (opened.empty())
        return;
    fetchLedgerAnswers(alsoWanted);
    for (auto& [name, report] : opened) {
        try {
            report->hidden.compute();
        } catch (const std::exception& error) {
            report->problem = unreadableReport(name, error);
        }
        m_reports.emplace(name, std::move(report));
    }
}

std::shared_ptr<const LedgerFetch> SharedFetches::ledger(const LedgerArguments& arguments)
{
    std::shared_ptr<const LedgerFetch>& known = m_ledger[arguments];
    if (!known)
        known = std::make_shared<const LedgerFetch>(
            LedgerFetch{arguments, fetchFromLedger(m_database, arguments)});
    return known;
}

std::shared_ptr<const ReferenceFetch> SharedFetches::reference(const ReportReference& reference)
{
    if (const auto known = m_references.find(reference); known != m_references.end())
        return known->second;
    loadReports({reference.report}, {});
    const auto found = m_reports.find(reference.report);
    ReferenceAnswer answer =
        found == m_reports.end()
            ? fetchFromReport(m_database, reference)
            : readReferencedCell(found->second->hidden, reference, found->second->problem, m_tellsKinds);
    auto fetch = std::make_shared<const ReferenceFetch>(ReferenceFetch{reference, std::move(answer)});
    if (found != m_reports.end())
        m_references.emplace(reference, fetch);
    return fetch;
}

} // namespace selfreport
