#include "spreadsheet/view/commands/html_text.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/values/html_escape.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace spreadsheet {

namespace {

void appendColour(std::string& css, const char* property, Colour colour)
{
    if (colour == automaticColour)
        return;
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "%06x", colour & 0xFFFFFF);
    css += std::string(property) + ":#" + digits.data() + ';';
}

std::string numberText(double number)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

std::string styleText(const CellStyle& style, Colour text)
{
    static constexpr std::array<const char*, 3> alignments{"left", "right", "center"};
    std::string css;
    if (style.horizontal != HorizontalAlignment::general)
        css += std::string("text-align:") + alignments[static_cast<std::size_t>(style.horizontal)] + ';';
    if (style.font.bold)
        css += "font-weight:bold;";
    if (style.font.italic)
        css += "font-style:italic;";
    if (style.font.underline)
        css += "text-decoration:underline;";
    if (!style.font.family.empty())
        css += "font-family:'" + std::string(style.font.family.view()) + "';";
    if (style.font.points != CellFont().points)
        css += "font-size:" + numberText(double(style.font.points)) + "pt;";
    appendColour(css, "color", text);
    appendColour(css, "background", style.background);
    return css;
}

void appendCell(std::string& html, const Sheet& sheet, CellAddress cell, const CellRange& extent)
{
    html += "<td";
    if (extent.columns() > 1)
        html += " colspan=\"" + std::to_string(extent.columns()) + '"';
    if (extent.rows() > 1)
        html += " rowspan=\"" + std::to_string(extent.rows()) + '"';
    const CellStyle& style = sheet.style(cell);
    const Value value = sheet.value(cell);
    const bool shown = !sheet.shownText(cell).empty();
    if (value.isNumber() && !shown)
        html += " sdval=\"" + numberText(value.number()) + '"';
    else if (value.isText())
        html += " sdnum=\"0;0;@\"";
    if (const std::string css = styleText(style, textColour(value, style)); !css.empty()) {
        html += " style=\"";
        appendHtml(html, css);
        html += '"';
    }
    html += '>';
    appendHtml(html, sheet.displayText(cell));
    html += "</td>";
}

} // namespace

std::string htmlText(const Sheet& sheet, const CellRange& range)
{
    std::string html = "<html><head><meta http-equiv=\"content-type\" content=\"text/html; charset=utf-8\">"
                       "</head><body><table>\n";
    std::vector<CellRange> spans;
    std::ranges::copy_if(sheet.settings().spans, std::back_inserter(spans),
                         [&](const CellRange& span) { return span.intersects(range); });
    for (int row = range.top; row <= range.bottom; ++row) {
        html += "<tr>";
        for (int column = range.left; column <= range.right; ++column) {
            const CellAddress cell{column, row};
            const auto span =
                std::ranges::find_if(spans, [cell](const CellRange& s) { return s.contains(cell); });
            if (span == spans.end())
                appendCell(html, sheet, cell, {column, row, column, row});
            else if (column == std::max(span->left, range.left) && row == std::max(span->top, range.top))
                appendCell(
                    html, sheet, {span->left, span->top},
                    {column, row, std::min(span->right, range.right), std::min(span->bottom, range.bottom)});
        }
        html += "</tr>\n";
    }
    return html + "</table></body></html>";
}

} // namespace spreadsheet
