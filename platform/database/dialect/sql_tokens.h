#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// A piece of a statement; blanks and comments lie between tokens.
struct SqlToken {
    enum class Kind {
        name,       ///< keyword or plain name, also "@x"
        quotedName, ///< [x] or "x"
        text,       ///< '...' or N'...', quotes included
        number,
        symbol ///< one or two characters of operator or punctuation
    };
    Kind kind;
    std::size_t begin; ///< byte place in the statement
    std::string_view spelling;

    std::size_t end() const { return begin + spelling.size(); }
    bool isName(std::string_view name) const;
    bool isSymbol(std::string_view symbol) const { return kind == Kind::symbol && spelling == symbol; }
};

/// Cuts a statement into tokens that point into it. A text literal that does not end reaches to the end.
std::vector<SqlToken> sqlTokens(std::string_view sql);

/// Index of the ")" that closes the "(" at `open`; the number of tokens if none does.
std::size_t closingBracket(const std::vector<SqlToken>& tokens, std::size_t open);

/// Changes to a statement, collected in any order at places that do not overlap.
class SqlEdits {
public:
    void replace(std::size_t begin, std::size_t end, std::string text);
    void insert(std::size_t at, std::string text) { replace(at, at, std::move(text)); }
    std::string applied(std::string_view sql);

private:
    struct Edit {
        std::size_t begin, end;
        std::string text;
    };
    std::vector<Edit> m_edits;
};

} // namespace selfreport
