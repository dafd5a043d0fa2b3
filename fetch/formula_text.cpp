#include "fetch/formula_text.h"

#include "platform/database/session/names.h"
#include "text/quotes.h"

#include <algorithm>
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

/// Reads a call from its start to its end.
class CallReader {
public:
    explicit CallReader(std::string_view text)
        : m_rest(text)
    {
    }

    /// Nothing if the text is not wholly one call of `name` with that many quoted texts.
    template <std::size_t count>
    std::optional<std::array<std::string, count>> arguments(std::string_view name)
    {
        take("=");
        const auto found = call<count>(name);
        return blanksSkipped().empty() ? found : std::nullopt;
    }

    /// Nothing if the text does not begin with such a call.
    template <std::size_t count>
    std::optional<std::array<std::string, count>> call(std::string_view name)
    {
        std::array<std::string, count> found;
        if (!take(name) || !take("("))
            return {};
        for (std::size_t index = 0; index < count; ++index) {
            const auto text = index == 0 || take(",") ? quotedText() : std::nullopt;
            if (!text)
                return {};
            found[index] = *text;
        }
        return take(")") ? std::optional(found) : std::nullopt;
    }

private:
    std::string_view blanksSkipped()
    {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size()));
        return m_rest;
    }
    bool take(std::string_view word)
    {
        const std::string_view next = blanksSkipped().substr(0, word.size());
        if (!sameName(next, word))
            return false;
        m_rest.remove_prefix(word.size());
        return true;
    }
    std::optional<std::string> quotedText()
    {
        if (!take("\""))
            return {};
        for (std::size_t at = m_rest.find('"'); at != std::string_view::npos; at = m_rest.find('"', at + 2)) {
            if (m_rest.substr(at, 2) == "\"\"")
                continue;
            std::string text(m_rest.substr(0, at));
            m_rest.remove_prefix(at + 1);
            return text;
        }
        return {};
    }

    std::string_view m_rest;
};

bool areQuotesDoubled(std::string_view text)
{
    for (std::size_t at = text.find('"'); at != std::string_view::npos; at = text.find('"', at + 2))
        if (text.substr(at, 2) != "\"\"")
            return false;
    return true;
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

std::optional<std::array<std::string, 6>> acctArguments(std::string_view formula)
{
    return CallReader(formula).arguments<6>("Acct");
}

std::optional<std::array<std::string, 3>> refArguments(std::string_view formula)
{
    return CallReader(formula).arguments<3>("REF_F");
}

std::string withQuotesDoubled(std::string_view argument)
{
    return areQuotesDoubled(argument) ? std::string(argument) : quotes::doubled(argument, '"');
}

std::string withQuotesRead(std::string_view argument)
{
    return areQuotesDoubled(argument) ? quotes::within('"' + std::string(argument) + '"')
                                      : std::string(argument);
}

} // namespace selfreport
