#pragma once
#include <QAbstractTableModel>
#include <QCollator>
#include <QStringList>

#include <vector>

namespace selfreport {

/// The rows of a list grid in the order in which they were added, and the order in which they are shown.
/// Rows count from 0 here, without the heading.
class ListRows : public QAbstractTableModel {
public:
    explicit ListRows(QObject* parent);

    void setHeadings(const QStringList& headings, std::vector<Qt::Alignment> alignments);
    void add(const QStringList& texts, const QStringList& sortTexts);
    void remove(int row);
    void clear();

    /// Orders what is shown by a column; -1: the rows' own order.
    void sortBy(int column, Qt::SortOrder order);

    QString text(int row, int column) const;
    const QStringList& textsOf(int row) const { return m_rows[static_cast<std::size_t>(row)].texts; }
    int shownAt(int row) const; ///< where a row is shown
    int rowShown(int shown) const { return m_shown[static_cast<std::size_t>(shown)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row {
        QStringList texts, sortTexts;
    };
    bool comesBefore(int left, int right) const;
    QVariant alignmentOf(int column) const;
    const QString& sortText(int row) const;

    QStringList m_headings;
    std::vector<Qt::Alignment> m_alignments;
    std::vector<Row> m_rows;
    std::vector<int> m_shown; // row numbers in the order shown
    int m_sortColumn = -1;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    QCollator m_collator;
};

} // namespace selfreport
