#include "platform/database/dialect/sql_text.h"

#include "text/ascii.h"

#include <algorithm>

namespace selfreport {

namespace {

bool startsIdentifier(char letter)
{
    return ascii::isLetter(letter) || letter == '_' || static_cast<unsigned char>(letter) >= 0x80;
}

} // namespace

std::string sqlQuoted(std::string_view value)
{
    std::string quoted;
    quoted.reserve(value.size());
    for (const char letter : value) {
        quoted += letter;
        if (letter == '\'')
            quoted += letter;
    }
    return quoted;
}

bool isPlainIdentifier(std::string_view name)
{
    if (name.empty() || name.size() > 128 || !startsIdentifier(name.front()))
        return false;
    return std::ranges::all_of(
        name, [](char letter) { return startsIdentifier(letter) || (letter >= '0' && letter <= '9'); });
}

} // namespace selfreport
