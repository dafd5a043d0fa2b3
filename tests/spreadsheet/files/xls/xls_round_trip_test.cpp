#include "spreadsheet/files/ole2/CompoundFile.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/defined_names.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/RecordStream.h"
#include "spreadsheet/files/xls/RecordWriter.h"
#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/sample_workbook.h"
#include "tests/spreadsheet/files/xls/StreamMaker.h"

#include <gmock/gmock.h>
#include <map>
#include <random>
#include <set>

namespace spreadsheet {
namespace {

std::string reasonFor(Bytes file)
{
    try {
        Workbook workbook;
        Warnings warnings;
        readXls(file, workbook, warnings);
    } catch (const ContentError& error) {
        return error.what();
    }
    return {};
}

std::vector<std::byte> sampleStream()
{
    Workbook workbook;
    fillSample(workbook);
    Warnings warnings;
    const std::vector<std::byte> file = writeXls(workbook, warnings);
    const CompoundFile compound(file);
    const StreamBytes stream = *compound.stream("workbook");
    return {stream.bytes().begin(), stream.bytes().end()};
}

TEST(Xls, RoundTripKeepsEverything)
{
    Workbook workbook, found;
    fillSample(workbook);
    workbook.sheet(2).changeSettings([](SheetSettings& settings) {
        settings.print.titleLeft = 2;
        settings.print.titleRight = 3;
        settings.print.area = {{1, 1, 6, 20}, {8, 3, 9, 30}};
    });
    Warnings warnings;
    const std::vector<std::byte> file = writeXls(workbook, warnings);
    EXPECT_THAT(warnings.texts(), testing::IsEmpty());
    readXls(file, found, warnings);
    EXPECT_THAT(warnings.texts(), testing::IsEmpty());
    expectSame(workbook, found);
}

/// Strict readers refuse a file in which one of these is shorter.
TEST(Xls, RecordsHaveTheSizesOfTheirKinds)
{
    const std::map<std::uint16_t, std::size_t> sizes{
        {xls::beginOfFile, 16}, {xls::endOfFile, 0},   {xls::columnInfo, 12}, {xls::country, 4},
        {xls::dimensions, 14},  {xls::guts, 8},        {xls::note, 12},       {xls::extendedFormat, 20},
        {xls::row, 16},         {xls::setup, 34},      {xls::window1, 18},    {xls::window2, 18},
        {xls::style, 4},        {xls::textObject, 18}, {xls::object, 52},     {xls::defaultRowHeight, 4},
    };
    const std::vector<std::byte> bytes = sampleStream();
    RecordStream stream(bytes);
    std::set<std::uint16_t> seen;
    while (stream.next()) {
        const auto size = sizes.find(stream.record().id);
        if (size == sizes.end())
            continue;
        EXPECT_EQ(stream.record().size(), size->second) << std::hex << size->first;
        if (size->first == xls::extendedFormat) {
            EXPECT_EQ(stream.record().wordAt(18) >> 7, 65) << "the usual paper behind a pattern";
        }
        seen.insert(size->first);
    }
    EXPECT_EQ(seen.size(), sizes.size());
}

/// Records of drawings lie in each other: a kind, its length, and inside a container others to its end.
bool isNested(Bytes drawing)
{
    while (drawing.size() >= 8) {
        const bool isContainer = (numberAt<std::uint16_t>(drawing, 0) & 0xF) == 0xF;
        const std::size_t length = numberAt<std::uint32_t>(drawing, 4);
        if (length > drawing.size() - 8 || (isContainer && !isNested(drawing.subspan(8, length))))
            return false;
        drawing = drawing.subspan(8 + length);
    }
    return drawing.empty();
}

TEST(Xls, DrawingsOfNotesAreNested)
{
    const std::vector<std::byte> bytes = sampleStream();
    RecordStream stream(bytes);
    std::vector<std::byte> drawing; // of one sheet
    int drawings = 0;
    while (stream.next()) {
        const std::uint16_t id = stream.record().id;
        if (id == xls::drawing || id == xls::drawingGroup)
            drawing.insert(drawing.end(), stream.record().data.begin(), stream.record().data.end());
        if (id != xls::endOfFile || drawing.empty())
            continue;
        EXPECT_TRUE(isNested(drawing));
        EXPECT_EQ(numberAt<std::uint32_t>(drawing, 4), drawing.size() - 8) << "one holds all";
        drawing.clear();
        ++drawings;
    }
    EXPECT_EQ(drawings, 2) << "one of the sheet with notes, and what all have in common";
}

/// Programs that show notes trust what a text's record says of the two that go on with it.
TEST(Xls, TextsOfNotesAnnounceTheirCharactersAndRuns)
{
    const std::vector<std::byte> bytes = sampleStream();
    RecordStream stream(bytes);
    int notes = 0;
    while (stream.next()) {
        if (stream.record().id != xls::textObject)
            continue;
        ++notes;
        ASSERT_EQ(stream.record().size(), 18U);
        const std::size_t characters = stream.record().wordAt(10), runs = stream.record().wordAt(12);
        ASSERT_TRUE(stream.next());
        const bool wide = stream.record().byteAt(0) != 0;
        EXPECT_EQ(stream.record().size(), 1 + characters * (wide ? 2 : 1));
        ASSERT_TRUE(stream.next());
        EXPECT_EQ(stream.record().id, xls::continued);
        EXPECT_EQ(stream.record().size(), runs);
        EXPECT_EQ(stream.record().wordAt(8), characters) << "where the last run ends";
    }
    EXPECT_GT(notes, 0);
}

TEST(Xls, WhatTheFormatLacksBecomesTheLastValueWithAWarning)
{
    Workbook workbook, found;
    Sheet& sheet = workbook.sheet(1);
    demand(sheet.setFormula({1, 1}, "SUM(B2:B1048576)"));
    demand(sheet.setFormula({1, 2}, "SUM(A1:XFD1)"));
    demand(sheet.setFormula({1, 3}, "LEN(\"" + std::string(300, 'x') + "\")"));
    demand(sheet.setFormula({1, 4}, "没有定义+1"));
    workbook.recalculate();
    Warnings warnings, none;
    readXls(writeXls(workbook, warnings), found, none);
    for (int row = 1; row <= 4; ++row) {
        EXPECT_FALSE(found.sheet(1).hasFormula({1, row}));
        EXPECT_EQ(found.sheet(1).value({1, row}), sheet.value({1, row}));
    }
    ASSERT_EQ(warnings.texts().size(), 4U);
    EXPECT_THAT(warnings.texts()[0], testing::HasSubstr("A1"));
    EXPECT_THAT(warnings.texts()[0], testing::HasSubstr("行列范围"));
}

TEST(Xls, RefusesWhatDoesNotFitBeforeWriting)
{
    const struct {
        CellAddress at;
        const char* named;
    } cases[] = {{{1, 65'537}, "表“Sheet1”用到第 65537 行"}, {{257, 1}, "表“Sheet1”用到第 IW 列"}};
    for (const auto& [at, named] : cases) {
        Workbook workbook;
        workbook.sheet(1).setNumber(at, 1);
        Warnings warnings;
        EXPECT_THAT([&] { writeXls(workbook, warnings); },
                    testing::ThrowsMessage<ContentError>(testing::StartsWith(named)));
    }
    Workbook workbook, found;
    workbook.sheet(1).setNumber({256, 65'536}, 1);
    Warnings warnings;
    readXls(writeXls(workbook, warnings), found, warnings);
    EXPECT_EQ(found.sheet(1).value({256, 65'536}), Value(1.0));
}

TEST(Xls, LongTextsGoOnInFurtherRecords)
{
    Workbook workbook, found;
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 60; ++row) { // every length of the rest at a record's end
        std::string text;
        for (int i = 0; i < 300 + 37 * row; ++i)
            text += row % 3 == 0 ? "文" : row % 3 == 1 ? "x" : i == 200 ? "字" : "y";
        sheet.setText({1, row}, text);
    }
    sheet.setText({2, 1}, std::string(40'000, 'z'));
    Warnings warnings, none;
    readXls(writeXls(workbook, warnings), found, none);
    for (int row = 1; row <= 60; ++row)
        EXPECT_EQ(found.sheet(1).value({1, row}), sheet.value({1, row})) << row;
    EXPECT_EQ(found.sheet(1).value({2, 1}).textView().size(), 32'767U);
    EXPECT_EQ(warnings.texts().size(), 1U);
}

TEST(Xls, TruncatedAtEveryRecordIsRefusedWithAReason)
{
    const std::vector<std::byte> stream = sampleStream();
    std::vector<std::size_t> ends;
    RecordStream records(stream);
    while (records.next() && records.offset() < stream.size() && (records.record().id != 0))
        ends.push_back(records.offset());
    ASSERT_GT(ends.size(), 150U);
    ends.pop_back(); // behind the last record everything is there
    for (const std::size_t end : ends) {
        EXPECT_NE(reasonFor(Bytes(stream).first(end)), "") << end;
        EXPECT_NE(reasonFor(Bytes(stream).first(end - 1)), "") << end;
        EXPECT_NE(reasonFor(Bytes(stream).first(end + 2)), "") << end;
    }
}

TEST(Xls, DamagedBytesNeitherCrashNorTakeLong)
{
    const std::vector<std::byte> stream = sampleStream();
    std::mt19937 random(13); // NOLINT: the same damage every time
    for (int round = 0; round < 400; ++round) {
        std::vector<std::byte> damaged = stream;
        for (int i = 0; i < 1 + round % 8; ++i)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        reasonFor(damaged);
    }
}

TEST(Xls, ReadsSharedFormulasSeenFromEachCell)
{
    StreamMaker maker;
    maker.sheet();
    // In A2 to A4: the cell above plus $C$1, the row above relative (-1), wrapping from row 1 to the
    // last.
    for (const unsigned row : {0u, 1u, 2u}) {
        maker.bytes(xls::formula,
                    {row, 0, 0, 0, 15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 1, 0, 0, 0, 0});
        if (row == 0)
            maker.bytes(xls::sharedFormula, {0,    0,    2,    0,    0,    0,   0, 3, 11, 0, //
                                             0x4C, 0xFF, 0xFF, 0x00, 0xC0,                   //
                                             0x44, 0x00, 0x00, 0x02, 0x00, 0x03});
    }
    Workbook workbook;
    Warnings warnings;
    readXls(maker.end(), workbook, warnings);
    EXPECT_EQ(workbook.sheet(1).formula({1, 1}), "A65536+$C$1");
    EXPECT_EQ(workbook.sheet(1).formula({1, 2}), "A1+$C$1");
    EXPECT_EQ(workbook.sheet(1).formula({1, 3}), "A2+$C$1");
}

TEST(Xls, FormulasThatCannotBeKeptLeaveTheirLastValue)
{
    const auto nested = [](std::size_t count, const std::vector<unsigned>& token) {
        std::vector<unsigned> tokens{0x1E, 1, 0}; // the number 1
        for (std::size_t i = 0; i < count; ++i)
            tokens.insert(tokens.end(), token.begin(), token.end());
        return StreamMaker().sheet().formula(tokens).end();
    };
    const std::vector<unsigned> sumOfOne{0x42, 1, 4, 0}, brackets{0x15}, minus{0x13};
    const struct {
        const char* what;
        std::vector<std::byte> file;
        const char* reason;
    } cases[] = {
        {"a reference to another file",
         StreamMaker()
             .bytes(xls::externBook, {1, 0, 5, 0, 0, 1, 'a', '.', 'x', 'l', 1, 0, 0, 'S'})
             .bytes(xls::externSheet, {1, 0, 0, 0, 0, 0, 0, 0})
             .sheet()
             .formula({0x5A, 0, 0, 0, 0, 0, 0xC0})
             .end(),
         "引用其他文件"},
        {"sums in sums without end", nested(2000, sumOfOne), "保留了上次算出的值"},
        {"brackets in brackets without end", nested(8000, brackets), "嵌套太深"},
        {"signs before signs without end", nested(8000, minus), "符号太多"},
        {"no token", StreamMaker().sheet().formula({0x1A}).end(), "不认识"},
        {"an operator without operands", StreamMaker().sheet().formula({0x03}).end(), "操作数"},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        Warnings warnings;
        readXls(c.file, workbook, warnings);
        EXPECT_EQ(workbook.sheet(1).value({1, 1}), Value(42.0)) << c.what;
        EXPECT_FALSE(workbook.sheet(1).hasFormula({1, 1})) << c.what;
        EXPECT_THAT(warnings.texts(), testing::ElementsAre(testing::HasSubstr(c.reason))) << c.what;
    }
    Workbook workbook;
    Warnings warnings;
    readXls(nested(20, sumOfOne), workbook, warnings);
    EXPECT_TRUE(workbook.sheet(1).formula({1, 1}).starts_with("SUM(SUM(SUM("));
    EXPECT_THAT(warnings.texts(), testing::IsEmpty());
}

TEST(Xls, RefusalsNameTheReason)
{
    const auto huge = [] {
        StreamMaker maker;
        maker.record(xls::sharedTexts, {0xFFFF, 0x7FFF, 0xFFFF, 0x7FFF});
        return maker.sheet().end();
    };
    const struct {
        const char* what;
        std::vector<std::byte> file;
        const char* reason;
    } cases[] = {
        {"password", StreamMaker().record(xls::filePassword, {1, 2, 3}).sheet().end(), "密码"},
        {"a text table of gigabytes", huge(), "文本表"},
        {"no sheets", StreamMaker().end(), "没有工作表"},
    };
    for (const auto& c : cases)
        EXPECT_THAT(reasonFor(c.file), testing::HasSubstr(c.reason)) << c.what;
}

TEST(Xls, SpansThatEndBeforeTheyBeginAreNone)
{
    // By first and last row, first and last column. One cell is none either.
    StreamMaker maker;
    maker.sheet().record(xls::mergedCells, {4, 3, 1, 0, 5, 0, 5, 3, 1, 6, 6, 6, 6, 0, 1, 7, 8});
    Workbook workbook;
    Warnings warnings;
    readXls(maker.end(), workbook, warnings);
    EXPECT_EQ(workbook.sheet(1).settings().spans, (std::vector<CellRange>{{8, 1, 9, 2}}));
}

TEST(Xls, SpansThatOverlapOthersAreToldAndNone)
{
    StreamMaker maker;
    maker.sheet().record(xls::mergedCells, {3, 0, 0, 0, 5, 2, 3, 0, 1, 3, 4, 1, 2});
    Workbook workbook;
    Warnings warnings;
    readXls(maker.end(), workbook, warnings);
    EXPECT_EQ(workbook.sheet(1).settings().spans, (std::vector<CellRange>{{1, 1, 6, 1}, {1, 3, 2, 4}}));
    EXPECT_THAT(warnings.texts(), testing::ElementsAre(testing::HasSubstr(" B4:C5 ")));
}

TEST(Xls, ShortRecordsAreReadAsFarAsTheyGo)
{
    const struct {
        const char* what;
        StreamMaker maker;
        const char* record;
    } cases[] = {
        {"font", StreamMaker().record(xls::font, {1}).sheet(), "0x0031"},
        {"cell format", StreamMaker().record(xls::extendedFormat, {0, 0, 0}).sheet(), "0x00E0"},
        {"name", StreamMaker().record(xls::name, {0, 0x500}).sheet(), "0x0018"},
        {"cell", StreamMaker().sheet().record(xls::number, {1, 1, 15}), "0x0203"},
        {"list", StreamMaker().sheet().record(xls::inputCheck, {0x83, 0}), "0x01BE"},
        {"merged cells", StreamMaker().sheet().record(xls::mergedCells, {1000, 1}), "0x00E5"},
    };
    for (auto c : cases) {
        c.maker.record(xls::rk, {4, 1, 15, 0, 0x4024}).record(xls::rk, {4}); // 10 in B5
        Workbook workbook;
        Warnings warnings;
        readXls(c.maker.end(), workbook, warnings);
        EXPECT_EQ(workbook.sheet(1).value({2, 5}), Value(10.0)) << c.what;
        EXPECT_THAT(warnings.texts(),
                    testing::UnorderedElementsAre(testing::HasSubstr(c.record), testing::HasSubstr("0x027E")))
            << c.what;
    }
}

/// Four bytes of each record in turn give way to an empty one that nobody knows, so that all others stay
/// where they are. Nothing but the head of the file and its list of sheets must be whole.
TEST(Xls, AnyRecordMayBeShort)
{
    const std::vector<std::byte> stream = sampleStream();
    constexpr std::size_t head = 4;
    std::size_t shortened = 0;
    for (std::size_t at = 0; at + head <= stream.size();) {
        const auto id = numberAt<std::uint16_t>(stream, at), size = numberAt<std::uint16_t>(stream, at + 2);
        const std::size_t end = at + head + size;
        if (size >= head && id != xls::beginOfFile && id != xls::boundSheet) {
            std::vector<std::byte> cut = stream;
            putNumber(cut, at + 2, static_cast<std::uint16_t>(size - head));
            putNumber(cut, end - head, std::uint32_t(0x0000'4444));
            EXPECT_EQ(reasonFor(cut), "") << std::hex << id << " at " << at;
            ++shortened;
        }
        at = end;
    }
    EXPECT_GT(shortened, 100U);
}

TEST(Xls, ColumnsOfOneSizeComeBack)
{
    Workbook workbook, found;
    workbook.sheet(1).changeSettings([](SheetSettings& settings) {
        for (const int column : {3, 4, 5})
            settings.columns.hidden[column] = true;
    });
    Warnings warnings;
    readXls(writeXls(workbook, warnings), found, warnings);
    EXPECT_EQ(found.sheet(1).settings().columns.hidden, workbook.sheet(1).settings().columns.hidden);
}

TEST(Xls, BlanksInFormulasComeBack)
{
    const char* const formulas[] = {"1+   A2", "SUM(   A2,  B2)", "-  A2", "(  A2)*2", "IF(A2>   1,  2,3)"};
    Workbook workbook, found;
    for (int row = 1; const char* formula : formulas)
        ASSERT_FALSE(workbook.sheet(1).setFormula({4, row++}, formula)) << formula;
    Warnings warnings;
    readXls(writeXls(workbook, warnings), found, warnings);
    for (int row = 1; const char* formula : formulas)
        EXPECT_EQ(found.sheet(1).formula({4, row++}), formula);
}

/// Where sheets end at IV65536 a name may look like a cell of ours.
TEST(Xls, NamesThatAreCellsHereComeAndGo)
{
    Workbook workbook, found;
    demand(workbook.defineName("_NOV8", "Sheet1!$A$1"));
    demand(workbook.defineName("_IV8", "Sheet1!$A$1")); // a cell there too
    workbook.sheet(1).setNumber({1, 1}, 21);
    demand(workbook.sheet(1).setFormula({2, 1}, "_NOV8*2+_IV8"));
    workbook.recalculate();
    Warnings warnings;
    const std::vector<std::byte> file = writeXls(workbook, warnings);
    const CompoundFile compound(file);
    const StreamBytes stream = *compound.stream("workbook");
    std::vector<std::string> names;
    for (RecordStream records(stream.bytes()); records.next() && records.record().id != xls::endOfFile;) {
        if (records.record().id == xls::name)
            names.push_back(readDefinedName(records.record()).name);
    }
    EXPECT_THAT(names, testing::ElementsAre("NOV8", "_IV8"));
    readXls(file, found, warnings);
    EXPECT_EQ(found.sheet(1).formula({2, 1}), "_NOV8*2+_IV8");
    found.recalculate();
    EXPECT_EQ(found.sheet(1).value({2, 1}), Value(63.0));
    EXPECT_THAT(warnings.texts(), testing::IsEmpty());
}

TEST(Xls, ReadsTextsAndValuesOfOlderFiles)
{
    RecordWriter writer;
    const auto record = [&writer](std::uint16_t id, std::initializer_list<unsigned> bytes) {
        writer.begin(id);
        for (const unsigned byte : bytes)
            writer.put8(byte);
        writer.end();
    };
    record(xls::beginOfFile, {0, 5, 5, 0, 0, 0, 0, 0});
    record(xls::codePage, {0xA8, 0x03}); // 936
    record(xls::font,
           {200, 0, 0, 0, 0xFF, 0x7F, 0xBC, 2, 0, 0, 0, 0, 0, 0, 4, 0xCB, 0xCE, 0xCC, 0xE5}); // bold 宋体
    record(xls::extendedFormat, {0, 0, 2, 0, 1, 0, 0x20, 0, 0xC0, 0x20, 0, 0, 0, 0, 0, 0});
    const std::size_t place = writer.size() + 4;
    record(xls::boundSheet, {0, 0, 0, 0, 0, 0, 2, 0xB1, 0xED}); // 表
    record(xls::endOfFile, {});
    writer.patch32(place, static_cast<std::uint32_t>(writer.size()));
    record(xls::beginOfFile, {0, 5, 0x10, 0, 0, 0, 0, 0});
    record(xls::label, {0, 0, 0, 0, 0, 0, 4, 0, 0xBF, 0xC6, 0xC4, 0xBF}); // 科目
    record(xls::label, {1, 0, 0, 0, 0, 0, 40, 0, 0xBF, 0xC6});            // 38 bytes are missing
    record(xls::rk, {0, 0, 1, 0, 0, 0, 0x2B, 0x23, 0, 0});                // 22.5 as hundredths: 2250
    record(xls::endOfFile, {});
    Workbook workbook;
    Warnings warnings;
    readXls(writer.take(), workbook, warnings);
    const Sheet& sheet = workbook.sheet(1);
    EXPECT_EQ(sheet.name(), "表");
    EXPECT_EQ(sheet.displayText({1, 1}), "科目");
    EXPECT_EQ(sheet.style({1, 1}).font.family.view(), "宋体");
    EXPECT_TRUE(sheet.style({1, 1}).font.bold);
    EXPECT_EQ(sheet.displayText({2, 1}), "22.50");
    EXPECT_THAT(warnings.texts(), testing::ElementsAre(testing::HasSubstr("0x0204")));
}

} // namespace
} // namespace spreadsheet
