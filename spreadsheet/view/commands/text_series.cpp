#include "spreadsheet/view/commands/text_series.h"

#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <span>

namespace spreadsheet {

namespace {

constexpr std::array<std::string_view, 12> months{"一月", "二月", "三月", "四月", "五月",   "六月",
                                                  "七月", "八月", "九月", "十月", "十一月", "十二月"};
constexpr std::array<std::string_view, 12> lunarMonths{"正月", "二月", "三月", "四月", "五月",   "六月",
                                                       "七月", "八月", "九月", "十月", "十一月", "腊月"};
constexpr std::array<std::string_view, 7> weekdays{"星期一", "星期二", "星期三", "星期四",
                                                   "星期五", "星期六", "星期日"};
constexpr std::array<std::string_view, 7> shortWeekdays{"周一", "周二", "周三", "周四",
                                                        "周五", "周六", "周日"};
constexpr std::array<std::string_view, 4> quarters{"第一季度", "第二季度", "第三季度", "第四季度"};
constexpr std::array<std::string_view, 4> shortQuarters{"一季度", "二季度", "三季度", "四季度"};
constexpr std::array<std::string_view, 10> stems{"甲", "乙", "丙", "丁", "戊", "己", "庚", "辛", "壬", "癸"};
constexpr std::array<std::string_view, 12> branches{"子", "丑", "寅", "卯", "辰", "巳",
                                                    "午", "未", "申", "酉", "戌", "亥"};

using Round = std::span<const std::string_view>;
constexpr std::array<Round, 8> rounds{months,   lunarMonths,   weekdays, shortWeekdays,
                                      quarters, shortQuarters, stems,    branches};

long long wrapped(long long number, long long size)
{
    return ((number % size) + size) % size;
}

std::optional<TextSeries> roundSeries(const std::vector<std::string>& texts, Round round)
{
    std::vector<long long> places;
    for (const std::string& text : texts) {
        const auto found = std::ranges::find(round, std::string_view(text));
        if (found == round.end())
            return std::nullopt;
        places.push_back(found - round.begin());
    }
    const auto size = static_cast<long long>(round.size());
    const long long step = places.size() < 2 ? 1 : wrapped(places[1] - places[0], size);
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (wrapped(places[i] - places[i - 1], size) != step)
            return std::nullopt;
    }
    return [=, first = places[0]](int index) {
        return std::string(round[static_cast<std::size_t>(wrapped(first + step * index, size))]);
    };
}

/// A text around its last number: "第1季度" is "第", 1, "季度".
struct NumberedText {
    std::string before, after;
    long long number = 0;
    std::size_t width = 0; ///< digits that are shown at least; 0 unless there are leading zeros
};

std::optional<NumberedText> numberedText(std::string_view text)
{
    std::size_t end = text.size();
    while (end > 0 && !ascii::isDigit(text[end - 1]))
        --end;
    std::size_t begin = end;
    while (begin > 0 && ascii::isDigit(text[begin - 1]))
        --begin;
    constexpr std::size_t longest = 15;
    if (begin == end || end - begin > longest)
        return std::nullopt;
    NumberedText numbered{std::string(text.substr(0, begin)), std::string(text.substr(end)), 0,
                          text[begin] == '0' ? end - begin : 0};
    std::from_chars(text.data() + begin, text.data() + end, numbered.number);
    return numbered;
}

/// A number below 0 has no text of this kind: it shows without its sign.
std::string rendered(const NumberedText& text, long long number)
{
    std::string digits = std::to_string(number < 0 ? -number : number);
    if (digits.size() < text.width)
        digits.insert(0, text.width - digits.size(), '0');
    return text.before + digits + text.after;
}

/// How many numbers go round: quarters and months; 0 if they go on for ever.
long long roundOf(const NumberedText& text)
{
    const auto within = [&](long long size) { return text.number >= 1 && text.number <= size; };
    if (within(4) && (text.after.starts_with("季度") || text.after == "季"))
        return 4;
    return within(12) && text.after.starts_with("月") && !text.after.starts_with("月日") ? 12 : 0;
}

std::string roundText(const NumberedText& text, long long number, long long size)
{
    NumberedText shown = text;
    const std::string_view yearSign = "年";
    const long long turns = (number - 1 - wrapped(number - 1, size)) / size;
    std::string_view before = text.before;
    if (turns != 0 && before.size() > yearSign.size()) { // "2026年12月" is followed by "2027年1月"
        const bool hasYear = before.ends_with(yearSign) || before.ends_with("年第");
        const auto year = hasYear ? numberedText(before) : std::nullopt;
        if (year)
            shown.before = rendered(*year, year->number + turns);
    }
    return rendered(shown, wrapped(number - 1, size) + 1);
}

std::optional<TextSeries> numberedSeries(const std::vector<std::string>& texts)
{
    std::vector<NumberedText> parts;
    for (const std::string& text : texts) {
        const auto part = numberedText(text);
        if (!part || (part->before.empty() && part->after.empty()))
            return std::nullopt;
        parts.push_back(*part);
    }
    const NumberedText& first = parts[0];
    const long long step = parts.size() < 2 ? 1 : parts[1].number - first.number;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const bool goesOn = parts[i].before == first.before && parts[i].after == first.after &&
                            parts[i].number - parts[i - 1].number == step;
        if (!goesOn)
            return std::nullopt;
    }
    const long long size = roundOf(first);
    return [=](int index) {
        const long long number = first.number + step * index;
        return size == 0 ? rendered(first, number) : roundText(first, number, size);
    };
}

} // namespace

std::optional<TextSeries> continuedTexts(const std::vector<std::string>& texts)
{
    if (texts.empty())
        return std::nullopt;
    for (const Round round : rounds) {
        if (auto series = roundSeries(texts, round))
            return series;
    }
    return numberedSeries(texts);
}

} // namespace spreadsheet
