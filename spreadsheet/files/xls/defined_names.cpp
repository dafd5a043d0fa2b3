#include "spreadsheet/files/xls/defined_names.h"

#include "spreadsheet/files/exchange/print_names.h"
#include "spreadsheet/files/xls/FormulaReader.h"
#include "spreadsheet/formula/NameTable.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::size_t head = 14;

} // namespace

DefinedName readDefinedName(const XlsRecord& record)
{
    constexpr std::uint16_t isFunction = 0x02, isBuiltIn = 0x20;
    const std::uint16_t flags = record.wordAt(0);
    const std::size_t characters = record.byteAt(3), tokens = record.wordAt(4);
    RecordCursor cursor(record);
    cursor.skip(head);
    DefinedName name;
    name.name = cursor.text(characters);
    if ((flags & isBuiltIn) && !name.name.empty()) {
        name.builtIn = static_cast<unsigned char>(name.name.front());
        name.name = "_xlnm." + std::to_string(name.builtIn);
    }
    name.tab = record.wordAt(8);
    name.isMacro = flags & isFunction;
    const std::size_t start = record.size() - cursor.left();
    name.tokens = record.bytesAt(start, tokens);
    name.extra = record.from(start + tokens);
    return name;
}

void defineNames(const std::vector<DefinedName>& names, const XlsLinks& links, Workbook& workbook,
                 Warnings& warnings)
{
    constexpr std::size_t mostNames = 4096; // each definition looks for circles among all
    FormulaReader reader(links);
    std::size_t defined = 0;
    for (const DefinedName& name : names) {
        if (name.builtIn != DefinedName::none || name.isMacro || name.tokens.empty())
            continue;
        std::string problem = "只在一张表内有效的同名名称";
        const int number = workbook.names().find(name.name);
        if (number < 0 || workbook.names()[number].formula == 0) {
            const auto text = reader.read(name.tokens, name.extra, {1, 1});
            problem = reader.problem();
            if (text && ++defined <= mostNames) {
                problem = workbook.defineName(name.name, *text).reason();
            }
        }
        if (!problem.empty())
            warnings.add("名称“" + name.name + "”没有引入: " + problem);
    }
}

void applyPrintNames(const std::vector<DefinedName>& names, const XlsLinks& links, Workbook& workbook,
                     Warnings& warnings)
{
    FormulaReader reader(links);
    for (const DefinedName& name : names) {
        const std::string* tab = name.tab > 0 ? links.tab(static_cast<std::size_t>(name.tab) - 1) : nullptr;
        const bool isArea = name.builtIn == DefinedName::printArea;
        if ((!isArea && name.builtIn != DefinedName::printTitles) || !tab)
            continue;
        const std::string text = reader.read(name.tokens, name.extra, {1, 1}).value_or("");
        bool applied = false;
        workbook.sheet(workbook.sheetIndex(*tab)).changeSettings([&](SheetSettings& settings) {
            applied = isArea ? applyPrintArea(text, settings) : applyPrintTitles(text, settings);
        });
        if (!applied && isArea)
            warnings.add("打印区域没有引入,按已用区域打印");
    }
}

} // namespace spreadsheet
