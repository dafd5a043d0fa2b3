#pragma once
#include "platform/basicdata/ChooserEntry.h"

#include <QAbstractItemModel>
#include <QStringList>

#include <vector>

namespace selfreport {

/// Entries as a tree, of which a search leaves those that match and what stands above them.
class EntryTree : public QAbstractItemModel {
public:
    EntryTree(QStringList headings, std::vector<ChooserEntry> entries, QObject* parent);

    /// Leaves the entries whose code, name or pinyin initials hold the text, letter case and width ignored.
    /// An empty text leaves all.
    void search(const QString& text);

    /// Whom the search means: the first entry whose code begins with the text, else the first match.
    QModelIndex bestMatch() const;

    /// Whether any entry stands below another.
    bool hasLevels() const;

    const ChooserEntry& entry(const QModelIndex& index) const;
    int visibleCount() const { return m_visibleCount; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    /// What is searched in, folded; the initials come last.
    struct SearchText {
        QString code, name, initials;
    };
    bool matches(const SearchText& text) const;
    void rebuild();
    QModelIndex indexOf(int entry) const;
    const std::vector<int>& childrenOf(const QModelIndex& parent) const;

    QStringList m_headings;
    std::vector<ChooserEntry> m_entries;
    std::vector<SearchText> m_searchTexts;
    QString m_search;
    // One more than there are entries: the last one stands for the top level.
    std::vector<std::vector<int>> m_children;
    std::vector<int> m_rowInParent;
    int m_bestMatch = -1;
    int m_visibleCount = 0;
};

} // namespace selfreport
