// Rounding means the decimal that a number shows. The functions are held against long division and long
// multiplication on the texts of 15 digits.
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/decimal_text.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

using namespace spreadsheet;

namespace {

/// Decimal digits of a whole number, without leading zeros; empty for 0.
using Digits = std::string;

Digits trimmed(Digits digits)
{
    return digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
}

bool isLess(const Digits& a, const Digits& b)
{
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

Digits sum(const Digits& a, const Digits& b)
{
    Digits result;
    int carry = 0;
    for (std::size_t i = 0; i < std::max(a.size(), b.size()) || carry > 0; ++i) {
        carry +=
            (i < a.size() ? a[a.size() - 1 - i] - '0' : 0) + (i < b.size() ? b[b.size() - 1 - i] - '0' : 0);
        result += static_cast<char>('0' + carry % 10);
        carry /= 10;
    }
    return {result.rbegin(), result.rend()};
}

Digits difference(Digits a, const Digits& b)
{
    int borrowed = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char& digit = a[a.size() - 1 - i];
        int left = digit - '0' - borrowed - (i < b.size() ? b[b.size() - 1 - i] - '0' : 0);
        borrowed = left < 0;
        digit = static_cast<char>('0' + left + 10 * borrowed);
    }
    return trimmed(a);
}

Digits product(const Digits& a, const Digits& b)
{
    Digits result;
    for (const char digit : a) {
        if (!result.empty())
            result += '0';
        for (char i = '0'; i < digit; ++i)
            result = sum(result, b);
    }
    return result;
}

struct Shown {
    Digits digits;
    int exponent = 0;
    bool negative = false;
};

/// The text of 15 digits, by the streams of the library.
Shown shown(double number)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(14);
    stream << std::scientific << std::fabs(number);
    std::string text = stream.str();
    const std::size_t mark = text.find('e');
    const int exponent = std::stoi(text.substr(mark + 1)) - 14;
    text.resize(mark);
    text.erase(1, 1);
    return {trimmed(text), exponent, number < 0};
}

enum class Way { toward, half, away };

/// How many steps a number is rounded to, and the number that they make.
struct Rounded {
    Digits steps;
    double number = 0;
};

Rounded roundedTo(const Shown& number, const Shown& step, Way way)
{
    const int exponent = std::min(number.exponent, step.exponent);
    const auto units = [&](const Shown& shown) {
        return shown.digits + std::string(static_cast<std::size_t>(shown.exponent - exponent), '0');
    };
    const Digits divisor = units(step);
    Digits steps, rest;
    for (const char digit : number.digits.empty() ? Digits() : units(number)) {
        rest = trimmed(rest + digit);
        char count = '0';
        for (; !isLess(rest, divisor); ++count)
            rest = difference(rest, divisor);
        steps += count;
    }
    steps = trimmed(steps);
    if (!rest.empty() && (way == Way::away || (way == Way::half && !isLess(sum(rest, rest), divisor))))
        steps = sum(steps, "1");
    const Digits multiple = product(steps, divisor);
    const std::string text = multiple + "e" + std::to_string(exponent);
    double result = 0;
    if (!multiple.empty() &&
        std::from_chars(text.data(), text.data() + text.size(), result).ec != std::errc())
        result =
            static_cast<int>(multiple.size()) + exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
    return {steps, number.negative ? -result : result};
}

Rounded roundedToPlaces(double number, int places, Way way)
{
    return roundedTo(shown(number), {"1", -places}, way);
}

