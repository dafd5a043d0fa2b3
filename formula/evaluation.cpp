#include "formula/evaluation.h"

#include "component/state/mdlMain.h"
#include "formula/ledger_explanation.h"
#include "formula/ledger_query.h"
#include "formula/report_functions.h"
#include "formula/SharedFetches.h"
#include "platform/dialogs/UserWait.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace selfreport {

namespace {

using spreadsheet::CellAddress;
using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::Sheet;

/// Fills a slot while it lives.
template <typename T>
class SlotInUse {
public:
    SlotInUse(T*& slot, T* content)
        : m_slot(slot)
    {
        m_slot = content;
    }
    ~SlotInUse() { m_slot = nullptr; }
    SlotInUse(const SlotInUse&) = delete;
    SlotInUse& operator=(const SlotInUse&) = delete;

private:
    T*& m_slot;
};

/// Every cell up to the last row and column that hold data, row by row.
void forEveryCell(spreadsheet::Workbook& workbook, const std::function<void(Sheet&, CellAddress)>& work)
{
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        Sheet& sheet = workbook.sheet(index);
        const int lastRow = sheet.lastDataRow();
        const int lastColumn = sheet.lastDataColumn();
        for (int row = 1; row <= lastRow; ++row)
            for (int column = 1; column <= lastColumn; ++column)
                work(sheet, {column, row});
    }
}

void setType(Sheet& sheet, CellAddress cell, CellType type)
{
    if (sheet.style(cell).type == type)
        return;
    CellStyle style = sheet.style(cell);
    style.type = type;
    sheet.setStyle(cell, style);
}

/// The type whose code a tag holds; nothing for any other text.
std::optional<CellType> taggedType(std::string_view tag)
{
    int code = 0;
    const auto [end, error] = std::from_chars(tag.data(), tag.data() + tag.size(), code);
    if (error != std::errc() || end != tag.data() + tag.size())
        return std::nullopt;
    return spreadsheet::cellTypeOf(code);
}

/// In a report that was saved with its formulas shown they are so from the beginning.
bool showsFormulas(spreadsheet::Workbook& workbook)
{
    bool isShown = false;
    forEveryCell(workbook, [&](const Sheet& sheet, CellAddress cell) {
        isShown = isShown || !sheet.shownText(cell).empty();
    });
    return isShown;
}

/// @param again  formulas were shown already: a cell that got another formula meanwhile is plain text only
///               because it was shown
void showFormula(Sheet& sheet, CellAddress cell, bool again)
{
    if (!sheet.shownText(cell).empty())
        return; // already shown: its tag holds the type that it has as data
    const CellType type = sheet.style(cell).type;
    if (!again || type != CellType::edit || !taggedType(sheet.tag(cell).view()))
        sheet.setTag(cell, std::to_string(static_cast<int>(type)));
    const std::string formula = sheet.formula(cell);
    if (trimmed(formula).empty())
        return;
    setType(sheet, cell, CellType::edit);
    sheet.setShownText(cell, formula);
}

void restoreType(Sheet& sheet, CellAddress cell)
{
    if (!sheet.hasFormula(cell))
        return;
    if (const auto type = taggedType(sheet.tag(cell).view()))
        setType(sheet, cell, *type);
    if (!sheet.shownText(cell).empty())
        sheet.setShownText(cell, {});
}

} // namespace

ReportEvaluation::ReportEvaluation(spreadsheet::Workbook& workbook)
    : m_workbook(workbook)
{
}

ReportEvaluation::~ReportEvaluation()
{
    // The workbook outlives this and may be recalculated: its cells keep their values then.
    const auto decline = [](spreadsheet::FunctionCall& call) { call.decline(); };
    m_workbook.registerFunction("Acct", 6, decline);
    m_workbook.registerFunction("REF_F", 3, decline);
    m_workbook.setPrepareHook({});
    m_workbook.setPauseHook({});
}

void ReportEvaluation::addSelfFunction()
{
    const auto callback = [this](spreadsheet::FunctionCall& call) { fps1_CustomFunction(call); };
    m_workbook.registerFunction("Acct", 6, callback);
    m_workbook.registerFunction("REF_F", 3, callback);
    m_workbook.setPrepareHook([this](std::span<spreadsheet::PreparedCall> calls) {
        if (!m_shared || isShowFormula == 1)
            return;
        try {
            m_shared->prepare(calls);
        } catch (const WorkCancelled&) {
            // The recalculation stops with its next pause.
        }
    });
    m_workbook.setPauseHook([] { return userWait().pause(); });
}

void ReportEvaluation::fps1_CustomFunction(spreadsheet::FunctionCall& call)
{
    if (isShowFormula == 1)
        return;
    const RecalculationUnderWay underWay; // the workbook may recalculate without being asked here
    try {
        guardedEvaluation([&] {
            if (isFunction(call, "Acct"))
                evaluateAcct(call, m_shared, m_log);
            else if (isFunction(call, "REF_F"))
                evaluateREF_F(call, m_shared, m_log);
        });
    } catch (const WorkCancelled&) {
        call.decline();
    }
}

/// A cell of a former recalculation that computes nothing any more.
bool ReportEvaluation::isGone(spreadsheet::CallPlace place) const
{
    return place.sheet > m_workbook.sheetCount() ||
           !m_workbook.sheet(place.sheet).hasFormula({place.column, place.row});
}

bool ReportEvaluation::recalculateWith(const std::function<spreadsheet::RecalculationReport()>& recalculation)
{
    const RecalculationUnderWay underWay;
    m_log = {};
    {
        SharedFetches shared;
        const SlotInUse<SharedFetches> inUse(m_shared, m_fetchesShared ? &shared : nullptr);
        if (recalculation().stopped)
            return false;
    }
    takeDiagnostics();
    return true;
}

/// Of the recalculation that has just ended; cells that it did not touch keep theirs.
void ReportEvaluation::takeDiagnostics()
{
    std::erase_if(m_diagnostics, [&](const CellDiagnostic& former) {
        return m_log.evaluated.contains(former.place) || isGone(former.place);
    });
    std::ranges::copy(explainFetches(m_log), std::back_inserter(m_diagnostics));
    std::ranges::stable_sort(m_diagnostics, {}, &CellDiagnostic::place);
}

bool ReportEvaluation::recalculate()
{
    return recalculateWith([&] {
        spreadsheet::RecalculationReport report = m_workbook.recalculate();
        if (!report.stopped)
            m_diagnostics.clear();
        return report;
    });
}

bool ReportEvaluation::recalculateChanged()
{
    return recalculateWith([&] { return m_workbook.recalculateChanged(); });
}

void ReportEvaluation::showFormulas()
{
    const spreadsheet::UndoStep step(m_workbook, "显示公式");
    const bool again = isShowFormula == 1 || showsFormulas(m_workbook);
    isShowFormula = 1;
    m_workbook.setFormulasShown(true);
    forEveryCell(m_workbook, [again](Sheet& sheet, CellAddress cell) { showFormula(sheet, cell, again); });
}

void ReportEvaluation::showStoredData()
{
    isShowFormula = 0;
    m_workbook.setFormulasShown(false);
    forEveryCell(m_workbook, restoreType);
}

bool ReportEvaluation::showData()
{
    {
        const spreadsheet::UndoStep step(m_workbook, "显示数据");
        showStoredData();
    }
    return recalculate();
}

bool ReportEvaluation::startRun()
{
    showStoredData();
    return recalculate();
}

} // namespace selfreport
