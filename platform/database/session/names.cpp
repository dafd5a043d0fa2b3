#include "platform/database/session/names.h"

#include <algorithm>

namespace selfreport {

namespace {

constexpr char asciiLower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

} // namespace

bool sameName(std::string_view left, std::string_view right)
{
    return std::ranges::equal(left, right, {}, asciiLower, asciiLower);
}

bool beginsWithName(std::string_view text, std::string_view name)
{
    return sameName(text.substr(0, name.size()), name);
}

} // namespace selfreport
