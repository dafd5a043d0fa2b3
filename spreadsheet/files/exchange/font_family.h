#pragma once
#include <string_view>

namespace spreadsheet {

/// The family that workbook files name for a font: ours may leave it to the workbook.
constexpr std::string_view fileFamily(std::string_view family)
{
    return family.empty() ? "宋体" : family;
}

/// True for a font with Chinese characters, also under its English name.
constexpr bool isChineseFont(std::string_view family)
{
    for (const char c : family) {
        if (static_cast<unsigned char>(c) >= 0x80)
            return true;
    }
    for (const std::string_view known :
         {"SimSun", "NSimSun", "SimHei", "FangSong", "KaiTi", "DengXian", "Microsoft YaHei", "MingLiU"}) {
        if (family == known)
            return true;
    }
    return false;
}

} // namespace spreadsheet
