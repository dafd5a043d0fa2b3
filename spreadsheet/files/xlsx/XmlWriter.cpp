#include "spreadsheet/files/xlsx/XmlWriter.h"

#include "spreadsheet/files/exchange/unicode_text.h"

#include <array>
#include <charconv>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr std::size_t pieceSize = 1 << 16;

/// What the front of a text must become; a length of 0: it stays.
struct Replaced {
    std::size_t length = 0;
    std::string with;
};

std::string escapeOf(unsigned unit)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string escape = "_x0000_";
    for (std::size_t i = 0; i < 4; ++i)
        escape[2 + i] = digits[unit >> (12 - 4 * i) & 0xF];
    return escape;
}

/// A character that XML cannot hold.
Replaced forbidden(std::string_view rest)
{
    const auto first = rest.empty() ? static_cast<unsigned char>(' ') : static_cast<unsigned char>(rest[0]);
    if (first < 0x20 && first != '\t' && first != '\n')
        return {1, escapeOf(first)};
    if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF"))
        return {3, escapeOf(0xFF00u | (static_cast<unsigned char>(rest[2]) | 0x40u))};
    return {};
}

/// True if a reader would take the front for an escape, once what follows is written.
bool looksEscaped(std::string_view rest)
{
    constexpr std::size_t length = 6;
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    return rest.starts_with("_x") && rest.size() > length &&
           rest.substr(2, 4).find_first_not_of(digits) == std::string_view::npos &&
           (rest[length] == '_' || forbidden(rest.substr(length)).length > 0);
}

Replaced replaced(std::string_view rest, bool inAttribute)
{
    switch (rest[0]) {
    case '&':
        return {1, "&amp;"};
    case '<':
        return {1, "&lt;"};
    case '>':
        return {1, "&gt;"};
    case '"':
        return inAttribute ? Replaced{1, "&quot;"} : Replaced();
    case '\t':
        return inAttribute ? Replaced{1, "&#9;"} : Replaced();
    case '\n':
        return inAttribute ? Replaced{1, "&#10;"} : Replaced();
    case '_':
        return looksEscaped(rest) ? Replaced{1, escapeOf('_')} : Replaced();
    default:
        return forbidden(rest);
    }
}

/// Bytes that need no look at what follows them.
constexpr std::array<bool, 256> plainBytes = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0x20; byte < plain.size(); ++byte)
        plain[byte] = byte != '&' && byte != '<' && byte != '>' && byte != '"' && byte != '_' && byte != 0xEF;
    return plain;
}();

} // namespace

void appendXml(std::string& xml, std::string_view text, bool inAttribute)
{
    if (!isUtf8(text))
        return appendXml(xml, utf8Of(utf16Of(text)), inAttribute);
    std::size_t done = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Replaced change = plainBytes[static_cast<unsigned char>(text[at])]
                                    ? Replaced()
                                    : replaced(text.substr(at), inAttribute);
        if (change.length > 0) {
            xml.append(text.substr(done, at - done)).append(change.with);
            done = at + change.length;
        }
        at += change.length > 0 ? change.length : 1;
    }
    xml.append(text.substr(done));
}

void appendNumberText(std::string& xml, double number)
{
    std::array<char, 64> digits;
    const double size = std::fabs(number);
    const bool isPlain = size == 0 || (size >= 1e-5 && size < 1e15);
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    xml.append(digits.data(), end.ptr);
}

XmlWriter& XmlWriter::open(std::string_view name)
{
    content();
    m_xml += '<';
    m_xml += name;
    m_open.push_back(name);
    m_inTag = true;
    return *this;
}

XmlWriter& XmlWriter::attribute(std::string_view name, std::string_view text)
{
    beginAttribute(name);
    appendXml(m_xml, text, true);
    m_xml += '"';
    return *this;
}

XmlWriter& XmlWriter::attribute(std::string_view name, double number)
{
    beginAttribute(name);
    appendNumberText(m_xml, number);
    m_xml += '"';
    return *this;
}

XmlWriter& XmlWriter::plainAttribute(std::string_view name, std::string_view value)
{
    beginAttribute(name);
    m_xml += value;
    m_xml += '"';
    return *this;
}

void XmlWriter::beginAttribute(std::string_view name)
{
    m_xml += ' ';
    m_xml += name;
    m_xml += "=\"";
}

XmlWriter& XmlWriter::keepBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t\n";
    const bool hasBlanks = !text.empty() && (blanks.find(text.front()) != std::string_view::npos ||
                                             blanks.find(text.back()) != std::string_view::npos);
    return hasBlanks ? plainAttribute("xml:space", "preserve") : *this;
}

void XmlWriter::content()
{
    if (m_inTag)
        m_xml += '>';
    m_inTag = false;
    if (m_sink && m_xml.size() > pieceSize)
        flush();
}

XmlWriter& XmlWriter::text(std::string_view text)
{
    content();
    appendXml(m_xml, text);
    return *this;
}

XmlWriter& XmlWriter::text(double number)
{
    content();
    appendNumberText(m_xml, number);
    return *this;
}

XmlWriter& XmlWriter::raw(std::string_view xml)
{
    content();
    m_xml += xml;
    return *this;
}

XmlWriter& XmlWriter::close()
{
    if (m_inTag)
        m_xml += "/>";
    else
        m_xml.append("</").append(m_open.back()) += '>';
    m_inTag = false;
    m_open.pop_back();
    return *this;
}

void XmlWriter::flush()
{
    m_sink(m_xml);
    m_xml.clear();
}

} // namespace spreadsheet
