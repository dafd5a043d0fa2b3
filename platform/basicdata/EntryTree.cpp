#include "platform/basicdata/EntryTree.h"

#include "platform/pinyin/pinyin_initials.h"

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

QString folded(const QString& text)
{
    return text.normalized(QString::NormalizationForm_KC).toCaseFolded();
}

} // namespace

EntryTree::EntryTree(QStringList headings, std::vector<ChooserEntry> entries, QObject* parent)
    : QAbstractItemModel(parent)
    , m_headings(std::move(headings))
    , m_entries(std::move(entries))
    , m_children(m_entries.size() + 1)
    , m_rowInParent(m_entries.size())
{
    m_searchTexts.reserve(m_entries.size());
    for (const ChooserEntry& entry : m_entries)
        m_searchTexts.push_back({folded(entry.code), folded(entry.name), pinyinInitials(entry.name)});
    rebuild();
}

void EntryTree::search(const QString& text)
{
    beginResetModel();
    m_search = folded(text.trimmed());
    rebuild();
    endResetModel();
}

bool EntryTree::matches(const SearchText& text) const
{
    return text.code.contains(m_search) || text.name.contains(m_search) || text.initials.contains(m_search);
}

void EntryTree::rebuild()
{
    for (std::vector<int>& children : m_children)
        children.clear();
    const int count = static_cast<int>(m_entries.size());
    std::vector<bool> visible(m_entries.size());
    m_bestMatch = -1;
    bool codeBegins = false;
    for (int index = 0; index < count; ++index) {
        const auto position = static_cast<std::size_t>(index);
        if (!matches(m_searchTexts[position]))
            continue;
        const bool begins = m_searchTexts[position].code.startsWith(m_search);
        if (m_bestMatch < 0 || (begins && !codeBegins))
            m_bestMatch = index;
        codeBegins = codeBegins || begins;
        for (int above = index; above >= 0 && !visible[static_cast<std::size_t>(above)];
             above = m_entries[static_cast<std::size_t>(above)].parent)
            visible[static_cast<std::size_t>(above)] = true;
    }
    m_visibleCount = 0;
    for (int index = 0; index < count; ++index) {
        const auto position = static_cast<std::size_t>(index);
        if (!visible[position])
            continue;
        const int parent = m_entries[position].parent;
        std::vector<int>& siblings = m_children[static_cast<std::size_t>(parent < 0 ? count : parent)];
        m_rowInParent[position] = static_cast<int>(siblings.size());
        siblings.push_back(index);
        ++m_visibleCount;
    }
}

QModelIndex EntryTree::bestMatch() const
{
    return m_bestMatch < 0 ? QModelIndex() : indexOf(m_bestMatch);
}

QModelIndex EntryTree::indexOf(int entry) const
{
    return createIndex(m_rowInParent[static_cast<std::size_t>(entry)], 0, static_cast<quintptr>(entry));
}

bool EntryTree::hasLevels() const
{
    return std::ranges::any_of(m_entries, [](const ChooserEntry& entry) { return entry.parent >= 0; });
}

const ChooserEntry& EntryTree::entry(const QModelIndex& index) const
{
    return m_entries.at(index.internalId());
}

const std::vector<int>& EntryTree::childrenOf(const QModelIndex& parent) const
{
    return m_children[parent.isValid() ? parent.internalId() : m_entries.size()];
}

QModelIndex EntryTree::index(int row, int column, const QModelIndex& parent) const
{
    const std::vector<int>& children = childrenOf(parent);
    if (row < 0 || row >= static_cast<int>(children.size()) || column < 0 || column >= columnCount())
        return {};
    return createIndex(row, column, static_cast<quintptr>(children[static_cast<std::size_t>(row)]));
}

QModelIndex EntryTree::parent(const QModelIndex& child) const
{
    const int above = child.isValid() ? entry(child).parent : -1;
    return above < 0 ? QModelIndex() : indexOf(above);
}

int EntryTree::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : static_cast<int>(childrenOf(parent).size());
}

int EntryTree::columnCount(const QModelIndex& /*parent*/) const
{
    return static_cast<int>(m_headings.size());
}

QVariant EntryTree::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    const ChooserEntry& shown = entry(index);
    return index.column() == 0 ? shown.code : index.column() == 1 ? shown.name : shown.detail;
}

QVariant EntryTree::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return m_headings.value(section);
}

} // namespace selfreport
