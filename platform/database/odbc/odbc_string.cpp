#include "platform/database/odbc/odbc_string.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/session/names.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace selfreport {

// Hosts hand over the connection strings that they have always had, most of them for providers that exist on
// another system. The driver would pass over a key of theirs in silence, and nobody could tell why another
// server or no encryption was used. So each key is translated or means nothing here, and values that the
// driver cannot take are refused.

namespace {

// Seconds for beginning and ending a transaction, which nobody can cancel: a server that is gone must not
// hold the program for ever.
constexpr int transactionTimeout = 120;

// By which a server's administrator finds our sessions.
constexpr const char* applicationName = "selfreport";

bool isOneOf(std::string_view value, std::initializer_list<std::string_view> words)
{
    return std::ranges::any_of(words, [&](std::string_view word) { return sameName(value, word); });
}

int wholeNumber(std::string_view key, std::string_view text)
{
    int number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || number < 0)
        refuseConnectionString(std::string(key) + " 不是整数");
    return number;
}

/// Braces keep separators and blanks; the driver takes a "}" inside as it is and ends at "};".
std::string quoted(std::string_view key, std::string_view value)
{
    const bool plain = value.find_first_of(";{} =\t\r\n") == std::string_view::npos;
    if (plain)
        return std::string(value);
    if (value.find("};") != std::string_view::npos)
        refuseConnectionString(std::string(key) + " 的值无法传给驱动程序");
    return "{" + std::string(value) + "}";
}

class OdbcString {
public:
    void add(std::string_view key, std::string_view value)
    {
        if (!value.empty())
            m_text += std::string(key) + "=" + quoted(key, value) + ";";
    }
    std::string text() && { return std::move(m_text); }

private:
    std::string m_text;
};

/// Where a server listens: a host, and a port or the name of an instance that the host is asked for.
struct Server {
    std::string_view host, instance, port;
};

/// Takes what stands behind the first of the marks off the text.
std::string_view takenBehind(std::string_view& text, char mark)
{
    const std::size_t at = text.find(mark);
    if (at == std::string_view::npos)
        return {};
    const std::string_view behind = ascii::trimmed(text.substr(at + 1), " ");
    if (behind.empty())
        refuseConnectionString("服务器的名称不完整");
    text = ascii::trimmed(text.substr(0, at), " ");
    return behind;
}

std::string_view withoutProtocol(std::string_view server)
{
    const std::size_t colon = server.find(':');
    const std::string_view protocol = ascii::trimmed(server.substr(0, colon), " ");
    if (colon == std::string_view::npos || !isOneOf(protocol, {"tcp", "np", "lpc", "admin"}))
        return server;
    if (!sameName(protocol, "tcp"))
        refuseConnectionString("不支持的网络协议 " + std::string(protocol));
    return ascii::trimmed(server.substr(colon + 1), " ");
}

/// "host", "host,port", "host\instance", each also with "tcp:" before it; an address of version 6 bare or in
/// brackets. A port makes the name of an instance idle, and the usual instance has none.
Server serverOf(std::string_view text)
{
    Server server;
    text = withoutProtocol(text);
    server.port = takenBehind(text, ',');
    server.instance = takenBehind(text, '\\');
    if (text.starts_with('[') && text.ends_with(']'))
        text = ascii::trimmed(text.substr(1, text.size() - 2), " ");
    else if (std::ranges::count(text, ':') == 1 && server.port.empty())
        server.port = takenBehind(text, ':');
    if (sameName(text, "(localdb)"))
        refuseConnectionString("不支持 LocalDB");
    server.host = isOneOf(text, {".", "(local)"}) ? "127.0.0.1" : text;
    if (server.host.empty())
        refuseConnectionString("没有给出服务器");
    if (!server.port.empty() || sameName(server.instance, "MSSQLSERVER"))
        server.instance = {};
    return server;
}

void addServer(OdbcString& string, std::string_view text)
{
    const Server server = serverOf(text);
    string.add("Server", std::string(server.host) + (server.instance.empty() ? "" : "\\") +
                             std::string(server.instance));
    if (server.port.empty())
        return;
    const int number = wholeNumber("端口", server.port);
    if (number < 1 || number > 65535)
        refuseConnectionString("端口超出范围");
    string.add("Port", std::to_string(number));
}

