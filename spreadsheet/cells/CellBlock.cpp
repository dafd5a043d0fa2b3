#include "spreadsheet/cells/CellBlock.h"

#include "spreadsheet/cells/stored_value.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace spreadsheet {

// Numbers lie beside numbers and kinds beside kinds, so that sums and block evaluation run over plain
// arrays. What few cells have (formula, tag, shown text) is an array that only blocks with one such cell
// have. It grows at both ends, because cells are typed above others as well as below.

namespace {

int roundedCapacity(int count)
{
    int capacity = 4;
    while (capacity < count)
        capacity *= 2;
    return std::min(capacity, CellBlock::maxCells);
}

/// Moves an optional array into a larger one, its old content starting at `shift`.
template <typename T>
void enlarge(std::unique_ptr<T[]>& array, int count, int capacity, int shift)
{
    if (!array)
        return;
    auto larger = std::make_unique<T[]>(static_cast<std::size_t>(capacity));
    std::move(array.get(), array.get() + count, larger.get() + shift);
    array = std::move(larger);
}

template <typename T>
void setOptional(std::unique_ptr<T[]>& array, int capacity, int index, T value)
{
    if (!array) {
        if (value == T())
            return;
        array = std::make_unique<T[]>(static_cast<std::size_t>(capacity));
    }
    array[index] = std::move(value);
}

template <typename T>
void copyOptional(std::unique_ptr<T[]>& to, int capacity, int at, const std::unique_ptr<T[]>& from, int first,
                  int count)
{
    if (!from && !to)
        return;
    if (!to)
        to = std::make_unique<T[]>(static_cast<std::size_t>(capacity));
    for (int i = 0; i < count; ++i)
        to[at + i] = from ? from[first + i] : T();
}

} // namespace

CellBlock::CellBlock(int count)
{
    allocate(roundedCapacity(count));
    m_count = static_cast<std::uint16_t>(count);
}

CellBlock::CellBlock(const CellBlock& other)
{
    allocate(roundedCapacity(other.m_count));
    m_count = other.m_count;
    copyCells(0, other, 0, other.m_count);
}

CellBlock::~CellBlock()
{
    for (int i = 0; i < m_count; ++i)
        dropText(i);
    ::operator delete(m_payloads);
}

void CellBlock::allocate(int capacity)
{
    const auto size = static_cast<std::size_t>(capacity) * (sizeof(Payload) + sizeof(ValueKind));
    m_payloads = static_cast<Payload*>(::operator new(size));
    m_kinds = reinterpret_cast<ValueKind*>(m_payloads + capacity);
    std::memset(static_cast<void*>(m_payloads), 0, size);
    m_capacity = static_cast<std::uint16_t>(capacity);
}

void CellBlock::reserve(int capacity, int shift)
{
    Payload* const oldPayloads = m_payloads;
    const ValueKind* const oldKinds = m_kinds;
    allocate(roundedCapacity(capacity));
    std::memcpy(static_cast<void*>(m_payloads + shift), oldPayloads, m_count * sizeof(Payload));
    std::memcpy(m_kinds + shift, oldKinds, m_count * sizeof(ValueKind));
    ::operator delete(oldPayloads);
    enlarge(m_formulas, m_count, m_capacity, shift);
    enlarge(m_tags, m_count, m_capacity, shift);
    enlarge(m_shown, m_count, m_capacity, shift);
}

bool CellBlock::allNumbers() const
{
    static const auto wanted = static_cast<unsigned char>(ValueKind::number);
    const auto* kinds = reinterpret_cast<const unsigned char*>(m_kinds);
    unsigned char differing = 0;
    for (int i = 0; i < m_count; ++i)
        differing = static_cast<unsigned char>(differing | (kinds[i] ^ wanted));
    return differing == 0;
}

Value CellBlock::value(int index) const
{
    return storedValue(m_kinds[index], m_payloads[index]);
}

void CellBlock::setValue(int index, Value value)
{
    dropText(index);
    m_kinds[index] = value.kind();
    Payload& payload = m_payloads[index];
    payload.bits = 0;
    switch (value.kind()) {
    case ValueKind::empty:
        break;
    case ValueKind::number:
        payload.number = value.number();
        break;
    case ValueKind::text:
        payload.text = value.text().detach();
        break;
    case ValueKind::boolean:
        payload.boolean = value.boolean();
        break;
    case ValueKind::error:
        payload.error = value.error();
        break;
    }
}

