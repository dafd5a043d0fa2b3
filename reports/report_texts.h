#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

class Connection;

/// Whether a report's name is none: nothing, or blanks of either width.
bool isBlankName(std::string_view name);

// What a server would cut or replace by question marks is found before anything is sent. Each gives the
// sentence for the user, "" if all can be stored as it is. @throws ConnectionLost

std::string reportRefusal(Connection& connection, std::string_view name, std::string_view user);
std::string headerRefusal(Connection& connection, bool isFooter, std::string_view codes);

/// "" if the names of reports can be written in Chinese, else what to tell of the database.
std::string collationWarning(Connection& connection);

} // namespace selfreport
