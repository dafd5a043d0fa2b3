#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/formula/Vocabulary.h"
#include "spreadsheet/values/Refusal.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace spreadsheet {

/// Formulas that are typed longer than this (in bytes) are refused.
inline constexpr std::size_t maxFormulaText = 32'768;

/// All formulas of a workbook in relative form, each once. Numbers count from 1; 0 means no formula.
///
/// Cells, names and undo steps hold numbers only, so a number means the same formula for ever: nothing is
/// taken out of the pool, and a formula with other references is another number. Only a sheet's new name is
/// written into formulas where they stand, since it changes their text in every state, former ones too.
class FormulaPool {
public:
    /// @param findFunction  the functions of the language
    explicit FormulaPool(FunctionFinder findFunction)
        : m_vocabulary{findFunction, {}, {}}
    {
    }

    /// The number of a formula as the cell `base` holds it. The text stands without "=".
    std::variant<std::uint32_t, Refusal> intern(std::string_view text, CellAddress base,
                                                const SheetResolver& sheetId, bool asArray = false,
                                                std::size_t maxText = maxFormulaText,
                                                Unions unions = Unions::inBrackets);
    const Formula& operator[](std::uint32_t number) const { return m_formulas[number - 1]; }
    std::uint32_t size() const { return static_cast<std::uint32_t>(m_formulas.size()); }
    /// The text letter by letter as the cell `base` shows it, without "=".
    std::string text(std::uint32_t number, CellAddress base) const;
    /// The same formula with other references; the slots keep their order.
    std::uint32_t withSlots(std::uint32_t number, std::vector<ReferenceSlot> slots);
    /// Spells the prefix of every reference to a sheet anew. Numbers stay.
    void respellSheet(int sheetId, const std::function<std::string(int)>& nameOfId);

    CustomFunctions& customs() { return m_vocabulary.customs; }
    const CustomFunctions& customs() const { return m_vocabulary.customs; }
    NameTable& names() { return m_vocabulary.names; }
    const NameTable& names() const { return m_vocabulary.names; }
    std::size_t bytes() const;

private:
    struct Known {
        std::uint32_t hash = 0, number = 0; ///< number 0: free
    };

    static std::string key(const std::vector<std::string>& pieces, const std::vector<ReferenceSlot>& slots,
                           bool asArray);
    std::string keyOf(std::uint32_t number) const;
    Known& slotOf(std::string_view key, std::uint32_t hash);
    std::uint32_t find(std::string_view key);
    void enter(std::string_view key, std::uint32_t number);
    std::uint32_t add(std::string_view key, Formula formula);

    Vocabulary m_vocabulary;
    std::deque<Formula> m_formulas; ///< a deque: references stay good
    std::vector<Known> m_byKey;     ///< a hash table; keys would take as much as the formulas do
};

} // namespace spreadsheet
