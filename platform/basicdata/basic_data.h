#pragma once
#include "platform/basicdata/ChooserEntry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// All accounts by code, each under its parent. An account whose parent is missing stands on the top level.
/// @throws DatabaseError
std::vector<ChooserEntry> accountEntries(Connection& connection);

/// An item class and what it lists.
struct ItemList {
    QString className;
    std::vector<ChooserEntry> items; ///< by code
};

/// The items of a class.
/// @param codeField  the column that holds the code to hand back
/// @throws DatabaseError, std::runtime_error if there is no such class or its table's name is none
ItemList itemsOfClass(Connection& connection, std::int16_t classId, const std::string& codeField);

} // namespace selfreport
