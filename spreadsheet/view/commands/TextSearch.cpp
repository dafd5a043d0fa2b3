#include "spreadsheet/view/commands/TextSearch.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/folding.h"
#include "text/ascii.h"

#include <algorithm>
#include <cstring>

namespace spreadsheet {

namespace {

std::string folded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        appendCharacter(result, foldedCharacter(takeCharacter(text, at)));
    return result;
}

/// True if folding changes nothing but ASCII capitals: Chinese texts have no letter case. Bytes C3 to DF
/// begin Latin, Greek and Cyrillic letters, E1, E2 and EF further ones and the full-width forms, F0 the rest.
bool foldsByByte(std::string_view text)
{
    return std::ranges::none_of(text, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0xC2 && (byte < 0xE3 || byte >= 0xEE);
    });
}

/// The end of the shortest stretch from `begin` on that fits the whole pattern.
std::size_t endOfMatch(const WildcardPattern& pattern, std::string_view text, std::size_t begin)
{
    for (std::size_t end = begin; end < text.size();) {
        if (pattern.matches(text.substr(begin, end - begin)))
            return end;
        takeCharacter(text, end);
    }
    return text.size();
}

} // namespace

TextSearch::TextSearch(std::string_view what, SearchOptions options)
    : m_options(options)
    , m_what(options.matchCase ? std::string(what) : folded(what))
    , m_pattern(options.wildcards ? what : std::string_view())
    , m_usePattern(options.wildcards && m_pattern.hasWildcards())
{
    if (options.wildcards && !m_usePattern)
        m_what = m_pattern.literal();
    if (!m_what.empty()) {
        m_firstSmall = m_what[0];
        m_firstCapital = options.matchCase ? m_firstSmall : ascii::upper(m_firstSmall);
    }
    constexpr std::string_view figures = "0123456789+-.,:/%eE ￥¥$";
    m_mayBeInFigure = m_usePattern || std::ranges::all_of(m_what, [&](char c) {
                          return figures.find(c) != std::string_view::npos;
                      });
}

/// Of a text that folds by byte.
std::optional<std::size_t> TextSearch::findSmall(std::string_view text, std::size_t from) const
{
    if (m_what.size() > text.size())
        return std::nullopt;
    const std::size_t last = text.size() - m_what.size();
    for (std::size_t at = from; at <= last; ++at) {
        if (text[at] != m_firstSmall && text[at] != m_firstCapital)
            continue;
        std::size_t same = 1;
        while (same < m_what.size() && ascii::lower(text[at + same]) == m_what[same])
            ++same;
        if (same == m_what.size())
            return at;
    }
    return std::nullopt;
}

bool TextSearch::finds(std::string_view text) const
{
    if (m_usePattern)
        return m_options.wholeCell ? m_pattern.matches(text) : m_pattern.find(text, 0).has_value();
    if (m_what.empty())
        return m_options.wholeCell && text.empty();
    if (m_options.matchCase)
        return m_options.wholeCell ? text == m_what : text.find(m_what) != std::string_view::npos;
    if (foldsByByte(text)) {
        return m_options.wholeCell ? text.size() == m_what.size() && findSmall(text, 0)
                                   : findSmall(text, 0).has_value();
    }
    const std::string plain = folded(text);
    return m_options.wholeCell ? plain == m_what : plain.find(m_what) != std::string::npos;
}

std::optional<TextSearch::Place> TextSearch::next(std::string_view text, std::size_t from) const
{
    if (m_usePattern) {
        const auto begin = m_pattern.find(text, from);
        return begin ? std::optional(Place{*begin, endOfMatch(m_pattern, text, *begin)}) : std::nullopt;
    }
    if (m_options.matchCase || foldsByByte(text)) {
        const std::size_t found =
            m_options.matchCase ? text.find(m_what, from) : findSmall(text, from).value_or(std::string::npos);
        return found == std::string_view::npos ? std::nullopt
                                               : std::optional(Place{found, found + m_what.size()});
    }
    for (std::size_t begin = from; begin < text.size();) {
        std::size_t end = begin;
        std::string plain;
        while (end < text.size() && plain.size() < m_what.size())
            appendCharacter(plain, foldedCharacter(takeCharacter(text, end)));
        if (plain == m_what)
            return Place{begin, end};
        takeCharacter(text, begin);
    }
    return std::nullopt;
}

std::optional<std::string> TextSearch::replaced(std::string_view text, std::string_view replacement) const
{
    if (!finds(text))
        return std::nullopt;
    if (m_options.wholeCell)
        return std::string(replacement);
    std::string result;
    std::size_t at = 0;
    while (const auto place = next(text, at)) {
        result += text.substr(at, place->begin - at);
        result += replacement;
        at = place->end;
        if (place->begin == place->end)
            break; // "*" alone took nothing and would do so for ever
    }
    result += text.substr(at);
    return result;
}

} // namespace spreadsheet
