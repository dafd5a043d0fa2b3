#include "windows/designer/Recovery.h"

#include "failures/failure_text.h"
#include "platform/database/session/names.h"
#include "reports/ReportContext.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/files/placing/FileTarget.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <random>
#include <ranges>
#include <string_view>
#include <utility>

namespace selfreport {

// A design is lost in two ways, by a crash and by a closing without saving, and the user is asked after the
// first only: who closed on purpose is not to be bothered. So a copy knows how its window ended, each window
// has a file of its own, and nothing that was found is removed before it was taken up, discarded or offered
// long enough.

namespace {

using namespace std::chrono_literals;
using Left = RecoveryNote::Left;

constexpr auto offeredFor = std::chrono::days(30);
constexpr const char* ending = ".copy";

std::string hexadecimal(std::uint64_t number)
{
    std::array<char, 16> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, 16).ptr;
    return {text.data(), end};
}

/// Database and user in few letters: several ledgers and users may share an application folder. A password is
/// left out, as it changes and does not belong into a file name in any form.
std::string ownerCode(const ReportContext& context)
{
    constexpr std::uint64_t basis = 0xcbf29ce484222325; // FNV-1a
    constexpr std::uint64_t prime = 0x100000001b3;
    std::uint64_t code = basis;
    const auto add = [&code](std::string_view text) {
        for (const char c : text)
            code = (code ^ static_cast<unsigned char>(c)) * prime;
        code = (code ^ ';') * prime;
    };
    for (const auto part : std::views::split(std::string_view(context.database.connectionString), ';')) {
        const std::string_view setting(part.begin(), part.end());
        const std::string_view key = ascii::trimmed(setting.substr(0, setting.find('=')), " ");
        if (!sameName(key, "Password") && !sameName(key, "PWD"))
            add(setting);
    }
    add(context.user);
    return hexadecimal(code);
}

std::string reportCode(std::optional<std::int32_t> report)
{
    return report ? std::to_string(*report) : "new";
}

bool isOld(const RecoveryCopy& copy)
{
    return std::filesystem::file_time_type::clock::now() - copy.writtenAt() > offeredFor;
}

} // namespace

Recovery::Recovery(const ReportContext& context, const spreadsheet::Workbook& workbook,
                   std::optional<std::int32_t> report, std::function<Heading()> heading)
    : m_workbook(workbook)
    , m_heading(std::move(heading))
    , m_folder(context.folder)
    , m_prefix("Recovery_" + ownerCode(context) + '_')
    , m_report(reportCode(report))
    , m_own(std::make_unique<RecoveryCopy>(freshFile()))
{
    noteSaved();
    findLeftBehind();
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { keep(false); });
    m_timer.start(60s);
}

Recovery::~Recovery()
{
    for (const auto& copy : m_offered)
        if (isOld(*copy)) {
            try {
                copy->setLeft(Left::lastOffer);
            } catch (const std::exception&) {
                // it is offered once more
            }
        }
}

/// No two windows share a name, on whatever machines they are.
std::filesystem::path Recovery::freshFile() const
{
    std::random_device random;
    const std::uint64_t number = (std::uint64_t(random()) << 32) | random();
    return m_folder / (m_prefix + m_report + '_' + hexadecimal(number) + ending);
}

void Recovery::findLeftBehind()
{
    if (m_folder.empty())
        return;
    const std::string own = m_prefix + m_report;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder, ignored)) {
        const std::string name = entry.path().filename().string();
        const bool isOwn = name.starts_with(own + '_') && name.ends_with(ending);
        if (!isOwn && name != own + ".ss7") // of earlier programs
            continue;
        auto copy = RecoveryCopy::takeOver(entry.path());
        if (!copy)
            continue;
        if (isOld(*copy) && copy->note().left == Left::lastOffer)
            std::filesystem::remove(entry.path(), ignored);
        else
            m_offered.push_back(std::move(copy));
    }
    std::ranges::sort(m_offered, {}, [](const auto& copy) { return copy->writtenAt(); });
}

bool Recovery::isOfferAfterCrash() const
{
    return isOffering() && m_offered.back()->note().left == Left::open;
}

void Recovery::putOff()
{
    try {
        m_offered.back()->setLeft(Left::closed);
    } catch (const std::exception&) {
        // the question comes once more
    }
}

Recovery::Heading Recovery::restore(spreadsheet::Workbook& workbook)
{
    if (isChanged())
        write(Left::closed);
    RecoveryCopy& copy = *m_offered.back();
    spreadsheet::loadContent(workbook, copy.content());
    m_own = std::move(m_offered.back());
    m_offered.clear();
    m_savedRevision.reset();
    m_keptRevision = workbook.designRevision();
    m_keptName = m_own->note().name;
    return {m_own->note().name, m_own->note().madeFrom};
}

void Recovery::discard()
{
    m_offered.back()->remove();
    m_offered.pop_back();
}

void Recovery::noteSaved()
{
    m_savedRevision = m_keptRevision = m_workbook.designRevision();
    m_savedName = m_keptName = m_heading().name;
}

void Recovery::saved(std::int32_t report)
{
    noteSaved();
    try {
        m_own->remove();
    } catch (const std::exception& error) {
        if (tell)
            tell(failures::sentenceOf(error));
    }
    m_report = reportCode(report);
    m_own = std::make_unique<RecoveryCopy>(freshFile());
}

bool Recovery::isChanged() const
{
    return m_savedRevision != m_workbook.designRevision() || m_savedName != m_heading().name;
}

void Recovery::write(RecoveryNote::Left left)
{
    if (m_folder.empty())
        throw spreadsheet::FileError("没有应用程序文件夹");
    Heading heading = m_heading();
    const std::uint64_t revision = m_workbook.designRevision();
    m_own->write({left, heading.name, std::move(heading.madeFrom)}, spreadsheet::saveContent(m_workbook));
    m_keptRevision = revision;
    m_keptName = std::move(heading.name);
}

bool Recovery::keep(bool closing)
{
    const bool isKept = m_keptRevision == m_workbook.designRevision() && m_keptName == m_heading().name;
    if (!isChanged() && !m_own->isWritten())
        return true;
    if (isKept && m_own->isWritten() && !closing)
        return true;
    std::string trouble;
    try {
        write(closing ? Left::closed : Left::open);
    } catch (const std::exception& error) {
        trouble = failures::sentenceOf(error);
    }
    if (std::exchange(m_trouble, trouble) != trouble && tell)
        tell(trouble);
    return trouble.empty();
}

} // namespace selfreport