void addLogin(OdbcString& string, const ConnectionSettings& settings)
{
    // With a user name the driver would not use the ticket of the user who is logged in.
    if (isOneOf(settings.value("Integrated Security"), {"SSPI", "true", "yes"})) {
        string.add("Trusted_Connection", "Yes");
        return;
    }
    string.add("UID", settings.value("User ID"));
    string.add("PWD", settings.value("Password"));
}

bool wantsEncryption(const std::string& encrypt)
{
    return isOneOf(encrypt, {"true", "yes", "mandatory", "strict"});
}

void addEncryption(OdbcString& string, const std::string& encrypt)
{
    if (wantsEncryption(encrypt))
        string.add("Encryption", "require");
    else if (isOneOf(encrypt, {"false", "no", "optional"}))
        string.add("Encryption", "request"); // the login is still hidden if the server has a certificate
    else if (!encrypt.empty())
        refuseConnectionString("Encrypt");
}

struct Key {
    std::string_view ours, drivers;
};

/// The ODBC string of the bridge provider: its own keys under their ODBC names, "Extended Properties" as they
/// are.
std::string bridgedString(const ConnectionSettings& settings)
{
    static constexpr std::array keys{
        Key{"Data Source", "DSN"},
        Key{"User ID", "UID"},
        Key{"Password", "PWD"},
        Key{"Initial Catalog", "DATABASE"},
    };
    std::string text;
    for (const auto& [key, value] : settings.values) {
        if (sameName(key, "Extended Properties"))
            text += value + ";";
        if (sameName(key, "Provider") || sameName(key, "Extended Properties"))
            continue;
        const auto known = std::ranges::find_if(keys, [&](const Key& k) { return sameName(k.ours, key); });
        text +=
            std::string(known == keys.end() ? std::string_view(key) : known->drivers) + "={" + value + "};";
    }
    return text;
}

/// The string of one who chose driver or data source; "" if that is left to us.
std::string chosenString(const ConnectionSettings& settings)
{
    const std::string& provider = settings.value("Provider");
    const bool namesDriver = !settings.value("Driver").empty() || !settings.value("DSN").empty();
    if (namesDriver && provider.empty())
        return settings.text;
    return beginsWithName(provider, bridgeProvider) ? bridgedString(settings) : std::string();
}

} // namespace

OdbcTarget odbcTarget(const ConnectionSettings& settings)
{
    OdbcTarget target;
    if (const std::string& seconds = settings.value("Connect Timeout"); !seconds.empty())
        target.loginTimeout = wholeNumber("Connect Timeout", seconds);
    if (const std::string& seconds = settings.value("Command Timeout"); !seconds.empty())
        target.queryTimeout = wholeNumber("Command Timeout", seconds);
    target.encrypts = wantsEncryption(settings.value("Encrypt"));
    target.connectionString = chosenString(settings);
    if (!target.connectionString.empty())
        return target;
    static constexpr std::array keys{
        Key{"Initial Catalog", "Database"},
        Key{"Application Name", "APP"},
        Key{"Workstation ID", "WSID"},
        Key{"Current Language", "Language"},
        Key{"Packet Size", "PacketSize"},
        Key{"ApplicationIntent", "ApplicationIntent"},
        Key{"AttachDBFilename", "AttachDbFilename"},
    };
    OdbcString string;
    string.add("Driver", "FreeTDS");
    addServer(string, settings.value("Data Source"));
    addLogin(string, settings);
    for (const Key& key : keys)
        string.add(key.drivers, settings.value(key.ours));
    addEncryption(string, settings.value("Encrypt"));
    if (settings.value("Application Name").empty())
        string.add("APP", applicationName);
    // The driver's default for all that is no statement. Those say themselves that they may take long.
    string.add("Timeout", std::to_string(target.queryTimeout > 0 ? target.queryTimeout : transactionTimeout));
    string.add("TDS_Version", "7.4");
    string.add("ClientCharset", "UTF-8");
    target.connectionString = std::move(string).text();
    return target;
}

} // namespace selfreport
