#pragma once
#include "spreadsheet/files/content/stored_formulas.h"
#include "spreadsheet/files/content/stored_styles.h"
#include "spreadsheet/files/content/stored_texts.h"

#include <span>

namespace spreadsheet {

class Sheet;

/// The cells of one sheet as vectors of a file.
struct WrittenCells {
    flatbuffers::Offset<flatbuffers::Vector<const stored::Stretch*>> stretches;
    flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>> kinds;
    flatbuffers::Offset<flatbuffers::Vector<std::uint64_t>> payloads;
    flatbuffers::Offset<flatbuffers::Vector<const stored::Run*>> styles, formulas;
    flatbuffers::Offset<flatbuffers::Vector<const stored::CellText*>> tags, shownTexts;
};

/// What cells refer to, on its way into a file.
struct CellWriters {
    TextWriter& texts;
    StyleWriter& styles;
    FormulaWriter& formulas;
};

WrittenCells writeCells(flatbuffers::FlatBufferBuilder& builder, const Sheet& sheet, CellWriters writers);

/// What the numbers in a file's cells mean.
struct CellMeanings {
    const StoredTexts& texts;
    std::span<const std::uint32_t> styles;
    std::span<const std::uint32_t> formulas;
};

/// Fills a sheet that has no cells yet. Every number, row and column is checked.
/// @throws ContentError
void readCells(const stored::Sheet& stored, Sheet& sheet, const CellMeanings& meanings);

} // namespace spreadsheet
