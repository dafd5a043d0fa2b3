#pragma once
#include <cstdint>
#include <span>
#include <string_view>

namespace selfreport {

/// Number of an opening that failed because no encrypted connection could be made of it.
inline constexpr std::int32_t encryptionRefused = -2146893019;

/// The number of a failure as other servers give it. Some give one number to all that they have none of their
/// own for, and tell the kind in words.
std::int32_t commonNumber(std::int32_t number, std::string_view text);

/// What the numbers of a failure mean to the user and what to do next, in a sentence without its end; "" if
/// none of them is known. Of several the one that tells most.
std::string_view serverErrorText(std::span<const std::int32_t> numbers);

/// Whether user or password were refused, and not the database.
bool refusesLogin(std::span<const std::int32_t> numbers);

/// Whether the certificate or the encryption was refused.
bool refusesEncryption(std::span<const std::int32_t> numbers);

/// Whether another session was in the way: the same may be done again on another connection.
bool mayBeRepeated(std::span<const std::int32_t> numbers);

/// Whether the server or its administrator ended the session.
bool endsSession(std::span<const std::int32_t> numbers);

/// Whether the server was waited for in vain.
bool saysTimeOut(std::span<const std::int32_t> numbers);

} // namespace selfreport
