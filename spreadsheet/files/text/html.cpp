#include "spreadsheet/files/text/html.h"

#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/values/html_escape.h"
#include "spreadsheet/values/twips.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace spreadsheet {

namespace {

std::string colourText(Colour colour)
{
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "#%06X", colour & 0xFFFFFF);
    return text.data();
}

std::string pointsText(int twips)
{
    constexpr int perPoint = static_cast<int>(twipsPerPoint);
    std::string text = std::to_string(twips / perPoint);
    if (twips % perPoint != 0)
        text += "." + std::to_string(100 + twips % perPoint * 100 / perPoint).substr(1);
    return text + "pt";
}

std::string lineCss(const char* side, const BorderLine& line)
{
    const char* kind = nullptr;
    bool isFine = true, isWide = false;
    switch (line.style) {
    case LineStyle::none:
    case LineStyle::erase:
        return {};
    case LineStyle::solid:
    case LineStyle::medium:
        isFine = false;
        [[fallthrough]];
    case LineStyle::fineSolid:
        kind = "solid";
        break;
    case LineStyle::thick:
        isWide = true;
        kind = "solid";
        break;
    case LineStyle::doubled:
        isWide = true;
        kind = "double";
        break;
    case LineStyle::dot:
        isFine = false;
        [[fallthrough]];
    case LineStyle::fineDot:
        kind = "dotted";
        break;
    case LineStyle::dash:
    case LineStyle::dashDot:
    case LineStyle::dashDotDot:
    case LineStyle::slantedDashDot:
        isFine = false;
        [[fallthrough]];
    default:
        kind = "dashed";
    }
    return std::string("border-") + side + ":" +
           (isWide   ? "3px "
            : isFine ? "1px "
                     : "2px ") +
           kind + " " + colourText(line.colour) + ";";
}

std::string fontCss(const CellFont& font)
{
    std::string css = "font:";
    css += font.italic ? "italic " : "";
    css += font.bold ? "bold " : "";
    css += pointsText(static_cast<int>(std::lround(font.points * twipsPerPoint))) + " '";
    for (const char c : font.family.empty() ? std::string_view("宋体") : font.family.view())
        css += std::string_view("'\\<>;{}").find(c) == std::string_view::npos ? c : ' ';
    css += "';";
    if (font.underline || font.strikeThrough)
        css += std::string("text-decoration:") + (font.underline ? "underline " : "") +
               (font.strikeThrough ? "line-through" : "") + ";";
    return css;
}

/// @param shown  the side that texts are aligned to; general counts as left
std::string indentCss(const CellStyle& style, HorizontalAlignment shown)
{
    const int indent = indentOf(style, shown);
    if (indent == 0)
        return {};
    return (shown == HorizontalAlignment::right ? "padding-right:" : "padding-left:") + pointsText(indent) +
           ";";
}

std::string styleCss(const CellStyle& style)
{
    static constexpr std::array horizontals{"left", "right", "center"};
    static constexpr std::array verticals{"top", "middle", "bottom"};
    std::string css = fontCss(style.font);
    if (style.foreground != automaticColour)
        css += "color:" + colourText(style.foreground) + ";";
    if (style.background != automaticColour)
        css += "background:" + colourText(style.background) + ";";
    if (style.horizontal != HorizontalAlignment::general)
        css += std::string("text-align:") + horizontals[static_cast<std::size_t>(style.horizontal)] + ";";
    css += std::string("vertical-align:") + verticals[static_cast<std::size_t>(style.vertical)] + ";";
    css += style.wrap ? "white-space:pre-wrap;" : "white-space:pre;";
    css += indentCss(style, style.horizontal);
    return css + lineCss("left", style.left) + lineCss("right", style.right) + lineCss("top", style.top) +
           lineCss("bottom", style.bottom);
}

