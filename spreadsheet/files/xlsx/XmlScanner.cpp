#include "spreadsheet/files/xlsx/XmlScanner.h"

#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/xml.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>

namespace spreadsheet {

// A sheet of a million cells is a hundred megabytes of XML, and a tree of it ten times that. Cells are needed
// once and in order, so the scanner hands out views of the text and undoes escapes where they stand, which
// never makes a text longer. Names and values of cells are a few bytes long: a loop over them is done before
// a call into the library has begun.

namespace {

constexpr std::size_t mostNested = 64;
constexpr const char* incomplete = "压缩包中的 XML 不完整";

bool isXmlBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

std::string_view withoutPrefix(std::string_view name)
{
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == ':')
            return name.substr(at + 1);
    }
    return name;
}

/// The character that an escape stands for ("lt", "#x41"); "" for one that is not known.
std::string escaped(std::string_view name)
{
    static constexpr struct {
        std::string_view name, sign;
    } known[] = {{"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"quot", "\""}, {"apos", "'"}};
    for (const auto& row : known) {
        if (row.name == name)
            return std::string(row.sign);
    }
    std::string sign;
    if (name.size() > 1 && name[0] == '#') {
        const bool isHex = name[1] == 'x';
        unsigned point = 0;
        const char* const end = name.data() + name.size();
        if (std::from_chars(name.data() + (isHex ? 2 : 1), end, point, isHex ? 16 : 10).ptr == end &&
            point > 0)
            appendUtf8(point, sign);
    }
    return sign;
}

/// Undoes escapes in place; what they stand for is never longer. Line ends become '\n'.
std::string_view decoded(char* begin, char* end)
{
    char* out = begin;
    for (char* at = begin; at != end;) {
        constexpr std::ptrdiff_t longest = 12;
        char* const stop = *at == '&' ? std::find(at, std::min(end, at + longest), ';') : end;
        const std::string sign = stop == end || *stop != ';'
                                     ? std::string()
                                     : escaped({at + 1, static_cast<std::size_t>(stop - at - 1)});
        if (!sign.empty() && sign.size() <= static_cast<std::size_t>(stop + 1 - at)) {
            out = std::copy(sign.begin(), sign.end(), out);
            at = stop + 1;
        } else if (*at == '\r') {
            at += at + 1 != end && at[1] == '\n' ? 1 : 0;
            *out++ = '\n';
            ++at;
        } else {
            *out++ = *at++;
        }
    }
    return {begin, static_cast<std::size_t>(out - begin)};
}

/// What stands before a sign or the end, undone.
std::string_view decodedUpTo(char sign, char*& at, const char* end)
{
    char* const begin = at;
    bool isPlain = true;
    for (; at != end && *at != sign; ++at)
        isPlain = isPlain && *at != '&' && *at != '\r';
    return isPlain ? std::string_view(begin, static_cast<std::size_t>(at - begin)) : decoded(begin, at);
}

} // namespace

char* XmlScanner::find(std::string_view sign) const
{
    char* const found = std::search(m_at, m_end, sign.begin(), sign.end());
    requireFile(found != m_end, incomplete);
    return found;
}

void XmlScanner::skipBlanks()
{
    while (m_at != m_end && isXmlBlank(*m_at))
        ++m_at;
    requireFile(m_at != m_end, incomplete);
}

XmlScanner::Kind XmlScanner::next()
{
    if (m_isClosed) {
        m_isClosed = false;
        m_name = withoutPrefix(m_open.back());
        m_open.pop_back();
        return Kind::end;
    }
    for (;;) {
        if (m_at == m_end) {
            requireFile(m_open.empty(), incomplete);
            return Kind::done;
        }
        if (*m_at != '<')
            return run();
        requireFile(m_at + 1 != m_end, incomplete);
        if (m_at[1] == '/')
            return endTag();
        if (m_at[1] != '!' && m_at[1] != '?')
            return startTag();
        if (skipMarkup())
            return Kind::text;
    }
}

XmlScanner::Kind XmlScanner::run()
{
    m_text = decodedUpTo('<', m_at, m_end);
    return Kind::text;
}

/// Comments and instructions are skipped. True for a text that stands as it is.
bool XmlScanner::skipMarkup()
{
    constexpr std::string_view plain = "<![CDATA[", plainEnd = "]]>", comment = "<!--", commentEnd = "-->";
    const std::string_view rest(m_at, static_cast<std::size_t>(m_end - m_at));
    if (rest.starts_with(plain)) {
        m_at += plain.size();
        char* const stop = find(plainEnd);
        m_text = {m_at, static_cast<std::size_t>(stop - m_at)};
        m_at = stop + plainEnd.size();
        return true;
    }
    const std::string_view end = rest.starts_with(comment) ? commentEnd : std::string_view(">");
    m_at = find(end) + end.size();
    return false;
}

XmlScanner::Kind XmlScanner::endTag()
{
    constexpr std::ptrdiff_t mark = 2; // "</"
    const char* const begin = m_at + mark;
    char* const stop = std::find(m_at, m_end, '>');
    requireFile(stop != m_end, incomplete);
    const char* end = stop;
    while (end > begin && isXmlBlank(end[-1]))
        --end;
    requireFile(begin <= end && !m_open.empty() &&
                    m_open.back() == std::string_view(begin, static_cast<std::size_t>(end - begin)),
                incomplete);
    m_at = stop + 1;
    m_name = withoutPrefix(m_open.back());
    m_open.pop_back();
    return Kind::end;
}

XmlScanner::Kind XmlScanner::startTag()
{
    const char* const begin = ++m_at;
    while (m_at != m_end && !isXmlBlank(*m_at) && *m_at != '/' && *m_at != '>')
        ++m_at;
    requireFile(m_at != begin && m_open.size() < mostNested, incomplete);
    m_open.emplace_back(begin, static_cast<std::size_t>(m_at - begin));
    m_name = withoutPrefix(m_open.back());
    m_attributes.clear();
    for (skipBlanks(); *m_at != '>' && *m_at != '/'; skipBlanks())
        attribute();
    m_isClosed = *m_at == '/';
    m_at += m_isClosed;
    requireFile(m_at != m_end && *m_at == '>', incomplete);
    ++m_at;
    return Kind::start;
}

void XmlScanner::attribute()
{
    const char* const begin = m_at;
    while (m_at != m_end && !isXmlBlank(*m_at) && *m_at != '=')
        ++m_at;
    const std::string_view name(begin, static_cast<std::size_t>(m_at - begin));
    skipBlanks();
    requireFile(*m_at == '=', incomplete);
    ++m_at;
    skipBlanks();
    const char quote = *m_at++;
    requireFile(quote == '"' || quote == '\'', incomplete);
    const std::string_view value = decodedUpTo(quote, m_at, m_end);
    requireFile(m_at != m_end, incomplete);
    m_attributes.push_back({withoutPrefix(name), value});
    ++m_at;
}

std::string_view XmlScanner::content()
{
    std::string_view first;
    std::size_t depth = 1;
    while (depth > 0) {
        const Kind kind = next();
        depth += kind == Kind::start;
        depth -= kind == Kind::end;
        if (kind != Kind::text || depth != 1 || m_text.empty())
            continue;
        if (first.empty()) {
            first = m_text;
        } else { // a comment or the like stands between: the pieces are put together where the first one is
            std::memmove(const_cast<char*>(first.data() + first.size()), m_text.data(), m_text.size());
            first = {first.data(), first.size() + m_text.size()};
        }
    }
    return first;
}

} // namespace spreadsheet
