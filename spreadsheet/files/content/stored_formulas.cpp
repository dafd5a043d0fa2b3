#include "spreadsheet/files/content/stored_formulas.h"

#include "spreadsheet/files/content/content_frame.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>

namespace spreadsheet {

FormulaWriter::FormulaWriter(const FormulaPool& pool)
    : m_pool(pool)
    , m_numbers(pool.size() + std::size_t(1))
{
}

bool FormulaWriter::isWhole(std::uint32_t formula, CellAddress base) const
{
    return std::ranges::all_of(m_pool[formula].slots, [base](const ReferenceSlot& slot) {
        return slot.shape == ReferenceSlot::Shape::broken || slot.range(base);
    });
}

std::uint32_t FormulaWriter::number(std::uint32_t formula, CellAddress first, CellAddress last)
{
    std::uint32_t& given = m_numbers.at(formula);
    if (given == 0) {
        m_entries.push_back({formula, first, isWhole(formula, first)});
        given = static_cast<std::uint32_t>(m_entries.size());
    }
    // Where a reference leaves the sheet it shows #REF! and would be lost for the other cells.
    Entry& entry = m_entries[given - 1];
    for (const CellAddress base : {first, last}) {
        if (!entry.whole && isWhole(formula, base))
            entry = {formula, base, true};
    }
    return given;
}

void FormulaWriter::finish(flatbuffers::FlatBufferBuilder& builder)
{
    std::string texts;
    std::vector<stored::Formula> written;
    written.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        texts += m_pool.text(entry.formula, entry.base);
        if (texts.size() > maxExpandedContent)
            throw ContentError("报表内容太大,无法保存");
        written.emplace_back(
            static_cast<std::uint32_t>(texts.size()), static_cast<std::uint32_t>(entry.base.row),
            static_cast<std::uint16_t>(entry.base.column), m_pool[entry.formula].isArrayFormula);
    }
    bytes = builder.CreateVector(reinterpret_cast<const std::uint8_t*>(texts.data()), texts.size());
    formulas = builder.CreateVectorOfStructs(written);
}

std::vector<std::uint32_t> readFormulas(const stored::Content& content, Workbook& workbook,
                                        std::vector<std::string>& unreadable)
{
    std::vector<std::uint32_t> numbers{0};
    if (!content.formulas())
        return numbers;
    const std::size_t size = content.formula_bytes() ? content.formula_bytes()->size() : 0;
    const char* bytes = size ? reinterpret_cast<const char*>(content.formula_bytes()->data()) : nullptr;
    const SheetResolver sheetId = [&workbook](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    };
    std::size_t start = 0;
    for (const stored::Formula* formula : *content.formulas()) {
        const std::size_t end = formula->text_end();
        requireContent(end > start && end <= size, "公式表的长度不符");
        const CellAddress base{formula->base_column(), static_cast<int>(formula->base_row())};
        requireContent(base.column >= 1 && base.column <= maxColumns && formula->base_row() >= 1 &&
                           formula->base_row() <= maxRows,
                       "公式的位置超出范围");
        const std::string_view text(bytes + start, end - start);
        const auto parsed =
            workbook.formulas().intern(text, base, sheetId, formula->is_array(), maxExpandedContent);
        if (const auto* problem = std::get_if<Refusal>(&parsed)) {
            unreadable.push_back(cellName(base) + " 的公式无法识别(" + problem->reason() +
                                 "),保留了上次算出的值");
            numbers.push_back(0);
        } else {
            numbers.push_back(std::get<std::uint32_t>(parsed));
        }
        start = end;
    }
    return numbers;
}

} // namespace spreadsheet
