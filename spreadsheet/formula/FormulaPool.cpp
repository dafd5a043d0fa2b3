#include "spreadsheet/formula/FormulaPool.h"

#include "spreadsheet/formula/Compiler.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Made of numbers, single cells and arithmetic only.
bool isBlockwise(const Formula& formula)
{
    if (formula.isArrayFormula || formula.stackDepth > 16)
        return false;
    for (const Instruction& instruction : formula.code) {
        switch (instruction.op) {
        case Op::number:
        case Op::add:
        case Op::subtract:
        case Op::multiply:
        case Op::divide:
        case Op::negate:
        case Op::percent:
            break;
        case Op::reference: {
            const ReferenceSlot& slot = formula.slots[static_cast<std::size_t>(instruction.index)];
            if (slot.shape != ReferenceSlot::Shape::cell || slot.firstSheet != slot.lastSheet)
                return false;
            break;
        }
        default:
            return false;
        }
    }
    // A lone reference hands texts on, which only the stack machine does; it finds out in time.
    return !formula.code.empty();
}

std::uint32_t hashOf(std::string_view key)
{
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(key));
}

} // namespace

/// Pieces and slots, not the text: a formula filled down has another text in each row but the same distances,
/// and a million cells must share one text, one code and one number.
std::string FormulaPool::key(const std::vector<std::string>& pieces, const std::vector<ReferenceSlot>& slots,
                             bool asArray)
{
    std::string key(1, asArray ? '{' : '=');
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        key += pieces[i];
        key += '\0';
        if (i < slots.size())
            slots[i].appendKey(key);
    }
    return key;
}

std::variant<std::uint32_t, Refusal> FormulaPool::intern(std::string_view text, CellAddress base,
                                                         const SheetResolver& sheetId, bool asArray,
                                                         std::size_t maxText, Unions unions)
{
    if (text.size() > maxText)
        return Refusal("公式太长", maxText);
    LexedFormula lexed;
    if (auto problem = lexFormula(text, base, sheetId, lexed))
        return problem;
    const std::string formulaKey = key(lexed.pieces, lexed.slots, asArray);
    if (const std::uint32_t known = find(formulaKey))
        return known;
    Formula formula;
    if (auto problem = compileFormula(lexed, m_vocabulary, asArray, unions, formula))
        return problem;
    return add(formulaKey, std::move(formula));
}

std::string FormulaPool::keyOf(std::uint32_t number) const
{
    const Formula& formula = (*this)[number];
    return key(formula.pieces, formula.slots, formula.isArrayFormula);
}

/// Where the formula with this key stands, or would.
FormulaPool::Known& FormulaPool::slotOf(std::string_view key, std::uint32_t hash)
{
    const std::size_t mask = m_byKey.size() - 1;
    std::size_t slot = hash & mask;
    while (m_byKey[slot].number != 0 && (m_byKey[slot].hash != hash || keyOf(m_byKey[slot].number) != key))
        slot = (slot + 1) & mask;
    return m_byKey[slot];
}

std::uint32_t FormulaPool::find(std::string_view key)
{
    return m_byKey.empty() ? 0 : slotOf(key, hashOf(key)).number;
}

void FormulaPool::enter(std::string_view key, std::uint32_t number)
{
    constexpr std::size_t least = 64;
    if (2 * std::size_t(number) > m_byKey.size()) {
        std::vector<Known> before(std::max(least, 2 * m_byKey.size()));
        before.swap(m_byKey);
        const std::size_t mask = m_byKey.size() - 1;
        for (const Known& known : before) {
            std::size_t slot = known.hash & mask;
            while (known.number != 0 && m_byKey[slot].number != 0)
                slot = (slot + 1) & mask;
            if (known.number != 0)
                m_byKey[slot] = known;
        }
    }
    const std::uint32_t hash = hashOf(key);
    Known& slot = slotOf(key, hash);
    if (slot.number == 0)
        slot = {hash, number};
}

std::uint32_t FormulaPool::add(std::string_view key, Formula formula)
{
    formula.blockwise = isBlockwise(formula);
    m_formulas.push_back(std::move(formula));
    enter(key, size());
    return size();
}

std::string FormulaPool::text(std::uint32_t number, CellAddress base) const
{
    const Formula& formula = (*this)[number];
    std::string text;
    for (std::size_t i = 0; i < formula.pieces.size(); ++i) {
        text += formula.pieces[i];
        if (i < formula.slots.size())
            formula.slots[i].render(base, text);
    }
    return text;
}

std::uint32_t FormulaPool::withSlots(std::uint32_t number, std::vector<ReferenceSlot> slots)
{
    const Formula& formula = (*this)[number];
    const std::string formulaKey = key(formula.pieces, slots, formula.isArrayFormula);
    if (const std::uint32_t known = find(formulaKey))
        return known;
    Formula changed = formula;
    changed.slots = std::move(slots);
    return add(formulaKey, std::move(changed));
}

void FormulaPool::respellSheet(int sheetId, const std::function<std::string(int)>& nameOfId)
{
    for (Formula& formula : m_formulas) {
        for (ReferenceSlot& slot : formula.slots) {
            if (slot.firstSheet != 0 && (slot.firstSheet == sheetId || slot.lastSheet == sheetId))
                slot.sheetText =
                    sheetPrefix(nameOfId(slot.firstSheet),
                                slot.lastSheet == slot.firstSheet ? std::string() : nameOfId(slot.lastSheet),
                                slot.sheetQuoted);
        }
    }
    m_byKey.clear();
    for (std::uint32_t number = 1; number <= size(); ++number)
        enter(keyOf(number), number);
}

std::size_t FormulaPool::bytes() const
{
    std::size_t sum = 0;
    for (const Formula& formula : m_formulas) {
        sum += sizeof(Formula) + formula.slots.size() * sizeof(ReferenceSlot) +
               formula.code.size() * sizeof(Instruction);
        for (const std::string& piece : formula.pieces)
            sum += sizeof(std::string) + piece.capacity();
    }
    return sum + m_byKey.size() * sizeof(Known);
}

} // namespace spreadsheet
