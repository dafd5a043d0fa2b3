#include "spreadsheet/formula/FunctionDescriptor.h"

#include <array>

namespace spreadsheet {

char FunctionDescriptor::kind(std::size_t argument) const
{
    if (argument < kinds.size())
        return kinds[argument];
    if (kinds.empty())
        return 'v'; // takes none; the compiler asks before it counts them
    const auto step = static_cast<std::size_t>(repeat);
    return kinds[kinds.size() - step + (argument - kinds.size()) % step];
}

std::string_view familyName(FunctionFamily family)
{
    static constexpr std::array<std::string_view, 10> names{
        "财务", "日期与时间", "数学与三角", "统计", "查找与引用", "数据库", "文本", "逻辑", "信息", "工程"};
    return names[static_cast<std::size_t>(family)];
}

} // namespace spreadsheet
