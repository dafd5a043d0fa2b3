#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace selfreport {

/// The "key=value;" pairs of a connection string under their main names ("Data Source", "Initial Catalog",
/// "User ID", "Password", "Integrated Security", "Connect Timeout", ...), in order of first appearance.
struct ConnectionSettings {
    std::string text; ///< as it was handed over; may hold a password
    std::vector<std::pair<std::string, std::string>> values;

    /// "" if the key is not there. The main name of the key is asked for.
    const std::string& value(std::string_view key) const;
};

/// Reads a connection string: keys without regard to letter case and blanks around them; values bare or in
/// apostrophes or quotes, a doubled quote inside standing for one, braces standing for themselves; "==" in a
/// key stands for "="; of equal keys the last one counts; synonyms are one key. Where a driver or a data
/// source is named and no provider, the string is ODBC's own, and braces are the quotes.
/// @throws DatabaseError (unspecifiedError) if it is empty or malformed
ConnectionSettings parseConnectionString(std::string_view text);

/// @throws DatabaseError (unspecifiedError): why a connection string opens nothing
[[noreturn]] void refuseConnectionString(const std::string& reason);

} // namespace selfreport
