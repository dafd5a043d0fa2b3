#include "spreadsheet/files/xls/xls_write.h"

#include "spreadsheet/files/exchange/SharedTexts.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/ole2/CompoundFile.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xls/defined_names.h"
#include "spreadsheet/files/xls/records.h"
#include "spreadsheet/files/xls/SheetWriter.h"
#include "spreadsheet/files/xls/tokens.h"
#include "spreadsheet/files/xls/write_notes.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/workbook/sheet_name.h"

#include <algorithm>

namespace spreadsheet {

// The first records tell where each sheet begins and which fonts, looks and texts there are, but only
// writing the sheets shows that. So the sheets are written first, into a stream of their own, and joined
// behind the rest.

namespace {

void requireSize(const Sheet& sheet)
{
    int lastRow = sheet.lastDataRow(), lastColumn = sheet.lastDataColumn();
    for (const CellRange& span : sheet.settings().spans) {
        lastRow = std::max(lastRow, span.bottom);
        lastColumn = std::max(lastColumn, span.right);
    }
    if (lastRow > xls::maxRows)
        throw ContentError("表“" + sheet.name() + "”用到第 " + std::to_string(lastRow) +
                           " 行,.xls 最多 65,536 行,请引出为 .xlsx");
    if (lastColumn > xls::maxColumns)
        throw ContentError("表“" + sheet.name() + "”用到第 " + columnName(lastColumn) +
                           " 列,.xls 最多 256 列 (IV),请引出为 .xlsx");
}

void writeTexts(const SharedTexts& texts, RecordWriter& writer)
{
    writer.begin(xls::sharedTexts);
    writer.put32(texts.uses());
    writer.put32(static_cast<std::uint32_t>(texts.texts().size()));
    for (const std::string_view text : texts.texts()) {
        const std::u16string units = utf16Of(text);
        writer.putContinuedText(std::u16string_view(units).substr(0, mostTextCharacters));
    }
    writer.end();
}

class WorkbookWriter {
public:
    WorkbookWriter(const Workbook& workbook, Warnings& warnings)
        : m_parts(workbook, warnings)
    {
    }

    std::vector<std::byte> write()
    {
        std::vector<std::vector<std::byte>> sheets;
        for (int sheet = 1; sheet <= m_parts.workbook.sheetCount(); ++sheet) {
            RecordWriter writer;
            SheetWriter(m_parts, sheet, writer).write();
            sheets.push_back(writer.take());
        }
        globals();
        for (std::size_t sheet = 0; sheet < sheets.size(); ++sheet) {
            m_writer.patch32(m_offsets[sheet], static_cast<std::uint32_t>(m_writer.size()));
            m_writer.putBytes(sheets[sheet]);
            sheets[sheet] = {};
        }
        if (m_parts.texts.hasLonger())
            m_parts.warnings.add(longTextWarning);
        return m_writer.take();
    }

private:
    void globals()
    {
        begin();
        m_parts.styles.write(m_writer);
        boundSheets();
        m_writer.begin(xls::country);
        m_writer.put16(86); // of the program and of the system: China
        m_writer.put16(86);
        m_writer.end();
        RecordWriter names;
        definedNames(names); // may mention further sheets
        m_parts.links.write(m_writer);
        m_writer.putBytes(names.take());
        computedBy();
        std::vector<std::size_t> notes;
        for (int sheet = 1; sheet <= m_parts.workbook.sheetCount(); ++sheet)
            notes.push_back(m_parts.workbook.sheet(sheet).settings().notes.size());
        writeDrawingGroup(notes, m_writer);
        writeTexts(m_parts.texts, m_writer);
        m_writer.begin(xls::endOfFile);
        m_writer.end();
    }

    /// A program that thinks itself newer than the last to compute would compute anew at once, and know
    /// nothing of the report functions.
    void computedBy()
    {
        constexpr std::uint32_t engine = 191'029;
        m_writer.begin(xls::recalculationId);
        m_writer.put16(xls::recalculationId);
        m_writer.put16(0);
        m_writer.put32(engine);
        m_writer.end();
    }

    void begin()
    {
        m_writer.begin(xls::beginOfFile);
        m_writer.put16(xls::version8);
        m_writer.put16(xls::globals);
        m_writer.put16(0x0DBB); // a build and its year, which readers ask for
        m_writer.put16(0x07CC);
        m_writer.put32(0);
        m_writer.put32(6);
        m_writer.end();
        m_writer.record16(xls::codePage, 1200);
        m_writer.begin(xls::window1);
        for (const unsigned number : {0u, 0u, 20000u, 12000u, 0x38u}) // place and size in twips, flags
            m_writer.put16(number);
        m_writer.put16(static_cast<unsigned>(m_parts.workbook.activeSheet() - 1));
        m_writer.put16(0);
        m_writer.put16(1);
        m_writer.put16(600);
        m_writer.end();
        m_writer.record16(xls::dateMode, m_parts.workbook.countsFrom1904());
    }

