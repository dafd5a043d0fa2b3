#include "platform/database/dialect/sql_tokens.h"

#include "platform/database/session/names.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

bool isNameLetter(char letter)
{
    return ascii::isDigit(letter) || ascii::isLetter(letter) || letter == '_' || letter == '@' ||
           letter == '#' || letter == '$' || static_cast<unsigned char>(letter) >= 0x80;
}

bool partsTokens(char letter)
{
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

/// Place behind the quote that ends the literal or name opened at `at`; a doubled quote does not end it.
std::size_t endOfQuoted(std::string_view sql, std::size_t at, char closing)
{
    for (++at; at < sql.size(); ++at) {
        if (sql[at] != closing)
            continue;
        if (at + 1 >= sql.size() || sql[at + 1] != closing)
            return at + 1;
        ++at;
    }
    return sql.size();
}

std::size_t endOfNumber(std::string_view sql, std::size_t at)
{
    while (at < sql.size()) {
        const bool exponentSign =
            (sql[at] == '+' || sql[at] == '-') && (sql[at - 1] == 'e' || sql[at - 1] == 'E');
        if (!isNameLetter(sql[at]) && sql[at] != '.' && !exponentSign)
            break;
        ++at;
    }
    return at;
}

/// Place of the next token: behind blanks, line comments and block comments.
std::size_t skipBlanks(std::string_view sql, std::size_t at)
{
    while (at < sql.size()) {
        if (partsTokens(sql[at]))
            ++at;
        else if (sql.substr(at, 2) == "--")
            at = std::min(sql.find('\n', at), sql.size());
        else if (sql.substr(at, 2) == "/*")
            at = std::min(std::min(sql.find("*/", at + 2), sql.size() - 2) + 2, sql.size());
        else
            break;
    }
    return at;
}

std::size_t endOfSymbol(std::string_view sql, std::size_t at)
{
    static constexpr std::array<std::string_view, 7> pairs{"<>", "<=", ">=", "!=", "||", "!<", "!>"};
    return at + (std::ranges::find(pairs, sql.substr(at, 2)) == pairs.end() ? 1U : 2U);
}

SqlToken tokenAt(std::string_view sql, std::size_t at)
{
    const auto token = [&](SqlToken::Kind kind, std::size_t end) {
        return SqlToken{kind, at, sql.substr(at, end - at)};
    };
    const char letter = sql[at];
    const char next = at + 1 < sql.size() ? sql[at + 1] : '\0';
    if (letter == '\'')
        return token(SqlToken::Kind::text, endOfQuoted(sql, at, '\''));
    if ((letter == 'N' || letter == 'n') && next == '\'')
        return token(SqlToken::Kind::text, endOfQuoted(sql, at + 1, '\''));
    if (letter == '"' || letter == '[')
        return token(SqlToken::Kind::quotedName, endOfQuoted(sql, at, letter == '[' ? ']' : '"'));
    if (ascii::isDigit(letter) || (letter == '.' && ascii::isDigit(next)))
        return token(SqlToken::Kind::number, endOfNumber(sql, at + 1));
    if (isNameLetter(letter))
        return token(SqlToken::Kind::name,
                     static_cast<std::size_t>(std::find_if_not(sql.begin() + static_cast<std::ptrdiff_t>(at),
                                                               sql.end(), isNameLetter) -
                                              sql.begin()));
    return token(SqlToken::Kind::symbol, endOfSymbol(sql, at));
}

} // namespace

bool SqlToken::isName(std::string_view name) const
{
    return kind == Kind::name && sameName(spelling, name);
}

std::vector<SqlToken> sqlTokens(std::string_view sql)
{
    std::vector<SqlToken> tokens;
    tokens.reserve(sql.size() / 4);
    for (std::size_t at = skipBlanks(sql, 0); at < sql.size(); at = skipBlanks(sql, tokens.back().end()))
        tokens.push_back(tokenAt(sql, at));
    return tokens;
}

std::size_t closingBracket(const std::vector<SqlToken>& tokens, std::size_t open)
{
    int depth = 0;
    for (std::size_t at = open; at < tokens.size(); ++at) {
        if (tokens[at].isSymbol("("))
            ++depth;
        else if (tokens[at].isSymbol(")") && --depth == 0)
            return at;
    }
    return tokens.size();
}

void SqlEdits::replace(std::size_t begin, std::size_t end, std::string text)
{
    m_edits.push_back({begin, end, std::move(text)});
}

std::string SqlEdits::applied(std::string_view sql)
{
    std::ranges::stable_sort(m_edits, {}, &Edit::begin);
    std::string changed;
    changed.reserve(sql.size() + 64 * m_edits.size());
    std::size_t at = 0;
    for (const Edit& edit : m_edits) {
        changed += sql.substr(at, edit.begin - at);
        changed += edit.text;
        at = edit.end;
    }
    changed += sql.substr(at);
    return changed;
}

} // namespace selfreport
