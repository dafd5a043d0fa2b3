#include "spreadsheet/display/number_format_code.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <utility>

namespace spreadsheet {

// A code means something as a whole or not at all: a cell whose code is half understood would show a wrong
// number. So a code is read into sections before anything is shown, and where a part of it makes no sense
// there is no result and the cell shows its value by its type. What a letter means may depend on what follows
// ("m" is months or minutes), which is settled when all parts are there.

namespace {

using Kind = FormatPart::Kind;
using Condition = FormatSection::Condition;

struct ColourName {
    std::string_view english, chinese;
    Colour colour;
};

constexpr std::array colourNames{
    ColourName{"Black", "黑色", 0x000000},   ColourName{"Blue", "蓝色", 0x0000FF},
    ColourName{"Cyan", "青色", 0x00FFFF},    ColourName{"Green", "绿色", 0x00FF00},
    ColourName{"Magenta", "洋红", 0xFF00FF}, ColourName{"Red", "红色", 0xFF0000},
    ColourName{"White", "白色", 0xFFFFFF},   ColourName{"Yellow", "黄色", 0xFFFF00},
};

bool startsWithFolded(std::string_view text, std::string_view prefix)
{
    return ascii::equalFolded(text.substr(0, prefix.size()), prefix);
}

const ColourName* colourNamed(std::string_view name)
{
    const auto found = std::ranges::find_if(colourNames, [&](const ColourName& colour) {
        return ascii::equalFolded(name, colour.english) || name == colour.chinese;
    });
    return found == colourNames.end() ? nullptr : &*found;
}

/// How days and times are written in China.
constexpr std::string_view usersDate = R"(yyyy"年"m"月"d"日")", usersTime = "h:mm:ss";

class FormatCodeReader {
public:
    explicit FormatCodeReader(std::string_view code)
        : m_rest(code)
    {
    }

    std::optional<std::vector<FormatSection>> read()
    {
        while (!m_rest.empty() && m_good)
            readPart();
        endSection();
        if (!m_good || m_sections.size() > 4)
            return std::nullopt;
        return std::move(m_sections);
    }

private:
    void readPart()
    {
        const char c = m_rest.front();
        switch (c) {
        case ';':
            endSection();
            return skip(1);
        case '"':
            return quoted();
        case '\\':
        case '!':
            skip(1);
            return literalCharacter();
        case '_': // the width of the next character
            skip(1);
            if (!m_rest.empty())
                dropCharacter();
            return literal(" ");
        case '*': // fills the cell with the next character: there is no cell here
            skip(1);
            if (!m_rest.empty())
                dropCharacter();
            return;
        case '[':
            return bracket();
        case '@':
            return add(Kind::text, 1);
        case '%':
            ++m_section.percents;
            return add(Kind::percent, 1);
        case '0':
        case '#':
        case '?':
            return digit();
        case '.':
            return point();
        case ',':
            return comma();
        case '/':
            return slash();
        default:
            return letterOrLiteral();
        }
    }

    void skip(std::size_t bytes) { m_rest.remove_prefix(std::min(bytes, m_rest.size())); }

    void dropCharacter()
    {
        std::size_t size = 0;
        takeCharacter(m_rest, size);
        skip(size);
    }

    void literal(std::string_view text)
    {
        if (!m_section.parts.empty() && m_section.parts.back().kind == Kind::literal)
            m_section.parts.back().text += text;
        else
            m_section.parts.push_back({Kind::literal, std::string(text), 1});
    }

    void literalCharacter()
    {
        if (m_rest.empty())
            return;
        std::size_t size = 0;
        takeCharacter(m_rest, size);
        literal(m_rest.substr(0, size));
        skip(size);
    }

    void quoted()
    {
        const std::size_t end = m_rest.find('"', 1);
        literal(m_rest.substr(1, end == m_rest.npos ? end : end - 1));
        skip(end == m_rest.npos ? end : end + 1);
    }

    void add(Kind kind, std::size_t bytes, int count = 1)
    {
        m_section.parts.push_back({kind, std::string(m_rest.substr(0, bytes)), count});
        skip(bytes);
    }

    void digit()
    {
        m_section.grouped = m_section.grouped || m_section.thousands > 0;
        m_section.thousands = 0; // the commas stood between digits
        if (!m_exponent)
            ++(m_point ? m_section.decimals : m_section.integerDigits);
        add(Kind::digit, 1);
    }

