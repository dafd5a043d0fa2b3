#include "spreadsheet/print/pdf_pages.h"

#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/PdfCanvas.h"

#include <QPageLayout>
#include <QPainter>

namespace spreadsheet {

namespace {

constexpr int quickPacking = 2; // the usual one takes three times as long for a fifth less

} // namespace

std::vector<PdfPage> contentsOf(const std::vector<SheetPages>& sheets, const PrintDocument& document,
                                GlyphRecord& record)
{
    PdfCanvas canvas(record);
    PageText text(&record);
    text.keepLines(); // reports say the same again and again
    text.useInk(canvas);
    const int count = pageCount(sheets);
    std::vector<PdfPage> pages;
    for (const auto& [sheet, layout, sequence] : sheets)
        for (int number = sequence.first; number <= sequence.last; ++number) {
            if (document.goesOn && !document.goesOn(static_cast<int>(pages.size()), count))
                throw PrintCancelled{};
            const QSize paper = paperOf(layout).fullRectPoints().size();
            canvas.begin(paper.height());
            QPainter painter(&canvas);
            painter.scale(PdfCanvas::unitsPerTwip, PdfCanvas::unitsPerTwip);
            PagePainter(sheet, layout, text).paint(painter, number);
            painter.end();
            pages.push_back({paper, PdfUpdate::packed(canvas.content(), quickPacking)});
        }
    return pages;
}

std::vector<int> pageObjects(const PdfUpdate& update)
{
    const QByteArrayView node = update.object(PdfUpdate::reference(update.object(update.root()), "Pages"));
    const qsizetype open = node.indexOf('[', std::max<qsizetype>(node.indexOf("/Kids"), 0));
    const qsizetype close = node.indexOf(']', std::max<qsizetype>(open, 0));
    std::vector<int> pages;
    if (open < 0 || close < 0)
        return pages;
    for (const QByteArray& kid : node.sliced(open + 1, close - open - 1).toByteArray().split('R'))
        if (const int number = kid.trimmed().split(' ').value(0).toInt(); number > 0)
            pages.push_back(number);
    return pages;
}

std::vector<int> replacePages(PdfUpdate& update, const std::vector<PdfPage>& pages,
                              const std::vector<int>& fonts)
{
    const int tree = PdfUpdate::reference(update.object(update.root()), "Pages");
    QByteArray resources = "<< /ProcSet [/PDF /Text] /Font <<";
    for (std::size_t i = 0; i < fonts.size(); ++i)
        resources += " /F" + QByteArray::number(static_cast<qulonglong>(i + 1)) + ' ' +
                     PdfUpdate::referenceTo(fonts[i]);
    const int shared = update.add();
    update.replace(shared, resources + ">> >>");
    std::vector<int> objects = pageObjects(update); // the only one becomes the first
    objects.resize(std::min<std::size_t>(objects.size(), 1));
    QByteArray kids;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (i >= objects.size())
            objects.push_back(update.add());
        const int content = update.add();
        update.replace(content, pages[i].content);
        update.replace(objects[i], "<< /Type /Page /Parent " + PdfUpdate::referenceTo(tree) +
                                       " /MediaBox [0 0 " + QByteArray::number(pages[i].points.width()) +
                                       ' ' + QByteArray::number(pages[i].points.height()) + "] /Contents " +
                                       PdfUpdate::referenceTo(content) + " /Resources " +
                                       PdfUpdate::referenceTo(shared) + ">>");
        kids += PdfUpdate::referenceTo(objects[i]) + ' ';
    }
    update.replace(tree, "<< /Type /Pages /Kids [ " + kids + "] /Count " +
                             QByteArray::number(static_cast<qulonglong>(pages.size())) + " >>");
    return objects;
}

} // namespace spreadsheet
