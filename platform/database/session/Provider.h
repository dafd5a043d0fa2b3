#pragma once
#include <memory>

namespace selfreport {

struct ConnectionSettings;
class Session;

/// One kind of database.
struct Provider {
    /// Whether a connection string is one of its own, by the provider that it names.
    bool (*takes)(const ConnectionSettings& settings);
    /// @throws DatabaseError if the string lacks something or the database cannot be opened
    std::unique_ptr<Session> (*open)(const ConnectionSettings& settings);
};

} // namespace selfreport
