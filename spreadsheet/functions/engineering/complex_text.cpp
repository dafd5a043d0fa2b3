#include "spreadsheet/functions/engineering/complex_text.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

namespace spreadsheet {

namespace {

bool isSign(char c)
{
    return c == '+' || c == '-';
}

/// Where the imaginary part begins: at the last sign that belongs to no exponent.
std::size_t imaginaryStart(std::string_view text)
{
    for (std::size_t i = text.size(); i-- > 1;) {
        if (isSign(text[i]) && ascii::lower(text[i - 1]) != 'e')
            return i;
    }
    return 0;
}

/// A part with its sign; a sign alone is one unit.
std::optional<double> parsePart(std::string_view text, bool signAlone)
{
    if (signAlone && (text.empty() || text == "+"))
        return 1;
    if (signAlone && text == "-")
        return -1;
    if (text.find_first_of(" \t") != text.npos)
        return std::nullopt;
    return parseNumber(text);
}

/// Without the blanks around signs and around the whole; those between digits stay.
std::string withoutBlanks(std::string_view text)
{
    text = trimmedBlanks(text);
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t next = text.find_first_not_of(' ', i);
        const bool besideSign = text[i] == ' ' && (isSign(plain.back()) || isSign(text[next]));
        if (!besideSign)
            plain += text[i];
    }
    return plain;
}

} // namespace

std::optional<ComplexNumber> parseComplex(std::string_view spaced)
{
    const std::string plain = withoutBlanks(spaced);
    std::string_view text = plain;
    if (text.empty())
        return std::nullopt;
    const char last = text.back();
    if (last != 'i' && last != 'j') {
        const auto real = parsePart(text, false);
        return real ? std::optional(ComplexNumber{*real, 0}) : std::nullopt;
    }
    text.remove_suffix(1);
    const std::size_t start = imaginaryStart(text);
    const auto imaginary = parsePart(text.substr(start), true);
    const auto real = start == 0 ? std::optional(0.0) : parsePart(text.substr(0, start), false);
    if (!real || !imaginary)
        return std::nullopt;
    return ComplexNumber{{*real, *imaginary}, last};
}

std::string complexText(std::complex<double> value, char unit)
{
    const double real = value.real();
    const double imaginary = value.imag();
    std::string text;
    if (real != 0 || imaginary == 0)
        text = generalNumberText(real);
    if (imaginary == 0)
        return text;
    if (imaginary > 0 && !text.empty())
        text += '+';
    if (imaginary == -1)
        text += '-';
    else if (imaginary != 1)
        text += generalNumberText(imaginary);
    return text + (unit == 0 ? 'i' : unit);
}

} // namespace spreadsheet
