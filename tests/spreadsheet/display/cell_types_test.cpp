#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/display_text.h"

#include <gtest/gtest.h>
#include <set>

using namespace spreadsheet;

TEST(CellTypes, EachHasACodeAndANameOfItsOwn)
{
    std::set<int> codes;
    std::set<std::string_view> names;
    for (const CellTypeRow& row : cellTypes()) {
        const int code = static_cast<int>(row.type);
        EXPECT_TRUE(codes.insert(code).second) << code;
        EXPECT_TRUE(names.insert(row.name).second && !row.name.empty()) << row.name;
        EXPECT_EQ(cellTypeOf(code), row.type);
        EXPECT_EQ(&cellTypeRow(row.type), &row);
    }
    for (const int none : {-1, 2, 11, 255, 256 + 13})
        EXPECT_FALSE(cellTypeOf(none)) << none;
    EXPECT_EQ(cellTypeRow(static_cast<CellType>(200)).type, CellType::edit);
}

TEST(CellTypes, ShowNumbersAsTheirFormatCodesDo)
{
    for (const CellTypeRow& row : cellTypes()) {
        CellStyle byType;
        byType.type = row.type;
        for (const int decimals : {0, 3}) {
            byType.decimals = static_cast<std::uint8_t>(decimals);
            CellStyle byCode;
            byCode.numberFormat = Text(formatCodeOfType(byType));
            if (byCode.numberFormat.empty())
                continue;
            for (const double number : {0.0, 0.5, 1.005, 45717.25, 1234567.891})
                EXPECT_EQ(displayText(number, byCode), displayText(number, byType))
                    << row.name << ' ' << number;
        }
    }
}
