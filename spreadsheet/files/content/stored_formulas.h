#pragma once
#include "spreadsheet/files/content/stored_texts.h"
#include "spreadsheet/workbook/Workbook.h"

#include <span>
#include <string>
#include <vector>

namespace spreadsheet {

class FormulaPool;

/// The formulas in use on their way into a file: each once, as one of its cells shows it.
class FormulaWriter {
public:
    explicit FormulaWriter(const FormulaPool& pool);

    /// The number in the file, from 1, of the formula that the cells of a run hold.
    std::uint32_t number(std::uint32_t formula, CellAddress first, CellAddress last);
    void finish(flatbuffers::FlatBufferBuilder& builder);

    flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>> bytes;
    flatbuffers::Offset<flatbuffers::Vector<const stored::Formula*>> formulas;

private:
    struct Entry {
        std::uint32_t formula; ///< number in the pool
        CellAddress base;
        bool whole; ///< no reference leaves the sheet there
    };

    bool isWhole(std::uint32_t formula, CellAddress base) const;

    const FormulaPool& m_pool;
    std::vector<std::uint32_t> m_numbers; ///< by number in the pool; 0: not in use
    std::vector<Entry> m_entries;
};

/// Numbers in the workbook's pool by numbers in the file; 0 stays 0. The sheets must be there. A formula that
/// cannot be read becomes 0, with a sentence in `unreadable`: its cells keep their values.
/// @throws ContentError
std::vector<std::uint32_t> readFormulas(const stored::Content& content, Workbook& workbook,
                                        std::vector<std::string>& unreadable);

} // namespace spreadsheet
