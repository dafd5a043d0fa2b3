#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace selfreport::tds {

/// What a client says of itself when it logs in.
struct Login {
    std::string user, password, application, database;
    std::uint32_t packetSize = 0;
    bool readOnly = false; ///< meant for a read-only copy of the database
    bool isOdbc = false;   ///< asks for the settings of ODBC, unlimited text size among them
};

/// @throws ProtocolError
Login readLogin(std::string_view message);

/// The answer to any pre-login: no encryption.
std::string preLoginReply();

} // namespace selfreport::tds
