#include "spreadsheet/view/commands/clipboard.h"

#include "spreadsheet/view/commands/html_table.h"
#include "spreadsheet/view/commands/html_text.h"
#include "spreadsheet/view/commands/tab_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QMimeData>
#include <QRandomGenerator>

#include <algorithm>

namespace spreadsheet {

namespace {

const QString ownFormat = QStringLiteral("application/x-report-cells");
/// A larger block goes out as text alone: other programs choke on such an HTML table.
constexpr long long maxHtmlCells = 200'000;

const std::string noText = "剪贴板的内容不是文本或表格，不能粘贴";

/// Control characters and characters that could not be decoded are what binary data turns into.
bool looksBinary(QStringView text)
{
    const auto isRubbish = [](QChar c) {
        return c == QChar::ReplacementCharacter || (c.unicode() < 0x20 && !c.isSpace());
    };
    const auto rubbish = std::ranges::count_if(text, isRubbish);
    return text.contains(QChar::Null) || rubbish * 100 > text.size();
}

bool coversRows(const Sheet& sheet, const CellRange& range)
{
    return range.left == 1 && range.right >= sheet.settings().columnCount;
}

bool coversColumns(const Sheet& sheet, const CellRange& range)
{
    return range.top == 1 && range.bottom >= sheet.settings().rowCount;
}

std::variant<ClipboardContent, Refusal> fromTable(std::variant<PastedTable, Refusal> parsed)
{
    if (auto* problem = std::get_if<Refusal>(&parsed))
        return std::move(*problem);
    ClipboardContent content;
    content.table = std::move(std::get<PastedTable>(parsed));
    return content;
}

} // namespace

CellRange copiedRange(const Sheet& sheet, const CellRange& range)
{
    CellRange copied = range;
    if (coversColumns(sheet, range))
        copied.bottom = std::max(1, sheet.lastDataRow());
    if (coversRows(sheet, range))
        copied.right = std::max(1, sheet.lastDataColumn());
    return copied;
}

std::variant<Copied, Refusal> copyToClipboard(Workbook& workbook, const Sheet& sheet, const CellRange& range)
{
    const CellRange copied = copiedRange(sheet, range);
    const long long cells = static_cast<long long>(copied.columns()) * copied.rows();
    if (cells > maxCopiedCells)
        return "复制的区域太大(超过 1000 万个单元格)";
    for (const CellRange& array : sheet.settings().arrays) {
        if (array.intersects(copied) && !copied.contains(array))
            return "不能只复制数组公式的一部分";
    }
    Copied result{std::make_unique<QMimeData>(),
                  {QRandomGenerator::system()->generate64(), sheet.id(), copied, coversRows(sheet, range),
                   coversColumns(sheet, range)}};
    result.data->setData(ownFormat, packCells(workbook, result.origin, sheet.lift(copied)));
    result.data->setText(QString::fromStdString(tabText(sheet, copied)));
    if (cells <= maxHtmlCells)
        result.data->setHtml(QString::fromStdString(htmlText(sheet, copied)));
    return result;
}

std::variant<QString, Refusal> clipboardText(const QMimeData& data, qsizetype most)
{
    if (!data.hasText())
        return noText;
    QString text = data.text();
    if (text.size() > most)
        return "剪贴板的内容太大(超过 " +
               (most < 1'000'000 ? std::to_string(most) + " 个字" : std::to_string(most >> 20) + " MB") +
               ")，不能粘贴";
    if (text.isEmpty())
        return Refusal("剪贴板是空的");
    if (looksBinary(text))
        return noText;
    return text;
}

std::variant<ClipboardContent, Refusal> readClipboard(Workbook& workbook, const QMimeData& data)
{
    constexpr auto limit = static_cast<qsizetype>(maxPastedBytes);
    if (data.hasFormat(ownFormat)) {
        auto unpacked = unpackCells(workbook, data.data(ownFormat));
        if (auto* cells = std::get_if<UnpackedCells>(&unpacked))
            return ClipboardContent{std::move(*cells), {}};
        if (!data.hasText())
            return std::get<Refusal>(unpacked);
    }
    if (data.hasHtml()) {
        const QString html = data.html();
        if (html.size() <= limit && html.contains(QLatin1String("<td"), Qt::CaseInsensitive) &&
            !looksBinary(html)) {
            auto content = fromTable(parseHtmlTable(html.toStdString()));
            const auto* table = std::get_if<ClipboardContent>(&content);
            if (!table || !table->table.cells.empty())
                return content;
        }
    }
    auto text = clipboardText(data, limit);
    if (auto* why = std::get_if<Refusal>(&text))
        return std::move(*why);
    return fromTable(parseTabText(std::get<QString>(text).toStdString()));
}

} // namespace spreadsheet
