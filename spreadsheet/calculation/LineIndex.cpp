#include "spreadsheet/calculation/LineIndex.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/criteria.h"
#include "spreadsheet/values/folding.h"

#include <bit>

namespace spreadsheet {

namespace {

std::uint64_t bitsOf(double number)
{
    return std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number); // -0 equals 0
}

std::string_view viewOf(const Text::Body* body)
{
    return body ? std::string_view(body->bytes(), body->size) : std::string_view();
}

} // namespace

/// The slot that holds the number, or the free one where it belongs. At most half the slots are taken.
std::size_t NumberPlaces::slotOf(std::uint64_t bits) const
{
    const std::size_t mask = m_slots.size() - 1;
    // Fibonacci hashing: the low bits of round numbers are all zero.
    std::size_t slot = (bits * 0x9E37'79B9'7F4A'7C15ULL) >> 32 & mask;
    while (m_slots[slot] != 0 && m_entries[m_slots[slot] - 1].bits != bits)
        slot = (slot + 1) & mask;
    return slot;
}

void NumberPlaces::grow()
{
    m_slots.assign(std::max<std::size_t>(64, m_slots.size() * 2), 0);
    for (std::uint32_t i = 0; i < m_entries.size(); ++i)
        m_slots[slotOf(m_entries[i].bits)] = i + 1;
}

Places& NumberPlaces::operator[](double number)
{
    if (2 * (m_entries.size() + 1) > m_slots.size())
        grow();
    const std::uint64_t bits = bitsOf(number);
    std::uint32_t& slot = m_slots[slotOf(bits)];
    if (slot == 0) {
        m_entries.push_back({bits, {}});
        slot = static_cast<std::uint32_t>(m_entries.size());
    }
    return m_entries[slot - 1].places;
}

const Places* NumberPlaces::find(double number) const
{
    if (m_slots.empty())
        return nullptr;
    const std::uint32_t entry = m_slots[slotOf(bitsOf(number))];
    return entry == 0 ? nullptr : &m_entries[entry - 1].places;
}

LineIndex::LineIndex(const Book& book, int sheet, CellAddress first, bool down)
    : m_book(book)
    , m_area{sheet, {first.column, first.row, first.column - (down ? 0 : 1), first.row - (down ? 1 : 0)}}
    , m_down(down)
{
}

void LineIndex::extend(int last)
{
    int& end = m_down ? m_area.cells.bottom : m_area.cells.right;
    if (last <= end)
        return;
    Area fresh = m_area;
    (m_down ? fresh.cells.top : fresh.cells.left) = end + 1;
    (m_down ? fresh.cells.bottom : fresh.cells.right) = last;
    forEachStretch(m_book, fresh, [this](const CellStretch& stretch) { add(stretch); });
    end = last;
}

void LineIndex::add(const CellStretch& stretch)
{
    for (int i = 0; i < stretch.count; ++i) {
        const Payload& payload = stretch.payloads[i];
        const int place = m_down ? stretch.firstRow + i : stretch.column;
        if (stretch.kinds[i] == ValueKind::number) {
            m_numbers[payload.number].all.push_back(place);
        } else if (stretch.kinds[i] == ValueKind::text) {
            const TextEntry& entry = textEntry(payload.text);
            entry.places->all.push_back(place);
            if (entry.numeric)
                entry.numeric->all.push_back(place);
        } else if (stretch.kinds[i] == ValueKind::boolean) {
            m_booleans[payload.boolean].all.push_back(place);
        }
    }
}

LineIndex::TextEntry& LineIndex::textEntry(Text::Body* body)
{
    const auto [found, isNew] = m_bodies.try_emplace(body);
    TextEntry& entry = found->second;
    if (!isNew)
        return entry;
    const std::string_view view = viewOf(body);
    const auto number = body && body->countsAsNumber ? std::optional(body->number)
                                                     : numberOfText(view, m_book.countsFrom1904);
    entry.owner = Text::share(body);
    entry.places = &m_texts[foldedText(view)];
    entry.numeric = number ? &m_numericTexts[*number] : nullptr;
    return entry;
}

const Places* LineIndex::text(std::string_view folded) const
{
    const auto found = m_texts.find(folded);
    return found == m_texts.end() ? nullptr : &found->second;
}

const Places* LineIndex::boolean(bool wanted) const
{
    return m_booleans[wanted].all.empty() ? nullptr : &m_booleans[wanted];
}

std::size_t LineIndex::BesideHash::operator()(const BesideKey& key) const
{
    return std::hash<const void*>()(key.rows) ^ (std::hash<std::uint64_t>()(key.column) * 0x9E37'79B9);
}

const Total& LineIndex::totalBeside(const Places& rows, int bottom, int sheet, int column, int shift)
{
    const std::uint64_t key = (static_cast<std::uint64_t>(sheet) << 48) ^
                              (static_cast<std::uint64_t>(column) << 32) ^ static_cast<std::uint32_t>(shift);
    Beside& beside = m_beside[{&rows, key}];
    if (beside.rows > 0 && rows.all[beside.rows - 1] > bottom)
        beside = Beside(); // a shorter range than before
    const BookSheet& cells = m_book.sheet(sheet);
    const Column* const numbers = column <= cells.storedColumns() ? cells.column(column) : nullptr;
    for (; beside.rows < rows.all.size() && rows.all[beside.rows] <= bottom; ++beside.rows) {
        const int row = rows.all[beside.rows] + shift;
        const Column::Slot* slot = numbers ? numbers->find(row) : nullptr;
        if (!slot)
            continue;
        const int at = row - slot->firstRow;
        beside.total.add(
            CellStretch{slot->block->payloads() + at, slot->block->kinds() + at, 1, row, column});
    }
    return beside.total;
}

} // namespace spreadsheet
