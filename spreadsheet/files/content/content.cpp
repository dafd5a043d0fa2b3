#include "spreadsheet/files/content/content.h"

#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/files/content/content_versions.h"
#include "spreadsheet/files/content/stored_sheets.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/values/characters.h"
#include "spreadsheet/workbook/sheet_name.h"
#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

namespace {

/// Tables hang below each other three deep; styles and fonts are the only ones that may be many.
constexpr flatbuffers::uoffset_t maxDepth = 8;
constexpr flatbuffers::uoffset_t maxTables = 8'000'000;

/// Bytes at first; the builder doubles them. Large sheets would be copied many times from less.
constexpr std::size_t firstBytes = 1 << 16;

std::size_t expectedBytes(const Workbook& workbook)
{
    std::size_t cells = 0;
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet) {
        for (int column = 1; column <= workbook.sheet(sheet).storedColumns(); ++column) {
            for (const Column::Slot& slot : workbook.sheet(sheet).column(column)->slots())
                cells += static_cast<std::size_t>(slot.block->count());
        }
    }
    return firstBytes + cells * (sizeof(Payload) + sizeof(ValueKind)) * 17 / 16;
}

flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<stored::Name>>>
writeNames(flatbuffers::FlatBufferBuilder& builder, const Workbook& workbook)
{
    std::vector<flatbuffers::Offset<stored::Name>> names;
    for (int number = 0; number < workbook.names().size(); ++number) {
        const NameTable::Entry& entry = workbook.names()[number];
        if (entry.formula == 0)
            continue; // mentioned, not defined
        names.push_back(
            stored::CreateName(builder, builder.CreateString(entry.name),
                               builder.CreateString(workbook.formulas().text(entry.formula, {1, 1})),
                               static_cast<std::uint32_t>(workbook.sheetIndexOfId(entry.sheet))));
    }
    return builder.CreateVector(names);
}

void writeWorkbook(flatbuffers::FlatBufferBuilder& builder, const Workbook& workbook)
{
    TextWriter texts;
    StyleWriter styles(workbook.styles(), texts);
    FormulaWriter formulas(workbook.formulas());
    std::vector<flatbuffers::Offset<stored::Sheet>> sheets;
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet)
        sheets.push_back(writeSheet(builder, workbook.sheet(sheet), {texts, styles, formulas}));
    const auto writtenSheets = builder.CreateVector(sheets);
    const auto names = writeNames(builder, workbook);
    styles.finish(builder);
    formulas.finish(builder);
    texts.finish(builder);
    stored::FinishContentBuffer(
        builder,
        stored::CreateContent(builder, texts.bytes, texts.ends, texts.counted, formulas.bytes,
                              formulas.formulas, styles.fonts, styles.styles, names, writtenSheets,
                              static_cast<std::uint32_t>(workbook.activeSheet()), workbook.countsFrom1904()));
}

/// Names of earlier versions were counted in bytes, so short ones of ASCII letters may be this long. They
/// stay: formulas and other reports know the sheets by them.
constexpr std::size_t maxStoredNameUnits = 93;

Refusal addStoredSheet(Workbook& workbook, int number, const std::string& name)
{
    if (unitCount(name) <= maxSheetNameUnits)
        return number == 1 ? workbook.renameSheet(1, name) : workbook.addSheet(name);
    Refusal problem = sheetNameProblem(name, maxStoredNameUnits);
    if (!problem && workbook.sheetIndex(name) != 0)
        problem = "有重名";
    if (!problem)
        problem = workbook.setSheetCount(number);
    if (!problem)
        workbook.sheet(number).changeSettings([&](SheetSettings& settings) { settings.name = name; });
    return problem;
}

void readSheetNames(const stored::Content& content, Workbook& workbook)
{
    const auto count = content.sheets()->size();
    requireContent(count >= 1 && count <= maxSheets, "表的个数不对");
    for (flatbuffers::uoffset_t i = 0; i < count; ++i) {
        const std::string name = content.sheets()->Get(i)->name()->str();
        if (const Refusal problem = addStoredSheet(workbook, static_cast<int>(i) + 1, name))
            refuseContent("表名不对(" + problem.reason() + ")");
    }
}

void readNames(const stored::Content& content, Workbook& workbook, std::vector<std::string>& unreadable)
{
    if (!content.names())
        return;
    for (const stored::Name* name : *content.names()) {
        const std::uint32_t sheet = name->sheet();
        requireContent(sheet <= static_cast<std::uint32_t>(workbook.sheetCount()), "名称的表不对");
        const int id = sheet == 0 ? 0 : workbook.sheet(static_cast<int>(sheet)).id();
        if (const auto problem = workbook.defineName(name->name()->str(), name->formula()->str(), id))
            unreadable.push_back("名称“" + name->name()->str() + "”无法识别(" + problem.reason() + ")");
    }
}

void readWorkbook(const stored::Content& content, Workbook& workbook, std::vector<std::string>& unreadable)
{
    workbook.setCountsFrom1904(content.counts_from_1904());
    readSheetNames(content, workbook);
    const StoredTexts texts(content);
    const auto styles = readStyles(content, texts, workbook.styles());
    const auto formulas = readFormulas(content, workbook, unreadable);
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet)
        readSheet(*content.sheets()->Get(static_cast<flatbuffers::uoffset_t>(sheet - 1)),
                  workbook.sheet(sheet), {texts, styles, formulas}, workbook.formulas());
    readNames(content, workbook, unreadable);
    requireContent(content.active_sheet() >= 1 &&
                       content.active_sheet() <= static_cast<std::uint32_t>(workbook.sheetCount()),
                   "当前表不对");
    workbook.setActiveSheet(static_cast<int>(content.active_sheet()));
}

} // namespace

std::vector<std::byte> saveContent(const Workbook& workbook)
{
    flatbuffers::FlatBufferBuilder builder(std::min(expectedBytes(workbook), maxExpandedContent));
    writeWorkbook(builder, workbook);
    return packContent(std::as_bytes(std::span(builder.GetBufferPointer(), builder.GetSize())),
                       neededVersion(*stored::GetContent(builder.GetBufferPointer())));
}

std::vector<std::string> loadContent(Workbook& workbook, std::span<const std::byte> content)
{
    const ExpandedContent expanded = unpackContent(content);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(expanded.bytes.get());
    flatbuffers::Verifier verifier(bytes, expanded.size, maxDepth, maxTables);
    requireContent(stored::VerifyContentBuffer(verifier), "数据结构不对");
    Workbook fresh;
    std::vector<std::string> unreadable;
    readWorkbook(*stored::GetContent(bytes), fresh, unreadable);
    workbook.replaceContent(std::move(fresh));
    return unreadable;
}

} // namespace spreadsheet
