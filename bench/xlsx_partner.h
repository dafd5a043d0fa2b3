#pragma once
#include "spreadsheet/workbook/Workbook.h"

#include <filesystem>
#include <map>
#include <string>
#include <xlsxwriter.h>

/// The first sheet's cells, with their looks, written by another library.
inline void writeByPartner(const spreadsheet::Workbook& workbook, const std::filesystem::path& file)
{
    using namespace spreadsheet;
    lxw_workbook* const book = workbook_new(file.c_str());
    lxw_worksheet* const target = workbook_add_worksheet(book, "Sheet1");
    std::map<std::uint32_t, lxw_format*> formats;
    const auto formatOf = [&](std::uint32_t number) {
        lxw_format*& format = formats[number];
        if (!format) {
            const CellStyle& style = workbook.styles()[number];
            format = workbook_add_format(book);
            format_set_font_name(format, std::string(style.font.family.view()).c_str());
            format_set_font_size(format, static_cast<double>(style.font.points));
            if (style.font.bold)
                format_set_bold(format);
            if (style.background != automaticColour)
                format_set_bg_color(format, style.background);
            format_set_left(format, LXW_BORDER_HAIR);
            format_set_bottom(format, LXW_BORDER_HAIR);
            if (!style.numberFormat.empty())
                format_set_num_format(format, std::string(style.numberFormat.view()).c_str());
        }
        return format;
    };
    const Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= sheet.lastDataRow(); ++row) {
        for (int column = 1; column <= sheet.lastDataColumn(); ++column) {
            const CellAddress at{column, row};
            lxw_format* const format = formatOf(sheet.styleNumber(at));
            const auto r = static_cast<lxw_row_t>(row - 1);
            const auto c = static_cast<lxw_col_t>(column - 1);
            const Value value = sheet.value(at);
            if (sheet.hasFormula(at))
                worksheet_write_formula_num(target, r, c, ("=" + sheet.formula(at)).c_str(), format,
                                            value.number());
            else if (value.isText())
                worksheet_write_string(target, r, c, std::string(value.textView()).c_str(), format);
            else
                worksheet_write_number(target, r, c, value.number(), format);
        }
    }
    workbook_close(book);
}
