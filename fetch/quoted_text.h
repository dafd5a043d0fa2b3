#pragma once
#include <string>
#include <string_view>

namespace selfreport {

/// A name in the quotation marks of Chinese sentences.
inline std::string quoted(std::string_view text)
{
    return "“" + std::string(text) + "”";
}

} // namespace selfreport
