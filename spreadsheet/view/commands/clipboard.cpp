#include "spreadsheet/view/commands/clipboard.h"

#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/view/commands/html_table.h"
#include "spreadsheet/view/commands/html_text.h"
#include "spreadsheet/view/commands/tab_text.h"

#include <QMimeData>
#include <QRandomGenerator>

#include <algorithm>

namespace spreadsheet {

namespace {

const QString ownFormat = QStringLiteral("application/x-report-cells");
/// A larger block goes out as text alone: other programs choke on such an HTML table.
constexpr long long maxHtmlCells = 200'000;

constexpr const char* tooLarge = "剪贴板的内容太大(超过 64 MB)，不能粘贴";
constexpr const char* noText = "剪贴板的内容不是文本或表格，不能粘贴";

/// Control characters and characters that could not be decoded are what binary data turns into.
bool looksBinary(QStringView text)
{
    const auto isRubbish = [](QChar c) {
        return c == QChar::ReplacementCharacter || (c.unicode() < 0x20 && !c.isSpace());
    };
    const auto rubbish = std::ranges::count_if(text, isRubbish);
    return text.contains(QChar::Null) || rubbish * 100 > text.size();
}

std::variant<ClipboardContent, std::string> fromTable(std::variant<PastedTable, std::string> parsed)
{
    if (auto* problem = std::get_if<std::string>(&parsed))
        return std::move(*problem);
    ClipboardContent content;
    content.table = std::move(std::get<PastedTable>(parsed));
    return content;
}

} // namespace

CellRange copiedRange(const Sheet& sheet, const CellRange& range)
{
    CellRange copied = range;
    if (range.top == 1 && range.bottom >= sheet.settings().rowCount)
        copied.bottom = std::max(1, sheet.lastDataRow());
    if (range.left == 1 && range.right >= sheet.settings().columnCount)
        copied.right = std::max(1, sheet.lastDataColumn());
    return copied;
}

std::variant<Copied, std::string> copyToClipboard(Workbook& workbook, const Sheet& sheet,
                                                  const CellRange& range)
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
                  {QRandomGenerator::system()->generate64(), sheet.id(), copied}};
    result.data->setData(ownFormat, packCells(workbook, result.origin, sheet.lift(copied)));
    result.data->setText(QString::fromStdString(tabText(sheet, copied)));
    if (cells <= maxHtmlCells)
        result.data->setHtml(QString::fromStdString(htmlText(sheet, copied)));
    return result;
}

std::variant<ClipboardContent, std::string> readClipboard(Workbook& workbook, const QMimeData& data)
{
    constexpr auto limit = static_cast<qsizetype>(maxPastedBytes);
    if (data.hasFormat(ownFormat)) {
        auto unpacked = unpackCells(workbook, data.data(ownFormat));
        if (auto* cells = std::get_if<UnpackedCells>(&unpacked))
            return ClipboardContent{std::move(*cells), {}};
        if (!data.hasText())
            return std::get<std::string>(unpacked);
    }
    if (data.hasHtml()) {
        const QString html = data.html();
        if (html.size() <= limit && html.contains(QLatin1String("<td"), Qt::CaseInsensitive)) {
            auto content = fromTable(parseHtmlTable(html.toStdString()));
            const auto* table = std::get_if<ClipboardContent>(&content);
            if (!table || !table->table.cells.empty())
                return content;
        }
    }
    if (!data.hasText())
        return noText;
    const QString text = data.text();
    if (text.size() > limit)
        return tooLarge;
    if (text.isEmpty())
        return "剪贴板是空的";
    if (looksBinary(text))
        return noText;
    return fromTable(parseTabText(text.toStdString()));
}

} // namespace spreadsheet
