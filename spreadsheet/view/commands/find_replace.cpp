#include "spreadsheet/view/commands/find_replace.h"

#include "spreadsheet/display/display_text.h"
#include "spreadsheet/view/commands/edited_text.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Looks through a sheet a band of rows at a time, so that the first cell in reading order is known without
/// reading the whole sheet.
class SheetSearch {
public:
    SheetSearch(const Sheet& sheet, const Search& search)
        : m_sheet(sheet)
        , m_search(search)
        , m_text(search.what, search.options)
        , m_within(search.within)
    {
        m_within.right = std::min(m_within.right, sheet.storedColumns());
        m_within.bottom = std::min(m_within.bottom, sheet.lastDataRow());
    }

    const CellRange& within() const { return m_within; }

    /// Cells of the rows in reading order.
    std::vector<CellAddress> cellsIn(int top, int bottom) const
    {
        std::vector<CellAddress> found;
        for (int column = m_within.left; column <= m_within.right; ++column) {
            const auto& slots = m_sheet.column(column)->slots();
            for (std::size_t slot = m_sheet.column(column)->lowerSlot(top);
                 slot < slots.size() && slots[slot].firstRow <= bottom; ++slot)
                searchBlock(slots[slot], column, top, bottom, found);
        }
        std::ranges::sort(found, {}, [](CellAddress cell) { return std::pair(cell.row, cell.column); });
        return found;
    }

private:
    void searchBlock(const Column::Slot& slot, int column, int top, int bottom,
                     std::vector<CellAddress>& found) const
    {
        const int last = std::min(bottom, slot.lastRow());
        for (int row = std::max(top, slot.firstRow); row <= last; ++row) {
            if (holds(*slot.block, row - slot.firstRow, {column, row}))
                found.push_back({column, row});
        }
    }

    bool holds(const CellBlock& block, int index, CellAddress cell) const
    {
        const std::uint32_t formula = block.formula(index);
        if (m_search.in == SearchIn::formulas && formula != 0)
            return m_text.finds("=" + m_sheet.formula(cell));
        if (block.hasShown() && !block.shown(index).empty())
            return m_text.finds(block.shown(index).view());
        switch (block.kinds()[index]) {
        case ValueKind::empty:
            return false;
        case ValueKind::text: {
            const Text::Body* body = block.payloads()[index].text;
            return m_text.finds(body ? std::string_view(body->bytes(), body->size) : std::string_view());
        }
        case ValueKind::number:
            if (!m_text.mayBeInFigure())
                return false;
            break;
        default:
            break;
        }
        return m_text.finds(displayText(block.value(index), m_sheet.style(cell)));
    }

    const Sheet& m_sheet;
    const Search& m_search;
    TextSearch m_text;
    CellRange m_within;
};

constexpr int bandRows = 1024;

bool comesBefore(CellAddress a, CellAddress b)
{
    return std::pair(a.row, a.column) < std::pair(b.row, b.column);
}

std::optional<CellAddress> firstAfter(const SheetSearch& search, CellAddress from)
{
    for (int top = std::max(search.within().top, from.row); top <= search.within().bottom; top += bandRows) {
        for (const CellAddress cell :
             search.cellsIn(top, std::min(top + bandRows - 1, search.within().bottom))) {
            if (comesBefore(from, cell))
                return cell;
        }
    }
    return std::nullopt;
}

std::optional<CellAddress> lastBefore(const SheetSearch& search, CellAddress from)
{
    for (int bottom = std::min(search.within().bottom, from.row); bottom >= search.within().top;
         bottom -= bandRows) {
        const auto cells = search.cellsIn(std::max(search.within().top, bottom - bandRows + 1), bottom);
        const auto found = std::find_if(cells.rbegin(), cells.rend(),
                                        [from](CellAddress cell) { return comesBefore(cell, from); });
        if (found != cells.rend())
            return *found;
    }
    return std::nullopt;
}

bool readsAsDate(std::string_view text)
{
    const auto type = typedConstant(text).type;
    return type == CellType::date || type == CellType::time;
}

/// Why the cell keeps what it has, or that it was replaced.
bool replaceCell(Workbook& workbook, Sheet& sheet, CellAddress cell, const TextSearch& search,
                 std::string_view replacement)
{
    if (sheet.arrayRange(cell))
        return false;
    if (sheet.hasFormula(cell)) {
        const auto text = search.replaced("=" + sheet.formula(cell), replacement);
        return text && text->starts_with('=') && text->size() > 1 &&
               !enterFormula(workbook, sheet, cell, *text);
    }
    const Value value = sheet.value(cell);
    // A number is replaced in what the editor shows of it: what the cell shows may be rounded or scaled.
    const std::string whole =
        value.isText() ? std::string(value.textView()) : editedText(workbook, sheet, cell);
    const auto text = search.replaced(whole, replacement);
    if (!text)
        return false;
    const bool staysText = typedConstant(*text).value.isText() || isDigitCode(withoutPadding(*text)) ||
                           (readsAsDate(whole) && readsAsDate(*text));
    if (value.isText() && staysText && !text->starts_with('=')) {
        sheet.setText(cell, *text);
        return true;
    }
    return !enterText(workbook, sheet, cell, *text, TypedInto::nothing);
}

} // namespace

std::optional<CellAddress> findNext(const Sheet& sheet, const Search& search, CellAddress from,
                                    bool backwards)
{
    const SheetSearch found(sheet, search);
    if (backwards) {
        const auto before = lastBefore(found, from);
        return before ? before : lastBefore(found, {maxColumns + 1, maxRows});
    }
    const auto after = firstAfter(found, from);
    return after ? after : firstAfter(found, {0, 1});
}

std::vector<CellAddress> findAll(const Sheet& sheet, const Search& search, std::size_t limit)
{
    const SheetSearch found(sheet, search);
    std::vector<CellAddress> all;
    for (int top = found.within().top; top <= found.within().bottom && all.size() < limit; top += bandRows) {
        const auto band = found.cellsIn(top, std::min(top + bandRows - 1, found.within().bottom));
        all.insert(all.end(), band.begin(), band.end());
    }
    all.resize(std::min(all.size(), limit));
    return all;
}

Replacement replaceIn(Workbook& workbook, Sheet& sheet, const std::vector<CellAddress>& cells,
                      const Search& search, std::string_view replacement)
{
    const TextSearch text(search.what, search.options);
    const UndoStep step(workbook, "替换");
    Replacement result;
    for (const CellAddress cell : cells) {
        if (replaceCell(workbook, sheet, cell, text, replacement))
            ++result.replaced;
        else
            result.kept.push_back(cell);
    }
    return result;
}

} // namespace spreadsheet
