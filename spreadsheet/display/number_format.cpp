#include "spreadsheet/display/number_format.h"

#include "spreadsheet/display/date_format.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/display/number_format_code.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/values/decimal.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/numerals.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// A number is turned into decimal digits once, rounded once, and then laid into the places of the format,
// which may be several to the left, shifted by percent or thousands, or a fraction. Rounding again on the way
// would show 0.1+0.2 in a way that depends on the format.

namespace {

using Kind = FormatPart::Kind;

/// Lays the digits of a number into the places of a section.
class NumberLayout {
public:
    NumberLayout(const FormatSection& section, double size)
        : m_section(section)
        , m_number(shownDecimal(size))
    {
        m_number.exponent += 2 * section.percents - 3 * section.thousands;
        const auto exponentPart = std::ranges::find(section.parts, Kind::exponent, &FormatPart::kind);
        if (exponentPart != section.parts.end())
            takeExponent();
        else
            m_number.roundTo(section.decimals);
        m_whole = m_number.whole();
        m_fraction = m_number.fraction();
        m_placesLeft = section.integerDigits;
    }

    /// Nothing but zeros is left of it.
    bool isZero() const
    {
        return m_number.coefficient == 0 && m_section.integerDigits + m_section.decimals > 0;
    }

    std::string text()
    {
        std::string result;
        for (const FormatPart& part : m_section.parts) {
            switch (part.kind) {
            case Kind::digit:
                m_behindExponent ? exponentDigit(part.text[0], result)
                : m_behindPoint  ? fractionDigit(part.text[0], result)
                                 : wholeDigit(part.text[0], result);
                break;
            case Kind::point:
                if (m_section.integerDigits == 0)
                    result += m_whole;
                m_behindPoint = true;
                result += '.';
                break;
            case Kind::exponent:
                startExponent(part.text, result);
                break;
            default:
                result += part.text;
            }
        }
        return result;
    }

private:
    /// Shifts the digits so that the whole part fills its places; several places keep the exponent a
    /// multiple of their number.
    void takeExponent()
    {
        const int step = std::max(1, m_section.integerDigits);
        const Decimal all = m_number;
        if (all.coefficient != 0) {
            const int power = all.wholeDigits() - 1;
            m_exponent = (power >= 0 ? power / step : -((step - 1 - power) / step)) * step;
        }
        for (;; m_exponent += step) {
            m_number = all;
            m_number.exponent -= m_exponent;
            m_number.roundTo(m_section.decimals);
            if (m_number.wholeDigits() <= step) // rounding may have added a place
                break;
        }
        m_exponentDigits = std::to_string(std::abs(m_exponent));
        bool behind = false;
        for (const FormatPart& part : m_section.parts) {
            behind = behind || part.kind == Kind::exponent;
            m_exponentPlaces += behind && part.kind == Kind::digit;
        }
    }

    void startExponent(std::string_view letterAndSign, std::string& result)
    {
        m_behindExponent = true;
        result += letterAndSign[0];
        if (m_exponent < 0 || letterAndSign[1] == '+')
            result += m_exponent < 0 ? '-' : '+';
    }

    void exponentDigit(char place, std::string& result)
    {
        const int given = static_cast<int>(m_exponentDigits.size());
        if (m_exponentPlaces <= given) {
            const int taken = m_exponentFirst ? given - m_exponentPlaces + 1 : 1;
            result += m_exponentDigits.substr(0, static_cast<std::size_t>(taken));
            m_exponentDigits.erase(0, static_cast<std::size_t>(taken));
            m_exponentFirst = false;
        } else if (place == '0') {
            result += '0';
        }
        --m_exponentPlaces;
    }

    /// The first place takes the digits beyond the places too.
    void wholeDigit(char place, std::string& result)
    {
        const int given = static_cast<int>(m_whole.size());
        if (given < m_placesLeft) {
            if (place == '0')
                putWhole('0', m_placesLeft - 1, result);
            else if (place == '?')
                result += ' ';
        } else {
            const auto taken = static_cast<std::size_t>(given - m_placesLeft + 1);
            for (std::size_t i = 0; i < taken; ++i)
                putWhole(m_whole[i], given - 1 - static_cast<int>(i), result);
            m_whole.erase(0, taken);
        }
        --m_placesLeft;
    }

    /// A digit with the comma that belongs behind it; `right` more places follow.
    void putWhole(char digit, int right, std::string& result)
    {
        result += digit;
        if (m_section.grouped && right > 0 && right % 3 == 0)
            result += ',';
    }

