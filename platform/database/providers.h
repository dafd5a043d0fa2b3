#pragma once
#include <memory>
#include <string_view>

namespace selfreport {

class Session;

/// Opens a session of the provider that the connection string asks for.
/// @throws DatabaseError if the string is refused or names none of ours, or the database cannot be opened
std::unique_ptr<Session> openSession(std::string_view connectionString);

} // namespace selfreport
