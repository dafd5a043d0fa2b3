#pragma once
#include "fetch/call_in_words.h"

#include <array>
#include <chrono>
#include <string>

namespace selfreport {

/// What an `Acct` call that is being written means and would fetch now.
struct CallTrial {
    CallInWords meaning;
    std::string value; ///< the amount with two decimals, or why there is none; ends with no full stop
};

/// Tries a call from the texts of its six arguments on a connection of its own. Shows nothing and throws
/// nothing: what fails is said in the result.
/// @param limit  it returns by then with what is known. A database that does not answer at all is left alone,
///               and not asked again, until it does or the connection fails.
CallTrial tryCall(const std::string& connectionString, const std::array<std::string, 6>& texts,
                  std::chrono::milliseconds limit);

} // namespace selfreport
