#pragma once
#include "state/report_procedures.h"
#include "windows/designer/PageSetupHistory.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

class QWidget;

namespace selfreport {

/// The report that a designer works on, as it is stored: loading, and the road back into the database with
/// the questions that stand on it.
class EditedReport {
public:
    explicit EditedReport(ReportContext& context)
        : m_context(context)
    {
    }

    /// A new report, which has no row yet.
    void beginNew();

    /// Loads the context's report. False after telling why not: name and workbook are as they were then, and
    /// saving asks first.
    bool load(std::string& name, spreadsheet::Workbook& workbook);

    /// Stores the report as a new or a stored one, as the context's flag says; it is a stored one then. Asks
    /// before anything is replaced that was not loaded here. Nothing if the report was not stored, which the
    /// user knows then.
    /// @param name  as typed; another one if the user stores the report as a new one
    /// @return      what to tell the user
    std::optional<std::string_view> save(std::string& name, spreadsheet::Workbook& workbook, QWidget* window);

    /// Whether the row's content could not be read, and nothing has been saved since.
    bool isUnread() const { return m_isUnread; }
    /// Whether that is because a later program saved it: it is neither shown nor replaced.
    bool isOfLaterProgram() const { return m_isUnread && m_stored.isOfLaterProgram; }

    /// The version that saving takes for its own; nothing for a new report and for one that was not found.
    const std::optional<ReportVersion>& version() const { return m_stored.version; }
    /// The workbook was taken from a copy that was made from that version.
    void setVersion(std::optional<ReportVersion> version) { m_stored.version = std::move(version); }

    /// Finds out whether the row under its id is not another report's now; takes the row's lock.
    std::function<bool(Connection&)> ownershipOfRow() const
    {
        return [stored = m_stored](Connection& open) { return isRowOf(open, stored); };
    }

    /// The page set-up that the row is known to hold.
    const StoredPageSetup& pageSetup() const { return m_stored.pageSetup; }
    /// The row has been given another one, which the sheets show.
    void pageSetupStored(const StoredPageSetup& setup, const spreadsheet::PrintSettings& shown);
    /// … and what it held before.
    const PageSetupHistory& pageSetups() const { return m_pageSetups; }
    /// Gives a restored design what the row holds: the copy knows an older one. No step of undo.
    void showStoredPageSetup(spreadsheet::Workbook& workbook);

private:
    enum class Choice { cancel, overwrite, recreate, saveAsNew };

    std::optional<std::string_view> insert(const std::string& name, const spreadsheet::Workbook& workbook,
                                           const std::optional<StoredPageSetup>& setup);
    std::optional<std::string_view> insertAgain(const std::string& name,
                                                const spreadsheet::Workbook& workbook);
    std::optional<std::string_view> replace(std::string& name, spreadsheet::Workbook& workbook,
                                            QWidget* window);
    std::optional<std::string_view> saveAsNew(std::string& name, const spreadsheet::Workbook& workbook,
                                              QWidget* window);
    Choice choiceFor(const SaveConflict& conflict, const std::string& name) const;

    bool mayReplaceUnread() const;

    ReportContext& m_context;
    RememberedReport m_stored;
    PageSetupHistory m_pageSetups;
    bool m_isUnread = false;
};

} // namespace selfreport
