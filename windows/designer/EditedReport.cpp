#include "windows/designer/EditedReport.h"

#include "windows/designer/frmSaveAs.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace selfreport {

namespace {

constexpr std::string_view inserted = "报表保存成功!";
constexpr std::string_view replaced = "报表修改成功!";

constexpr std::string_view overwriteButton = "覆盖";
constexpr std::string_view recreateButton = "重新建立";
constexpr std::string_view saveAsNewButton = "另存为新报表";

std::string savedBy(const SaveConflict& conflict)
{
    constexpr std::size_t toSeconds = std::string_view("2009-12-31 08:05:09").size();
    const std::string who = conflict.savedBy.empty() ? "其他用户" : conflict.savedBy;
    const std::string when = conflict.found ? conflict.found->savedAt.substr(0, toSeconds) : std::string();
    return "由 " + who + " 于 " + (when.empty() ? "未知时间" : when) + " 保存。";
}

/// Whoever saves now loses what was left out.
std::string leftOutText(const std::vector<std::string>& unreadable)
{
    constexpr std::size_t shown = 5;
    std::string text = "报表中有 " + std::to_string(unreadable.size()) +
                       " 处内容没有能读出。单元格显示上次算出的值，保存报表后这些公式不再存在。\n";
    for (std::size_t i = 0; i < std::min(shown, unreadable.size()); ++i)
        text += "\n" + unreadable[i];
    return unreadable.size() > shown ? text + "\n……" : text;
}

} // namespace

void EditedReport::beginNew()
{
    m_context.report.header.clear(); // those of the report before
    m_context.report.footer.clear();
    m_stored = {};
    m_pageSetups.clear();
    m_isUnread = false;
}

bool EditedReport::load(std::string& name, spreadsheet::Workbook& workbook)
{
    m_isUnread = !loadReport(m_context, name, workbook, &m_stored);
    m_pageSetups.begin(m_stored.pageSetup, workbook.sheet(1).settings().print);
    if (!m_isUnread && !m_stored.unreadable.empty())
        m_context.database.tell(Icon::exclamation, leftOutText(m_stored.unreadable));
    return !m_isUnread;
}

std::optional<std::string_view> EditedReport::save(std::string& name, spreadsheet::Workbook& workbook,
                                                   QWidget* window)
{
    if (m_context.report.editFlag == 0)
        return m_stored.uncertain ? insertAgain(name, workbook) : insert(name, workbook, std::nullopt);
    if (isOfLaterProgram()) {
        m_context.database.tell(Icon::exclamation, "这张报表由更新的版本保存，本程序不能替换它，没有保存。\n"
                                                   "请升级程序后再修改。");
        return std::nullopt;
    }
    if (m_isUnread && !mayReplaceUnread())
        return std::nullopt;
    return replace(name, workbook, window);
}

bool EditedReport::mayReplaceUnread() const
{
    return dialogs()
        .choose(
            Icon::exclamation, m_context.title,
            "打开时没有读出这张报表，保存将用当前内容替换已存储的报表，原来的内容不能恢复。\n确定要保存吗？",
            {"保存"})
        .has_value();
}

std::optional<std::string_view> EditedReport::insert(const std::string& name,
                                                     const spreadsheet::Workbook& workbook,
                                                     const std::optional<StoredPageSetup>& setup)
{
    RememberedReport stored;
    const bool isDone = insertReport(m_context, name, workbook, &stored, setup);
    if (isDone || m_context.report.editFlag == 0) // of a copy whose outcome is unknown the name tells it
        m_stored = stored;
    if (!isDone)
        return std::nullopt;
    m_context.report.editFlag = 1;
    m_isUnread = false;
    if (!setup) // the row has none of its own, whatever the sheets show
        m_pageSetups.begin({}, {});
    return inserted;
}

