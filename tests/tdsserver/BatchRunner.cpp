#include "tests/tdsserver/BatchRunner.h"

#include "platform/database/session/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace selfreport::tds {

namespace {

/// The text of '...' or N'...'.
std::string unquoted(std::string_view literal)
{
    literal.remove_prefix(literal.find('\'') + 1);
    literal.remove_suffix(literal.ends_with('\'') ? 1 : 0);
    std::string text;
    for (std::size_t at = 0; at < literal.size(); ++at) {
        text += literal[at];
        at += literal[at] == '\'' ? 1U : 0U; // doubled
    }
    return text;
}

bool isAnyName(const SqlToken& token, std::initializer_list<std::string_view> names)
{
    return std::ranges::any_of(names, [&](std::string_view name) { return token.isName(name); });
}

} // namespace

void BatchRunner::run(std::string_view batch)
{
    m_batch = batch;
    m_tokens = sqlTokens(batch);
    m_at = 0;
    while (m_at < m_tokens.size()) {
        try {
            statement();
        } catch (const ServerError& error) {
            m_reply.error(error.number, error.text);
            m_reply.done(m_done, -1, true);
            if (error.endsBatch)
                return;
        }
    }
}

void BatchRunner::statement()
{
    if (isSymbolAt(";") || isAt("end") || isAt("begin"))
        take();
    else if (isAt("set"))
        setStatement();
    else if (isAt("declare"))
        declareStatement();
    else if (isAt("exec") || isAt("execute"))
        executeStatement();
    else if (isAt("if"))
        ifStatement();
    else
        plainStatement();
}

void BatchRunner::setStatement()
{
    take();
    const std::string name(take());
    if (name.starts_with('@')) {
        expect("=");
        variable(name).value = takeValue();
        m_reply.done(m_done);
        return;
    }
    const std::string_view setting = take();
    if (sameName(name, "nocount"))
        m_countsRows = !sameName(setting, "on");
}

void BatchRunner::declareStatement()
{
    take();
    do {
        Parameter declared;
        declared.name = take();
        take(); // its type: values carry their own
        if (isSymbolAt("("))
            m_at = closingBracket(m_tokens, m_at) + 1;
        declare(std::move(declared));
    } while (isSymbolAt(",") && !take().empty());
}

void BatchRunner::executeStatement()
{
    const std::size_t end = statementEnd();
    take();
    std::string returned;
    std::string procedure(take());
    if (procedure.starts_with('@')) {
        returned = std::exchange(procedure, "");
        expect("=");
        procedure = take();
    }
    std::vector<Parameter> parameters;
    while (m_at < end) {
        Parameter& parameter = parameters.emplace_back();
        if (m_at + 1 < m_tokens.size() && m_tokens[m_at + 1].isSymbol("=")) {
            parameter.name = take();
            take();
        }
        parameter.value = takeValue();
        if (isSymbolAt(","))
            take();
    }
    const Ledger::Called called = m_ledger.call(procedure, parameters);
    if (called.rows) {
        m_reply.rows(*called.rows);
        m_reply.done(Reply::Done::inProcedure, static_cast<std::int64_t>(called.rows->rows.size()));
    }
    if (!returned.empty())
        variable(returned).value = std::int64_t{called.returned};
    m_reply.returnStatus(called.returned);
    m_reply.done(Reply::Done::procedure);
}

/// if object_id('name') is null ..., or is not null
void BatchRunner::ifStatement()
{
    take();
    if (!isAt("object_id"))
        throw ServerError{156, "测试服务器只懂 if object_id(...)", true};
    take();
    expect("(");
    const std::string name = takeName();
    while (!isSymbolAt(")"))
        take();
    take();
    expect("is");
    const bool wantsNone = !isAt("not");
    if (!wantsNone)
        take();
    expect("null");
    if (m_ledger.hasObject(name) == wantsNone)
        skipStatement();
}

