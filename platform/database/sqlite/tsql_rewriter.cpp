#include "platform/database/sqlite/tsql_rewriter.h"

#include "platform/database/dialect/sql_tokens.h"

#include <algorithm>
#include <array>

namespace selfreport {

namespace {

using Kind = SqlToken::Kind;
using Tokens = std::vector<SqlToken>;

bool isSymbolAt(const Tokens& tokens, std::size_t at, std::string_view symbol)
{
    return at < tokens.size() && tokens[at].isSymbol(symbol);
}

bool isNameAt(const Tokens& tokens, std::size_t at, std::string_view name)
{
    return at < tokens.size() && tokens[at].isName(name);
}

void rewriteNames(const Tokens& tokens, SqlEdits& edits)
{
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        const SqlToken& token = tokens[at];
        if (token.isName("isnull") && isSymbolAt(tokens, at + 1, "("))
            edits.replace(token.begin, token.end(), "ifnull");
        else if (token.isName("datalength") && isSymbolAt(tokens, at + 1, "("))
            edits.replace(token.begin, token.end(), "length"); // of a binary value; it is not read for it
        else if (token.isName("dbo") && isSymbolAt(tokens, at + 1, "."))
            edits.replace(token.begin, tokens[at + 1].end(), "");
        else if (token.kind == Kind::text && token.spelling.front() != '\'')
            edits.replace(token.begin, token.begin + 1, "");
    }
}

/// Place behind the select whose word stands at `at`: the bracket that closes it, or the statement's end.
std::size_t endOfSelect(const Tokens& tokens, std::size_t at)
{
    int depth = 0;
    for (++at; at < tokens.size(); ++at) {
        if (tokens[at].isSymbol("("))
            ++depth;
        else if (tokens[at].isSymbol(")") && --depth < 0)
            return tokens[at].begin;
        else if (depth == 0 && tokens[at].isSymbol(";"))
            return tokens[at].begin;
    }
    return tokens.back().end();
}

void rewriteTop(const Tokens& tokens, SqlEdits& edits)
{
    for (std::size_t at = 1; at < tokens.size(); ++at) {
        const bool follows = tokens[at - 1].isName("select") || tokens[at - 1].isName("distinct");
        if (!follows || !tokens[at].isName("top"))
            continue;
        const bool bracketed = isSymbolAt(tokens, at + 1, "(");
        const std::size_t count = bracketed ? at + 2 : at + 1;
        if (count >= tokens.size() || tokens[count].kind != Kind::number)
            continue;
        const std::size_t last = bracketed ? count + 1 : count;
        edits.replace(tokens[at].begin, tokens[std::min(last, tokens.size() - 1)].end(), "");
        edits.insert(endOfSelect(tokens, at), " limit " + std::string(tokens[count].spelling));
    }
}

/// Whether the token ends a sum: what stands before and behind it belongs to different expressions.
bool endsSum(const SqlToken& token)
{
    static constexpr std::array<std::string_view, 10> symbols{",",  ";",  "=",  "<",  ">",
                                                              "<>", "<=", ">=", "!=", "("};
    static constexpr std::array<std::string_view, 22> words{
        "select", "from", "where", "and",  "or", "on",     "when",  "then",  "else", "end",    "as",
        "like",   "in",   "not",   "case", "by", "having", "order", "group", "set",  "values", "union"};
    const auto equals = [&](std::string_view word) { return token.isName(word); };
    if (token.kind == Kind::symbol)
        return std::ranges::find(symbols, token.spelling) != symbols.end();
    return token.kind == Kind::name && std::ranges::any_of(words, equals);
}

/// Rewrites the sums directly between `at` and the bracket that ends their level, and those of inner
/// brackets.
std::size_t rewriteSums(const Tokens& tokens, std::size_t at, SqlEdits& edits)
{
    std::vector<std::size_t> pluses;
    bool hasText = false;
    const auto finish = [&] {
        for (const std::size_t plus : hasText ? pluses : std::vector<std::size_t>())
            edits.replace(tokens[plus].begin, tokens[plus].end(), "||");
        pluses.clear();
        hasText = false;
    };
    for (; at < tokens.size() && !tokens[at].isSymbol(")"); ++at) {
        if (tokens[at].isSymbol("("))
            at = rewriteSums(tokens, at + 1, edits);
        else if (tokens[at].isSymbol("+"))
            pluses.push_back(at);
        else if (endsSum(tokens[at]))
            finish();
        hasText = hasText || (at < tokens.size() && tokens[at].kind == Kind::text);
    }
    finish();
    return at;
}

bool isNameLike(const SqlToken& token)
{
    return token.kind == Kind::name || token.kind == Kind::quotedName;
}

/// First token of the column, plain or with its table, that ends before `at`; `at` if there is none.
std::size_t columnBefore(const Tokens& tokens, std::size_t at)
{
    if (at == 0 || !isNameLike(tokens[at - 1]) || tokens[at - 1].isName("not"))
        return at;
    if (at >= 3 && tokens[at - 2].isSymbol(".") && isNameLike(tokens[at - 3]))
        return at - 3;
    return at - 1;
}

/// Last token of the pattern that begins at `at`: a text, or a parameter with its number.
std::size_t endOfPattern(const Tokens& tokens, std::size_t at)
{
    const bool numbered = tokens[at].isSymbol("?") && at + 1 < tokens.size() &&
                          tokens[at + 1].kind == Kind::number && tokens[at + 1].begin == tokens[at].end();
    return numbered ? at + 1 : at;
}

void rewriteLike(std::string_view sql, const Tokens& tokens, SqlEdits& edits)
{
    for (std::size_t at = 0; at + 1 < tokens.size(); ++at) {
        const std::size_t last = endOfPattern(tokens, at + 1);
        const bool fixed = tokens[at + 1].kind == Kind::text || last > at + 1;
        if (!tokens[at].isName("like") || !fixed || isNameAt(tokens, last + 1, "escape"))
            continue;
        const std::size_t first = columnBefore(tokens, at);
        if (first == at)
            continue;
        const std::size_t begin = tokens[first].begin;
        const std::string column(sql.substr(begin, tokens[at - 1].end() - begin));
        const std::string_view whole =
            sql.substr(tokens[at + 1].begin, tokens[last].end() - tokens[at + 1].begin);
        const std::string pattern(whole.substr(tokens[at + 1].kind == Kind::text ? whole.find('\'') : 0));
        edits.insert(begin, "(");
        edits.insert(tokens[last].end(), " and " + column + ">=like_first(" + pattern + ") and " + column +
                                             "<=like_last(" + pattern + "))");
    }
}

} // namespace

std::string toEmbeddedSql(std::string_view tsql)
{
    const Tokens tokens = sqlTokens(tsql);
    if (tokens.empty())
        return std::string(tsql);
    SqlEdits edits;
    rewriteNames(tokens, edits);
    rewriteTop(tokens, edits);
    for (std::size_t at = 0; at < tokens.size(); ++at)
        at = rewriteSums(tokens, at, edits);
    rewriteLike(tsql, tokens, edits);
    return edits.applied(tsql);
}

} // namespace selfreport
