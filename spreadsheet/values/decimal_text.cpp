#include "spreadsheet/values/decimal_text.h"

#include <algorithm>
#include <cstdlib>

namespace spreadsheet {

namespace {

/// Digits after the point: as many as the decimal has, or filled up to `decimals`.
std::string plainText(const Decimal& number, int decimals, bool grouped)
{
    std::string text = number.whole();
    if (text.empty())
        text = "0";
    if (grouped) {
        for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3)
            text.insert(static_cast<std::size_t>(place), ",");
    }
    std::string fraction = number.fraction();
    fraction.append(static_cast<std::size_t>(std::max(decimals - static_cast<int>(fraction.size()), 0)), '0');
    if (!fraction.empty())
        text += "." + fraction;
    return number.negative && number.coefficient != 0 ? "-" + text : text;
}

} // namespace

std::string scientificText(Decimal number, int places)
{
    if (places >= 0)
        number.roundToSignificant(places + 1);
    std::string mantissa = number.coefficient == 0 ? "0" : number.digits();
    const int exponent = number.coefficient == 0 ? 0 : number.wholeDigits() - 1;
    if (places > 0 && static_cast<int>(mantissa.size()) < places + 1)
        mantissa.append(static_cast<std::size_t>(places) + 1 - mantissa.size(), '0');
    if (mantissa.size() > 1)
        mantissa.insert(1, ".");
    return (number.negative && number.coefficient != 0 ? "-" : "") + mantissa + (exponent < 0 ? "E-" : "E+") +
           (std::abs(exponent) < 10 ? "0" : "") + std::to_string(std::abs(exponent));
}

std::string fixedText(Decimal number, int decimals, bool grouped)
{
    number.roundTo(decimals);
    return plainText(number, decimals, grouped);
}

std::string fixedNumberText(double number, int decimals, bool grouped)
{
    return fixedText(shownDecimal(number), decimals, grouped);
}

std::string generalNumberText(double number)
{
    constexpr int widest = 20; // whole digits, or "0." and what follows it
    const Decimal shown = shownDecimal(number);
    const int whole = shown.wholeDigits();
    const int width = whole > 0 ? 0 : 2 - whole + static_cast<int>(shown.digits().size());
    if (whole > widest || width > widest)
        return scientificText(shown, -1);
    return plainText(shown, 0, false);
}

} // namespace spreadsheet
