#include "spreadsheet/print/page_words.h"

#include "spreadsheet/print/header_pieces.h"
#include "spreadsheet/print/PageCells.h"

#include <cmath>
#include <optional>

namespace spreadsheet {

namespace {

/// By place; a span shows its text at its first place.
QString shownAt(const PageCells& cells, int row, int column)
{
    const PageCell& cell = cells.at(row, column);
    if (cell.span < 0)
        return cell.text;
    const auto belongs = [&](int otherRow, int otherColumn) {
        return otherRow >= 0 && otherColumn >= 0 && cells.at(otherRow, otherColumn).span == cell.span;
    };
    if (belongs(row - 1, column) || belongs(row, column - 1))
        return {};
    return cells.spans()[static_cast<std::size_t>(cell.span)].anchor.text;
}

QString shownPart(const std::vector<HeaderRun>& runs, const HeaderFieldValues& fields)
{
    QString shown;
    for (const HeaderRun& run : runs)
        shown += shownRun(run, fields);
    return shown;
}

/// Lines of a header or footer, the first one at `top`. Measured are only those that show the text.
void addHeaderHits(std::vector<QRect>& hits, const std::vector<HeaderLine>& lines, int top,
                   const PageLayout& layout, int number, const QString& text)
{
    const HeaderFieldValues fields = layout.fieldValues(number);
    const PageBox& printable = layout.printable();
    for (const HeaderLine& line : lines) {
        std::optional<HeaderPieces> pieces;
        for (std::size_t part = 0; part < line.parts.size(); ++part) {
            if (!shownPart(line.parts[part], fields).contains(text, Qt::CaseInsensitive))
                continue;
            PageText measure;
            if (!pieces)
                pieces = headerPieces(line, fields, printable.width, measure);
            const HeaderPlaces& places = pieces->places;
            hits.emplace_back(printable.left + static_cast<int>(places.left[part] * places.scale), top,
                              static_cast<int>(std::ceil(pieces->widths[part] * places.scale)),
                              headerLineHeight(line));
        }
        top += headerLineHeight(line);
    }
}

} // namespace

QString pageWords(const Sheet& sheet, const PageLayout& layout, int number)
{
    const PrintedPage page = layout.page(number);
    const PageCells cells(sheet, page);
    QString words;
    for (int row = 0; row < cells.rows(); ++row) {
        QString line;
        for (int column = 0; column < cells.columns(); ++column)
            line += (column > 0 ? QStringLiteral("\t") : QString()) +
                    shownAt(cells, row, column).replace('\n', ' ');
        while (line.endsWith('\t'))
            line.chop(1);
        words += line + '\n';
    }
    while (words.endsWith(QStringLiteral("\n\n")))
        words.chop(1);
    return words;
}

std::vector<QRect> pageHits(const Sheet& sheet, const PageLayout& layout, int number, const QString& text)
{
    const PrintedPage page = layout.page(number);
    const PageCells cells(sheet, page);
    const PageBox& body = layout.body();
    const auto onPaper = [&](const PageBox& box) {
        const auto scaled = [&](int place, int from) {
            return from + static_cast<int>(std::lround((place - from) * layout.scale()));
        };
        return QRect(QPoint(scaled(box.left, body.left), scaled(box.top, body.top)),
                     QPoint(scaled(box.right(), body.left) - 1, scaled(box.bottom(), body.top) - 1));
    };
    std::vector<QRect> hits;
    addHeaderHits(hits, layout.header(), layout.printable().top, layout, number, text);
    for (int row = 0; row < cells.rows(); ++row)
        for (int column = 0; column < cells.columns(); ++column) {
            if (!shownAt(cells, row, column).contains(text, Qt::CaseInsensitive))
                continue;
            const int span = cells.at(row, column).span;
            hits.push_back(onPaper(span < 0 ? cells.boxOf(row, column)
                                            : cells.spans()[static_cast<std::size_t>(span)].visible));
        }
    addHeaderHits(hits, layout.footer(), layout.footerTop(), layout, number, text);
    return hits;
}

} // namespace spreadsheet
