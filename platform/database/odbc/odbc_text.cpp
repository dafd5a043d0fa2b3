#include "platform/database/odbc/odbc_text.h"

#include <utf8proc.h>

namespace selfreport {

namespace {

constexpr char32_t replacement = 0xFFFD;

void appendUtf8(std::string& text, char32_t character)
{
    utf8proc_uint8_t bytes[4];
    const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(character), bytes);
    text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

} // namespace

std::vector<SQLWCHAR> odbcText(std::string_view utf8)
{
    std::vector<SQLWCHAR> text;
    text.reserve(utf8.size());
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(utf8.data());
    for (std::size_t at = 0; at < utf8.size();) {
        utf8proc_int32_t read = 0;
        const auto length =
            utf8proc_iterate(bytes + at, static_cast<utf8proc_ssize_t>(utf8.size() - at), &read);
        at += length > 0 ? static_cast<std::size_t>(length) : 1;
        const char32_t character = length > 0 ? static_cast<char32_t>(read) : replacement;
        if (character < 0x10000) {
            text.push_back(static_cast<SQLWCHAR>(character));
        } else {
            text.push_back(static_cast<SQLWCHAR>(0xD800 + ((character - 0x10000) >> 10)));
            text.push_back(static_cast<SQLWCHAR>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
    }
    return text;
}

std::string utf8Text(std::span<const SQLWCHAR> text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char32_t unit = text[at];
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const bool paired = high && at + 1 < text.size() && text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000;
        if (paired)
            appendUtf8(utf8,
                       0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(text[++at]) - 0xDC00));
        else
            appendUtf8(utf8, unit >= 0xD800 && unit < 0xE000 ? replacement : unit);
    }
    return utf8;
}

} // namespace selfreport
