#include "platform/list_grid/ListGrid.h"

#include "platform/list_grid/ListRows.h"
#include "platform/pinyin/pinyin_initials.h"
#include "platform/windows/twips.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <QTimer>

#include <algorithm>
#include <numeric>

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
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int, int, int) {
        for (int column = 0; !m_isStretching && column < static_cast<int>(m_widths.size()); ++column)
            m_widths[static_cast<std::size_t>(column)] = columnWidth(column);
    });
    connect(this, &QAbstractItemView::doubleClicked, this, &ListGrid::dblClick);
    setAttribute(Qt::WA_InputMethodEnabled); // Chinese is searched too
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
    m_widths.clear();
    for (const ListColumn& column : columns) {
        const int width = pixelsOf(column.width, *this);
        const int heading = horizontalHeader()->sectionSizeHint(static_cast<int>(m_widths.size()));
        m_widths.push_back(width == 0 || !*column.heading ? width : std::max(width, heading));
    }
    stretchColumns();
}

/// By as much as each is wide.
void ListGrid::stretchColumns()
{
    const QScopedValueRollback stretching(m_isStretching, true);
    const int natural = std::accumulate(m_widths.begin(), m_widths.end(), 0);
    const int room = viewport()->width();
    const bool isWider = m_opened > 0 && room > std::max(natural, m_opened);
    int done = 0, edge = 0; // natural ones before the column, and where it begins
    for (std::size_t column = 0; column < m_widths.size(); ++column) {
        done += m_widths[column];
        const int next = isWider ? static_cast<int>(static_cast<long long>(room) * done / natural) : done;
        setColumnWidth(static_cast<int>(column), next - edge);
        edge = next;
    }
}

void ListGrid::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    if (m_opened == 0)
        QTimer::singleShot(0, this, [this] { m_opened = viewport()->width(); }); // once it is laid out
}

void ListGrid::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    stretchColumns();
}

void ListGrid::addRow(const QString& text, const QString& sortText)
{
    m_rows->add(text.split('\t'), sortText.isEmpty() ? QStringList() : sortText.split('\t'));
    if (rowCount() == 2)
        setRow(1);
}

QString ListGrid::columnText(const std::string& name)
{
    QString text = QString::fromStdString(name);
    for (QChar& character : text)
        if (character == '\t' || character == '\n' || character == '\r')
            character = ' ';
    return text;
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

namespace {

/// How well a row's texts fit what is typed: 2 begins so, 1 holds it, 0 neither.
int fit(const QStringList& texts, const QString& typed)
{
    int best = 0;
    for (const QString& text : texts)
        for (const QString& spelling : QStringList(text) + pinyinInitials(text).split('\n')) {
            if (spelling.startsWith(typed, Qt::CaseInsensitive))
                return 2;
            best = std::max(best, static_cast<int>(spelling.contains(typed, Qt::CaseInsensitive)));
        }
    return best;
}

} // namespace

/// Letters that follow soon go on with what was typed; after a pause a search begins behind the current row.
void ListGrid::keyboardSearch(const QString& typed)
{
    constexpr qint64 pause = 1500; // milliseconds; input methods need some
    const bool goesOn = m_sinceTyped.isValid() && m_sinceTyped.elapsed() < pause;
    m_searched = goesOn ? m_searched + typed : typed;
    m_sinceTyped.start();
    const int rows = m_rows->rowCount();
    const int current = currentIndex().isValid() ? currentIndex().row() : rows - 1;
    int found = -1, best = 0;
    for (int step = goesOn ? 0 : 1; step < rows + (goesOn ? 0 : 1) && best < 2; ++step) {
        const int shown = (current + step) % rows;
        const int fits = fit(m_rows->textsOf(m_rows->rowShown(shown)), m_searched);
        if (fits > best) {
            best = fits;
            found = shown;
        }
    }
    if (found >= 0)
        setRow(m_rows->rowShown(found) + 1);
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
