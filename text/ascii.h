#pragma once
#include <algorithm>
#include <string>
#include <string_view>

/// Letters, digits and blanks of ASCII, whatever the C locale is. Bytes beyond ASCII, so the parts of all
/// other characters of UTF-8, are none of them and stay as they are.
namespace ascii {

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool isLetter(char c)
{
    return lower(c) >= 'a' && lower(c) <= 'z';
}

inline std::string lower(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        c = lower(c);
    return result;
}

inline std::string upper(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        c = upper(c);
    return result;
}

/// Whether two texts differ in letter case at most.
constexpr bool equalFolded(std::string_view left, std::string_view right)
{
    return std::ranges::equal(
        left, right, {}, [](char c) { return lower(c); }, [](char c) { return lower(c); });
}

inline constexpr std::string_view blanks = " \t\r\n";

/// Without blanks at its beginning and end.
/// @param among  the characters that count as blanks
constexpr std::string_view trimmed(std::string_view text, std::string_view among = blanks)
{
    text.remove_prefix(std::min(text.find_first_not_of(among), text.size()));
    return text.substr(0, text.find_last_not_of(among) + 1);
}

} // namespace ascii
