#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/xls/RecordStream.h"

namespace spreadsheet {

/// Counts a record of a sheet that is left out and stands for something that users would miss.
inline void countLostRecord(std::uint16_t id, Warnings& warnings)
{
    constexpr struct {
        std::uint16_t id;
        std::string_view loss;
    } losses[] = {
        {0x01B1, "{} 条条件格式没有引入"},
        {0x01B8, "{} 处超链接没有引入,文字保留"},
        {0x009D, "{} 处自动筛选没有引入"},
        {0x00AF, "{} 个方案没有引入"},
        {0x00B0, "{} 个数据透视表只引入了单元格的值"},
        {0x0862, "{} 张表的标签颜色没有引入"},
    };
    for (const auto& [lost, loss] : losses) {
        if (lost == id)
            warnings.count(loss);
    }
}

/// Counts an OBJ record of something that is drawn on a sheet and no note.
inline void countLostObject(const XlsRecord& record, Warnings& warnings)
{
    constexpr std::size_t kindPlace = 4;
    constexpr std::uint16_t picture = 0x08, button = 0x07, lastControl = 0x13, firstControl = 0x0B;
    constexpr std::uint16_t group = 0x00, polygon = 0x09, shape = 0x1E, text = 0x06, chart = 0x05;
    if (record.size() < kindPlace + 2)
        return;
    const std::uint16_t kind = record.wordAt(kindPlace);
    if (kind == picture)
        warnings.count("{} 张图片没有引入");
    else if (kind == button || (kind >= firstControl && kind <= lastControl))
        warnings.count("{} 个控件没有引入");
    else if (kind != chart && (kind <= text || kind == polygon || kind == shape) && kind != group)
        warnings.count("{} 个形状没有引入");
}

} // namespace spreadsheet
