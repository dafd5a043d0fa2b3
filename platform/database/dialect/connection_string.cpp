#include "platform/database/dialect/connection_string.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/session/names.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <optional>

namespace selfreport {

namespace {

// Three kinds of strings with different rules of quoting look alike, and a password may hold anything. So the
// kind is found out first and the whole string is read by that kind's rules; looking for ";" and "=" would
// cut a quoted password in two or take a part of it for a key.

struct Synonym {
    std::string_view written;
    std::string_view meant;
};

constexpr std::array synonyms{
    Synonym{"Server", "Data Source"},
    Synonym{"Address", "Data Source"},
    Synonym{"Addr", "Data Source"},
    Synonym{"Network Address", "Data Source"},
    Synonym{"Database", "Initial Catalog"},
    Synonym{"UID", "User ID"},
    Synonym{"User", "User ID"},
    Synonym{"PWD", "Password"},
    Synonym{"Trusted_Connection", "Integrated Security"},
    Synonym{"Connection Timeout", "Connect Timeout"},
    Synonym{"Timeout", "Connect Timeout"},
    Synonym{"General Timeout", "Command Timeout"},
    Synonym{"APP", "Application Name"},
    Synonym{"WSID", "Workstation ID"},
    Synonym{"Language", "Current Language"},
    Synonym{"Initial File Name", "AttachDBFilename"},
    Synonym{"Use Encryption for Data", "Encrypt"},
};

std::string_view mainName(std::string_view key)
{
    const auto found = std::ranges::find_if(
        synonyms, [&](const Synonym& synonym) { return sameName(synonym.written, key); });
    return found == synonyms.end() ? key : found->meant;
}

bool isBlank(char letter)
{
    return ascii::blanks.find(letter) != std::string_view::npos;
}

/// Reads the pairs of a string. ODBC quotes with braces and knows no other quotes; the other forms quote with
/// apostrophes and quotes, and a brace is a letter like any other.
class Reader {
public:
    enum class Quotes { odbc, others };

    Reader(std::string_view text, Quotes quotes)
        : m_rest(text)
        , m_quotes(quotes)
    {
    }

    /// Moves to the next pair; false at the end.
    bool atPair()
    {
        while (!m_rest.empty() && (isBlank(m_rest.front()) || m_rest.front() == ';'))
            m_rest.remove_prefix(1);
        return !m_rest.empty();
    }

    std::string key()
    {
        std::string key;
        for (;; key += take()) {
            if (m_rest.empty() || m_rest.front() == ';')
                refuseConnectionString("缺少等号");
            if (m_rest.front() != '=')
                continue;
            take();
            if (m_rest.empty() || m_rest.front() != '=')
                break;
        }
        key = ascii::trimmed(key);
        if (key.empty())
            refuseConnectionString("缺少关键字");
        return key;
    }

    std::string value()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
            take();
        const char first = m_rest.empty() ? ';' : m_rest.front();
        if (m_quotes == Quotes::others && (first == '\'' || first == '"'))
            return quotedValue(take());
        if (m_quotes == Quotes::odbc && first == '{')
            return bracedValue();
        const std::size_t end = std::min(m_rest.find(';'), m_rest.size());
        const std::string value(ascii::trimmed(m_rest.substr(0, end)));
        m_rest.remove_prefix(end);
        return value;
    }

private:
    char take()
    {
        const char letter = m_rest.front();
        m_rest.remove_prefix(1);
        return letter;
    }

    std::string quotedValue(char quote)
    {
        std::string value;
        for (;;) {
            if (m_rest.empty())
                refuseConnectionString("引号没有结束");
            const char letter = take();
            if (letter == quote && (m_rest.empty() || m_rest.front() != quote))
                break;
            if (letter == quote)
                take();
            value += letter;
        }
        expectEndOfValue();
        return value;
    }

    std::string bracedValue()
    {
        const std::size_t end = std::min(m_rest.find("};"), m_rest.size());
        if (end == m_rest.size() && !ascii::trimmed(m_rest).ends_with('}'))
            refuseConnectionString("大括号没有结束");
        const std::string_view whole = ascii::trimmed(m_rest.substr(0, std::min(end + 1, m_rest.size())));
        const std::string value(whole.substr(1, whole.size() - 2));
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        return value;
    }

    void expectEndOfValue()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
            take();
        if (!m_rest.empty() && m_rest.front() != ';')
            refuseConnectionString("引号之后有多余的文字");
    }

    std::string_view m_rest;
    Quotes m_quotes;
};

void setValue(ConnectionSettings& settings, std::string_view key, std::string value)
{
    const auto found =
        std::ranges::find_if(settings.values, [&](const auto& pair) { return sameName(pair.first, key); });
    if (found == settings.values.end())
        settings.values.emplace_back(key, std::move(value));
    else
        found->second = std::move(value);
}

bool namesDriver(const ConnectionSettings& settings)
{
    return settings.value("Provider").empty() &&
           (!settings.value("Driver").empty() || !settings.value("DSN").empty());
}

ConnectionSettings pairsOf(std::string_view text, Reader::Quotes quotes)
{
    ConnectionSettings settings{std::string(text), {}};
    Reader reader(text, quotes);
    while (reader.atPair()) {
        const std::string key = reader.key();
        setValue(settings, mainName(key), reader.value());
    }
    return settings;
}

std::optional<ConnectionSettings> triedPairs(std::string_view text, Reader::Quotes quotes)
{
    try {
        return pairsOf(text, quotes);
    } catch (const DatabaseError&) {
        return std::nullopt;
    }
}

/// True if the string is ODBC's own. Read in the other way it names a driver too, or cannot be read: what
/// only looks like a driver may stand inside a quoted password.
bool isOdbcString(std::string_view text)
{
    const auto odbc = triedPairs(text, Reader::Quotes::odbc);
    const auto other = triedPairs(text, Reader::Quotes::others);
    return odbc && other ? namesDriver(*odbc) && namesDriver(*other)
           : odbc        ? namesDriver(*odbc)
                         : other && namesDriver(*other);
}

} // namespace

const std::string& ConnectionSettings::value(std::string_view key) const
{
    static const std::string none;
    const auto found =
        std::ranges::find_if(values, [&](const auto& pair) { return sameName(pair.first, key); });
    return found == values.end() ? none : found->second;
}

void refuseConnectionString(const std::string& reason)
{
    // The string itself stays out of the text: it may hold a password.
    throw DatabaseError(unspecifiedError, "连接字符串无效: " + reason);
}

ConnectionSettings parseConnectionString(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos)
        refuseConnectionString("含有空字符");
    ConnectionSettings settings =
        pairsOf(text, isOdbcString(text) ? Reader::Quotes::odbc : Reader::Quotes::others);
    if (settings.values.empty())
        refuseConnectionString("字符串为空");
    return settings;
}

} // namespace selfreport
