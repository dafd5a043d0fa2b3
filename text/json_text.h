#pragma once
#include <string>
#include <string_view>

namespace selfreport {

/// A text as a value of JSON: in quotes, what may not stand in them escaped. UTF-8 stays as it is.
inline std::string jsonText(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            json += std::string("\\") + c;
        else if (code < 0x20)
            json += std::string("\\u00") + digits[code >> 4U] + digits[code & 0xFU];
        else
            json += c;
    }
    return json + '"';
}

} // namespace selfreport
