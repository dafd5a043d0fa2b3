#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace selfreport {

/// Bytes of the UTF-8 character that a text begins with; 0 if its first byte begins none.
inline std::size_t characterBytes(std::string_view text)
{
    const auto byte = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    for (std::size_t at = 1; at < length; ++at)
        if ((byte(at) & 0xC0U) != 0x80)
            return 0;
    const bool isOverlong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90);
    const bool isSurrogate = first == 0xED && byte(1) > 0x9F;
    const bool isBeyond = first > 0xF4 || (first == 0xF4 && byte(1) > 0x8F);
    return text.empty() || isOverlong || isSurrogate || isBeyond ? 0 : length;
}

/// A text as a value of JSON: in quotes, what may not stand in them escaped. UTF-8 stays as it is; a byte
/// that belongs to no character, as another program may have left it in the database, is U+FFFD.
inline std::string jsonText(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string json = "\"";
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        const auto code = static_cast<unsigned char>(c);
        const std::size_t length = characterBytes(text.substr(at));
        if (c == '"' || c == '\\')
            json += std::string("\\") + c;
        else if (code < 0x20)
            json += std::string("\\u00") + digits[code >> 4U] + digits[code & 0xFU];
        else if (length == 0)
            json += "\\ufffd";
        else
            json += text.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return json + '"';
}

} // namespace selfreport
