#include "spreadsheet/values/date_text.h"

#include "spreadsheet/values/clock.h"
#include "spreadsheet/values/date_names.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <cmath>
#include <utility>

namespace spreadsheet {

// Dates are typed and imported in Chinese, ISO, American and English notation, and which one a text is in
// shows only while it is read. A text is a date only if all of it is read: anything left over makes it a text
// again, so that "12-3 号" does not silently become a day.

namespace {

/// A number as it stands in a date: its digits tell a year from a day.
struct Digits {
    int value = 0;
    int count = 0;
};

/// Reads a text piece by piece.
class Scanner {
public:
    explicit Scanner(std::string_view text)
        : m_rest(text)
    {
    }

    bool atEnd() const { return m_rest.empty(); }
    std::string_view rest() const { return m_rest; }
    bool take(std::string_view piece)
    {
        if (!m_rest.starts_with(piece))
            return false;
        m_rest.remove_prefix(piece.size());
        return true;
    }
    bool blanks()
    {
        const std::size_t before = m_rest.size();
        while (take(" ")) {
        }
        return m_rest.size() < before;
    }
    std::optional<Digits> digits()
    {
        Digits number;
        while (!m_rest.empty() && ascii::isDigit(m_rest[0]) && number.count < 6) {
            number.value = number.value * 10 + (m_rest[0] - '0');
            ++number.count;
            m_rest.remove_prefix(1);
        }
        return number.count ? std::optional(number) : std::nullopt;
    }
    /// ".25" behind seconds.
    double fraction()
    {
        double value = 0;
        if (!take("."))
            return 0;
        for (double place = 0.1; !m_rest.empty() && ascii::isDigit(m_rest[0]); place /= 10) {
            value += place * (m_rest[0] - '0');
            m_rest.remove_prefix(1);
        }
        return value;
    }
    /// An English month, whole or its first three letters; 1 to 12.
    std::optional<int> month()
    {
        std::size_t letters = 0;
        while (letters < m_rest.size() && ascii::isLetter(m_rest[letters]))
            ++letters;
        const auto number = monthOfName(m_rest.substr(0, letters));
        if (number)
            m_rest.remove_prefix(letters);
        return number;
    }
    /// AM or PM, 上午 or 下午: hours to add; 12 counts as 0.
    std::optional<int> half()
    {
        for (const auto& [text, hours] : {std::pair{"AM", 0}, {"am", 0}, {"PM", 12}, {"pm", 12}}) {
            if (take(text))
                return hours;
        }
        return std::nullopt;
    }

private:
    std::string_view m_rest;
};

int fullYear(const Digits& year)
{
    if (year.count > 2)
        return year.value;
    return year.value + (year.value < 30 ? 2000 : 1900);
}

int presentYear()
{
    return dayOfSerial(presentSerial())->year;
}

std::optional<double> dateSerial(int year, int month, int day)
{
    if (year < 1900 || year > 9999 || month < 1 || month > 12 || day < 1 || day > daysOfMonth(year, month))
        return std::nullopt;
    return serialOfDay(year, month, day);
}

/// "2026年12月31日", "2026年12月", "12月31日"; the scanner stands behind the first number.
std::optional<double> chineseDate(Scanner& text, const Digits& first)
{
    int year = presentYear();
    std::optional<Digits> month = first;
    if (text.take("年")) {
        year = fullYear(first);
        month = text.digits();
    }
    if (!month || !text.take("月"))
        return std::nullopt;
    const auto day = text.digits();
    if (day && !text.take("日"))
        return std::nullopt;
    return dateSerial(year, month->value, day ? day->value : 1);
}

/// "31-Dec-2026", "31-Dec", "Dec-26", "Dec 31, 2026"; the scanner stands at the month's name.
std::optional<double> namedMonthDate(Scanner& text, const std::optional<Digits>& day)
{
    const auto month = text.month();
    if (!month)
        return std::nullopt;
    const bool dash = text.take("-") || text.take("/");
    text.blanks();
    const auto next = text.digits();
    if (day)
        return dateSerial(next ? fullYear(*next) : presentYear(), *month, day->value);
    if (!next)
        return std::nullopt;
    if (text.take(",")) {
        text.blanks();
        const auto year = text.digits();
        return year ? dateSerial(fullYear(*year), *month, next->value) : std::nullopt;
    }
    const bool isDay = next->count <= 2 && next->value <= daysOfMonth(2000, *month) && !dash;
    return isDay ? dateSerial(presentYear(), *month, next->value) : dateSerial(fullYear(*next), *month, 1);
}

/// "2026-12-31", "12/31/2026", "26-12-31", "12/31", "2026/12", "12/2026".
std::optional<double> numericDate(Scanner& text, const Digits& first, std::string_view mark)
{
    const auto second = text.digits();
    if (!second)
        return std::nullopt;
    if (text.take(mark)) {
        const auto third = text.digits();
        if (!third)
            return std::nullopt;
        if (first.count > 2)
            return dateSerial(first.value, second->value, third->value);
        constexpr int mostMonths = 12;
        if (first.value > mostMonths && third->count <= 2)
            return dateSerial(fullYear(first), second->value, third->value);
        return dateSerial(fullYear(*third), first.value, second->value);
    }
    if (first.count > 2)
        return dateSerial(first.value, second->value, 1);
    if (second->count > 2)
        return dateSerial(second->value, first.value, 1);
    return dateSerial(presentYear(), first.value, second->value);
}

std::optional<double> scanDate(Scanner& text)
{
    const auto first = text.digits();
    if (!first)
        return namedMonthDate(text, std::nullopt);
    if (text.rest().starts_with("年") || text.rest().starts_with("月"))
        return chineseDate(text, *first);
    for (const std::string_view mark : {"-", "/"}) {
        if (text.take(mark)) {
            if (const auto named = namedMonthDate(text, first))
                return named;
            return numericDate(text, *first, mark);
        }
    }
    return text.blanks() ? namedMonthDate(text, first) : std::nullopt;
}

/// Parts of a day; nothing if the minutes or seconds are out of range.
std::optional<double> timePart(double hours, int minutes, double seconds)
{
    if (hours >= 10000 || minutes > 59 || seconds >= 60)
        return std::nullopt;
    return (hours * 3600 + minutes * 60 + seconds) / 86400;
}

/// "12:30", "12:30:15.5", "12:30 PM", "8 AM", "12时30分15秒".
std::optional<double> scanTime(Scanner& text)
{
    const bool morning = text.take("上午");
    const bool afternoon = !morning && text.take("下午");
    const auto hours = text.digits();
    if (!hours)
        return std::nullopt;
    const bool chinese = text.take("时");
    const bool colon = !chinese && text.take(":");
    int minutes = 0;
    double seconds = 0;
    if (chinese || colon) {
        const auto read = text.digits();
        if (!read && colon)
            return std::nullopt;
        minutes = read ? read->value : 0;
        const bool more = chinese ? text.take("分") : text.take(":");
        if (const auto last = more ? text.digits() : std::nullopt) {
            seconds = last->value + text.fraction();
            text.take("秒");
        } else if (more && colon) {
            return std::nullopt;
        }
    }
    text.blanks();
    auto half = text.half();
    if (morning || afternoon)
        half = afternoon ? 12 : 0;
    if (!half && !chinese && !colon)
        return std::nullopt;
    if (half && (hours->value > 12 || minutes > 59))
        return std::nullopt;
    return timePart(half ? hours->value % 12 + *half : hours->value, minutes, seconds);
}

} // namespace

std::optional<double> parseDateTime(std::string_view whole)
{
    whole = trimmedBlanks(whole);
    Scanner text(whole);
    if (const auto date = scanDate(text)) {
        if (text.atEnd())
            return date;
        if (!text.blanks())
            return std::nullopt;
        const auto time = scanTime(text);
        return time && text.atEnd() ? std::optional(*date + *time) : std::nullopt;
    }
    text = Scanner(whole);
    const auto time = scanTime(text);
    return time && text.atEnd() ? time : std::nullopt;
}

} // namespace spreadsheet
