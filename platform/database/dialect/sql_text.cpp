#include "platform/database/dialect/sql_text.h"

#include "text/ascii.h"
#include "text/quotes.h"

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
    return quotes::doubled(value, '\'');
}

bool isPlainIdentifier(std::string_view name)
{
    if (name.empty() || name.size() > 128 || !startsIdentifier(name.front()))
        return false;
    return std::ranges::all_of(
        name, [](char letter) { return startsIdentifier(letter) || ascii::isDigit(letter); });
}

} // namespace selfreport
