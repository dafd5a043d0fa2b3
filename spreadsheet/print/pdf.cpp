#include "spreadsheet/print/pdf.h"

#include "spreadsheet/print/GlyphRecord.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/pdf_description.h"
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
    if (document.isArchive)
        writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
    writer.setTitle(titleOf(document, sheets));
    PageText text(&record);
    text.keepLines(); // reports say the same again and again
    if (!drawPages(writer, sheets, document, text))
        throw PdfError("无法生成PDF页面。");
    return buffer.data();
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
        describePdf(*update, document, sheets);
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
