#include "spreadsheet/files/xlsx/xml.h"

#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/Archive.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>

namespace spreadsheet {

namespace {

constexpr std::size_t mostElements = 12'000'000; ///< a node takes some 100 bytes
constexpr std::size_t mostDepth = 64;

/// Nested deeper than any sheet: the library's own clean-up would recurse as deep.
void requireMeasure(const std::vector<char>& text)
{
    std::size_t elements = 0, depth = 0;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end; ++at) {
        at = static_cast<const char*>(std::memchr(at, '<', static_cast<std::size_t>(end - at)));
        if (!at || at + 1 == end)
            break;
        requireFile(++elements <= mostElements, "XML 的元素太多");
        if (at[1] == '/') {
            depth -= depth > 0;
        } else if (at[1] != '?' && at[1] != '!') {
            const char* const close =
                static_cast<const char*>(std::memchr(at, '>', static_cast<std::size_t>(end - at)));
            if (close && close[-1] != '/')
                ++depth;
            requireFile(depth <= mostDepth, "XML 的元素嵌套太深");
        }
    }
}

constexpr std::size_t escapeLength = 7;

/// The unit that a text begins with an escape of.
std::optional<char16_t> escapedUnit(std::string_view text)
{
    unsigned unit = 0;
    const char* const digits = text.data() + 2;
    const bool isEscape = text.size() >= escapeLength && text.starts_with("_x") &&
                          text[escapeLength - 1] == '_' &&
                          std::from_chars(digits, digits + 4, unit, 16).ptr == digits + 4;
    return isEscape ? std::optional(static_cast<char16_t>(unit)) : std::nullopt;
}

std::string withoutEscapes(std::string_view text)
{
    if (text.find("_x") == std::string_view::npos)
        return std::string(text);
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        std::u16string units; // neighbours together: two may make one character
        for (auto unit = escapedUnit(text.substr(at)); unit; unit = escapedUnit(text.substr(at))) {
            if (*unit != 0)
                units += *unit;
            at += escapeLength;
        }
        result += utf8Of(units);
        const std::size_t next = at < text.size() ? std::min(text.find('_', at + 1), text.size()) : at;
        result += text.substr(at, next - at);
        at = next;
    }
    return result;
}

/// Where the content of the first element of a name stands; an empty range if it has none.
std::pair<std::size_t, std::size_t> contentOf(std::string_view text, std::string_view name)
{
    for (std::size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
        const std::size_t open = text.rfind('<', at), behind = at + name.size();
        const std::string_view prefix = text.substr(std::min(open, at) + 1, at - std::min(open, at) - 1);
        const bool isTag = open != std::string_view::npos && behind < text.size() &&
                           std::string_view(" \t\r\n/>").find(text[behind]) != std::string_view::npos &&
                           (prefix.empty() || (prefix.ends_with(':') && prefix.find(' ') == prefix.npos));
        if (!isTag)
            continue;
        const std::size_t begin = text.find('>', behind);
        const std::size_t end =
            text.rfind("</" + std::string(prefix) + std::string(name)); // it cannot stand in a text
        return begin == std::string_view::npos || end == std::string_view::npos || end < begin
                   ? std::pair(std::size_t(0), std::size_t(0))
                   : std::pair(begin + 1, end);
    }
    return {0, 0};
}

/// What its XML declaration says it is encoded in, in small letters; empty if it says nothing.
std::string declaredEncoding(std::string_view text)
{
    const std::string head = ascii::lower(text.substr(0, std::min<std::size_t>(text.find('>'), 200)));
    const std::size_t at = head.find("encoding=");
    if (!head.starts_with("<?xml") || at == head.npos || at + 10 >= head.size())
        return {};
    const std::size_t begin = at + 10; // behind the quotation mark
    return head.substr(begin, head.find(head[begin - 1], begin) - begin);
}

