#pragma once
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;

/// Questions about what the ledger knows. Equal ones are asked once, and all that wait with one statement.
/// One that the database refuses keeps its failure; the others are answered all the same.
class LedgerQuestions {
public:
    /// Whether a table has a row. @param fromAndWhere  "tblCurrency where fnumber='RMB'"
    void addRow(std::string_view fromAndWhere) { add(rowQuestion(fromAndWhere)); }
    void addItemTable(std::string_view className) { add(itemTableQuestion(className)); }
    /// A whole number. @param select  "max(fYear) as f from tblAccountBal"
    void addNumber(std::string_view select) { add(numberQuestion(select)); }

    /// Asks what waits. @throws ConnectionLost
    void ask(Connection& connection);

    // Answers. @throws DatabaseError of a question that was refused; std::out_of_range if it was not asked
    bool hasRow(std::string_view fromAndWhere) const;
    /// The table that lists a class's items; nothing if there is no such class or its table is no plain
    /// identifier.
    std::optional<std::string> itemTable(std::string_view className) const;
    /// Empty if the ledger has no such number; nothing if it was not asked or did not answer.
    std::optional<std::string> number(std::string_view select) const;

private:
    struct Answer {
        std::optional<std::string> text;
        std::string refusal;
        int number = 0; ///< of the refusal
    };

    static std::string rowQuestion(std::string_view fromAndWhere);
    static std::string itemTableQuestion(std::string_view className);
    static std::string numberQuestion(std::string_view select);
    void add(std::string question);
    void askSome(Connection& connection, std::span<const std::string> questions, int& refusalsLeft);
    const Answer& answered(const std::string& question) const;

    std::vector<std::string> m_waiting;
    std::map<std::string, Answer, std::less<>> m_answers; ///< by the question's text; also of those that wait
};

} // namespace selfreport