/// What a number's cell has besides its style: numbers stand at the right unless their style says otherwise,
/// and a number format code may colour them.
std::string numberCss(const Value& value, const CellStyle& style)
{
    if (!value.isNumber())
        return {};
    std::string css;
    if (style.horizontal == HorizontalAlignment::general) {
        const std::string indent = indentCss(style, HorizontalAlignment::right);
        css = (indent.empty() ? "" : "padding-left:3px;" + indent) + "text-align:right";
    }
    if (const Colour colour = textColour(value, style); colour != style.foreground)
        css += (css.empty() ? "color:" : ";color:") + colourText(colour);
    return css;
}

class SheetTable {
public:
    SheetTable(const Sheet& sheet, std::string& html)
        : m_sheet(sheet)
        , m_html(html)
        , m_rows(sheet.lastDataRow())
        , m_columns(sheet.lastDataColumn())
    {
        for (const CellRange& span : sheet.settings().spans) {
            // Only spans that begin inside the used area reach beyond it.
            if (span.top <= m_rows && span.left <= m_columns)
                m_columns = std::max(m_columns, span.right);
        }
        constexpr long long mostCells = 50'000'000;
        if (static_cast<long long>(m_rows) * m_columns > mostCells)
            throw ContentError("表“" + sheet.name() + "”用到 " + cellName({m_columns, m_rows}) +
                               ",单元格太多,不能引出为网页,请引出为 .xlsx");
    }

    void write()
    {
        m_html += "<h2>";
        appendHtml(m_html, m_sheet.name());
        m_html += "</h2>\n<table>\n<colgroup>";
        for (int column = 1; column <= m_columns; ++column)
            m_html += "<col style=\"width:" + pointsText(m_sheet.settings().columns.size(column)) + "\">";
        m_html += "</colgroup>\n";
        for (int row = 1; row <= m_rows; ++row)
            this->row(row);
        m_html += "</table>\n";
    }

private:
    void row(int row)
    {
        m_html += "<tr style=\"height:" + pointsText(m_sheet.settings().rows.size(row)) + "\">";
        for (int column = 1; column <= m_columns; ++column)
            cell({column, row});
        m_html += "</tr>\n";
    }

    void cell(CellAddress at)
    {
        const auto covering = m_sheet.settings().spans.empty() ? std::nullopt : m_sheet.spanAt(at);
        if (covering && (covering->left != at.column || covering->top != at.row))
            return;
        m_html += "<td";
        if (covering && covering->columns() > 1)
            m_html += " colspan=\"" + std::to_string(covering->columns()) + "\"";
        if (covering && covering->rows() > 1)
            m_html += " rowspan=\"" + std::to_string(covering->rows()) + "\"";
        if (const std::uint32_t style = m_sheet.styleNumber(at))
            m_html += " class=\"s" + std::to_string(style) + "\"";
        if (const std::string css = numberCss(m_sheet.value(at), m_sheet.style(at)); !css.empty())
            m_html += " style=\"" + css + "\"";
        m_html += ">";
        appendHtml(m_html, m_sheet.displayText(at));
        m_html += "</td>";
    }

    const Sheet& m_sheet;
    std::string& m_html;
    int m_rows, m_columns;
};

} // namespace

std::string workbookHtml(const Workbook& workbook, std::string_view title)
{
    std::string html = "<!DOCTYPE html>\n<html lang=\"zh-CN\"><head><meta charset=\"utf-8\"><title>";
    appendHtml(html, title);
    html += "</title>\n<style>\ntable{border-collapse:collapse;table-layout:fixed}\ntd{padding:1px 3px;" +
            styleCss(workbook.styles()[0]) + "}\n";
    for (std::uint32_t style = 1; style < workbook.styles().size(); ++style)
        html += ".s" + std::to_string(style) + "{" + styleCss(workbook.styles()[style]) + "}\n";
    html += "</style></head><body>\n";
    for (int sheet = 1; sheet <= workbook.sheetCount(); ++sheet)
        SheetTable(workbook.sheet(sheet), html).write();
    return html + "</body></html>\n";
}

} // namespace spreadsheet
