#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/xls/StreamMaker.h"

#include <gmock/gmock.h>

// What single records of other programs' files mean.

namespace spreadsheet {
namespace {

std::vector<std::string> readStream(StreamMaker& maker, Workbook& workbook)
{
    Warnings warnings;
    readXls(maker.end(), workbook, warnings);
    return warnings.texts();
}

/// A file's first font, which column widths are counted in.
StreamMaker& font(StreamMaker& maker, unsigned twips, const std::string& name)
{
    std::vector<unsigned> data{twips & 0xFF, twips >> 8, 0, 0, 0xFF, 0x7F, 0x90, 1, 0, 0, 0, 0, 0, 0};
    data.push_back(static_cast<unsigned>(name.size()));
    data.push_back(0); // characters of one byte
    for (const char c : name)
        data.push_back(static_cast<unsigned char>(c));
    return maker.bytes(xls::font, data);
}

TEST(XlsRecords, OfPapers)
{
    const struct {
        unsigned number;
        int width; ///< twips; 0: the printer's
        const char* told;
    } cases[] = {{0, 0, nullptr}, {9, 11906, nullptr}, {300, 0, "(编号 300)"}};
    for (const auto& c : cases) {
        StreamMaker maker;
        maker.sheet().record(xls::setup, {c.number, 100, 1, 0, 0, 2, 600, 600, 0, 0, 0, 0, 0, 0, 0, 0, 1});
        Workbook workbook;
        const auto warnings = readStream(maker, workbook);
        EXPECT_EQ(workbook.sheet(1).settings().print.paperWidth, c.width) << c.number;
        if (c.told)
            EXPECT_THAT(warnings, testing::ElementsAre(testing::HasSubstr(c.told)));
        else
            EXPECT_THAT(warnings, testing::IsEmpty()) << c.number;
    }
}

/// Digits of Arial 10 are 7 pixels wide, of SimSun 12 and Arial 12 8 and 9. Columns of so many digits have 5
/// more, rounded up to 8; a width in 256ths has all in it.
TEST(XlsRecords, OfWidthsThatColumnsHaveUnlessTold)
{
    const struct {
        const char* font;
        unsigned points, digits, standard; ///< 0: no record
        int pixels;
    } cases[] = {
        {"Arial", 10, 0, 0, 64},   {"SimSun", 12, 0, 0, 72},   {"Arial", 12, 0, 0, 80},
        {"Arial", 10, 20, 0, 152}, {"Arial", 10, 0, 2560, 70}, {"Arial", 10, 20, 2560, 70},
    };
    for (const auto& c : cases) {
        StreamMaker maker;
        font(maker, c.points * 20, c.font).sheet();
        if (c.digits > 0)
            maker.record(xls::defaultColumnWidth, {c.digits});
        if (c.standard > 0)
            maker.record(xls::standardWidth, {c.standard});
        Workbook workbook;
        readStream(maker, workbook);
        EXPECT_EQ(workbook.sheet(1).settings().columns.defaultSize, c.pixels * 15)
            << c.font << c.points << " " << c.digits << " " << c.standard;
    }
}

TEST(XlsRecords, OfFontsBetweenOnePointAnd409)
{
    const std::pair<unsigned, float> cases[]{{0, 1}, {20, 1}, {210, 10.5F}, {8180, 409}, {65535, 409}};
    for (const auto& [twips, points] : cases) {
        StreamMaker maker;
        font(maker, twips, "Arial")
            .bytes(xls::extendedFormat, {0, 0, 0, 0, 1, 0, 0x20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0x20})
            .sheet()
            .record(xls::blank, {0, 0, 0});
        Workbook workbook;
        readStream(maker, workbook);
        EXPECT_EQ(workbook.sheet(1).style({1, 1}).font.points, points) << twips;
    }
}

TEST(XlsRecords, OfReferencesThatLedToAnotherSheet)
{
    const std::pair<std::vector<unsigned>, const char*> cases[]{
        {{0x5A, 0, 0, 4, 0, 2, 0}, "S!$C$5"},
        {{0x5C, 0, 0, 4, 0, 2, 0}, "S!#REF!"},
        {{0x3B, 0, 0, 4, 0, 5, 0, 2, 0, 3, 0, 0x19, 0x10, 0, 0}, "SUM(S!$C$5:$D$6)"},
        {{0x3D, 0, 0, 4, 0, 5, 0, 2, 0, 3, 0, 0x19, 0x10, 0, 0}, "SUM(S!#REF!)"},
    };
    for (const auto& [tokens, formula] : cases) {
        StreamMaker maker;
        maker.record(xls::externBook, {1, 0x0401}).record(xls::externSheet, {1, 0, 0, 0});
        maker.sheet().formula(tokens);
        Workbook workbook;
        EXPECT_THAT(readStream(maker, workbook), testing::IsEmpty()) << formula;
        EXPECT_EQ(workbook.sheet(1).formula({1, 1}), formula);
    }
}

/// Of one sheet there is room for a thousand; more are named.
TEST(XlsRecords, OfNotesUpToTheMost)
{
    for (const int count : {1000, 1001, 1003}) {
        Workbook workbook, found;
        workbook.sheet(1).changeSettings([&](SheetSettings& settings) {
            for (int row = 1; row <= count; ++row)
                settings.notes[{1, row}] = "n";
        });
        Warnings warnings, none;
        readXls(writeXls(workbook, warnings), found, none);
        EXPECT_EQ(found.sheet(1).settings().notes.size(), 1000U) << count;
        if (count == 1000)
            EXPECT_THAT(warnings.texts(), testing::IsEmpty());
        else
            EXPECT_THAT(warnings.texts(),
                        testing::ElementsAre(testing::HasSubstr(std::to_string(count - 1000) + " 个批注")));
    }
}

} // namespace
} // namespace spreadsheet
