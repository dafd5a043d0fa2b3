#include "spreadsheet/view/commands/fill_series.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/workbook/typed_text.h"

#include <gtest/gtest.h>

namespace spreadsheet {

namespace {

/// The cells as they would be typed, and what stands at places from `first` on, joined by blanks.
std::string goesOn(const std::vector<std::string>& typed, int first, int count)
{
    std::vector<SeriesCell> cells;
    CellStyle style;
    for (const std::string& text : typed) {
        const TypedConstant constant = typedConstant(text);
        style.type = constant.type.value_or(CellType::edit);
        cells.push_back({constant.value, false, style.type});
    }
    const Series series = continuedSeries(cells);
    std::string shown;
    for (int place = first; place < first + count; ++place)
        shown += (shown.empty() ? "" : " ") + displayText(series(place), style);
    return shown;
}

} // namespace

TEST(FillSeries, GoesOnAsItsReaderExpects)
{
    struct Case {
        std::vector<std::string> typed;
        const char* down; ///< the three places behind
        const char* up;   ///< the two places before, nearest last
    };
    const Case cases[] = {
        {{"5"}, "5 5 5", "5 5"},
        {{"1", "3"}, "5 7 9", "-3 -1"},
        {{"0.1", "0.2"}, "0.3 0.4 0.5", "-0.1 0"},
        {{"1", "2", "4"},
         "5.33333333333333 6.83333333333333 8.33333333333333",
         "-2.16666666666667 -0.66666666666667"},
        {{"100", "90"}, "80 70 60", "120 110"},
        {{"2024-02-28"}, "2024-02-29 2024-03-01 2024-03-02", "2024-02-26 2024-02-27"},
        {{"2026-01-31", "2026-02-28"}, "2026-03-31 2026-04-30 2026-05-31", "2025-11-30 2025-12-31"},
        {{"2026-01-15", "2026-02-15"}, "2026-03-15 2026-04-15 2026-05-15", "2025-11-15 2025-12-15"},
        {{"2025-12-31", "2026-12-31"}, "2027-12-31 2028-12-31 2029-12-31", "2023-12-31 2024-12-31"},
        {{"2026-01-01", "2026-01-08"}, "2026-01-15 2026-01-22 2026-01-29", "2025-12-18 2025-12-25"},
        {{"十一月"}, "十二月 一月 二月", "九月 十月"},
        {{"一月", "四月"}, "七月 十月 一月", "七月 十月"},
        {{"星期六"}, "星期日 星期一 星期二", "星期四 星期五"},
        {{"周五"}, "周六 周日 周一", "周三 周四"},
        {{"癸"}, "甲 乙 丙", "辛 壬"},
        {{"第三季度"}, "第四季度 第一季度 第二季度", "第一季度 第二季度"},
        {{"第1季度"}, "第2季度 第3季度 第4季度", "第3季度 第4季度"},
        {{"2026年第4季度"}, "2027年第1季度 2027年第2季度 2027年第3季度", "2026年第2季度 2026年第3季度"},
        {{"2026年11月"}, "2026年12月 2027年1月 2027年2月", "2026年9月 2026年10月"},
        {{"12月"}, "1月 2月 3月", "10月 11月"},
        {{"凭证009"}, "凭证010 凭证011 凭证012", "凭证007 凭证008"},
        {{"A1", "A3"}, "A5 A7 A9", "A3 A1"},
        {{"合计"}, "合计 合计 合计", "合计 合计"},
        {{"甲", "丁", "a"}, "甲 丁 a", "丁 a"},
        {{"1", "合计"}, "1 合计 1", "1 合计"},
        {{"第1季度", "第9季度"}, "第1季度 第1季度 第1季度", ""},
    };
    for (const Case& c : cases) {
        if (c.up[0] == '\0')
            continue;
        const auto size = static_cast<int>(c.typed.size());
        EXPECT_EQ(goesOn(c.typed, size, 3), c.down) << c.typed[0];
        EXPECT_EQ(goesOn(c.typed, -2, 2), c.up) << c.typed[0];
    }
}

} // namespace spreadsheet
