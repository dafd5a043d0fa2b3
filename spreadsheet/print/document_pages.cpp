#include "spreadsheet/print/document_pages.h"

#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QPagedPaintDevice>
#include <QPageLayout>
#include <QPainter>

namespace spreadsheet {

namespace {

PageRequest requestOf(const PrintDocument& document)
{
    PageRequest request = document.page;
    if (document.range.kind == PrintRangeKind::cells)
        request.ranges = document.range.cells;
    return request;
}

/// Of several sheets one that has no room says that it is the one.
PageLayout layoutOf(const Sheet& sheet, const PrintDocument& document, bool isOneOfSeveral)
{
    try {
        return {sheet, requestOf(document)};
    } catch (const PageLayoutError& error) {
        if (!isOneOfSeveral)
            throw;
        throw PageLayoutError("表“" + sheet.name() + "”：" + error.what());
    }
}

} // namespace

std::vector<SheetPages> layOut(const Workbook& workbook, const PrintDocument& document)
{
    const int first = document.sheet.value_or(1);
    const int last = document.sheet.value_or(workbook.sheetCount());
    if (first < 1 || last > workbook.sheetCount())
        throw PageLayoutError("没有第" + std::to_string(first) + "张工作表。");
    std::vector<SheetPages> sheets;
    for (int index = first; index <= last; ++index) {
        const Sheet& sheet = workbook.sheet(index);
        PageLayout layout = layoutOf(sheet, document, first != last);
        if (const auto pages = pagesToPrint(document.range, layout.pageCount()))
            sheets.push_back({sheet, std::move(layout), *pages});
    }
    return sheets;
}

int pageCount(const std::vector<SheetPages>& sheets)
{
    int pages = 0;
    for (const SheetPages& part : sheets)
        pages += part.pages.count();
    return pages;
}

QPageLayout paperOf(const PageLayout& layout)
{
    const QSizeF turned(layout.paperWidth() / twipsPerPoint, layout.paperHeight() / twipsPerPoint);
    const bool landscape = turned.width() > turned.height();
    const QPageSize size(landscape ? turned.transposed() : turned, QPageSize::Point);
    return {size, landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF()};
}

QString titleOf(const PrintDocument& document, const std::vector<SheetPages>& sheets)
{
    return document.title.isEmpty() ? QString::fromUtf8(sheets.front().sheet.name()) : document.title;
}

bool drawPages(QPagedPaintDevice& device, const std::vector<SheetPages>& sheets,
               const PrintDocument& document, PageText& text)
{
    const int pages = pageCount(sheets);
    int done = 0;
    QPainter painter;
    for (const auto& [sheet, layout, sequence] : sheets)
        for (int number = sequence.first; number <= sequence.last; ++number) {
            if (document.goesOn && !document.goesOn(done, pages))
                throw PrintCancelled{};
            device.setPageLayout(paperOf(layout));
            if (painter.isActive() ? !device.newPage() : !painter.begin(&device))
                return false;
            painter.save();
            painter.scale(device.logicalDpiX() / twipsPerInch, device.logicalDpiY() / twipsPerInch);
            PagePainter(sheet, layout, text).paint(painter, number);
            painter.restore();
            ++done;
        }
    return painter.end();
}

} // namespace spreadsheet
