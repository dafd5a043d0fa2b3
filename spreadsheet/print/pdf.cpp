#include "spreadsheet/print/pdf.h"

#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/text_layer.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPdfWriter>

#include <vector>

namespace spreadsheet {

namespace {

QByteArray drawn(const std::vector<SheetPages>& sheets, const PrintDocument& document, GlyphRecord& record)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(static_cast<int>(twipsPerInch)); // the painter's unit is the twip
    writer.setTitle(titleOf(document, sheets));
    PageText text(&record);
    if (!drawPages(writer, sheets, document, text))
        throw PdfError("无法生成PDF页面。");
    return buffer.data();
}

QByteArray textString(const QString& text)
{
    QByteArray hex = "<feff";
    for (const QChar unit : text)
        hex += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    return hex + '>';
}

/// Page labels (ISO 32000-1, 12.4.2) and the wish that viewers show title and language.
void describe(PdfUpdate& update, const std::vector<SheetPages>& sheets)
{
    QByteArray labels;
    int page = 0;
    for (const auto& [sheet, layout, pages] : sheets) {
        labels += ' ' + QByteArray::number(page) + " << /S /D /St " + QByteArray::number(pages.first);
        if (sheets.size() > 1)
            labels += " /P " + textString(QString::fromUtf8(sheet.name()) + '-');
        labels += " >>";
        page += pages.count();
    }
    const QByteArrayView root = update.object(update.root()).trimmed();
    if (root.endsWith(">>"))
        update.replace(update.root(),
                       root.chopped(2).toByteArray() + "/PageLabels << /Nums [" + labels +
                           " ] >>\n/ViewerPreferences << /DisplayDocTitle true >>\n/Lang (zh-CN)\n>>");
}

Pdf make(const Workbook& workbook, const PrintDocument& document)
{
    if (!qGuiApp || QFontDatabase::families().isEmpty())
        throw PdfError("没有可用的字体。");
    const std::vector<SheetPages> sheets = layOut(workbook, document);
    if (sheets.empty())
        throw PdfError("打印范围内没有页。");
    GlyphRecord record;
    Pdf made{drawn(sheets, document, record), pageCount(sheets)};
    if (auto update = PdfUpdate::open(made.bytes)) {
        correctTextLayer(*update, record);
        describe(*update, sheets);
        made.bytes = update->result();
    }
    return made;
}

} // namespace

Pdf pdfOf(const Workbook& workbook, const PrintDocument& document)
{
    try {
        return make(workbook, document);
    } catch (const PageLayoutError& error) {
        throw PdfError(error.what());
    }
}

} // namespace spreadsheet
