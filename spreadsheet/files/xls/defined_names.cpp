#include "spreadsheet/files/xls/defined_names.h"

#include "spreadsheet/files/exchange/DistinctNames.h"
#include "spreadsheet/files/exchange/print_names.h"
#include "spreadsheet/files/xls/FormulaReader.h"
#include "spreadsheet/files/xls/records.h"

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

std::string xlsName(const std::string& ours)
{
    const auto cell = ours.starts_with('_') ? parseCellName(ours.substr(1)) : std::nullopt;
    const bool isName = cell && (cell->column > xls::maxColumns || cell->row > xls::maxRows);
    return isName ? ours.substr(1) : ours;
}

std::string nameOfXls(const std::string& name)
{
    return parseCellName(name) ? "_" + name : name;
}

void takeNames(std::vector<DefinedName>& names, XlsLinks& links, Warnings& warnings)
{
    DistinctNames taken;
    for (const bool isLocal : {false, true}) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            DefinedName& name = names[i];
            if ((name.tab != 0) != isLocal || name.builtIn != DefinedName::none || name.isMacro ||
                name.name.empty())
                continue;
            name.name = taken.taken(nameOfXls(name.name), name.tab, warnings);
            links.setName(i + 1, name.name);
        }
    }
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
        const auto text = reader.read(name.tokens, name.extra, {1, 1});
        std::string problem = reader.problem();
        if (text && ++defined <= mostNames) {
            const std::string* tab =
                name.tab > 0 ? links.tab(static_cast<std::size_t>(name.tab) - 1) : nullptr;
            const int sheet = tab ? workbook.sheet(workbook.sheetIndex(*tab)).id() : 0;
            problem = workbook.defineName(name.name, *text, sheet).reason();
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
