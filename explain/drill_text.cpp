#include "explain/drill_text.h"

#include "platform/database/session/Recordset.h"
#include "text/amount_text.h"
#include "text/json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace selfreport {

namespace {

std::string headText(const DrillHead& head)
{
    std::string text = "报表\t" + oneLine(head.report) + "\n单元格\t" + oneLine(head.cell) + "\n";
    if (!head.formula.empty())
        text += "公式\t=" + oneLine(head.formula) + "\n";
    text += "显示\t" + oneLine(head.shown) + "\n精确\t" + (head.value ? numberText(*head.value) : "不是数") +
            "\n";
    if (!head.remark.empty())
        text += "说明\t" + oneLine(head.remark) + "\n";
    return text + (head.ledgerHasChanged ? "注意\t" + std::string(ledgerHasChangedText) + "\n" : "");
}

void addRow(std::string& text, const DrillNode& node, double sum, int level)
{
    const std::string indent(static_cast<std::size_t>(level) * 2, ' ');
    text += indent + oneLine(node.item) + "\t" + oneLine(node.basis) + "\t" + numberText(node.factor) + "\t" +
            (node.amount ? amountText(*node.amount) : "") + "\t" + shareText(node, sum);
    if (!node.remark.empty())
        text += "\t" + oneLine(node.remark);
    text += "\n";
    for (const DrillNode& part : node.parts)
        addRow(text, part, node.sum.value_or(0), level + 1);
    if (node.pages > 1)
        text += indent + "  " + pageText(node) + "\n";
}

std::string rowJson(const DrillNode& node)
{
    std::string json = "{\"item\":" + jsonText(node.item) + ",\"basis\":" + jsonText(node.basis) +
                       ",\"factor\":" + numberText(node.factor) +
                       ",\"amount\":" + (node.amount ? numberText(*node.amount) : "null") +
                       ",\"remark\":" + jsonText(node.remark) +
                       ",\"fault\":" + (node.isFault ? "true" : "false");
    if (node.isOpen && node.way < node.ways.size())
        json += ",\"by\":" + jsonText(node.ways[node.way].text());
    if (node.sum && node.whole)
        json += ",\"sum\":" + numberText(*node.sum) + ",\"difference\":" + amountText(node.difference());
    json += ",\"parts\":[";
    for (std::size_t at = 0; at < node.parts.size(); ++at)
        json += (at > 0 ? ",\n" : "") + rowJson(node.parts[at]);
    return json + "]}";
}

} // namespace

double contribution(const DrillNode& node)
{
    return node.factor * node.amount.value_or(0);
}

std::string shareText(const DrillNode& node, double sum)
{
    if (sum == 0 || !node.amount)
        return {};
    std::array<char, 400> digits{};
    const double share = std::round(contribution(node) / sum * 1000) / 10 + 0.0; // no "-0.0"
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), share, std::chars_format::fixed, 1);
    return std::string(digits.data(), end.ptr) + "%";
}

std::string pageText(const DrillNode& node)
{
    return "第 " + std::to_string(node.page) + " 页，共 " + std::to_string(node.pages) +
           " 页，这里只有这一页";
}

std::string oneLine(const std::string& text)
{
    std::string line = text;
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return line;
}

std::string drillText(const DrillHead& head, const DrillNode& root)
{
    std::string text = headText(head) + "\n项目\t依据\t系数\t金额\t占比\n";
    for (const DrillNode& part : root.parts)
        addRow(text, part, root.sum.value_or(0), 0);
    if (root.sum && root.whole)
        text += "\n合计\t" + amountText(*root.sum) + "\n单元格\t" + amountText(*root.whole) + "\n差额\t" +
                amountText(root.difference()) + "\n";
    return text;
}

std::string drillJson(const DrillHead& head, const DrillNode& root)
{
    return "{\"report\":" + jsonText(head.report) + ",\"cell\":" + jsonText(head.cell) +
           ",\"formula\":" + jsonText(head.formula) + ",\"shown\":" + jsonText(head.shown) +
           ",\"value\":" + (head.value ? numberText(*head.value) : "null") +
           ",\"remark\":" + jsonText(head.remark) +
           ",\"ledgerChanged\":" + (head.ledgerHasChanged ? "true" : "false") +
           ",\"figure\":" + rowJson(root) + "}\n";
}

} // namespace selfreport
