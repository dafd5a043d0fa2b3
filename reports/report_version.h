#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

class Recordset;

/// Which save of a report a row holds. Two rows under one id that differ in any of this are two versions;
/// the page set-up is no part of it.
struct ReportVersion {
    std::string savedAt;            ///< `fdate`, exactly as the database gives it; "" for null
    std::string name;               ///< `fname`
    std::string savedBy;            ///< `fbillerid`
    std::int64_t contentLength = 0; ///< of `fFileContent`, in bytes; 0 for null

    friend bool operator==(const ReportVersion&, const ReportVersion&) = default;
};

/// Asks for what versionOf() reads, without fetching the content.
std::string reportVersionStatement(std::int64_t report);

/// The version of the first row that `reportVersionStatement` found; nothing if it found none.
/// @throws DatabaseError if the rows are another statement's
std::optional<ReportVersion> versionOf(const Recordset& rows);
/// … of the first row, whose content has this length.
std::optional<ReportVersion> versionOf(const Recordset& rows, std::size_t contentLength);

/// One line of text that a version can be kept as outside the database.
std::string versionText(const ReportVersion& version);

/// The version of such a text; nothing if it is none.
std::optional<ReportVersion> versionOfText(std::string_view text);

} // namespace selfreport