    void point()
    {
        const bool afterSeconds = !m_section.parts.empty() && m_section.isDate &&
                                  (m_section.parts.back().kind == Kind::second ||
                                   m_section.parts.back().kind == Kind::elapsedSeconds);
        const std::size_t zeros = std::min(m_rest.find_first_not_of('0', 1), m_rest.size()) - 1;
        if (afterSeconds && zeros > 0)
            return add(Kind::secondFraction, zeros + 1, static_cast<int>(zeros));
        if (m_point)
            return literalCharacter();
        m_point = true;
        m_scaling += std::exchange(m_section.thousands, 0);
        add(Kind::point, 1);
    }

    void comma()
    {
        const bool afterDigit = m_section.integerDigits > 0 && !m_exponent;
        if (!afterDigit)
            return literalCharacter();
        ++m_section.thousands;
        skip(1);
    }

    /// Behind digits and before digits it makes a fraction of both.
    void slash()
    {
        std::size_t end = 1;
        const bool isFixed = m_rest.size() > 1 && m_rest[1] >= '1' && m_rest[1] <= '9';
        const std::string_view below = isFixed ? "0123456789" : "0#?";
        while (end < m_rest.size() && below.find(m_rest[end]) != std::string_view::npos)
            ++end;
        std::string above;
        auto& parts = m_section.parts;
        const bool between = end > 1 && !m_point && !m_exponent && !m_section.isDate;
        for (; between && !parts.empty() && parts.back().kind == Kind::digit; parts.pop_back())
            above.insert(0, parts.back().text);
        if (above.empty())
            return literalCharacter();
        m_section.integerDigits -= static_cast<int>(above.size());
        parts.push_back({Kind::fraction, above + std::string(m_rest.substr(0, end)), 1});
        skip(end);
    }

    void bracket()
    {
        const std::size_t end = m_rest.find(']');
        if (end == m_rest.npos) {
            m_good = false;
            return;
        }
        const std::string_view inside = m_rest.substr(1, end - 1);
        skip(end + 1);
        m_bracketed = true;
        if (inside.starts_with('$')) {
            currencyAndLanguage(inside.substr(1));
        } else if (startsWithFolded(inside, "dbnum") && inside.size() == 6) {
            const int style = inside[5] - '0';
            m_good = m_good && style >= 1 && style <= 3;
            m_section.numerals = static_cast<NumeralStyle>(style);
        } else if (!inside.empty() && std::string_view("<>=").find(inside[0]) != std::string_view::npos) {
            condition(inside);
        } else if (inside == "万元") {
            ++m_section.tenThousands;
        } else if (inside == "人民币大写") {
            m_section.parts.push_back({Kind::capitals, "", 1});
        } else if (const ColourName* name = colourNamed(inside)) {
            m_section.colour = name->colour;
        } else if (!inside.empty() && std::ranges::all_of(inside, [&](char c) {
                       return ascii::lower(c) == ascii::lower(inside[0]);
                   })) {
            elapsed(ascii::lower(inside[0]), static_cast<int>(inside.size()));
        } // anything else is a colour of a palette
    }

    /// "￥-804": either may be missing. Some languages stand for how the computer's user writes days and
    /// times.
    void currencyAndLanguage(std::string_view text)
    {
        const std::size_t dash = std::min(text.find('-'), text.size());
        const std::string_view language = text.substr(std::min(dash + 1, text.size()));
        literal(text.substr(0, dash));
        m_section.inChinese =
            m_section.inChinese || language.ends_with("804") || startsWithFolded(language, "zh-");
        if (ascii::equalFolded(language, "F800") || startsWithFolded(language, "x-sysdate"))
            m_usersOwn = usersDate;
        else if (ascii::equalFolded(language, "F400") || startsWithFolded(language, "x-systime"))
            m_usersOwn = usersTime;
    }

    void elapsed(char letter, int count)
    {
        const Kind kind = letter == 'h'   ? Kind::elapsedHours
                          : letter == 'm' ? Kind::elapsedMinutes
                                          : Kind::elapsedSeconds;
        m_good = m_good && (letter == 'h' || letter == 'm' || letter == 's');
        m_section.parts.push_back({kind, "", count});
        m_section.isDate = true;
    }

    void condition(std::string_view text)
    {
        static constexpr std::array<std::pair<std::string_view, Condition>, 6> operators{
            {{"<=", Condition::lessEqual},
             {">=", Condition::greaterEqual},
             {"<>", Condition::notEqual},
             {"<", Condition::less},
             {">", Condition::greater},
             {"=", Condition::equal}}};
        for (const auto& [sign, condition] : operators) {
            if (!text.starts_with(sign))
                continue;
            const auto limit = parseNumber(text.substr(sign.size()));
            m_good = m_good && limit.has_value();
            m_section.condition = condition;
            m_section.limit = limit.value_or(0);
            return;
        }
    }

