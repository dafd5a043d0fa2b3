#include "platform/list_grid/ListGrid.h"

#include "platform/list_grid/ListRows.h"
#include "platform/windows/twips.h"

#include <QHeaderView>

#include <algorithm>

namespace selfreport {

ListGrid::ListGrid(QWidget* parent)
    : QTableView(parent)
    , m_rows(new ListRows(this))
{
    setModel(m_rows);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false); // Tab goes to the next control
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + fontMetrics().height() / 2);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(true);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &ListGrid::sortByHeading);
    connect(this, &QAbstractItemView::doubleClicked, this, &ListGrid::dblClick);
}

void ListGrid::setColumns(const std::vector<ListColumn>& columns)
{
    QStringList headings;
    std::vector<Qt::Alignment> alignments;
    for (const ListColumn& column : columns) {
        headings.append(QString::fromUtf8(column.heading));
        alignments.push_back(column.alignment);
    }
    m_rows->setHeadings(headings, alignments);
    for (std::size_t index = 0; index < columns.size(); ++index)
        setColumnWidth(static_cast<int>(index), pixelsOf(columns[index].width, *this));
}

void ListGrid::addRow(const QString& text, const QString& sortText)
{
    m_rows->add(text.split('\t'), sortText.isEmpty() ? QStringList() : sortText.split('\t'));
    if (rowCount() == 2)
        setRow(1);
}

void ListGrid::removeRow(int row)
{
    if (row < 1 || row >= rowCount())
        return;
    const bool wasCurrent = row == this->row();
    const int shown = m_rows->shownAt(row - 1);
    m_rows->remove(row - 1);
    if (!wasCurrent)
        return;
    const int last = m_rows->rowCount() - 1;
    setRow(last < 0 ? 0 : m_rows->rowShown(std::min(shown, last)) + 1);
}

void ListGrid::clearRows()
{
    m_rows->clear();
}

int ListGrid::rowCount() const
{
    return m_rows->rowCount() + 1;
}

int ListGrid::row() const
{
    return currentIndex().isValid() ? m_rows->rowShown(currentIndex().row()) + 1 : 0;
}

void ListGrid::setRow(int row)
{
    if (row < 1 || row >= rowCount()) {
        selectionModel()->clear();
        return;
    }
    setCurrentIndex(m_rows->index(m_rows->shownAt(row - 1), std::max(currentIndex().column(), 0)));
}

QString ListGrid::text(int row, int column) const
{
    if (row == 0)
        return m_rows->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    return row > 0 && row < rowCount() ? m_rows->text(row - 1, column) : QString();
}

int ListGrid::columnTwips(int column) const
{
    return twipsOf(columnWidth(column), *this);
}

void ListGrid::focusInEvent(QFocusEvent* event)
{
    const bool noneWasCurrent = row() == 0;
    QTableView::focusInEvent(event);
    if (noneWasCurrent)
        setRow(0); // the toolkit would make the first one current without showing it
}

/// Home and End lead to the first and the last row: whole rows are chosen here.
QModelIndex ListGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const bool home = action == MoveHome || action == MoveEnd;
    return QTableView::moveCursor(action, home ? modifiers | Qt::ControlModifier : modifiers);
}

void ListGrid::sortByHeading(int column)
{
    const bool again = column == m_sortColumn;
    m_sortColumn = again && m_sortsDown ? -1 : column;
    m_sortsDown = again && !m_sortsDown;
    const Qt::SortOrder order = m_sortsDown ? Qt::DescendingOrder : Qt::AscendingOrder;
    m_rows->sortBy(m_sortColumn, order);
    horizontalHeader()->setSortIndicatorShown(m_sortColumn >= 0);
    horizontalHeader()->setSortIndicator(m_sortColumn, order);
    if (currentIndex().isValid())
        scrollTo(currentIndex());
}

} // namespace selfreport
