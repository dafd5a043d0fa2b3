#pragma once
#include "spreadsheet/cells/StyleNumbers.h"
#include "spreadsheet/values/Value.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace spreadsheet {

/// The eight bytes of a stored value; which member counts is told by the ValueKind beside it.
union Payload {
    std::uint64_t bits;
    double number;
    bool boolean;
    CellError error;
    Text::Body* text;
};

/// Up to 1,024 cells of one column below each other, shared copy-on-write between the sheet and
/// its undo steps. Values lie densely; what few cells have (styles, formulas, tags, shown texts)
/// takes memory only in blocks that have it.
class CellBlock {
public:
    static constexpr int maxCells = 1024;

    /// A block of `count` empty cells.
    explicit CellBlock(int count);
    CellBlock(const CellBlock& other);
    CellBlock& operator=(const CellBlock&) = delete;
    ~CellBlock();

    int count() const { return m_count; }
    /// True only if every cell holds a number.
    bool allNumbers() const;
    const Payload* payloads() const { return m_payloads; }
    const ValueKind* kinds() const { return m_kinds; }
    /// Null if no cell of the block has one.
    const std::uint32_t* formulas() const { return m_formulas.get(); }

    Value value(int index) const;
    void setValue(int index, Value value);
    /// The quick road of a recalculation.
    void setNumber(int index, double number)
    {
        if (m_kinds[index] != ValueKind::number) {
            dropText(index);
            m_kinds[index] = ValueKind::number;
        }
        m_payloads[index].number = number;
    }
    /// Writes `count` numbers from `first` on.
    void setNumbers(int first, const double* numbers, int count);

    bool hasStyles() const { return m_styles.any(); }
    std::uint32_t style(int index) const { return m_styles[index]; }
    void setStyle(int index, std::uint32_t style) { m_styles.set(index, style, m_count, m_capacity); }
    /// The same style or formula for `count` cells from `first` on.
    void setStyles(int first, int count, std::uint32_t style);
    void setFormulas(int first, int count, std::uint32_t formula);
    std::uint32_t formula(int index) const { return m_formulas ? m_formulas[index] : 0; }
    void setFormula(int index, std::uint32_t formula);
    Text tag(int index) const { return m_tags ? m_tags[index] : Text(); }
    void setTag(int index, Text tag);
    Text shown(int index) const { return m_shown ? m_shown[index] : Text(); }
    void setShown(int index, Text text);
    bool hasShown() const { return m_shown != nullptr; }
    bool hasTags() const { return m_tags != nullptr; }

    /// True if the cell holds a value, a formula, a tag or a shown text.
    bool holdsData(int index) const;

    /// Appends empty cells.
    void grow(int count);
    /// Puts empty cells before the first one.
    void growAtFront(int count);
    /// A block of the cells from `first` on.
    std::unique_ptr<CellBlock> slice(int first, int count) const;
    /// Overwrites cells from `at` on with cells of another block, everything included.
    void copyCells(int at, const CellBlock& other, int first, int count);

    /// Bytes held, bookkeeping of the allocator left out.
    std::size_t bytes() const;
    /// Bytes of texts, those of shared ones in proportion.
    std::size_t textBytes() const;

    std::uint32_t references = 0; ///< counted by BlockPointer

private:
    void allocate(int capacity);
    void reserve(int capacity, int shift);
    void dropText(int index)
    {
        if (m_kinds[index] == ValueKind::text)
            Text::release(m_payloads[index].text);
    }

    std::uint16_t m_count = 0;
    std::uint16_t m_capacity = 0;
    Payload* m_payloads = nullptr; ///< one allocation holds payloads, then kinds
    ValueKind* m_kinds = nullptr;
    StyleNumbers m_styles;
    std::unique_ptr<std::uint32_t[]> m_formulas;
    std::unique_ptr<Text[]> m_tags;
    std::unique_ptr<Text[]> m_shown;
};

/// Shared ownership of a block; a block with one owner may be written.
class BlockPointer {
public:
    BlockPointer() = default;
    explicit BlockPointer(CellBlock* block)
        : m_block(block)
    {
        retain();
    }
    BlockPointer(const BlockPointer& other)
        : m_block(other.m_block)
    {
        retain();
    }
    BlockPointer(BlockPointer&& other) noexcept
        : m_block(std::exchange(other.m_block, nullptr))
    {
    }
    BlockPointer& operator=(BlockPointer other) noexcept
    {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~BlockPointer()
    {
        if (m_block && --m_block->references == 0)
            delete m_block;
    }

    const CellBlock* operator->() const { return m_block; }
    const CellBlock& operator*() const { return *m_block; }
    const CellBlock* get() const { return m_block; }
    /// The block to write to: itself if nobody shares it, else a copy that takes its place.
    CellBlock& writable()
    {
        if (m_block->references > 1)
            *this = BlockPointer(new CellBlock(*m_block));
        return *m_block;
    }
    /// The block itself although shared: only for computed values, which every owner may see.
    CellBlock& shared() const { return *m_block; }
    friend bool operator==(const BlockPointer& a, const BlockPointer& b) { return a.m_block == b.m_block; }

private:
    void retain()
    {
        if (m_block)
            ++m_block->references;
    }
    CellBlock* m_block = nullptr;
};

} // namespace spreadsheet
