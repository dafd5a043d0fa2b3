#include "spreadsheet/files/exchange/drop_down_lists.h"

#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <unordered_map>

namespace spreadsheet {

// Here a cell has entries of its own or those of its column; the files give one list to a rectangle of
// cells. So writing joins cells and columns with equal entries into as few rectangles as it can, and reading
// takes them apart again. A file may claim whole sheets for each of its lists, hence the count of cells that
// reading makes is limited.

namespace {

constexpr std::size_t mostCharacters = 255; ///< of a list's text, its quotes doubled
constexpr int mostCells = 100'000;          ///< of a sheet that lists are read for
constexpr int usualRows = 10'000;           ///< a range of more rows means "and so on"
constexpr int usualColumns = 256;           ///< likewise
constexpr int wholeColumn = 65'536;         ///< rows of the smaller of the two formats

bool fits(const std::vector<std::string>& entries)
{
    std::string text;
    for (const std::string& entry : entries) {
        if (entry.find(',') != std::string::npos || entry.find('\0') != std::string::npos)
            return false;
        text += entry + ',';
        text.append(static_cast<std::size_t>(std::ranges::count(entry, '"')), '"');
    }
    return utf16Of(text).size() <= mostCharacters + 1; // the last comma is not written
}

/// Lists of one column from top to bottom, by adding its cells in that order.
class ColumnLists {
public:
    ColumnLists(const Sheet& sheet, const StylePool& styles, std::vector<OfferedList>& lists)
        : m_sheet(sheet)
        , m_styles(styles)
        , m_lists(lists)
        , m_first(lists.size())
    {
    }
    void add(CellAddress at, const DropDownEntries& entries)
    {
        if (m_styles[m_sheet.styleNumber(at)].type != CellType::dropDown || (*entries).empty())
            return;
        const bool goesOn = m_lists.size() > m_first && m_lists.back().range.bottom + 1 == at.row &&
                            m_lists.back().entries == entries;
        if (goesOn)
            ++m_lists.back().range.bottom;
        else
            m_lists.push_back({{at.column, at.row, at.column, at.row}, entries});
    }
    /// Lets the list that ends in the sheet's last row go on to the file's.
    void lengthen(int sheetRows, int fileRows, const DropDownEntries& entries)
    {
        if (m_lists.size() > m_first && m_lists.back().range.bottom == sheetRows &&
            m_lists.back().entries == entries)
            m_lists.back().range.bottom = std::max(sheetRows, fileRows);
    }

private:
    const Sheet& m_sheet;
    const StylePool& m_styles;
    std::vector<OfferedList>& m_lists;
    std::size_t m_first; ///< of this column
};

/// @param lastRow  of the file's sheets: a list of the whole column reaches down to it
void columnLists(const Sheet& sheet, int column, int lastRow, ColumnLists& lists)
{
    const DropDowns& all = sheet.settings().dropDowns;
    const auto first = all.lower_bound({column, 0});
    if (first->first.row != 0) {
        for (auto own = first; own != all.end() && own->first.column == column; ++own)
            lists.add(own->first, own->second);
        return;
    }
    for (int row = 1; row <= sheet.settings().rowCount; ++row) {
        const auto own = all.find({column, row});
        lists.add({column, row}, own == all.end() ? first->second : own->second);
    }
    if (sheet.settings().columnStyles.contains(column))
        lists.lengthen(sheet.settings().rowCount, lastRow, first->second);
}

/// Lists of the same rows in neighbouring columns become one.
void joinAcross(std::vector<OfferedList>& lists)
{
    std::ranges::stable_sort(lists, {}, [](const OfferedList& list) {
        return std::tuple(list.range.top, list.range.bottom, list.range.left);
    });
    std::vector<OfferedList> joined;
    for (const OfferedList& list : lists) {
        const bool goesOn = !joined.empty() && joined.back().range.top == list.range.top &&
                            joined.back().range.bottom == list.range.bottom &&
                            joined.back().range.right + 1 == list.range.left &&
                            joined.back().entries == list.entries;
        if (goesOn)
            joined.back().range.right = list.range.right;
        else
            joined.push_back(list);
    }
    lists = std::move(joined);
}

/// Looks of cells as drop-down cells, whose numbers look as they did.
class DropDownStyles {
public:
    explicit DropDownStyles(StylePool& pool)
        : m_pool(pool)
    {
    }
    std::uint32_t of(std::uint32_t number)
    {
        std::uint32_t& found = m_made[number];
        if (found == 0) {
            CellStyle style = m_pool[number];
            if (style.numberFormat.empty() && style.type != CellType::edit)
                style.numberFormat = Text(formatCodeOf(style));
            style.type = CellType::dropDown;
            style.decimals = CellStyle().decimals;
            found = m_pool.intern(style);
        }
        return found;
    }

private:
    StylePool& m_pool;
    std::unordered_map<std::uint32_t, std::uint32_t> m_made;
};

std::uint32_t styleOr(const std::map<int, std::uint32_t>& styles, int index, std::uint32_t otherwise)
{
    const auto found = styles.find(index);
    return found == styles.end() ? otherwise : found->second;
}

class ListPlacer {
public:
    ListPlacer(Sheet& sheet, SheetSettings& settings, StylePool& pool)
        : m_sheet(sheet)
        , m_settings(settings)
        , m_styles(pool)
        , m_rows(settings.rowCount)
        , m_columns(settings.columnCount)
    {
    }

