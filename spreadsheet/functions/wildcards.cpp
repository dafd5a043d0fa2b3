#include "spreadsheet/functions/wildcards.h"

#include "spreadsheet/functions/characters.h"

namespace spreadsheet {

namespace {

// Beyond Unicode, so that no character of a text is taken for them.
constexpr char32_t anyCharacter = 0x110000;
constexpr char32_t anyText = 0x110001;

} // namespace

WildcardPattern::WildcardPattern(std::string_view pattern)
{
    for (std::size_t at = 0; at < pattern.size();) {
        const char c = pattern[at];
        if (c == '~' && at + 1 < pattern.size() &&
            std::string_view("?*~").find(pattern[at + 1]) != std::string_view::npos) {
            m_pattern.push_back(static_cast<unsigned char>(pattern[at + 1]));
            at += 2;
        } else if (c == '?' || c == '*') {
            m_hasWildcards = true;
            if (c == '?' || m_pattern.empty() || m_pattern.back() != anyText)
                m_pattern.push_back(c == '?' ? anyCharacter : anyText);
            ++at;
        } else {
            m_pattern.push_back(foldedCharacter(takeCharacter(pattern, at)));
        }
    }
}

std::string WildcardPattern::literal() const
{
    std::string text;
    for (const char32_t c : m_pattern)
        appendCharacter(text, c);
    return text;
}

bool WildcardPattern::matches(std::string_view text) const
{
    return fits(text, 0, true);
}

std::optional<std::size_t> WildcardPattern::find(std::string_view text, std::size_t from) const
{
    for (std::size_t at = from; at <= text.size();) {
        if (fits(text, at, false))
            return at;
        if (at == text.size())
            break;
        takeCharacter(text, at);
    }
    return std::nullopt;
}

/// Only the latest "*" is ever taken up again: an earlier one could not reach further.
bool WildcardPattern::fits(std::string_view text, std::size_t at, bool whole) const
{
    std::size_t place = 0;
    std::optional<std::size_t> star;
    std::size_t starAt = 0;
    for (;;) {
        if (place == m_pattern.size()) {
            if (!whole || at == text.size())
                return true;
        } else if (m_pattern[place] == anyText) {
            star = place++;
            starAt = at;
            continue;
        } else if (at < text.size()) {
            std::size_t next = at;
            const char32_t c = foldedCharacter(takeCharacter(text, next));
            if (m_pattern[place] == anyCharacter || m_pattern[place] == c) {
                at = next;
                ++place;
                continue;
            }
        }
        if (!star || starAt >= text.size())
            return false;
        takeCharacter(text, starAt);
        at = starAt;
        place = *star + 1;
    }
}

} // namespace spreadsheet
