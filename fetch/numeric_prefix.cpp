#include "fetch/numeric_prefix.h"

#include "text/ascii.h"

#include <algorithm>
#include <charconv>

namespace selfreport {

double numericPrefix(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    // Only digits and the point may begin it: from_chars would read a second sign, "inf" and "nan" too.
    if (text.empty() || !(ascii::isDigit(text.front()) || text.front() == '.'))
        return 0;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return 0;
    return negative ? -number : number;
}

} // namespace selfreport