/// Numbers as sheets hold them: typed, summed, multiplied, divided, beside a tie, of any size.
class Numbers {
public:
    double next()
    {
        const double size = any();
        return whole(0, 1) == 0 ? size : -size;
    }
    long long whole(long long from, long long to)
    {
        return std::uniform_int_distribution<long long>(from, to)(m_random);
    }

private:
    double power(int exponent) { return std::pow(10.0, exponent); }
    double typed()
    {
        return static_cast<double>(whole(0, 99'999'999)) / power(static_cast<int>(whole(0, 8)));
    }
    double amount() { return static_cast<double>(whole(0, 99'999'999)) / 100; }
    double tie()
    {
        return static_cast<double>(whole(0, 9'999'999) * 10 + 5) / power(static_cast<int>(whole(1, 6)));
    }
    double any()
    {
        switch (whole(0, 9)) {
        case 0:
            return typed();
        case 1:
            return amount() + amount() + amount() - amount();
        case 2:
            return amount() * (typed() + 0.01);
        case 3:
            return amount() / static_cast<double>(whole(1, 9999));
        case 4:
            return tie();
        case 5:
            return std::nextafter(tie(), whole(0, 1) == 0 ? 0 : 1e9);
        case 6:
            return static_cast<double>(whole(100'000'000'000'000, 99'999'999'999'999'999));
        case 7:
            return static_cast<double>(whole(0, 99'999'999'999'999'999)) /
                   power(static_cast<int>(whole(0, 17)));
        case 8:
            return std::ldexp(static_cast<double>(whole(1, 1LL << 53)), static_cast<int>(whole(-1074, 940)));
        default:
            return typed() * power(static_cast<int>(whole(-300, 290)));
        }
    }

    std::mt19937_64 m_random{20'260'331};
};

Operand call(std::string_view name, std::initializer_list<double> numbers)
{
    static Workbook workbook;
    const EvaluationPlace place{workbook.book(), 1, {1, 1}};
    const std::vector<Operand> arguments(numbers.begin(), numbers.end());
    Call made(place, arguments);
    return findFunction(name)->evaluate(made);
}

std::string text(std::string_view name, std::initializer_list<double> numbers)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(17);
    stream << name;
    for (const double number : numbers)
        stream << ' ' << number;
    return stream.str();
}

void expectCall(std::string_view name, std::initializer_list<double> numbers, double expected)
{
    const Operand result = call(name, numbers);
    const Operand wanted = std::isfinite(expected) ? Operand(expected) : Operand(CellError::num);
    EXPECT_EQ(result.value(), wanted.value()) << text(name, numbers);
}

Way up(double number)
{
    return number < 0 ? Way::toward : Way::away;
}
Way down(double number)
{
    return number < 0 ? Way::away : Way::toward;
}

void expectPlaces(double number, int places)
{
    const auto to = [&](Way way) { return roundedToPlaces(number, places, way).number; };
    const auto whole = [&](Way way) { return roundedToPlaces(number, 0, way); };
    const double digits = places;
    expectCall("ROUND", {number, digits}, to(Way::half));
    expectCall("ROUNDUP", {number, digits}, to(Way::away));
    expectCall("ROUNDDOWN", {number, digits}, to(Way::toward));
    expectCall("TRUNC", {number, digits}, to(Way::toward));
    expectCall("INT", {number}, whole(down(number)).number);
    expectCall("EVEN", {number}, roundedTo(shown(number), {"2", 0}, Way::away).number);
    const Rounded odd = whole(Way::away);
    const bool isOdd = !odd.steps.empty() && (odd.steps.back() - '0') % 2 == 1;
    if (std::fabs(odd.number) < 1e15)
        expectCall("ODD", {number}, isOdd ? odd.number : odd.number + (number < 0 ? -1 : 1));
}

void expectMultiples(double number, double step)
{
    const auto to = [&](Way way) { return roundedTo(shown(number), shown(step), way).number; };
    const bool sameSign = (number < 0) == (step < 0);
    expectCall("CEILING.MATH", {number, step}, to(up(number)));
    expectCall("CEILING.MATH", {number, step, 1}, to(Way::away));
    expectCall("ISO.CEILING", {number, step}, to(up(number)));
    expectCall("CEILING.PRECISE", {number, step}, to(up(number)));
    expectCall("FLOOR.MATH", {number, step}, to(down(number)));
    expectCall("FLOOR.MATH", {number, step, 1}, to(Way::toward));
    expectCall("FLOOR.PRECISE", {number, step}, to(down(number)));
    if (number > 0 && step < 0)
        return; // #NUM!
    expectCall("CEILING", {number, step}, to(sameSign ? Way::away : Way::toward));
    expectCall("FLOOR", {number, step}, to(sameSign ? Way::toward : Way::away));
    if (sameSign)
        expectCall("MROUND", {number, step}, to(Way::half));
}

/// The digits of so many hundredths and the like: "12345", 2 is "123.45".
std::string withPoint(Digits steps, int places)
{
    const auto behind = static_cast<std::size_t>(places);
    if (steps.size() <= behind)
        steps.insert(0, behind + 1 - steps.size(), '0');
    return places == 0 ? steps : steps.insert(steps.size() - behind, 1, '.');
}

} // namespace

TEST(Rounding, AHundredThousandCallsMeanTheDecimalThatTheNumberShows)
{
    Numbers numbers;
    constexpr int rounds = 6'500; // of seven calls each, and as many of up to ten
    for (int i = 0; i < rounds; ++i) {
        const bool farOut = numbers.whole(0, 9) == 0;
        expectPlaces(numbers.next(),
                     static_cast<int>(farOut ? numbers.whole(-330, 330) : numbers.whole(-5, 12)));
        const double steps[] = {0.1, 0.05, 0.25, 0.7, 0.01, 5, 100, 1e-9, numbers.next(), numbers.next()};
        const double number = numbers.next();
        const double step = steps[numbers.whole(0, 9)];
        if (number != 0 && step != 0)
            expectMultiples(number, step);
    }
}

TEST(Rounding, ShownTextsHaveTheSameDecimals)
{
    Numbers numbers;
    for (int i = 0; i < 10'000; ++i) {
        const double number = std::fabs(numbers.next());
        if (number >= 1e40)
            continue;
        const int places = static_cast<int>(numbers.whole(0, 9));
        const std::string expected = withPoint(roundedToPlaces(number, places, Way::half).steps, places);
        EXPECT_EQ(fixedNumberText(number, places), expected) << text("", {number});
        const Operand fixed = call("FIXED", {number, static_cast<double>(places), 1});
        EXPECT_EQ(fixed.value().textView(), expected) << text("FIXED", {number});
        CellStyle percent;
        percent.type = CellType::percent;
        EXPECT_EQ(displayText(Value(number), percent),
                  withPoint(roundedToPlaces(number, 4, Way::half).steps, 2) + "%")
            << text("percent", {number});
    }
}

TEST(Rounding, ResultsAreExactlyTheDecimalsTheyShow)
{
    FormulaSheet sheet;
    struct Case {
        const char* formula;
        double expected;
    };
    const Case cases[] = {
        {"INT(ROUND(4.35*100,0))", 435},
        {"ROUND(0.1+0.2,2)", 0.3},
        {"TRUNC(0.29*100)", 29},
        {"INT(0.29*100)", 29},
        {"INT((0.1+0.7)*10)", 8},
        {"INT(-4.35*100)", -435},
        {"ROUNDUP(398987.867,1)", 398987.9},
        {"ROUND(1.005,2)", 1.01},
        {"MATCH(ROUND(0.57*100,0),{55,56,57},0)", 3},
        {"FLOOR(0.7,0.1)", 0.7},
        {"FLOOR(-0.7,-0.1)", -0.7},
        {"MROUND(6.05,0.1)", 6.1},
        {"CEILING(4.35*100,0.5)", 435},
        {"EVEN(1.1+2.2-1.3)", 2}, // a bit more in its bits
        {"ODD((0.1+0.2)*10)", 3},
        {"ROUND(0.1+0.2-0.3,15)", 0},
        {"ROUND(5E-324,330)", 5e-324},
        {"ROUND(1.7976931348623157E308,0)", std::numeric_limits<double>::max()},
        {"ROUNDUP(1E-300,300)", 1e-300},
        {"ROUNDUP(1E-301,300)", 1e-300},
        {"ROUNDDOWN(12345,-2147483647)", 0},
        {"ROUND(12345,2147483647)", 12345},
        {"FLOOR(1E300,1E-300)", 1e300},
        {"CEILING(1E-300,7E300)", 7e300},
        {"SUM(ROUND({0.285,1.005},2))", 1.3},
    };
    for (const Case& c : cases) {
        sheet.evaluate(c.formula);
        EXPECT_EQ(sheet.workbook().sheet(1).value({702, 99}), Value(c.expected)) << c.formula;
    }
    sheet.expect({
        {"ROUNDUP(1,-309)", "#NUM!"},
        {"ROUNDUP(1.7E308,-308)", "#NUM!"},
        {"MROUND(1.7E308,1E308)", "#NUM!"},
        {"CEILING(1.5E308,1E308)", "#NUM!"},
        {"FLOOR(0,0)", "0"},
        {"ROUND(1,3E9)", "1"},
    });
}
