#pragma once
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/values/Value.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace spreadsheet {

class Array;
struct OperatorRow;

/// A formula as a tree, for writing it in another notation.
struct FormulaNode {
    enum class Kind { missing, constant, array, reference, name, call, operation, brackets };
    Kind kind = Kind::missing;
    Value value;                         ///< of a constant
    std::shared_ptr<const Array> array;  ///< of an array constant
    std::string_view text;               ///< name of a call or a name
    const OperatorRow* symbol = nullptr; ///< of an operation
    int slot = 0;                        ///< of a reference
    int blanks = 0;                      ///< before its first sign
    std::vector<int> children;           ///< positions in the tree, in the order of the text
};

struct FormulaTree {
    std::vector<FormulaNode> nodes;
    int root = -1;
};

/// The tree of a formula, whose text must outlive it; nothing if it has forms that only our grammar takes.
std::optional<FormulaTree> formulaTree(const LexedFormula& lexed);

} // namespace spreadsheet
