#include "spreadsheet/print/pdf_description.h"

#include "spreadsheet/print/PageCells.h"

#include <charconv>

namespace spreadsheet {

namespace {

QByteArray textString(const QString& text)
{
    QByteArray hex = "<feff";
    for (const QChar unit : text)
        hex += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    return hex + '>';
}

/// Puts entries at the end of a dictionary of the file.
void extend(PdfUpdate& update, int object, const QByteArray& entries)
{
    const QByteArrayView dictionary = update.object(object).trimmed();
    if (!entries.isEmpty() && dictionary.endsWith(">>"))
        update.replace(object, dictionary.chopped(2).toByteArray() + entries + "\n>>");
}

/// Page labels (ISO 32000-1, 12.4.2): each sheet counts its own pages.
QByteArray pageLabels(const std::vector<SheetPages>& sheets)
{
    QByteArray labels;
    int page = 0;
    for (const auto& [sheet, layout, pages] : sheets) {
        labels += ' ' + QByteArray::number(page) + " << /S /D /St " +
                  QByteArray::number(layout.shownNumber(pages.first));
        if (sheets.size() > 1)
            labels += " /P " + textString(QString::fromUtf8(sheet.name()) + '-');
        labels += " >>";
        page += pages.count();
    }
    return "/PageLabels << /Nums [" + labels + " ] >>\n";
}

/// An outline (ISO 32000-1, 12.3.3) that leads to the first page of each sheet, as entries of the root.
QByteArray outline(PdfUpdate& update, const std::vector<SheetPages>& sheets, const std::vector<int>& pages)
{
    if (sheets.size() < 2 || std::ssize(pages) != pageCount(sheets))
        return {};
    const int tree = update.add();
    std::vector<int> items;
    for (std::size_t i = 0; i < sheets.size(); ++i)
        items.push_back(update.add());
    std::size_t page = 0;
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        QByteArray item = "<< /Title " + textString(QString::fromUtf8(sheets[i].sheet.name())) + " /Parent " +
                          PdfUpdate::referenceTo(tree) + " /Dest [" + PdfUpdate::referenceTo(pages[page]) +
                          " /Fit]";
        if (i > 0)
            item += " /Prev " + PdfUpdate::referenceTo(items[i - 1]);
        if (i + 1 < items.size())
            item += " /Next " + PdfUpdate::referenceTo(items[i + 1]);
        update.replace(items[i], item + " >>");
        page += static_cast<std::size_t>(sheets[i].pages.count());
    }
    update.replace(tree, "<< /Type /Outlines /First " + PdfUpdate::referenceTo(items.front()) + " /Last " +
                             PdfUpdate::referenceTo(items.back()) + " /Count " +
                             QByteArray::number(static_cast<qlonglong>(items.size())) + " >>");
    return "/Outlines " + PdfUpdate::referenceTo(tree) + "\n/PageMode /UseOutlines\n";
}

/// An archive file says the same of itself in its metadata (XMP), which are a stream in plain text.
void describeInMetadata(PdfUpdate& update, const PrintDocument& document)
{
    const int metadata = PdfUpdate::reference(update.object(update.root()), "Metadata");
    const QByteArrayView object = update.object(metadata);
    const qsizetype from = object.indexOf("<?xpacket"), end = object.lastIndexOf("endstream");
    if (from < 0 || end < from)
        return;
    QByteArray text = object.sliced(from, end - from).toByteArray().trimmed();
    QByteArray entries;
    if (!document.author.isEmpty())
        entries += "<dc:creator><rdf:Seq><rdf:li>" + document.author.toHtmlEscaped().toUtf8() +
                   "</rdf:li></rdf:Seq></dc:creator>";
    if (!document.subject.isEmpty())
        entries += "<dc:description><rdf:Alt><rdf:li xml:lang=\"x-default\">" +
                   document.subject.toHtmlEscaped().toUtf8() + "</rdf:li></rdf:Alt></dc:description>";
    const qsizetype place = text.lastIndexOf("</rdf:RDF>");
    if (entries.isEmpty() || place < 0)
        return;
    text.insert(place, "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\">" +
                           entries + "</rdf:Description>");
    update.replace(metadata, "<< /Type /Metadata /Subtype /XML /Length " +
                                 QByteArray::number(static_cast<qlonglong>(text.size())) + " >>\nstream\n" +
                                 text + "\nendstream");
}

} // namespace

void describePdf(PdfUpdate& update, const PrintDocument& document, const std::vector<SheetPages>& sheets,
                 const std::vector<int>& pages)
{
    QByteArray properties;
    if (!document.author.isEmpty())
        properties += "/Author " + textString(document.author) + '\n';
    if (!document.subject.isEmpty())
        properties += "/Subject " + textString(document.subject) + '\n';
    extend(update, update.info(), properties);
    if (document.isArchive)
        describeInMetadata(update, document);
    extend(update, update.root(),
           pageLabels(sheets) + outline(update, sheets, pages) +
               "/ViewerPreferences << /DisplayDocTitle true >>\n/Lang (zh-CN)");
}

} // namespace spreadsheet
