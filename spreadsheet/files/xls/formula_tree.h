#pragma once
#include "spreadsheet/formula/Lexer.h"

#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// A formula as a tree, for writing it in another notation.
struct FormulaNode {
    enum class Kind {
        number,
        text,
        error,
        boolean,
        missing,
        reference,
        name,
        array,
        call,
        prefix,
        percent,
        binary,
        brackets
    };
    Kind kind = Kind::missing;
    std::string text;          ///< name, text without quotes, operator
    double number = 0;         ///< also 0 or 1 for a truth value, the CellError for an error
    int slot = 0;              ///< of a reference
    int blanks = 0;            ///< before its first sign
    int columns = 0;           ///< of an array, whose elements are the children
    std::vector<int> children; ///< positions in the tree, in the order of the text
};

struct FormulaTree {
    std::vector<FormulaNode> nodes;
    int root = -1;
};

/// Builds the tree of a formula that the engine has accepted; nothing if its form is unusual.
/// Operators bind as the compiler has them, by the same table.
std::optional<FormulaTree> formulaTree(const LexedFormula& lexed);

} // namespace spreadsheet