    void letterOrLiteral()
    {
        const char c = ascii::lower(m_rest.front());
        for (const std::string_view general : {"general", "g/通用格式"}) {
            if (startsWithFolded(m_rest, general))
                return add(Kind::general, general.size());
        }
        for (const std::string_view half : {"AM/PM", "A/P", "上午/下午"}) {
            if (startsWithFolded(m_rest, half)) {
                m_section.isDate = true;
                return add(Kind::halfDay, half.size());
            }
        }
        if (c == 'e' && m_rest.size() > 1 && (m_rest[1] == '+' || m_rest[1] == '-')) {
            m_exponent = true;
            return add(Kind::exponent, 2);
        }
        constexpr std::string_view reserved = "abdeghmnsy"; // other letters stand for themselves: "0.0x"
        if (reserved.find(c) != reserved.npos)
            return datePart(c);
        literalCharacter();
    }

    void datePart(char letter)
    {
        std::size_t count = 1;
        while (count < m_rest.size() && ascii::lower(m_rest[count]) == letter)
            ++count;
        Kind kind = Kind::year;
        switch (letter) {
        case 'y':
        case 'e':
            break;
        case 'm':
            kind = Kind::month;
            break;
        case 'd':
            kind = Kind::day;
            break;
        case 'h':
            kind = Kind::hour;
            break;
        case 's':
            kind = Kind::second;
            break;
        case 'a':
            kind = Kind::chineseWeekday;
            m_good = m_good && count >= 3;
            break;
        default:
            m_good = false;
        }
        m_section.isDate = true;
        add(kind, count, letter == 'e' ? 4 : static_cast<int>(count));
    }

    static bool isDateOrTime(Kind kind) { return kind >= Kind::year && kind != Kind::halfDay; }

    /// An "m" behind hours or before seconds means minutes, whatever stands between them.
    void tellMinutesFromMonths()
    {
        FormatPart* former = nullptr; // the last part of date or time
        for (FormatPart& part : m_section.parts) {
            if (!isDateOrTime(part.kind))
                continue;
            const bool hours = former && (former->kind == Kind::hour || former->kind == Kind::elapsedHours);
            if (part.kind == Kind::month && part.count <= 2 && hours)
                part.kind = Kind::minute;
            if (part.kind == Kind::second && former && former->kind == Kind::month && former->count <= 2)
                former->kind = Kind::minute;
            former = &part;
        }
    }

    void endSection()
    {
        if (!m_usersOwn.empty()) { // whatever the code itself says
            m_section.parts.clear();
            const std::string_view rest = std::exchange(m_rest, std::exchange(m_usersOwn, {}));
            while (!m_rest.empty())
                readPart();
            m_rest = rest;
        }
        tellMinutesFromMonths();
        if (m_bracketed && m_section.parts.empty()) // "[DBNum2]" alone
            m_section.parts.push_back({Kind::general, "", 1});
        m_section.thousands += std::exchange(m_scaling, 0);
        m_sections.push_back(std::move(m_section));
        m_section = FormatSection();
        m_point = m_exponent = m_bracketed = false;
    }

    std::string_view m_rest;
    std::vector<FormatSection> m_sections;
    FormatSection m_section;
    int m_scaling = 0;           ///< commas before the decimal point
    bool m_point = false;        ///< behind the decimal point
    bool m_exponent = false;     ///< behind the "E"
    bool m_bracketed = false;    ///< the section holds something in brackets
    std::string_view m_usersOwn; ///< what the section stands for instead of its own letters
    bool m_good = true;
};

} // namespace

bool FormatSection::holds(double number) const
{
    switch (condition) {
    case Condition::none:
        return true;
    case Condition::less:
        return number < limit;
    case Condition::lessEqual:
        return number <= limit;
    case Condition::equal:
        return number == limit;
    case Condition::notEqual:
        return number != limit;
    case Condition::greater:
        return number > limit;
    case Condition::greaterEqual:
        return number >= limit;
    }
    return false;
}

std::string_view englishColourName(std::string_view name)
{
    const ColourName* known = colourNamed(name);
    return known ? known->english : name;
}

std::optional<std::vector<FormatSection>> parseFormatCode(std::string_view code)
{
    return FormatCodeReader(code).read();
}

} // namespace spreadsheet