/// An insert of which nobody knows whether it was done is not done twice.
std::optional<std::string_view> EditedReport::insertAgain(const std::string& name,
                                                          const spreadsheet::Workbook& workbook)
{
    const SaveOutcome outcome = updateReport(m_context, name, workbook, m_stored);
    if (std::holds_alternative<ReportLeft>(outcome))
        return std::nullopt;
    if (std::holds_alternative<SaveConflict>(outcome)) { // it was not done
        m_stored = {};
        return insert(name, workbook, std::nullopt);
    }
    m_context.report.id = m_stored.id;
    m_context.report.editFlag = 1;
    m_pageSetups.begin({}, {});
    return inserted;
}

std::optional<std::string_view> EditedReport::replace(std::string& name, spreadsheet::Workbook& workbook,
                                                      QWidget* window)
{
    auto store = updateReport;
    for (;;) {
        const SaveOutcome outcome = store(m_context, name, workbook, m_stored);
        if (std::holds_alternative<ReportLeft>(outcome))
            return std::nullopt;
        const auto* const conflict = std::get_if<SaveConflict>(&outcome);
        if (!conflict) {
            m_context.report.id = m_stored.id;
            if (std::exchange(m_isUnread, false)) {
                applyPageSetup(workbook, m_stored.pageSetup); // that of the row, which was not loaded either
                m_pageSetups.begin(m_stored.pageSetup, workbook.sheet(1).settings().print);
            }
            return store == updateReport ? replaced : inserted;
        }
        switch (choiceFor(*conflict, name)) {
        case Choice::cancel:
            return std::nullopt;
        case Choice::saveAsNew:
            return saveAsNew(name, workbook, window);
        case Choice::overwrite: // what the user has seen, and nothing later
            m_stored.version = conflict->found;
            store = updateReport;
            break;
        case Choice::recreate:
            store = recreateReport;
            break;
        }
    }
}

EditedReport::Choice EditedReport::choiceFor(const SaveConflict& conflict, const std::string& name) const
{
    struct Question {
        std::string text;
        std::vector<std::string_view> buttons;
        std::vector<Choice> choices;
    };
    const std::string report = "报表“" + (m_stored.version ? m_stored.version->name : name) + "”";
    Question question;
    switch (conflict.kind) {
    case SaveConflict::Kind::savedMeanwhile:
        question = {report + "已" + savedBy(conflict),
                    {overwriteButton, saveAsNewButton},
                    {Choice::overwrite, Choice::saveAsNew}};
        break;
    case SaveConflict::Kind::deleted:
        question = {report + "已被删除。", {recreateButton}, {Choice::recreate}};
        break;
    case SaveConflict::Kind::otherReport:
        question = {report + "的编号 " + std::to_string(m_stored.id) + " 现在属于报表“" +
                        conflict.found->name + "”，" + savedBy(conflict),
                    {saveAsNewButton},
                    {Choice::saveAsNew}};
        break;
    }
    const auto chosen = dialogs().choose(Icon::question, m_context.title, question.text, question.buttons);
    return chosen ? question.choices[*chosen] : Choice::cancel;
}

void EditedReport::pageSetupStored(const StoredPageSetup& setup, const spreadsheet::PrintSettings& shown)
{
    m_stored.pageSetup = setup;
    m_pageSetups.note(setup, shown);
}

void EditedReport::showStoredPageSetup(spreadsheet::Workbook& workbook)
{
    if (m_context.report.editFlag == 0 || m_isUnread)
        return;
    const spreadsheet::DisplayOnly storedApart(workbook);
    workbook.setUndoEnabled(false);
    applyPageSetup(workbook, m_stored.pageSetup);
    workbook.setUndoEnabled(true);
    m_pageSetups.note(m_stored.pageSetup, workbook.sheet(1).settings().print);
}

/// A copy keeps the page set-up of the report that it was made from.
std::optional<std::string_view>
EditedReport::saveAsNew(std::string& name, const spreadsheet::Workbook& workbook, QWidget* window)
{
    frmSaveAs dialog(m_context, QString::fromStdString(name), window);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    const std::string chosen = dialog.name().toStdString();
    auto told = insert(chosen, workbook, m_stored.pageSetup);
    if (told) {
        name = chosen;
        m_context.report.header = m_stored.pageSetup.header;
        m_context.report.footer = m_stored.pageSetup.footer;
    }
    return told;
}

} // namespace selfreport
