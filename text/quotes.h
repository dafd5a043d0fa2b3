#pragma once
#include <string>
#include <string_view>

/// Texts between quotes that stand doubled inside, as formulas, SQL, csv files and pasted cells write them.
namespace quotes {

/// Every quote twice.
inline std::string doubled(std::string_view text, char quote)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text)
        result.append(c == quote ? 2 : 1, c);
    return result;
}

inline std::string around(std::string_view text, char quote)
{
    return quote + doubled(text, quote) + quote;
}

/// What stands between the first and the last character, which are quotes.
inline std::string within(std::string_view quoted)
{
    std::string text;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        text += quoted[i];
        i += quoted[i] == quoted.front();
    }
    return text;
}

} // namespace quotes
