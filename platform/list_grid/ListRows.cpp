#include "platform/list_grid/ListRows.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace selfreport {

ListRows::ListRows(QObject* parent)
    : QAbstractTableModel(parent)
    , m_collator(QLocale(QLocale::Chinese, QLocale::China)) // pinyin, whatever the user's language
{
    m_collator.setNumericMode(true); // 科目9 before 科目10
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

void ListRows::setHeadings(const QStringList& headings, std::vector<Qt::Alignment> alignments)
{
    beginResetModel();
    m_headings = headings;
    m_alignments = std::move(alignments);
    endResetModel();
}

void ListRows::add(const QStringList& texts, const QStringList& sortTexts)
{
    const int row = static_cast<int>(m_rows.size());
    m_rows.push_back({texts, sortTexts});
    const auto place =
        m_sortColumn < 0 ? m_shown.end()
                         : std::upper_bound(m_shown.begin(), m_shown.end(), row,
                                            [this](int left, int right) { return comesBefore(left, right); });
    const int shown = static_cast<int>(place - m_shown.begin());
    beginInsertRows({}, shown, shown);
    m_shown.insert(place, row);
    endInsertRows();
}

void ListRows::remove(int row)
{
    const int shown = shownAt(row);
    beginRemoveRows({}, shown, shown);
    m_rows.erase(m_rows.begin() + row);
    m_shown.erase(m_shown.begin() + shown);
    for (int& other : m_shown)
        other -= other > row;
    endRemoveRows();
}

void ListRows::clear()
{
    beginResetModel();
    m_rows.clear();
    m_shown.clear();
    endResetModel();
}

void ListRows::sortBy(int column, Qt::SortOrder order)
{
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList formerIndexes = persistentIndexList();
    std::vector<int> formerRows;
    for (const QModelIndex& index : formerIndexes)
        formerRows.push_back(rowShown(index.row()));
    m_sortColumn = column;
    m_order = order;
    std::iota(m_shown.begin(), m_shown.end(), 0);
    if (column >= 0)
        std::stable_sort(m_shown.begin(), m_shown.end(),
                         [this](int left, int right) { return comesBefore(left, right); });
    for (qsizetype entry = 0; entry < formerIndexes.size(); ++entry)
        changePersistentIndex(
            formerIndexes[entry],
            index(shownAt(formerRows[static_cast<std::size_t>(entry)]), formerIndexes[entry].column()));
    Q_EMIT layoutChanged();
}

const QString& ListRows::sortText(int row) const
{
    static const QString none;
    const Row& found = m_rows[static_cast<std::size_t>(row)];
    if (m_sortColumn < found.sortTexts.size() && !found.sortTexts[m_sortColumn].isEmpty())
        return found.sortTexts[m_sortColumn];
    return m_sortColumn < found.texts.size() ? found.texts[m_sortColumn] : none;
}

/// Numbers by their value before texts; equal rows stay in their own order.
bool ListRows::comesBefore(int left, int right) const
{
    const bool descending = m_order == Qt::DescendingOrder;
    const QString& first = sortText(descending ? right : left);
    const QString& second = sortText(descending ? left : right);
    bool firstIsNumber = false;
    bool secondIsNumber = false;
    const double firstNumber = first.toDouble(&firstIsNumber);
    const double secondNumber = second.toDouble(&secondIsNumber);
    if (firstIsNumber && secondIsNumber)
        return firstNumber < secondNumber;
    if (firstIsNumber != secondIsNumber)
        return firstIsNumber;
    return m_collator.compare(first, second) < 0;
}

QString ListRows::text(int row, int column) const
{
    return m_rows.at(static_cast<std::size_t>(row)).texts.value(column);
}

int ListRows::shownAt(int row) const
{
    if (m_sortColumn < 0)
        return row;
    return static_cast<int>(std::find(m_shown.begin(), m_shown.end(), row) - m_shown.begin());
}

int ListRows::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ListRows::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headings.size());
}

QVariant ListRows::alignmentOf(int column) const
{
    const auto place = static_cast<std::size_t>(column);
    return place < m_alignments.size() ? int(m_alignments[place]) : int(Qt::AlignLeft | Qt::AlignVCenter);
}

QVariant ListRows::data(const QModelIndex& index, int role) const
{
    if (index.isValid() && role == Qt::TextAlignmentRole)
        return alignmentOf(index.column());
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return text(rowShown(index.row()), index.column());
}

QVariant ListRows::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headings.value(section);
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole)
        return alignmentOf(section);
    return {};
}

} // namespace selfreport
