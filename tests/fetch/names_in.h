#pragma once
#include "text/ascii.h"

#include <string>
#include <string_view>

namespace selfreport::test {

/// Whether a text holds another, whatever the letter case: some servers tell of tables in small letters.
inline bool namesIn(std::string_view text, std::string_view name)
{
    return ascii::lower(text).find(ascii::lower(name)) != std::string::npos;
}

} // namespace selfreport::test