void CellBlock::setNumbers(int first, const double* numbers, int count)
{
    if (std::memchr(m_kinds + first, static_cast<int>(ValueKind::text), static_cast<std::size_t>(count))) {
        for (int i = first; i < first + count; ++i)
            dropText(i);
    }
    std::memset(m_kinds + first, static_cast<int>(ValueKind::number), static_cast<std::size_t>(count));
    std::memcpy(static_cast<void*>(m_payloads + first), numbers,
                static_cast<std::size_t>(count) * sizeof(double));
}

void CellBlock::setFormula(int index, std::uint32_t formula)
{
    setOptional(m_formulas, m_capacity, index, formula);
}

void CellBlock::setStyles(int first, int count, std::uint32_t style)
{
    m_styles.fill(first, count, style, m_count, m_capacity);
}

void CellBlock::setFormulas(int first, int count, std::uint32_t formula)
{
    setFormula(first, formula);
    if (m_formulas)
        std::fill_n(m_formulas.get() + first, count, formula);
}

void CellBlock::setTag(int index, Text tag)
{
    setOptional(m_tags, m_capacity, index, std::move(tag));
}

void CellBlock::setShown(int index, Text text)
{
    setOptional(m_shown, m_capacity, index, std::move(text));
}

bool CellBlock::holdsData(int index) const
{
    return m_kinds[index] != ValueKind::empty || formula(index) != 0 || (m_tags && !m_tags[index].empty()) ||
           (m_shown && !m_shown[index].empty());
}

void CellBlock::grow(int count)
{
    if (m_count + count > m_capacity)
        reserve(m_count + count, 0);
    m_styles.grow(m_count, m_capacity, 0);
    m_count = static_cast<std::uint16_t>(m_count + count);
}

void CellBlock::growAtFront(int count)
{
    reserve(m_count + count, count);
    m_styles.grow(m_count, m_capacity, count);
    m_count = static_cast<std::uint16_t>(m_count + count);
}

std::unique_ptr<CellBlock> CellBlock::slice(int first, int count) const
{
    auto part = std::make_unique<CellBlock>(count);
    part->copyCells(0, *this, first, count);
    return part;
}

void CellBlock::copyCells(int at, const CellBlock& other, int first, int count)
{
    for (int i = 0; i < count; ++i) {
        dropText(at + i);
        if (other.m_kinds[first + i] == ValueKind::text)
            Text::retain(other.m_payloads[first + i].text);
    }
    const auto cells = static_cast<std::size_t>(count);
    std::memcpy(static_cast<void*>(m_payloads + at), other.m_payloads + first, cells * sizeof(Payload));
    std::memcpy(m_kinds + at, other.m_kinds + first, cells * sizeof(ValueKind));
    m_styles.copy(at, other.m_styles, first, count, m_count, m_capacity);
    copyOptional(m_formulas, m_capacity, at, other.m_formulas, first, count);
    copyOptional(m_tags, m_capacity, at, other.m_tags, first, count);
    copyOptional(m_shown, m_capacity, at, other.m_shown, first, count);
}

std::size_t CellBlock::textBytes() const
{
    // A text that several cells share is laid on them in equal parts; the text pool is no owner.
    const auto share = [](const Text::Body* text) {
        return text ? (sizeof(Text::Body) + text->size) / std::max(1U, text->references - 1) : 0;
    };
    std::size_t sum = 0;
    for (int i = 0; i < m_count; ++i) {
        if (m_kinds[i] == ValueKind::text)
            sum += share(m_payloads[i].text);
        sum += m_tags ? m_tags[i].view().size() : 0;
        sum += m_shown ? m_shown[i].view().size() : 0;
    }
    return sum;
}

std::size_t CellBlock::bytes() const
{
    std::size_t perCell = sizeof(Payload) + sizeof(ValueKind);
    perCell += m_formulas ? sizeof(std::uint32_t) : 0;
    perCell += m_tags ? sizeof(Text) : 0;
    perCell += m_shown ? sizeof(Text) : 0;
    return sizeof(CellBlock) + m_styles.bytes() + m_capacity * perCell;
}

} // namespace spreadsheet
