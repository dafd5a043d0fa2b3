#pragma once
#include "spreadsheet/files/xls/XlsLinks.h"
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <string>

namespace spreadsheet {

struct OperatorRow;

/// Turns formula tokens of an .xls file into formula text.
class FormulaReader {
public:
    explicit FormulaReader(const XlsLinks& links)
        : m_links(links)
    {
    }

    /// The text without "=" as the cell `base` holds it; nothing if it cannot be told, see `problem`.
    /// @param tokens  the formula itself
    /// @param extra   what follows it in the record: elements of array constants
    std::optional<std::string> read(Bytes tokens, Bytes extra, CellAddress base);
    /// Why the last formula has no text (Chinese).
    const std::string& problem() const { return m_problem; }

private:
    bool token(std::uint8_t token);
    bool basicToken(std::uint8_t token);
    bool operandToken(std::uint8_t token);

    bool fail(const char* problem);
    bool push(std::string operand);
    bool binary(std::string_view operation);
    bool unary(const OperatorRow& row);
    bool brackets();
    bool attribute();
    bool text();
    bool error();
    bool function(int number, std::size_t arguments);
    bool name();
    bool externName();
    bool reference(const std::string& prefix, bool isArea, bool isRelative);
    bool reference3d(bool isArea, bool isBroken);
    bool arrayConstant();
    bool skip(std::size_t bytes);
    bool skipMemory(std::size_t bytes);
    std::optional<std::string> arrayElement();

    /// A number at the front of the tokens; 0 and a problem if they end before it.
    template <typename Number>
    Number take(Bytes& from)
    {
        if (from.size() < sizeof(Number)) {
            fail("公式记号被截断");
            from = {};
            return Number();
        }
        const auto number = numberAt<Number>(from, 0);
        from = from.subspan(sizeof(Number));
        return number;
    }
    std::string takeCharacters(Bytes& from, std::size_t count);
    std::string blanksBefore();

    const XlsLinks& m_links;
    Bytes m_tokens;
    Bytes m_extra;
    CellAddress m_base;
    std::vector<std::string> m_stack;
    std::string m_problem;
    std::size_t m_blanks = 0; ///< before the token that follows
    std::size_t m_blanksBeforeOpening = 0;
    std::size_t m_blanksBeforeClosing = 0;
};

} // namespace spreadsheet
