#pragma once
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/workbook/Workbook.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace spreadsheet {

/// A folder of a test's own, gone at its end.
class TestFolder {
public:
    TestFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "files-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    ~TestFolder() { std::filesystem::remove_all(m_path); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    std::filesystem::path file(const std::string& name) const { return m_path / name; }
    std::size_t fileCount() const
    {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {}));
    }

private:
    std::filesystem::path m_path;
};

/// Attribute by attribute: cells with formulas and looks, settings, names.
inline void expectSame(const Workbook& expected, const Workbook& found)
{
    ASSERT_EQ(expected.sheetCount(), found.sheetCount());
    EXPECT_EQ(expected.activeSheet(), found.activeSheet());
    EXPECT_EQ(expected.countsFrom1904(), found.countsFrom1904());
    for (int index = 1; index <= expected.sheetCount(); ++index) {
        const Sheet &a = expected.sheet(index), &b = found.sheet(index);
        EXPECT_EQ(a.name(), b.name());
        EXPECT_EQ(a.lastDataRow(), b.lastDataRow());
        for (int row = 1; row <= a.lastDataRow(); ++row) {
            for (int column = 1; column <= 14; ++column) {
                const CellAddress at{column, row};
                SCOPED_TRACE(a.name() + "!" + cellName(at) + " " + a.formula(at));
                EXPECT_EQ(a.value(at), b.value(at)) << a.displayText(at) << " / " << b.displayText(at);
                EXPECT_EQ(a.formula(at), b.formula(at));
                EXPECT_EQ(a.arrayRange(at), b.arrayRange(at));
                const CellStyle &x = a.style(at), &y = b.style(at);
                if (a.styleNumber(at) == 0)
                    continue; // a look of its own would only be that of the fresh cell
                EXPECT_EQ(static_cast<int>(x.type), static_cast<int>(y.type));
                EXPECT_EQ(x.decimals, y.decimals);
                EXPECT_EQ(x.numberFormat.view(), y.numberFormat.view());
                EXPECT_EQ(x.font, y.font) << x.font.points << " / " << y.font.points;
                EXPECT_EQ(x.foreground, y.foreground);
                EXPECT_EQ(x.background, y.background);
                EXPECT_EQ(x, y); // alignment, wrap, lock, borders
            }
        }
        const SheetSettings &s = a.settings(), &t = b.settings();
        EXPECT_EQ(s.rows.sizes, t.rows.sizes);
        EXPECT_EQ(s.rows.hidden, t.rows.hidden);
        EXPECT_EQ(s.columns.hidden, t.columns.hidden);
        for (int column = 1; column <= 10; ++column)
            EXPECT_EQ(s.columns.size(column), t.columns.size(column)) << column;
        EXPECT_EQ(s.spans, t.spans);
        EXPECT_EQ(s.notes, t.notes);
        EXPECT_EQ(s.dropDowns, t.dropDowns);
        EXPECT_EQ(s.isHidden, t.isHidden);
        EXPECT_EQ(s.isVeryHidden, t.isVeryHidden);
        EXPECT_EQ(s.frozenRows, t.frozenRows);
        EXPECT_EQ(s.frozenColumns, t.frozenColumns);
        EXPECT_EQ(s.print.header, t.print.header);
        EXPECT_EQ(s.print.footer, t.print.footer);
        EXPECT_EQ(s.print, t.print); // margins, orientation, titles, breaks and the rest
    }
    const int name = found.names().find("税率");
    ASSERT_GE(name, 0);
    EXPECT_EQ(found.formulas().text(found.names()[name].formula, {1, 1}), "数据!$B$1");
}

} // namespace spreadsheet
