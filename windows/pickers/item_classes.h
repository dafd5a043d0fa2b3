#pragma once
#include <QStringList>
#include <string>

namespace selfreport {

class Connection;

/// The auxiliary item classes of an account, entry by entry in both lists.
struct ItemClasses {
    QStringList ids, names;
};

/// The classes of the account with that number, in no certain order. @throws DatabaseError
ItemClasses itemClassesOf(Connection& connection, const std::string& account);

} // namespace selfreport
