#include "spreadsheet/files/xlsx/xlsx_defined_names.h"

#include "spreadsheet/files/exchange/DistinctNames.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/files/xlsx/XlsxNames.h"
#include "spreadsheet/files/xlsx/xml.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <vector>

namespace spreadsheet {

namespace {

constexpr std::size_t mostNames = 4096; // each definition looks for circles among all

struct FileName {
    std::string ours, formula;
    int sheet; ///< the only one that it holds for; 0: all
};

/// Print areas and the like, and what macros are called, are no names of ours.
bool isOurs(pugi::xml_node node, Warnings& warnings)
{
    const std::string_view name = attributeNamed(node, "name").value();
    const bool isMacro =
        isTrue(attributeNamed(node, "function")) || isTrue(attributeNamed(node, "vbProcedure"));
    if (isMacro)
        warnings.count("{} 个宏的名称没有引入");
    return !name.starts_with("_xlnm.") && !isMacro;
}

} // namespace

void readXlsxTable(pugi::xml_node root, const std::string& sheet, XlsxNames& names, Warnings& warnings)
{
    const auto range = parseRangeName(attributeNamed(root, "ref").value());
    if (!range)
        return;
    const pugi::xml_attribute shown = attributeNamed(root, "displayName");
    XlsxTable table;
    table.name = textOf(shown ? shown : attributeNamed(root, "name"));
    table.sheet = sheet;
    table.range = *range;
    table.headerRows = attributeNamed(root, "headerRowCount").as_int(1);
    table.totalsRows = attributeNamed(root, "totalsRowCount").as_int(0);
    eachChild(childNamed(root, "tableColumns"), "tableColumn",
              [&](pugi::xml_node node) { table.columns.push_back(textOf(attributeNamed(node, "name"))); });
    warnings.add("表格“" + table.name + "”引入为普通区域,公式中对它的引用改为区域");
    names.addTable(std::move(table));
}

void defineXlsxNames(pugi::xml_node list, std::span<const int> sheets, Workbook& workbook, XlsxNames& names,
                     Warnings& warnings)
{
    const auto nameOfSheet = [&](int sheet) {
        return sheet == 0 ? std::string() : workbook.sheet(sheet).name();
    };
    DistinctNames taken;
    std::vector<FileName> all;
    for (const bool isLocal : {false, true}) { // those of all sheets first: they keep their names
        eachChild(list, "definedName", [&](pugi::xml_node node) {
            const std::size_t tab = attributeNamed(node, "localSheetId").as_uint(maxSheets);
            if ((tab < sheets.size()) != isLocal || !isOurs(node, warnings))
                return;
            const int sheet = isLocal ? sheets[tab] : 0;
            const std::string name = textOf(attributeNamed(node, "name"));
            all.push_back({taken.taken(name, sheet, warnings), textOf(node), sheet});
            names.addName(nameOfSheet(sheet), name, all.back().ours);
        });
    }
    all.resize(std::min(all.size(), mostNames));
    for (const FileName& name : all) {
        const int id = name.sheet == 0 ? 0 : workbook.sheet(name.sheet).id();
        const std::string formula = names.plain(plainFormula(name.formula), nameOfSheet(name.sheet), {1, 1});
        if (const Refusal problem = workbook.defineName(name.ours, formula, id))
            warnings.add("名称“" + name.ours + "”没有引入: " + problem.reason());
    }
}

} // namespace spreadsheet
