#include "spreadsheet/view/commands/HtmlScanner.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/folding.h"
#include "spreadsheet/view/commands/html_look.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace spreadsheet {

namespace {

constexpr std::string_view blanks = " \t\r\n\f";

/// The character of "#20803" or "#x5143"; 0 if it is none.
char32_t numericEntity(std::string_view entity)
{
    entity.remove_prefix(1);
    const bool hex = entity.starts_with('x') || entity.starts_with('X');
    if (hex)
        entity.remove_prefix(1);
    unsigned int code = 0;
    const auto [end, failure] =
        std::from_chars(entity.data(), entity.data() + entity.size(), code, hex ? 16 : 10);
    const bool valid = failure == std::errc() && end == entity.data() + entity.size() && code <= 0x10FFFF &&
                       !(code >= 0xD800 && code <= 0xDFFF);
    return valid ? code : 0;
}

char32_t characterOfEntity(std::string_view entity)
{
    static constexpr std::array<std::pair<std::string_view, char32_t>, 15> named{{
        {"amp", '&'},
        {"lt", '<'},
        {"gt", '>'},
        {"quot", '"'},
        {"apos", '\''},
        {"nbsp", ' '},
        {"yen", 0xA5},
        {"ensp", ' '},
        {"emsp", ' '},
        {"middot", 0xB7},
        {"times", 0xD7},
        {"minus", 0x2212},
        {"hellip", 0x2026},
        {"ndash", 0x2013},
        {"mdash", 0x2014},
    }};
    if (entity.starts_with('#'))
        return numericEntity(entity);
    const auto found = std::ranges::find(named, entity, &std::pair<std::string_view, char32_t>::first);
    return found == named.end() ? 0 : found->second;
}

} // namespace

void appendDecoded(std::string_view html, std::string& text)
{
    constexpr std::size_t longestEntity = 10;
    while (!html.empty()) {
        const std::size_t mark = std::min(html.find('&'), html.size());
        text += html.substr(0, mark);
        html.remove_prefix(mark);
        if (html.empty())
            return;
        const std::size_t end = html.substr(0, longestEntity).find(';');
        const char32_t c = end == std::string_view::npos ? 0 : characterOfEntity(html.substr(1, end - 1));
        if (c == 0) {
            text += '&';
            html.remove_prefix(1);
            continue;
        }
        appendCharacter(text, c);
        html.remove_prefix(end + 1);
    }
}

HtmlScanner::Kind HtmlScanner::next()
{
    while (m_at < m_html.size()) {
        const std::string_view rest = m_html.substr(m_at);
        if (rest.starts_with("<!--"))
            passOver("-->");
        else if (rest.starts_with("<!") || rest.starts_with("<?"))
            passOver(">");
        else if (rest.size() > 1 && rest[0] == '<' && (ascii::isLetter(rest[1]) || rest[1] == '/'))
            return readTag();
        else {
            const std::size_t end = std::min(m_html.find('<', m_at + 1), m_html.size());
            m_text = m_html.substr(m_at, end - m_at);
            m_at = end;
            return Kind::text;
        }
    }
    return Kind::end;
}

void HtmlScanner::passOver(std::string_view end)
{
    const std::size_t found = m_html.find(end, m_at);
    m_at = found == std::string_view::npos ? m_html.size() : found + end.size();
}

HtmlScanner::Kind HtmlScanner::readTag()
{
    const bool closing = m_html[m_at + 1] == '/';
    const std::size_t start = m_at + 1 + closing;
    const std::size_t nameEnd = std::min(m_html.find_first_of(" \t\r\n\f/>", start), m_html.size());
    m_name = htmlKeyword(m_html.substr(start, nameEnd - start));
    std::size_t end = nameEnd;
    char quote = 0; // a ">" inside quotation marks belongs to the value
    for (; end < m_html.size() && (quote != 0 || m_html[end] != '>'); ++end) {
        if (quote != 0)
            quote = m_html[end] == quote ? '\0' : quote;
        else if ((m_html[end] == '"' || m_html[end] == '\'') && m_html[end - 1] == '=')
            quote = m_html[end];
    }
    m_attributes = m_html.substr(nameEnd, end - nameEnd);
    m_at = std::min(end + 1, m_html.size());
    return closing ? Kind::closing : Kind::opening;
}

bool HtmlScanner::findAttribute(std::string_view name, std::string_view& value) const
{
    std::size_t at = 0;
    while (true) {
        at = m_attributes.find_first_not_of(" \t\r\n\f/", at);
        if (at == std::string_view::npos)
            return false;
        const std::size_t nameEnd =
            std::min(m_attributes.find_first_of(" \t\r\n\f=/", at + 1), m_attributes.size());
        const std::string found = htmlKeyword(m_attributes.substr(at, nameEnd - at));
        at = std::min(m_attributes.find_first_not_of(blanks, nameEnd), m_attributes.size());
        value = {};
        if (at < m_attributes.size() && m_attributes[at] == '=') {
            at = std::min(m_attributes.find_first_not_of(blanks, at + 1), m_attributes.size());
            const bool quoted =
                at < m_attributes.size() && (m_attributes[at] == '"' || m_attributes[at] == '\'');
            const std::size_t begin = at + quoted;
            const std::size_t end = std::min(quoted ? m_attributes.find(m_attributes[at], begin)
                                                    : m_attributes.find_first_of(blanks, begin),
                                             m_attributes.size());
            value = m_attributes.substr(std::min(begin, end), end - std::min(begin, end));
            at = std::min(end + quoted, m_attributes.size());
        }
        if (found == name)
            return true;
    }
}

std::string HtmlScanner::attribute(std::string_view name) const
{
    std::string_view value;
    std::string decoded;
    if (findAttribute(name, value))
        appendDecoded(value, decoded);
    return decoded;
}

bool HtmlScanner::hasAttribute(std::string_view name) const
{
    std::string_view value;
    return findAttribute(name, value);
}

std::string_view HtmlScanner::rawUntilClosing(std::string_view name)
{
    const std::size_t begin = m_at;
    for (std::size_t at = m_html.find("</", begin); at != std::string_view::npos;
         at = m_html.find("</", at + 2)) {
        if (htmlKeyword(m_html.substr(at + 2, name.size())) != name)
            continue;
        m_at = at;
        passOver(">");
        return m_html.substr(begin, at - begin);
    }
    m_at = m_html.size();
    return m_html.substr(begin);
}

} // namespace spreadsheet
