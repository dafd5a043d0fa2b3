#include "spreadsheet/files/exchange/SharedTexts.h"

#include "spreadsheet/files/exchange/unicode_text.h"

namespace spreadsheet {

std::optional<std::string> cutText(std::string_view text)
{
    if (text.size() <= mostTextCharacters) // a unit takes a byte at least
        return std::nullopt;
    std::u16string units = utf16Of(text);
    if (units.size() <= mostTextCharacters)
        return std::nullopt;
    const bool inPair = units[mostTextCharacters] >= 0xDC00 && units[mostTextCharacters] < 0xE000;
    units.resize(mostTextCharacters - (inPair ? 1 : 0));
    return utf8Of(units);
}

std::uint32_t SharedTexts::number(std::string_view text)
{
    ++m_uses;
    const auto [entry, isFresh] = m_numbers.try_emplace(text, static_cast<std::uint32_t>(m_texts.size()));
    if (isFresh) {
        m_texts.push_back(text);
        m_hasLonger |= cutText(text).has_value();
    }
    return entry->second;
}

} // namespace spreadsheet
