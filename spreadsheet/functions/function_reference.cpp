#include "spreadsheet/functions/function_reference.h"

#include "spreadsheet/functions/FunctionTable.h"

namespace spreadsheet {

namespace {

std::string tableRow(const FunctionDescriptor& function)
{
    std::string row = "| `" + std::string(function.name) + "(";
    row += function.arguments;
    row += ")` | ";
    row += function.help;
    return row + " |\n";
}

} // namespace

std::string functionReference()
{
    const auto all = allFunctions();
    std::string text = "# 函数表\n\n共 " + std::to_string(all.size()) +
                       " 个函数，按类别和名称排列。方括号中的参数可以省略，“…”表示可以重复。\n"
                       "本文件由命令 `selfreport functions` 写出，请勿手工修改。\n";
    for (int code = 0; code <= static_cast<int>(FunctionFamily::engineering); ++code) {
        const auto family = static_cast<FunctionFamily>(code);
        text += "\n## " + std::string(familyName(family)) + "\n\n| 函数 | 说明 |\n|---|---|\n";
        for (const FunctionDescriptor* function : all) {
            if (function->family == family)
                text += tableRow(*function);
        }
    }
    return text;
}

} // namespace spreadsheet
