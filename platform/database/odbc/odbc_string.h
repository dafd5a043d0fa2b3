#pragma once
#include <string>
#include <string_view>

namespace selfreport {

struct ConnectionSettings;

/// The provider whose strings name a data source of the driver manager.
inline constexpr std::string_view bridgeProvider = "MSDASQL";

/// What is handed to the driver manager.
struct OdbcTarget {
    std::string connectionString; ///< holds the password: never shown
    int loginTimeout = 15;        ///< seconds for the whole opening; 0 for no limit
    int queryTimeout = 0;         ///< seconds; 0 for no limit
    bool encrypts = false;        ///< in clear it is not to be opened
};

/// Puts a server's connection settings into the words of the driver. Only keys that it knows go out, because
/// it drops others without a word; text always travels as UTF-8 of protocol version 7.4. "Driver=" and "DSN="
/// without a provider go out as they stand.
/// @throws DatabaseError without a server, for a protocol other than TCP, a port or time-out that is no
///   number, and a value that the driver's string cannot hold
OdbcTarget odbcTarget(const ConnectionSettings& settings);

} // namespace selfreport
