#include "spreadsheet/print/page_words.h"

#include "spreadsheet/print/PageCells.h"

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

std::optional<int> pageShowing(const Sheet& sheet, const PageLayout& layout, const QString& text, int from)
{
    const int pages = layout.pageCount();
    for (int step = 1; !text.isEmpty() && step <= pages; ++step) {
        const int number = (from - 1 + step) % pages + 1;
        if (pageWords(sheet, layout, number).contains(text, Qt::CaseInsensitive))
            return number;
    }
    return std::nullopt;
}

} // namespace spreadsheet
