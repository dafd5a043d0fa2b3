#pragma once
#include <QElapsedTimer>
#include <QTableView>

#include <string>
#include <vector>

namespace selfreport {

class ListRows;

struct ListColumn {
    const char* heading;                                        ///< UTF-8
    int width;                                                  ///< twips (1/1440 inch)
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter; ///< of its texts
};

/// A list with one heading row. Rows count from 0: row 0 is the heading, data rows follow in the order in
/// which they were added, however the user sorts what is shown. Columns count from 0.
///
/// One row is current; the first row that is added becomes it. A click on a heading sorts by that column,
/// a second one downwards, a third one takes the rows' own order. What is typed searches: the beginning of a
/// text or of its pinyin initials, else what stands within. Columns have their widths while the list is as
/// wide as it opened, and fill it once it is wider.
class ListGrid : public QTableView {
    Q_OBJECT

public:
    explicit ListGrid(QWidget* parent = nullptr);

    void setColumns(const std::vector<ListColumn>& columns);

    /// @param text      one text for each column, joined by tabs
    /// @param sortText  likewise, for columns that do not sort by what they show; "" sorts as shown
    void addRow(const QString& text, const QString& sortText = {});
    /// One column's text out of a name, in UTF-8: a tab or line end in it would begin another column or line.
    static QString columnText(const std::string& name);

    /// The last row is current after its removal, or what follows the removed row. Row 0 or a row that is
    /// not there: nothing happens.
    void removeRow(int row);

    /// Leaves the heading only.
    void clearRows();

    int rowCount() const; ///< with the heading
    int row() const;      ///< current row; 0: the heading, none of the data rows
    void setRow(int row); ///< row 0, or one that is not there: no data row is current

    /// "" for a place outside the list.
    QString text(int row, int column) const;

    int columnTwips(int column) const;

    void keyboardSearch(const QString& typed) override;

Q_SIGNALS:
    /// A data row, now current, was double-clicked.
    void dblClick();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void sortByHeading(int column);
    void stretchColumns();

    ListRows* m_rows;
    int m_sortColumn = -1; ///< -1: the rows' own order
    bool m_sortsDown = false;
    std::vector<int> m_widths; ///< pixels: those of the columns where they are not stretched
    int m_opened = 0;          ///< width in which the list opened; 0: it has not yet
    bool m_isStretching = false;
    QString m_searched; ///< typed so far
    QElapsedTimer m_sinceTyped;
};

} // namespace selfreport
