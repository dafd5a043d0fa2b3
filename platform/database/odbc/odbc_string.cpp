#include "platform/database/odbc/odbc_string.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/session/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace selfreport {

namespace {

// Seconds for beginning and ending a transaction, which nobody can cancel: a server that is gone must not
// hold the program for ever.
constexpr int transactionTimeout = 120;

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
    const bool plain = value.find_first_of(";{} =") == std::string_view::npos;
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

/// "host", "host,port", "host\instance", each also with "tcp:" before it.
void addServer(OdbcString& string, std::string_view server)
{
    if (server.empty())
        refuseConnectionString("没有给出服务器");
    if (beginsWithName(server, "tcp:"))
        server.remove_prefix(4);
    else if (const std::size_t colon = server.find(':');
             colon != std::string_view::npos && isOneOf(server.substr(0, colon), {"np", "lpc", "admin"}))
        refuseConnectionString("不支持的网络协议 " + std::string(server.substr(0, colon)));
    const std::size_t comma = std::min(server.find(','), server.size());
    std::string host(server.substr(0, comma));
    while (host.ends_with(' '))
        host.pop_back();
    if (isOneOf(host, {".", "(local)"}))
        host = "127.0.0.1";
    string.add("Server", host);
    if (comma == server.size())
        return;
    std::string_view port = server.substr(comma + 1);
    while (port.starts_with(' '))
        port.remove_prefix(1);
    const int number = wholeNumber("端口", port);
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

void addEncryption(OdbcString& string, const std::string& encrypt)
{
    if (isOneOf(encrypt, {"true", "yes", "mandatory", "strict"}))
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
        target.loginTimeout = std::max(1, wholeNumber("Connect Timeout", seconds)); // 0 would wait for ever
    if (const std::string& seconds = settings.value("Command Timeout"); !seconds.empty())
        target.queryTimeout = wholeNumber("Command Timeout", seconds);
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
    // The driver's default for all that is no statement. Those say themselves that they may take long.
    string.add("Timeout", std::to_string(target.queryTimeout > 0 ? target.queryTimeout : transactionTimeout));
    string.add("TDS_Version", "7.4");
    string.add("ClientCharset", "UTF-8");
    target.connectionString = std::move(string).text();
    return target;
}

} // namespace selfreport