    void boundSheets()
    {
        std::vector<std::string> taken;
        for (int sheet = 1; sheet <= m_parts.workbook.sheetCount(); ++sheet) {
            const Sheet& source = m_parts.workbook.sheet(sheet);
            std::string name = shortenedSheetName(source.name());
            for (int i = 2; std::ranges::find(taken, name) != taken.end(); ++i) {
                const std::string suffix = " " + std::to_string(i);
                name = shortenedSheetName(name, maxSheetNameUnits - suffix.size()) + suffix;
            }
            taken.push_back(name);
            if (name != source.name())
                m_parts.warnings.add("表名“" + source.name() + "”太长,改为“" + name + "”");
            m_writer.begin(xls::boundSheet);
            m_offsets.push_back(m_writer.size());
            m_writer.put32(0);
            m_writer.put8(!source.settings().isHidden ? 0 : source.settings().isVeryHidden ? 2 : 1);
            m_writer.put8(0);
            m_writer.putShortText(name);
            m_writer.end();
        }
    }

    void definedNames(RecordWriter& writer)
    {
        const Workbook& workbook = m_parts.workbook;
        for (const int number : m_parts.links.names()) {
            const NameTable::Entry& entry = workbook.names()[number];
            const XlsFormula& formula = m_parts.formulas.formula(entry.formula, {1, 1}, true);
            std::vector<std::byte> tokens;
            std::string problem = formula.problem;
            if (problem.empty() && !m_parts.formulas.tokensAt(formula, entry.formula, {1, 1}, tokens))
                problem = "引用超出 .xls 的行列范围";
            if (!problem.empty()) { // its number is taken, so it must stand there
                m_parts.warnings.add("名称“" + entry.name + "”写为 #REF!: " + problem);
                tokens = {std::byte(xls::tokenError), std::byte(0x17)};
            }
            nameRecord(writer, utf16Of(xlsName(entry.name)), 0,
                       static_cast<unsigned>(workbook.sheetIndexOfId(entry.sheet)), tokens,
                       problem.empty() ? formula.extra : std::vector<std::byte>());
        }
        constexpr unsigned isHiddenFunction = 0x0F;
        const std::vector<std::byte> unknownName{std::byte(xls::tokenError), std::byte(0x1D)};
        for (const std::string& function : m_parts.links.laterFunctions())
            nameRecord(writer, utf16Of(function), isHiddenFunction, 0, unknownName, {});
        for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet)
            printNames(writer, sheet);
    }

    void printNames(RecordWriter& writer, int sheet)
    {
        const PrintSettings& print = m_parts.workbook.sheet(sheet).settings().print;
        constexpr char16_t area = 6, titles = 7;
        std::vector<CellRange> repeated;
        if (print.titleLeft >= 1 && print.titleRight >= print.titleLeft)
            repeated.push_back({print.titleLeft, 1, print.titleRight, maxRows});
        if (print.titleTop >= 1 && print.titleBottom >= print.titleTop)
            repeated.push_back({1, print.titleTop, maxColumns, print.titleBottom});
        builtInName(writer, area, sheet, print.area);
        builtInName(writer, titles, sheet, repeated);
    }

    /// Ranges of one sheet under a name of the format's own; what lies beyond its sheets is cut off.
    void builtInName(RecordWriter& writer, char16_t name, int sheet, const std::vector<CellRange>& ranges)
    {
        const int id = m_parts.workbook.sheet(sheet).id();
        constexpr std::byte unite{0x10}; // the operator ","
        std::vector<std::byte> tokens;
        int written = 0;
        for (const CellRange& range : ranges) {
            if (range.left > xls::maxColumns || range.top > xls::maxRows)
                continue;
            tokens.push_back(std::byte(xls::tokenArea3d));
            for (const int number :
                 {m_parts.links.sheets(id, id), range.top - 1, std::min(range.bottom, xls::maxRows) - 1,
                  range.left - 1, std::min(range.right, xls::maxColumns) - 1})
                appendNumber(tokens, static_cast<std::uint16_t>(number));
            if (++written > 1)
                tokens.push_back(unite);
        }
        if (written > 1) {
            std::vector<std::byte> head{std::byte(xls::tokenMemoryFunction)};
            appendNumber(head, static_cast<std::uint16_t>(tokens.size()));
            tokens.insert(tokens.begin(), head.begin(), head.end());
        }
        constexpr unsigned isBuiltIn = 0x20;
        if (written > 0)
            nameRecord(writer, std::u16string(1, name), isBuiltIn, static_cast<unsigned>(sheet), tokens, {});
    }

    static void nameRecord(RecordWriter& writer, const std::u16string& name, unsigned flags, unsigned sheet,
                           Bytes tokens, Bytes extra)
    {
        writer.begin(xls::name);
        writer.put16(flags);
        writer.put8(0);
        writer.put8(static_cast<unsigned>(name.size()));
        writer.put16(static_cast<unsigned>(tokens.size()));
        writer.put16(0);
        writer.put16(sheet);
        writer.putZeros(4);
        writer.putCharacters(name);
        writer.putBytes(tokens);
        writer.putBytes(extra);
        writer.end();
    }

    XlsParts m_parts;
    RecordWriter m_writer;
    std::vector<std::size_t> m_offsets; ///< where each sheet's place is named
};

} // namespace

std::vector<std::byte> writeXls(const Workbook& workbook, Warnings& warnings)
{
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet)
        requireSize(workbook.sheet(sheet));
    return compoundFile("Workbook", WorkbookWriter(workbook, warnings).write());
}

} // namespace spreadsheet