    /// False if that makes too many cells.
    bool place(const OfferedList& list)
    {
        CellRange range = list.range;
        if (range.columns() > usualColumns)
            range.right = std::min(range.right, m_columns);
        const bool isWhole = range.top == 1 && range.bottom >= wholeColumn;
        if (range.rows() > usualRows)
            range.bottom = std::min(range.bottom, m_rows);
        for (int column = range.left; column <= range.right; ++column) {
            const bool fits = isWhole ? columnList(column, list.entries)
                                      : cellLists(column, range.top, range.bottom, &list.entries);
            if (!fits)
                return false;
        }
        m_settings.rowCount = std::max(m_settings.rowCount, range.bottom);
        m_settings.columnCount = std::max(m_settings.columnCount, range.right);
        return true;
    }

private:
    bool columnList(int column, const DropDownEntries& entries)
    {
        m_settings.dropDowns.insert_or_assign({column, 0}, entries);
        m_settings.columnStyles[column] = m_styles.of(styleOr(m_settings.columnStyles, column, 0));
        std::vector<std::pair<int, int>> stored;
        for (const Column::Slot& slot : m_sheet.loadColumn(column).slots())
            stored.emplace_back(slot.firstRow, slot.lastRow());
        return --m_left >= 0 && std::ranges::all_of(stored, [&](const auto& rows) {
            return cellLists(column, rows.first, rows.second, nullptr);
        });
    }

    bool cellLists(int column, int first, int last, const DropDownEntries* entries)
    {
        --m_left; // for a column where no cell is left
        for (int row = first; row <= last && --m_left >= 0; ++row)
            cellList({column, row}, entries);
        return m_left >= 0;
    }

    void cellList(CellAddress at, const DropDownEntries* entries)
    {
        const Column::Place place = m_sheet.loadColumn(at.column).writable(at.row);
        std::uint32_t style = place.block.style(place.index);
        if (style == 0)
            style = styleOr(m_settings.rowStyles, at.row, styleOr(m_settings.columnStyles, at.column, 0));
        place.block.setStyle(place.index, m_styles.of(style));
        if (entries)
            m_settings.dropDowns.insert_or_assign(at, *entries);
    }

    Sheet& m_sheet;
    SheetSettings& m_settings;
    DropDownStyles m_styles;
    int m_rows, m_columns;
    int m_left = mostCells;
};

} // namespace

std::vector<OfferedList> writtenLists(const Sheet& sheet, const StylePool& styles, int lastRow,
                                      Warnings& warnings)
{
    const DropDowns& all = sheet.settings().dropDowns;
    std::vector<OfferedList> lists;
    for (auto next = all.begin(); next != all.end();) {
        const int column = next->first.column;
        ColumnLists ofColumn(sheet, styles, lists);
        columnLists(sheet, column, lastRow, ofColumn);
        next = all.lower_bound({column + 1, 0});
    }
    joinAcross(lists);
    std::erase_if(lists, [&](const OfferedList& list) {
        if (fits(*list.entries))
            return false;
        warnings.add("表“" + sheet.name() + "”的 " + cellName({list.range.left, list.range.top}) +
                     " 等单元格的下拉列表没有写出: 列表项合计超过 255 个字,或含有逗号");
        return true;
    });
    return lists;
}

std::vector<std::string> listEntries(std::string_view text, char separator)
{
    std::vector<std::string> entries;
    if (text.empty())
        return entries;
    for (std::size_t begin = 0;;) {
        const std::size_t end = text.find(separator, begin);
        entries.emplace_back(ascii::trimmed(text.substr(begin, end - begin), " "));
        if (end == std::string_view::npos)
            return entries;
        begin = end + 1;
    }
}

void placeLists(const std::vector<OfferedList>& lists, Sheet& sheet, SheetSettings& settings,
                StylePool& styles, Warnings& warnings)
{
    ListPlacer placer(sheet, settings, styles);
    for (const OfferedList& list : lists) {
        if (!placer.place(list)) {
            warnings.add("表“" + sheet.name() + "”的下拉列表太多,只引入了前面的 100,000 个单元格");
            return;
        }
    }
}

} // namespace spreadsheet
