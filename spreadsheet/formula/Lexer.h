#pragma once
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/values/Refusal.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

struct Token {
    enum class Kind : std::uint8_t {
        number,
        text,
        error,
        reference, ///< `index` is the slot
        name,      ///< a defined name, TRUE or FALSE
        function,  ///< a name with its opening bracket
        open,
        close,
        comma,
        semicolon,
        openArray,
        closeArray,
        operation, ///< `text` is the operator
        end,
    };
    Kind kind = Kind::end;
    std::string_view text;
    std::size_t position = 0; ///< byte offset in the formula
    int index = 0;
    double number = 0;
    bool blankBefore = false;
};

/// A formula's tokens, and the text template that they were cut from.
struct LexedFormula {
    std::vector<Token> tokens; ///< the last one is `end`
    std::vector<std::string> pieces;
    std::vector<ReferenceSlot> slots;
};

/// Gives the id of a sheet name, 0 if there is no such sheet.
using SheetResolver = std::function<int(std::string_view)>;

/// Splits a formula text without its "=" as the cell `base` holds it. Token texts point into `text`.
Refusal lexFormula(std::string_view text, CellAddress base, const SheetResolver& sheetId,
                   LexedFormula& result);

} // namespace spreadsheet
