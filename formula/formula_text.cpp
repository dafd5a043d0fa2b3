#include "formula/formula_text.h"

#include <cstddef>
#include <span>

namespace selfreport {

namespace {

std::string call(const char* opening, std::span<const std::string> arguments,
                 std::span<const char* const> separators)
{
    std::string text = opening;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        text += '"' + arguments[index] + '"';
        if (index < separators.size())
            text += separators[index];
    }
    return text + ')';
}

} // namespace

// Blanks stand where stored reports have them: formula texts are compared letter by letter.

std::string acctFormula(const std::array<std::string, 6>& arguments)
{
    static constexpr const char* separators[] = {" ,", " , ", ", ", ",", ","};
    return call("Acct(", arguments, separators);
}

std::string refFormula(const std::array<std::string, 3>& arguments)
{
    static constexpr const char* separators[] = {" ,", " , "};
    return call("REF_F(", arguments, separators);
}

} // namespace selfreport
