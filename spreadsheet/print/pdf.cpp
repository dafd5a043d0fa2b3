#include "spreadsheet/print/pdf.h"

#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/text_layer.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

#include <algorithm>
#include <vector>

namespace spreadsheet {

namespace {

constexpr int twipsPerInch = 1440;

struct SheetPages {
    const Sheet& sheet;
    PageLayout layout;
};

[[noreturn]] void fail(const PdfOptions& options, const QString& reason)
{
    throw PdfError(QStringLiteral("无法生成PDF文件“%1”：%2").arg(options.path, reason).toStdString());
}

std::vector<SheetPages> layOut(const Workbook& workbook, const PdfOptions& options)
{
    const int first = options.sheet.value_or(1);
    const int last = options.sheet.value_or(workbook.sheetCount());
    if (first < 1 || last > workbook.sheetCount())
        fail(options, QStringLiteral("没有第%1张工作表。").arg(first));
    std::vector<SheetPages> sheets;
    try {
        for (int index = first; index <= last; ++index)
            sheets.push_back({workbook.sheet(index), PageLayout(workbook.sheet(index), options.page)});
    } catch (const PageLayoutError& error) {
        fail(options, QString::fromUtf8(error.what()));
    }
    return sheets;
}

QPageLayout paperOf(const PageLayout& layout)
{
    constexpr double twipsPerPoint = 20;
    const QSizeF turned(layout.paperWidth() / twipsPerPoint, layout.paperHeight() / twipsPerPoint);
    const bool landscape = turned.width() > turned.height();
    const QPageSize size(landscape ? turned.transposed() : turned, QPageSize::Point);
    return {size, landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF()};
}

QByteArray drawPages(const std::vector<SheetPages>& sheets, const QString& title, GlyphRecord& record)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(twipsPerInch); // the painter's unit is the twip
    writer.setTitle(title);
    writer.setPageLayout(paperOf(sheets.front().layout));
    PageText text(&record);
    QPainter painter;
    for (const auto& [sheet, layout] : sheets)
        for (int number = 1; number <= layout.pageCount(); ++number) {
            writer.setPageLayout(paperOf(layout));
            if (!painter.isActive())
                painter.begin(&writer);
            else
                writer.newPage();
            PagePainter(sheet, layout, text).paint(painter, number);
        }
    painter.end();
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
    for (const auto& [sheet, layout] : sheets) {
        labels += ' ' + QByteArray::number(page) + " << /S /D";
        if (sheets.size() > 1)
            labels += " /P " + textString(fromUtf8(sheet.name()) + '-');
        labels += " >>";
        page += layout.pageCount();
    }
    const QByteArrayView root = update.object(update.root()).trimmed();
    if (root.endsWith(">>"))
        update.replace(update.root(),
                       root.chopped(2).toByteArray() + "/PageLabels << /Nums [" + labels +
                           " ] >>\n/ViewerPreferences << /DisplayDocTitle true >>\n/Lang (zh-CN)\n>>");
}

void save(const PdfOptions& options, const QByteArray& pdf)
{
    QSaveFile file(options.path);
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size() || !file.commit())
        fail(options, file.errorString());
}

} // namespace

int writePdf(const Workbook& workbook, const PdfOptions& options)
{
    if (!qGuiApp || QFontDatabase::families().isEmpty())
        fail(options, QStringLiteral("没有可用的字体。"));
    const std::vector<SheetPages> sheets = layOut(workbook, options);
    const QString title = options.title.isEmpty() ? fromUtf8(sheets.front().sheet.name()) : options.title;
    GlyphRecord record;
    QByteArray pdf = drawPages(sheets, title, record);
    if (auto update = PdfUpdate::open(pdf)) {
        correctTextLayer(*update, record);
        describe(*update, sheets);
        pdf = update->result();
    }
    save(options, pdf);
    int pages = 0;
    for (const SheetPages& part : sheets)
        pages += part.layout.pageCount();
    return pages;
}

} // namespace spreadsheet
