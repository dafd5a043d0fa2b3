#include "spreadsheet/view/commands/go_to.h"

#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/typed_text.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

namespace {

std::optional<GoToPlace> placeOfSlot(const Workbook& workbook, const ReferenceSlot& slot, int activeSheet)
{
    const auto range = slot.range({1, 1});
    if (!range || slot.firstSheet != slot.lastSheet)
        return std::nullopt;
    const int index = slot.firstSheet == 0 ? activeSheet : workbook.sheetIndexOfId(slot.firstSheet);
    if (index == 0)
        return std::nullopt;
    const SheetSettings& settings = workbook.sheet(index).settings();
    if (range->left > settings.columnCount || range->top > settings.rowCount)
        return std::nullopt;
    return GoToPlace{index,
                     {range->left, range->top, std::min(range->right, settings.columnCount),
                      std::min(range->bottom, settings.rowCount)}};
}

std::optional<GoToPlace> placeOfName(const Workbook& workbook, std::string_view name, int activeSheet)
{
    const int number = workbook.names().find(name);
    const std::uint32_t formula = number < 0 ? 0 : workbook.names()[number].formula;
    if (formula == 0)
        return std::nullopt;
    const Formula& meaning = workbook.formulas()[formula];
    const bool reference = meaning.slots.size() == 1 && meaning.code.size() == 1;
    return reference ? placeOfSlot(workbook, meaning.slots[0], activeSheet) : std::nullopt;
}

} // namespace

static std::optional<GoToPlace> placeOfPlain(const Workbook& workbook, std::string_view place,
                                             int activeSheet)
{
    const auto sheetId = [&](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    };
    LexedFormula lexed;
    if (lexFormula(place, {1, 1}, sheetId, lexed) || lexed.tokens.size() != 2)
        return std::nullopt;
    if (lexed.tokens[0].kind == Token::Kind::reference)
        return placeOfSlot(workbook, lexed.slots[0], activeSheet);
    if (lexed.tokens[0].kind == Token::Kind::name)
        return placeOfName(workbook, place, activeSheet);
    return std::nullopt;
}

std::optional<GoToPlace> placeOfText(const Workbook& workbook, std::string_view text, int activeSheet)
{
    const std::string_view typed = trimmedBlanks(text);
    const auto place =
        placeOfPlain(workbook, typed, activeSheet); // names may have wide characters themselves
    return place ? place : placeOfPlain(workbook, trimmedBlanks(inPlainWidth(typed)), activeSheet);
}

} // namespace spreadsheet