/// Whatever it is encoded in, as UTF-8.
std::vector<char> inUtf8(std::vector<char> text)
{
    const std::string_view bytes(text.data(), text.size());
    std::string plain;
    if (bytes.starts_with("\xFF\xFE"))
        plain = CodePage("UTF-16LE").decoded(bytes.substr(2));
    else if (bytes.starts_with("\xFE\xFF"))
        plain = CodePage("UTF-16BE").decoded(bytes.substr(2));
    else if (declaredEncoding(bytes).starts_with("gb"))
        plain = CodePage("GB18030").decoded(bytes);
    else
        return text;
    return {plain.begin(), plain.end()};
}

} // namespace

std::optional<XmlPart> XmlPart::read(Archive& archive, std::string_view path, std::string_view apart)
{
    std::optional<std::vector<char>> text = archive.part(path);
    if (!text)
        return std::nullopt;
    XmlPart part;
    part.m_text = inUtf8(std::move(*text));
    if (!apart.empty()) {
        const auto [begin, end] = contentOf({part.m_text.data(), part.m_text.size()}, apart);
        part.m_apart = begin;
        part.m_apartSize = end - begin;
    }
    const auto content = part.m_text.begin() + static_cast<std::ptrdiff_t>(part.m_apart);
    if (part.m_apartSize > 0) {
        part.m_rest.assign(part.m_text.begin(), content);
        part.m_rest.insert(part.m_rest.end(), content + static_cast<std::ptrdiff_t>(part.m_apartSize),
                           part.m_text.end());
    }
    std::vector<char>& parsed = part.m_apartSize > 0 ? part.m_rest : part.m_text;
    requireMeasure(parsed);
    part.m_document = std::make_unique<pugi::xml_document>();
    const auto options = (pugi::parse_default | pugi::parse_ws_pcdata_single) & ~pugi::parse_comments;
    const pugi::xml_parse_result result =
        part.m_document->load_buffer_inplace(parsed.data(), parsed.size(), options);
    if (!result)
        refuseFile("压缩包中的 " + std::string(path) + " 不是完整的 XML");
    return part;
}

std::string_view localName(const char* name)
{
    const char* const colon = std::strchr(name, ':');
    return colon ? colon + 1 : name;
}

pugi::xml_node childNamed(pugi::xml_node node, std::string_view name)
{
    return node.find_child([name](pugi::xml_node child) { return localName(child.name()) == name; });
}

pugi::xml_attribute attributeNamed(pugi::xml_node node, std::string_view name)
{
    return node.find_attribute(
        [name](pugi::xml_attribute attribute) { return localName(attribute.name()) == name; });
}

std::string textOf(std::string_view text)
{
    return withoutEscapes(text);
}

std::string textOf(pugi::xml_node node)
{
    return withoutEscapes(node.text().get());
}

std::string textOf(pugi::xml_attribute attribute)
{
    return withoutEscapes(attribute.value());
}

double numberOf(pugi::xml_attribute attribute, double otherwise)
{
    return attribute ? fileNumber(attribute.value()).value_or(otherwise) : otherwise;
}

std::optional<double> fileNumber(std::string_view text)
{
    text = ascii::trimmed(text);
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos)
        return parseNumber(text);
    std::string pointed(text);
    pointed[comma] = '.';
    return parseNumber(pointed);
}

std::string richText(pugi::xml_node node)
{
    std::string text;
    for (const pugi::xml_node child : node.children()) {
        const std::string_view name = localName(child.name());
        if (name == "t")
            text += textOf(child);
        else if (name == "r")
            text += textOf(childNamed(child, "t"));
    }
    return text;
}

bool isTrue(std::string_view value)
{
    return value == "1" || value == "true" || value == "on";
}

bool isTrue(pugi::xml_attribute attribute, bool otherwise)
{
    return attribute ? isTrue(std::string_view(attribute.value())) : otherwise;
}

} // namespace spreadsheet
