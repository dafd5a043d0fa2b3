#include "spreadsheet/workbook/sheet_name.h"

#include "spreadsheet/values/characters.h"

namespace spreadsheet {

Refusal sheetNameProblem(std::string_view name, std::size_t units)
{
    if (name.empty())
        return "表名不能为空";
    if (unitCount(name) > units)
        return "表名太长";
    if (name.find_first_of("[]:*?/\\") != name.npos || name.front() == '\'' || name.back() == '\'')
        return "表名不能包含 [ ] : * ? / \\,也不能以单引号开头或结尾";
    return {};
}

std::string shortenedSheetName(std::string_view name, std::size_t units)
{
    return std::string(name.substr(0, byteOfUnit(name, units)));
}

} // namespace spreadsheet
