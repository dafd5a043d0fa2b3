#pragma once
#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace selfreport {

class Connection;
class Recordset;

/// The embedded database takes 500 branches of one compound statement.
inline constexpr std::size_t mostBranches = 400;

/// One statement for several questions. What a question gives has its place in front, as the column
/// "fordinal".
/// @param questions  each without its "select", all with the same columns; at most `mostBranches`
std::string compoundStatement(std::span<const std::string> questions);

/// Asks any number of questions with as few statements as that takes.
/// @param found  is given a question's place and each of its rows
/// @throws DatabaseError
void askTogether(
    Connection& connection, std::span<const std::string> questions,
    const std::function<void(std::size_t question, const Recordset& rows, std::size_t row)>& found);

} // namespace selfreport
