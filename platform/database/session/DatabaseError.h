#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

namespace selfreport {

/// Number of a rejected login; callers tell the user that name or password are wrong.
inline constexpr std::int32_t loginRejected = -2147217843;

/// Number of every other failure on opening, and of failures that carry no number of their own.
inline constexpr std::int32_t unspecifiedError = -2147467259;

/// Numbers of calls that cannot be made: there is no such procedure, or the user may not run it.
inline constexpr std::int32_t procedureMissing = 2812;
inline constexpr std::int32_t permissionDenied = 229;

/// The database refused or is out of reach. Descriptions are UTF-8 and never hold a password.
struct DatabaseError : std::runtime_error {
    DatabaseError(std::int32_t code, const std::string& text)
        : std::runtime_error(text)
        , number(code)
        , description(text)
    {
    }
    std::int32_t number;     ///< provider's own number, or one of the two above
    std::string description; ///< same text as what()
    bool isTimeOut = false;  ///< the server was waited for in vain; asked again it would cost as long
};

/// A connection's session was found gone, and no other could be opened: what failed is the opening.
struct OpeningFailed : DatabaseError {
    using DatabaseError::DatabaseError;
};

/// The session below a connection is gone; what it was sent may or may not have been done.
struct ConnectionLost : DatabaseError {
    using DatabaseError::DatabaseError;
};

/// Another session was in the way: it took the key meanwhile, or the server let it go first. The transaction
/// is to be rolled back and may be done again from its beginning.
struct RepeatableError : DatabaseError {
    using DatabaseError::DatabaseError;
};

} // namespace selfreport
