#pragma once
#include <string_view>

namespace selfreport {

// How a server is asked to show one moment of the data to whoever reads for a while.

/// A row if the database lets its readers do so. It costs writers something, so that it is for its owner to
/// allow.
constexpr std::string_view snapshotQuestion()
{
    return "select 1 as f from sys.databases where database_id=db_id() and snapshot_isolation_state=1";
}

constexpr std::string_view snapshotIsolation()
{
    return "set transaction isolation level snapshot";
}

constexpr std::string_view usualIsolation()
{
    return "set transaction isolation level read committed";
}

} // namespace selfreport
