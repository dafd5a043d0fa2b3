#include "spreadsheet/calculation/wildcards.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/folding.h"

#include <algorithm>

namespace spreadsheet {

namespace {

// Beyond Unicode, so that no character of a text is taken for them.
constexpr char32_t anyCharacter = 0x110000;
constexpr char32_t anyText = 0x110001;

using Characters = std::u32string_view;

/// A text's characters folded; valid until the next call. Patterns meet texts by the thousand.
Characters folded(std::string_view text)
{
    thread_local std::u32string characters;
    characters.clear();
    for (std::size_t at = 0; at < text.size();)
        characters += foldedCharacter(takeCharacter(text, at));
    return characters;
}

/// What stands before the first "*" of a pattern, which then begins there.
Characters takePiece(Characters& pattern)
{
    const Characters piece = pattern.substr(0, pattern.find(anyText));
    pattern.remove_prefix(piece.size());
    return piece;
}

bool fitsAt(Characters text, std::size_t at, Characters piece)
{
    if (text.size() < at + piece.size())
        return false;
    return std::equal(piece.begin(), piece.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                      [](char32_t wanted, char32_t c) { return wanted == c || wanted == anyCharacter; });
}

/// The first place where a piece fits; npos if there is none.
std::size_t placeOf(Characters text, std::size_t from, Characters piece)
{
    for (std::size_t at = from; at + piece.size() <= text.size(); ++at) {
        if (fitsAt(text, at, piece))
            return at;
    }
    return Characters::npos;
}

} // namespace

WildcardPattern::WildcardPattern(std::string_view pattern)
{
    for (std::size_t at = 0; at < pattern.size();) {
        const char c = pattern[at];
        if (c == '~' && at + 1 < pattern.size()) { // what follows stands for itself
            m_pattern.push_back(foldedCharacter(takeCharacter(pattern, ++at)));
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

/// Pieces between two "*" may stand at their first place: a later one leaves less for the rest.
bool WildcardPattern::matches(std::string_view text) const
{
    Characters rest = folded(text);
    Characters pattern = m_pattern;
    const Characters head = takePiece(pattern);
    if (!fitsAt(rest, 0, head))
        return false;
    rest.remove_prefix(head.size());
    while (!pattern.empty()) {
        pattern.remove_prefix(1);
        const Characters piece = takePiece(pattern);
        if (pattern.empty()) // the last one ends the text
            return rest.size() >= piece.size() && fitsAt(rest, rest.size() - piece.size(), piece);
        const std::size_t place = placeOf(rest, 0, piece);
        if (place == Characters::npos)
            return false;
        rest.remove_prefix(place + piece.size());
    }
    return rest.empty();
}

std::optional<std::size_t> WildcardPattern::find(std::string_view text, std::size_t from) const
{
    const Characters characters = folded(text.substr(from));
    Characters pattern = m_pattern;
    const Characters head = takePiece(pattern);
    const std::size_t first = placeOf(characters, 0, head);
    Characters piece = head;
    std::size_t place = first;
    while (place != Characters::npos && !pattern.empty()) {
        const std::size_t end = place + piece.size();
        pattern.remove_prefix(1);
        piece = takePiece(pattern);
        place = placeOf(characters, end, piece);
    }
    if (place == Characters::npos)
        return std::nullopt; // nor does the rest fit behind a later place of the head
    for (std::size_t i = 0; i < first; ++i)
        takeCharacter(text, from);
    return from;
}

} // namespace spreadsheet
