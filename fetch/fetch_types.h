#pragma once
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// What `Acct` can fetch of an account.
struct FetchType {
    std::string key;  ///< the argument
    std::string name; ///< "期末余额"
};

/// In the ledger's order. @throws DatabaseError
std::vector<FetchType> fetchTypes(Connection& connection);

} // namespace selfreport
