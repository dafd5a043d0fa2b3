#include "designer/Recovery.h"

#include "component/state/shared_state.h"
#include "formula/ledger_query.h"
#include "platform/database/sql_text.h"
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/FileFormats.h"

#include <array>
#include <charconv>
#include <chrono>
#include <ranges>
#include <string>
#include <string_view>

namespace selfreport {

namespace {

/// Database and user in few letters: several ledgers and users may share an application folder. A password is
/// left out, as it changes and does not belong into a file name in any form.
std::string ownerCode()
{
    constexpr std::uint64_t basis = 0xcbf29ce484222325; // FNV-1a
    constexpr std::uint64_t prime = 0x100000001b3;
    std::uint64_t code = basis;
    const auto add = [&code](std::string_view text) {
        for (const char c : text)
            code = (code ^ static_cast<unsigned char>(c)) * prime;
        code = (code ^ ';') * prime;
    };
    for (const auto part : std::views::split(std::string_view(gConnString), ';')) {
        const std::string_view setting(part.begin(), part.end());
        const std::string_view key = trimmed(setting.substr(0, setting.find('=')));
        if (!sameName(key, "Password") && !sameName(key, "PWD"))
            add(setting);
    }
    add(gLoginUserId);
    std::array<char, 16> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), code, 16).ptr;
    return {text.data(), end};
}

} // namespace

Recovery::Recovery(const spreadsheet::Workbook& workbook, std::optional<std::int32_t> report)
    : m_workbook(workbook)
    , m_report(report)
    , m_savedRevision(workbook.revision())
    , m_keptRevision(workbook.revision())
{
    using namespace std::chrono_literals;
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { keep(); });
    m_timer.start(60s);
}

std::filesystem::path Recovery::file() const
{
    if (gAppPath.empty())
        return {};
    const std::string report = m_report ? std::to_string(*m_report) : "new";
    return std::filesystem::path(gAppPath) / ("Recovery_" + ownerCode() + "_" + report + ".ss7");
}

bool Recovery::leftBehind() const
{
    std::error_code ignored;
    return !gAppPath.empty() && std::filesystem::is_regular_file(file(), ignored);
}

void Recovery::restore(spreadsheet::Workbook& workbook)
{
    spreadsheet::loadWorkbook(workbook, file());
    m_savedRevision.reset();
    m_keptRevision = workbook.revision();
}

void Recovery::saved(std::optional<std::int32_t> report)
{
    forget();
    m_report = report;
    m_savedRevision = m_keptRevision = m_workbook.revision();
}

void Recovery::forget()
{
    std::error_code ignored;
    std::filesystem::remove(file(), ignored);
}

void Recovery::keep()
{
    const std::uint64_t revision = m_workbook.revision();
    if (gAppPath.empty() || revision == m_keptRevision || revision == m_savedRevision)
        return;
    try {
        spreadsheet::saveWorkbook(m_workbook, file(), spreadsheet::FileFormat::ss7);
        m_keptRevision = revision;
    } catch (const std::exception&) {
        // The design is on screen and can be saved; a box every minute would only be in the way.
    }
}

} // namespace selfreport
