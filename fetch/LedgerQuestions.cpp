#include "fetch/LedgerQuestions.h"

#include "fetch/compound_statement.h"
#include "fetch/ledger_fetch.h"
#include "fetch/ledger_query.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>
#include <utility>

namespace selfreport {

std::string LedgerQuestions::rowQuestion(std::string_view fromAndWhere)
{
    return "'' as ftext where exists (select 1 from " + std::string(fromAndWhere) + ")";
}

std::string LedgerQuestions::itemTableQuestion(std::string_view className)
{
    return "fitemtable as ftext from tblItemClass where fItemname='" + sqlQuoted(className) + "'";
}

std::string LedgerQuestions::numberQuestion(std::string_view select)
{
    return "cast(n.f as varchar(12)) as ftext from (select " + std::string(select) + ") as n";
}

void LedgerQuestions::add(std::string question)
{
    if (m_answers.try_emplace(question).second)
        m_waiting.push_back(std::move(question));
}

void LedgerQuestions::ask(Connection& connection)
{
    int refusalsLeft = 8; // a database that refuses everything is not asked piece by piece
    const std::vector<std::string> waiting = std::exchange(m_waiting, {});
    for (std::size_t first = 0; first < waiting.size(); first += mostBranches)
        askSome(connection, std::span(waiting).subspan(first, std::min(mostBranches, waiting.size() - first)),
                refusalsLeft);
}

/// A refused statement is asked by halves, so that one table that is missing leaves the other answers.
void LedgerQuestions::askSome(Connection& connection, std::span<const std::string> questions,
                              int& refusalsLeft)
{
    try {
        const Recordset rows = connection.query(compoundStatement(questions));
        for (std::size_t row = 0; row < rows.rowCount(); ++row) {
            Answer& answer = m_answers.at(questions[static_cast<std::size_t>(rows.integer(row, "fordinal"))]);
            if (!answer.text)
                answer.text = rows.text(row, "ftext");
        }
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError& error) {
        if (questions.size() > 1 && --refusalsLeft >= 0) {
            askSome(connection, questions.first(questions.size() / 2), refusalsLeft);
            askSome(connection, questions.subspan(questions.size() / 2), refusalsLeft);
            return;
        }
        for (const std::string& question : questions)
            m_answers.at(question) = {{}, error.description, error.number};
    }
}

const LedgerQuestions::Answer& LedgerQuestions::answered(const std::string& question) const
{
    const Answer& answer = m_answers.at(question);
    if (!answer.refusal.empty())
        throw DatabaseError(answer.number, answer.refusal);
    return answer;
}

bool LedgerQuestions::hasRow(std::string_view fromAndWhere) const
{
    return answered(rowQuestion(fromAndWhere)).text.has_value();
}

std::optional<std::string> LedgerQuestions::itemTable(std::string_view className) const
{
    const Answer& answer = answered(itemTableQuestion(className));
    return answer.text ? plainTable(*answer.text) : std::nullopt;
}

std::optional<std::string> LedgerQuestions::number(std::string_view select) const
{
    const auto found = m_answers.find(numberQuestion(select));
    return found == m_answers.end() ? std::nullopt : found->second.text;
}

} // namespace selfreport