    void fractionDigit(char place, std::string& result)
    {
        if (!m_fraction.empty()) {
            result += m_fraction[0];
            m_fraction.erase(0, 1);
        } else if (place != '#') {
            result += place == '0' ? '0' : ' ';
        }
    }

    const FormatSection& m_section;
    Decimal m_number;
    std::string m_whole; ///< digits not yet laid out
    std::string m_fraction;
    std::string m_exponentDigits;
    int m_exponent = 0;
    int m_exponentPlaces = 0;
    int m_placesLeft = 0; ///< places for whole digits not yet filled
    bool m_exponentFirst = true;
    bool m_behindPoint = false;
    bool m_behindExponent = false;
};

/// A number not below 0 in at most eleven characters; without places for its digits it shows an exponent
/// and six digits.
std::string shortGeneralText(double size)
{
    constexpr std::size_t width = 11;
    const std::string whole = generalNumberText(size);
    if (whole.size() <= width && (size == 0 || size >= 1e-9))
        return whole;
    Decimal number = shownDecimal(size);
    const int power = number.wholeDigits() - 1;
    if (power >= -4 && power <= 10) {
        number.roundTo(power < 0 ? 9 : std::max(0, 9 - power));
        if (number.wholeDigits() <= 11)
            return generalNumberText(number.number());
    }
    number = shownDecimal(size);
    number.roundToSignificant(6);
    std::string text = number.digits();
    if (text.size() > 1)
        text.insert(1, ".");
    const std::string exponent = std::to_string(std::abs(number.wholeDigits() - 1));
    return text + (number.wholeDigits() > 0 ? "E+" : "E-") + (exponent.size() < 2 ? "0" : "") + exponent;
}

/// A number in its general form, in numerals if the section asks for them.
std::string generalText(const FormatSection& section, double size)
{
    constexpr double longest = 1e15; // words have room for digits
    const bool isLongWhole = size >= 1e11 && size < longest && size == std::floor(size);
    const bool isSpelled = section.numerals != NumeralStyle::ordinary && isLongWhole;
    const std::string text = isSpelled ? fixedNumberText(size, 0) : shortGeneralText(size);
    if (section.numerals == NumeralStyle::ordinary || text.find('E') != text.npos)
        return text;
    const std::size_t point = std::min(text.find('.'), text.size());
    return numeralText(text.substr(0, point), section.numerals) +
           numeralDigits(text.substr(point), section.numerals);
}

/// n/d of a size below 1: `below` is the denominator, or the places that it may take.
struct Ratio {
    double above = 0; ///< whole; beyond 64 bits where the size is
    int below = 1;
};

Ratio nearestRatio(double size, std::string_view below)
{
    if (below[0] >= '1' && below[0] <= '9') {
        const int fixed = std::stoi(std::string(below.substr(0, 6)));
        return {std::round(size * fixed), fixed};
    }
    constexpr std::size_t mostPlaces = 5;
    const auto largest = static_cast<int>(std::pow(10, std::min(below.size(), mostPlaces))) - 1;
    constexpr double noise = 1e-12; // 0.3 is 3/10, not some longer ratio that is nearer by a hair
    Ratio best{std::round(size), 1};
    double least = std::fabs(size - best.above);
    for (int d = 2; d <= largest && least > noise; ++d) {
        const double n = std::round(size * d);
        const double error = std::fabs(size - n / d);
        if (error < least - noise) {
            best = {n, d};
            least = error;
        }
    }
    return best;
}

/// A number's digits in places of a fraction, blanks for "?" and zeros for "0" that are left over.
std::string inPlaces(double number, std::string_view places, bool above)
{
    std::string text = fixedNumberText(number, 0);
    for (std::size_t i = text.size(); i < places.size(); ++i) {
        const char place = above ? places[places.size() - 1 - i] : places[i];
        if (place == '0' && above)
            text.insert(0, 1, '0');
        else if (place == '?' || place == '0')
            text.insert(above ? 0 : text.size(), 1, ' ');
    }
    return text;
}

/// A number without its sign, and whether a sign would stand before nothing but zeros.
struct UnsignedText {
    std::string text;
    bool isZero = false;
};

/// A section such as "# ??/??": the whole part in its places, the rest as a fraction.
UnsignedText numberWithFraction(FormatSection section, double size)
{
    const auto part = std::ranges::find(section.parts, Kind::fraction, &FormatPart::kind);
    const std::size_t slash = part->text.find('/');
    const std::string above = part->text.substr(0, slash);
    const std::string below = part->text.substr(slash + 1);
    const bool hasWhole = section.integerDigits > 0;
    double whole = hasWhole ? std::floor(size) : 0;
    Ratio ratio = nearestRatio(size - whole, below);
    if (hasWhole && ratio.above == ratio.below) {
        ++whole;
        ratio.above = 0;
    }
    if (hasWhole && ratio.above == 0) {
        part->text.assign(part->text.size(), ' '); // a whole number shows no fraction, and 0 its digit
        const auto digit = std::find_if(std::make_reverse_iterator(part), section.parts.rend(),
                                        [](const FormatPart& p) { return p.kind == Kind::digit; });
        if (whole == 0 && digit != section.parts.rend())
            digit->text = "0";
    } else {
        part->text = inPlaces(ratio.above, above, true) + "/" + inPlaces(ratio.below, below, false);
    }
    part->kind = Kind::literal;
    return {NumberLayout(section, whole).text(), whole == 0 && ratio.above == 0};
}

UnsignedText numberByParts(const FormatSection& section, double size)
{
    const auto isGeneral = [](const FormatPart& part) {
        return part.kind == Kind::general || part.kind == Kind::text;
    };
    if (std::ranges::find(section.parts, Kind::fraction, &FormatPart::kind) != section.parts.end()) {
        const UnsignedText plain = numberWithFraction(section, size);
        return {numeralDigits(plain.text, section.numerals), plain.isZero};
    }
    if (std::ranges::none_of(section.parts, isGeneral)) {
        NumberLayout layout(section, size);
        return {numeralDigits(layout.text(), section.numerals), layout.isZero()};
    }
    std::string result;
    for (const FormatPart& part : section.parts)
        result += isGeneral(part) ? generalText(section, size) : part.text;
    return {result};
}

bool showsDay(const FormatSection& section)
{
    return std::ranges::any_of(section.parts, [](const FormatPart& part) {
        return part.kind == Kind::year || part.kind == Kind::month || part.kind == Kind::day ||
               part.kind == Kind::chineseWeekday;
    });
}

bool showsCapitals(const FormatSection& section)
{
    return std::ranges::find(section.parts, Kind::capitals, &FormatPart::kind) != section.parts.end();
}

/// "负" stands before the amount's words, wherever other texts are.
std::optional<std::string> amountInWords(const FormatSection& section, double number)
{
    constexpr double tooLarge = 1e15;
    if (std::fabs(number) >= tooLarge)
        return std::nullopt;
    std::string result;
    for (const FormatPart& part : section.parts)
        result += part.kind == Kind::capitals ? writtenAmount(number) : part.text;
    return result;
}

/// In the unit that the section shows.
double inUnit(const FormatSection& section, double number)
{
    if (section.tenThousands == 0)
        return number;
    Decimal decimal = shownDecimal(number);
    decimal.exponent -= 4 * section.tenThousands;
    return decimal.number();
}

std::optional<std::string> numberBySection(const FormatSection& section, double number, bool withSign,
                                           bool from1904)
{
    constexpr double daysFrom1900To1904 = 1462;
    if (section.isDate && number < 0)
        return std::nullopt;
    if (section.isDate)
        return dateText(section, from1904 && showsDay(section) ? number + daysFrom1900To1904 : number);
    const double figure = inUnit(section, number);
    if (showsCapitals(section))
        return amountInWords(section, withSign ? figure : std::fabs(figure));
    const UnsignedText shown = numberByParts(section, std::fabs(figure));
    return withSign && number < 0 && !shown.isZero && !shown.text.empty() ? "-" + shown.text : shown.text;
}

/// The last of several sections is for texts if it shows one, and the fourth always is.
std::size_t sectionsForNumbers(const std::vector<FormatSection>& sections)
{
    const bool lastIsForTexts =
        sections.size() > 1 && std::ranges::find(sections.back().parts, Kind::text, &FormatPart::kind) !=
                                   sections.back().parts.end();
    return std::min<std::size_t>(sections.size() - lastIsForTexts, 3);
}

/// Such a section says itself how a negative number looks, like the second one without conditions.
bool holdsOnlyNegative(const FormatSection& section)
{
    using Condition = FormatSection::Condition;
    return (section.condition == Condition::less && section.limit <= 0) ||
           (section.condition == Condition::lessEqual && section.limit < 0);
}

/// The section that shows a number; null: none does.
struct ChosenSection {
    const FormatSection* section = nullptr;
    bool withSign = false; ///< the section does not say itself how a negative number looks
};

ChosenSection sectionFor(const std::vector<FormatSection>& sections, double number)
{
    using Condition = FormatSection::Condition;
    const std::size_t count = sectionsForNumbers(sections);
    const bool conditional = std::ranges::any_of(
        sections, [](const FormatSection& section) { return section.condition != Condition::none; });
    if (conditional) {
        for (std::size_t i = 0; i < count; ++i) {
            const bool bySign = i == 1 && count > 2 && sections[i].condition == Condition::none;
            if (bySign ? number < 0 : sections[i].holds(number))
                return {&sections[i], !bySign && !holdsOnlyNegative(sections[i])};
        }
        return {};
    }
    if (count > 1 && number < 0)
        return {&sections[1], false};
    if (count > 2 && number == 0)
        return {&sections[2], false};
    return {&sections[0], true};
}

/// A number of which no digit but zeros is shown is a zero in a cell: "-0.00" means nothing to its reader.
double asCellShows(const std::vector<FormatSection>& sections, double number)
{
    const FormatSection* section = sectionFor(sections, number).section;
    const auto showsMore = [](const FormatPart& part) {
        return part.kind == Kind::exponent || part.kind == Kind::fraction || part.kind == Kind::general ||
               part.kind == Kind::text;
    };
    if (!section || section->isDate || section->integerDigits + section->decimals == 0 ||
        std::ranges::any_of(section->parts, showsMore))
        return number;
    Decimal shown = shownDecimal(inUnit(*section, number));
    shown.exponent += 2 * section->percents - 3 * section->thousands;
    shown.roundTo(section->decimals);
    return shown.coefficient == 0 ? 0 : number;
}

std::optional<std::string> numberText(const std::vector<FormatSection>& sections, double number,
                                      bool from1904)
{
    const ChosenSection chosen = sectionFor(sections, number);
    if (chosen.section)
        return numberBySection(*chosen.section, number, chosen.withSign, from1904);
    // A condition alone says nothing of the other numbers; several leave no room for them.
    return sectionsForNumbers(sections) == 1 ? (number < 0 ? "-" : "") + shortGeneralText(std::fabs(number))
                                             : std::string("#");
}

std::string textBySections(const std::vector<FormatSection>& sections, std::string_view text)
{
    const FormatSection* section = sections.size() == 4 ? &sections[3] : &sections.back();
    const bool forTexts =
        std::ranges::find(section->parts, Kind::text, &FormatPart::kind) != section->parts.end();
    if (sections.size() < 4 && !forTexts)
        return std::string(text);
    std::string result;
    for (const FormatPart& part : section->parts)
        result += part.kind == Kind::text ? text : std::string_view(part.text);
    return result;
}

/// Of what is no number.
std::string otherText(const std::vector<FormatSection>& sections, const Value& value)
{
    if (value.isBoolean())
        return value.boolean() ? "TRUE" : "FALSE";
    return textBySections(sections, value.textView());
}

} // namespace

std::optional<std::string> formattedText(const Value& value, std::string_view code, bool from1904)
{
    const Value asNumber = value.isBoolean() ? value : toNumber(value, from1904);
    const Value& shown = asNumber.isError() ? value : asNumber;
    const auto sections = parseFormatCode(code);
    if (!sections)
        return std::nullopt;
    return shown.isNumber() ? numberText(*sections, shown.number(), from1904) : otherText(*sections, shown);
}

std::optional<std::string> formattedCell(const Value& value, std::string_view code, bool from1904)
{
    const auto sections = parseFormatCode(code);
    if (!sections)
        return std::nullopt;
    const auto number = countedNumber(value);
    return number ? numberText(*sections, asCellShows(*sections, *number), from1904)
                  : otherText(*sections, value);
}

std::optional<Colour> formatColour(const Value& value, std::string_view code)
{
    const auto number = countedNumber(value);
    const auto sections = number && code.find('[') != code.npos ? parseFormatCode(code) : std::nullopt;
    const ChosenSection chosen =
        sections ? sectionFor(*sections, asCellShows(*sections, *number)) : ChosenSection();
    return chosen.section ? chosen.section->colour : std::nullopt;
}

} // namespace spreadsheet