void BatchRunner::plainStatement()
{
    const std::size_t end = statementEnd();
    const std::size_t from = m_tokens[m_at].begin;
    const std::size_t to = end < m_tokens.size() ? m_tokens[end].begin : m_batch.size();
    m_at = end;
    const Ledger::Outcome outcome = m_ledger.run(m_batch.substr(from, to - from), m_variables);
    if (outcome.rows) {
        m_reply.rows(*outcome.rows);
        m_reply.done(m_done, static_cast<std::int64_t>(outcome.rows->rows.size()));
    } else if (m_countsRows) {
        m_reply.done(m_done, outcome.changed);
    }
}

bool BatchRunner::isAt(std::string_view name) const
{
    return m_at < m_tokens.size() && m_tokens[m_at].isName(name);
}

bool BatchRunner::isSymbolAt(std::string_view symbol) const
{
    return m_at < m_tokens.size() && m_tokens[m_at].isSymbol(symbol);
}

std::string_view BatchRunner::take()
{
    if (m_at >= m_tokens.size())
        throw ServerError{102, "语句不完整", true};
    return m_tokens[m_at++].spelling;
}

void BatchRunner::expect(std::string_view spelling)
{
    const std::string_view taken = take();
    if (!sameName(taken, spelling))
        throw ServerError{102, "'" + std::string(taken) + "' 附近有语法错误。", true};
}

std::string BatchRunner::takeName()
{
    const std::string_view taken = take();
    return taken.find('\'') == std::string_view::npos ? std::string(taken) : unquoted(taken);
}

Value BatchRunner::takeValue()
{
    const bool isNegative = isSymbolAt("-") && !take().empty();
    const bool isText = m_at < m_tokens.size() && m_tokens[m_at].kind == SqlToken::Kind::text;
    const std::string_view taken = take();
    if (isText)
        return unquoted(taken);
    if (taken.starts_with('@'))
        return variable(taken).value;
    if (sameName(taken, "null"))
        return std::monostate();
    std::int64_t number = 0;
    if (std::from_chars(taken.data(), taken.data() + taken.size(), number).ec != std::errc())
        throw ServerError{102, "'" + std::string(taken) + "' 附近有语法错误。", true};
    return isNegative ? -number : number;
}

/// Whether a statement that began at `first` is over at the word `at`.
bool BatchRunner::startsStatement(std::size_t at, std::size_t first) const
{
    const SqlToken& token = m_tokens[at];
    if (token.isName("select")) {
        const bool isPart = isAnyName(m_tokens[first], {"insert", "with"}) ||
                            isAnyName(m_tokens[at - 1], {"union", "all", "except", "intersect", "as"});
        return !isPart;
    }
    if (token.isName("set"))
        return !m_tokens[first].isName("update");
    return isAnyName(token,
                     {"declare", "exec", "execute", "insert", "update", "delete", "create", "drop", "if"});
}

std::size_t BatchRunner::statementEnd() const
{
    int depth = 0;
    for (std::size_t at = m_at; at < m_tokens.size(); ++at) {
        if (m_tokens[at].isSymbol("("))
            ++depth;
        else if (m_tokens[at].isSymbol(")"))
            --depth;
        else if (depth == 0 && (m_tokens[at].isSymbol(";") || (at > m_at && startsStatement(at, m_at))))
            return at;
    }
    return m_tokens.size();
}

/// Behind one statement, or a block of them.
void BatchRunner::skipStatement()
{
    if (!isAt("begin")) {
        m_at = statementEnd();
        return;
    }
    while (m_at < m_tokens.size() && !isAt("end"))
        ++m_at;
}

Parameter& BatchRunner::variable(std::string_view name)
{
    const auto found = std::ranges::find_if(
        m_variables, [&](const Parameter& parameter) { return sameName(parameter.name, name); });
    if (found == m_variables.end())
        throw ServerError{137, "必须声明标量变量 \"" + std::string(name) + "\"。", true};
    return *found;
}

} // namespace selfreport::tds
