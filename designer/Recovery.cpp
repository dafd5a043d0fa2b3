#include "designer/Recovery.h"

#include "component/state/shared_state.h"
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/FileFormats.h"

#include <chrono>

namespace selfreport {

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
    return std::filesystem::path(gAppPath) / ("Recovery_" + report + ".ss7");
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
