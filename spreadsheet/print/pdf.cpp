#include "spreadsheet/print/pdf.h"

#include "spreadsheet/print/embedded_fonts.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/pdf_description.h"
#include "spreadsheet/print/pdf_pages.h"
#include "spreadsheet/print/text_layer.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>

#include <functional>
#include <vector>

namespace spreadsheet {

// The toolkit's writer makes the file with one empty page, whose place our pages take, with fonts of our own:
// the writer would take three times as long. Where a font cannot be embedded the writer draws its letters as
// shapes, on pages that it makes as a whole.

namespace {

QByteArray written(const PrintDocument& document, const std::vector<SheetPages>& sheets,
                   const std::function<bool(QPdfWriter&)>& draw)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(static_cast<int>(twipsPerInch)); // the painter's unit is the twip
    if (document.isArchive)
        writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
    writer.setTitle(titleOf(document, sheets));
    if (!draw(writer))
        throw PdfError("无法生成PDF页面。");
    return buffer.data();
}

bool drawNothing(QPdfWriter& writer)
{
    QPainter painter;
    return painter.begin(&writer) && painter.end();
}

/// Nothing if a font cannot be embedded.
std::optional<QByteArray> quickly(const PrintDocument& document, const std::vector<SheetPages>& sheets)
{
    GlyphRecord record;
    const std::vector<PdfPage> pages = contentsOf(sheets, document, record);
    auto update = PdfUpdate::open(written(document, sheets, drawNothing));
    if (!update)
        return std::nullopt;
    const auto fonts = embedFonts(*update, record, document.isArchive);
    if (!fonts)
        return std::nullopt;
    describePdf(*update, document, sheets, replacePages(*update, pages, *fonts));
    return update->result();
}

QByteArray byTheWriter(const PrintDocument& document, const std::vector<SheetPages>& sheets)
{
    GlyphRecord record;
    PageText text(&record);
    text.keepLines();
    const QByteArray pdf = written(
        document, sheets, [&](QPdfWriter& writer) { return drawPages(writer, sheets, document, text); });
    auto update = PdfUpdate::open(pdf);
    if (!update)
        return pdf;
    correctTextLayer(*update, record);
    describePdf(*update, document, sheets, pageObjects(*update));
    return update->result();
}

Pdf make(const Workbook& workbook, const PrintDocument& document)
{
    if (!qGuiApp || QFontDatabase::families().isEmpty())
        throw PdfError("没有可用的字体。");
    const std::vector<SheetPages> sheets = layOut(workbook, document);
    if (sheets.empty())
        throw PdfError("打印范围内没有页。");
    auto pdf = quickly(document, sheets);
    return {pdf ? std::move(*pdf) : byTheWriter(document, sheets), pageCount(sheets)};
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
