#include "spreadsheet/files/content/stored_cells.h"

#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/workbook/Sheet.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace spreadsheet {

// A sheet of a million cells is saved while the user waits, so what lies densely is copied as it lies:
// values block by block, looks and formulas as runs of one number. Only what few cells have is written cell
// by cell, and blocks that have none of it are passed over.

namespace {

static_assert(std::endian::native == std::endian::little, "payloads are written as they lie in memory");

/// A part of a block without the cells at its ends that hold nothing at all.
struct Part {
    int column;
    int firstRow;
    const CellBlock* block;
    int first; ///< index in the block
    int count;
};

std::vector<Part> partsOf(const Sheet& sheet)
{
    std::vector<Part> parts;
    for (int column = 1; column <= sheet.storedColumns(); ++column) {
        for (const Column::Slot& slot : sheet.column(column)->slots()) {
            const CellBlock& block = *slot.block;
            const auto inUse = [&block](int i) { return block.holdsData(i) || block.style(i) != 0; };
            int first = 0, end = block.count();
            while (first < end && !inUse(first))
                ++first;
            while (end > first && !inUse(end - 1))
                --end;
            if (first < end)
                parts.push_back({column, slot.firstRow + first, &block, first, end - first});
        }
    }
    return parts;
}

std::vector<stored::Stretch> stretchesOf(const std::vector<Part>& parts)
{
    std::vector<stored::Stretch> stretches;
    int column = 0, nextRow = 0;
    for (const Part& part : parts) {
        if (part.column == column && part.firstRow == nextRow)
            stretches.back().mutate_count(stretches.back().count() + static_cast<std::uint32_t>(part.count));
        else
            stretches.emplace_back(static_cast<std::uint32_t>(part.firstRow),
                                   static_cast<std::uint32_t>(part.count),
                                   static_cast<std::uint16_t>(part.column));
        column = part.column;
        nextRow = part.firstRow + part.count;
    }
    return stretches;
}

bool allFinite(const Payload* payloads, int count)
{
    constexpr std::uint64_t exponent = 0x7FF0'0000'0000'0000;
    bool finite = true;
    for (int i = 0; i < count; ++i)
        finite &= (payloads[i].bits & exponent) != exponent;
    return finite;
}

void writeValue(const Value& value, TextWriter& texts, std::uint8_t& kind, std::uint64_t& payload)
{
    kind = static_cast<std::uint8_t>(value.kind());
    payload = 0;
    switch (value.kind()) {
    case ValueKind::empty:
        break;
    case ValueKind::number:
        if (std::isfinite(value.number()))
            payload = std::bit_cast<std::uint64_t>(value.number());
        else // a program may put any double into a cell
            writeValue(CellError::num, texts, kind, payload);
        break;
    case ValueKind::text:
        payload = texts.number(value.text());
        break;
    case ValueKind::boolean:
        payload = value.boolean();
        break;
    case ValueKind::error:
        payload = static_cast<std::uint64_t>(value.error());
        break;
    }
}

void writeValues(const std::vector<Part>& parts, TextWriter& texts, std::uint8_t* kinds,
                 std::uint64_t* payloads)
{
    for (const Part& part : parts) {
        const Payload* const from = part.block->payloads() + part.first;
        const auto count = static_cast<std::size_t>(part.count);
        if (part.block->allNumbers() && allFinite(from, part.count)) {
            std::memcpy(payloads, from, count * sizeof(Payload));
            std::memset(kinds, static_cast<int>(ValueKind::number), count);
        } else {
            for (std::size_t i = 0; i < count; ++i)
                writeValue(part.block->value(part.first + static_cast<int>(i)), texts, kinds[i], payloads[i]);
        }
        payloads += count;
        kinds += count;
    }
}

/// Cells below each other with one number, joined across blocks. `numberOf` gives a cell's number by block
/// and index (0: none), `stored` the number in the file by pool number, first and last cell.
template <typename NumberOf, typename Stored>
std::vector<stored::Run> runsOf(const std::vector<Part>& parts, NumberOf numberOf, Stored stored)
{
    std::vector<stored::Run> runs;
    std::uint32_t number = 0;
    CellAddress first, last;
    const auto close = [&] {
        if (number != 0)
            runs.emplace_back(static_cast<std::uint32_t>(first.row),
                              static_cast<std::uint32_t>(last.row - first.row + 1),
                              stored(number, first, last), static_cast<std::uint16_t>(first.column));
        number = 0;
    };
    for (const Part& part : parts) {
        for (int i = 0; i < part.count; ++i) {
            const std::uint32_t next = numberOf(*part.block, part.first + i);
            const int row = part.firstRow + i;
            if (next != number || part.column != first.column || row != last.row + 1) {
                close();
                number = next;
                first = {part.column, row};
            }
            last = {part.column, row};
        }
    }
    close();
    return runs;
}

/// The texts that few cells have: tags or shown texts.
std::vector<stored::CellText> cellTexts(const std::vector<Part>& parts, TextWriter& texts,
                                        bool (CellBlock::*hasAny)() const,
                                        Text (CellBlock::*textOf)(int) const)
{
    std::vector<stored::CellText> written;
    for (const Part& part : parts) {
        if (!(part.block->*hasAny)())
            continue;
        for (int i = 0; i < part.count; ++i) {
            const Text text = (part.block->*textOf)(part.first + i);
            if (!text.empty())
                written.emplace_back(static_cast<std::uint32_t>(part.firstRow + i), texts.number(text),
                                     static_cast<std::uint16_t>(part.column));
        }
    }
    return written;
}

} // namespace

WrittenCells writeCells(flatbuffers::FlatBufferBuilder& builder, const Sheet& sheet, CellWriters writers)
{
    const std::vector<Part> parts = partsOf(sheet);
    std::size_t cells = 0;
    for (const Part& part : parts)
        cells += static_cast<std::size_t>(part.count);
    if (builder.GetSize() + cells * (sizeof(Payload) + sizeof(ValueKind)) > maxExpandedContent)
        throw ContentError("报表内容太大,无法保存");

    WrittenCells written;
    written.stretches = builder.CreateVectorOfStructs(stretchesOf(parts));
    // The builder grows downwards and may move: both vectors are filled when both are there.
    std::uint8_t* kinds = nullptr;
    written.kinds = builder.CreateUninitializedVector(cells, &kinds);
    std::uint64_t* payloads = nullptr;
    written.payloads = builder.CreateUninitializedVector(cells, &payloads);
    kinds = flatbuffers::GetMutableTemporaryPointer(builder, written.kinds)->data();
    writeValues(parts, writers.texts, kinds, payloads);

    written.styles = builder.CreateVectorOfStructs(runsOf(
        parts, [](const CellBlock& block, int index) { return block.style(index); },
        [&](std::uint32_t style, CellAddress, CellAddress) { return writers.styles.number(style); }));
    written.formulas = builder.CreateVectorOfStructs(runsOf(
        parts, [](const CellBlock& block, int index) { return block.formula(index); },
        [&](std::uint32_t formula, CellAddress first, CellAddress last) {
            if (const auto array = sheet.arrayRange(first))
                first = last = {array->left, array->top};
            return writers.formulas.number(formula, first, last);
        }));
    written.tags =
        builder.CreateVectorOfStructs(cellTexts(parts, writers.texts, &CellBlock::hasTags, &CellBlock::tag));
    written.shownTexts = builder.CreateVectorOfStructs(
        cellTexts(parts, writers.texts, &CellBlock::hasShown, &CellBlock::shown));
    return written;
}

} // namespace spreadsheet
