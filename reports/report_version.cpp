#include "reports/report_version.h"

#include "platform/database/session/Recordset.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace selfreport {

namespace {

constexpr char separator = '\t';
constexpr char escape = '\\';

void appendField(std::string& line, std::string_view field)
{
    for (const char c : field)
        switch (c) {
        case separator:
            line += {escape, 't'};
            break;
        case '\n':
            line += {escape, 'n'};
            break;
        case '\r':
            line += {escape, 'r'};
            break;
        case escape:
            line += {escape, escape};
            break;
        default:
            line += c;
        }
}

/// Cuts the first field off; nothing if it holds an escape that is none.
std::optional<std::string> takeField(std::string_view& line)
{
    std::string field;
    for (std::size_t at = 0; at <= line.size(); ++at) {
        if (at == line.size() || line[at] == separator) {
            line.remove_prefix(std::min(at + 1, line.size()));
            return field;
        }
        if (line[at] != escape) {
            field += line[at];
            continue;
        }
        if (++at == line.size())
            return std::nullopt;
        const auto known = std::string_view("tnr\\").find(line[at]);
        if (known == std::string_view::npos)
            return std::nullopt;
        field += "\t\n\r\\"[known];
    }
    return std::nullopt;
}

} // namespace

std::string reportVersionStatement(std::int64_t report)
{
    return "select fdate,fname,fbillerid,datalength(fFileContent) as flength from tblCWSelfReport where "
           "noid=" +
           std::to_string(report);
}

std::optional<ReportVersion> versionOf(const Recordset& rows)
{
    return rows.isEmpty() ? std::nullopt
                          : versionOf(rows, static_cast<std::size_t>(rows.integer(0, "flength")));
}

std::optional<ReportVersion> versionOf(const Recordset& rows, std::size_t contentLength)
{
    if (rows.isEmpty())
        return std::nullopt;
    return ReportVersion{rows.text(0, "fdate"), rows.text(0, "fname"), rows.text(0, "fbillerid"),
                         static_cast<std::int64_t>(contentLength)};
}

std::string versionText(const ReportVersion& version)
{
    std::string line = std::to_string(version.contentLength);
    for (const std::string* const field : {&version.savedAt, &version.savedBy, &version.name}) {
        line += separator;
        appendField(line, *field);
    }
    return line;
}

std::optional<ReportVersion> versionOfText(std::string_view text)
{
    std::array<std::string, 4> fields;
    if (std::ranges::count(text, separator) != std::ssize(fields) - 1)
        return std::nullopt;
    for (std::string& field : fields) {
        auto taken = takeField(text);
        if (!taken)
            return std::nullopt;
        field = std::move(*taken);
    }
    ReportVersion version{fields[1], fields[3], fields[2], 0};
    const std::string& length = fields[0];
    const char* const end = length.data() + length.size();
    const auto read = std::from_chars(length.data(), end, version.contentLength);
    if (read.ec != std::errc() || read.ptr != end || version.contentLength < 0)
        return std::nullopt;
    return version;
}

} // namespace selfreport
