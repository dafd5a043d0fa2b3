#include "fetch/ReportEvaluation.h"

#include "access/DatabaseAccess.h"
#include "fetch/ledger_explanation.h"
#include "fetch/ledger_query.h"
#include "fetch/report_functions.h"
#include "fetch/SharedFetches.h"
#include "platform/services/UserWait.h"
#include "spreadsheet/workbook/UndoJournal.h"

#include <charconv>
#include <optional>
#include <utility>

namespace selfreport {

// Formulas and figures are two displays of one workbook, and undo, files and other reports must find the
// types that the cells have as data while formulas are shown. So the type stands in each cell's tag, and the
// display is set right at the end of every step, whatever command made it, instead of by each command.

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

bool showsTexts(const spreadsheet::Workbook& workbook)
{
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        if (workbook.sheet(index).hasShownTexts())
            return true;
    return false;
}

void keepType(Sheet& sheet, CellAddress cell)
{
    sheet.setTag(cell, std::to_string(static_cast<int>(sheet.style(cell).type)));
}

/// A cell that holds another formula than it shows was typed, pasted or filled into, or moved; plain text it
/// may be only because it was shown before, and then its tag holds the type that it has as data.
void showFormula(Sheet& sheet, CellAddress cell)
{
    const std::string formula = sheet.formula(cell);
    const CellType type = sheet.style(cell).type;
    if (trimmed(formula).empty() || (type == CellType::edit && sheet.shownText(cell).view() == formula))
        return;
    if (type != CellType::edit || !taggedType(sheet.tag(cell).view()))
        keepType(sheet, cell);
    setType(sheet, cell, CellType::edit);
    sheet.setShownText(cell, formula);
}

void showValue(Sheet& sheet, CellAddress cell)
{
    if (!sheet.hasFormula(cell))
        return;
    if (const auto type = taggedType(sheet.tag(cell).view()))
        setType(sheet, cell, *type);
    sheet.setShownText(cell, {});
}

bool showedText(const spreadsheet::Column& before, int row)
{
    const auto* slot = before.find(row);
    return slot && !slot->block->shown(row - slot->firstRow).empty();
}

/// A cell that was plain text only because its formula was shown, and holds a constant since this step.
void restoreType(Sheet& sheet, CellAddress cell, const spreadsheet::Column& before)
{
    if (before.formula(cell.row) == 0 || !showedText(before, cell.row) ||
        sheet.style(cell).type != CellType::edit)
        return;
    const auto* slot = before.find(cell.row);
    if (const auto type = taggedType(slot->block->tag(cell.row - slot->firstRow).view()))
        setType(sheet, cell, *type);
}

} // namespace

void showStoredValues(spreadsheet::Workbook& workbook)
{
    if (showsTexts(workbook))
        forEveryCell(workbook, [](Sheet& sheet, CellAddress cell) {
            if (!sheet.shownText(cell).empty())
                showValue(sheet, cell);
        });
}

ReportEvaluation::ReportEvaluation(spreadsheet::Workbook& workbook, DatabaseAccess& database)
    : m_workbook(workbook)
    , m_database(database)
    , m_record(workbook)
{
    m_workbook.setStepEndHook([this] { keepDisplay(); });
    m_workbook.setTextInstead(
        [this](const Sheet& sheet, CellAddress cell) { return textInstead(sheet, cell); });
}

ReportEvaluation::~ReportEvaluation()
{
    // The workbook outlives this and may be recalculated: its cells keep their values then.
    const auto decline = [](spreadsheet::FunctionCall& call) { call.decline(); };
    m_workbook.registerFunction("Acct", 6, decline);
    m_workbook.registerFunction("REF_F", 3, decline);
    m_workbook.setPrepareHook({});
    m_workbook.setPauseHook({});
    m_workbook.setStepEndHook({});
    m_workbook.setTextInstead({});
}

std::optional<std::string> ReportEvaluation::textInstead(const Sheet& sheet, const CellAddress& cell) const
{
    const auto& texts = sheet.settings().nothingTexts;
    if (texts.empty() || m_workbook.formulasShown())
        return std::nullopt;
    const auto found =
        texts.find(static_cast<int>(m_record.nothingIn({sheet.id(), cell}, sheet.value(cell))));
    return found == texts.end() ? std::nullopt : std::optional(found->second);
}

std::map<spreadsheet::SheetCell, std::string> ReportEvaluation::textsInstead() const
{
    std::map<spreadsheet::SheetCell, std::string> texts;
    m_record.eachCall([&](const spreadsheet::SheetCell& cell, const RecordedCall&) {
        const int sheet = m_workbook.sheetIndexOfId(cell.sheetId);
        if (auto text = sheet == 0 ? std::nullopt : textInstead(m_workbook.sheet(sheet), cell.cell))
            texts.insert_or_assign(cell, *std::move(text));
    });
    return texts;
}

void ReportEvaluation::addSelfFunction()
{
    const auto callback = [this](spreadsheet::FunctionCall& call) { fps1_CustomFunction(call); };
    m_workbook.registerFunction("Acct", 6, callback);
    m_workbook.registerFunction("REF_F", 3, callback);
    m_workbook.setPrepareHook([this](std::span<spreadsheet::PreparedCall> calls) {
        if (!m_shared || m_workbook.formulasShown())
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
    if (m_workbook.formulasShown())
        return;
    const RecalculationUnderWay underWay(m_database); // the workbook may recalculate without being asked here
    try {
        guardedCall(call, m_database, m_record, [&] {
            if (isFunction(call, "Acct"))
                evaluateAcct(call, m_database, m_shared, m_record);
            else if (isFunction(call, "REF_F"))
                evaluateREF_F(call, m_database, m_shared, m_record);
        });
    } catch (const WorkCancelled&) {
        call.decline();
    }
}

bool ReportEvaluation::computed(const std::function<spreadsheet::RecalculationReport()>& recalculation)
{
    SharedFetches shared(m_database, m_kindsTold);
    const SlotInUse<SharedFetches> inUse(m_shared, m_fetchesShared ? &shared : nullptr);
    const bool isComplete = !recalculation().stopped;
    m_connection = shared.takeConnection();
    if (!isComplete)
        m_record.drop();
    return isComplete;
}

void ReportEvaluation::explainRecord()
{
    m_record.explain([this](FetchesToExplain fetches) {
        fetches.kindsTold = m_kindsTold;
        return explainFetches(fetches, m_database, std::move(m_connection));
    });
    m_connection.reset();
}

bool ReportEvaluation::recalculate()
{
    const RecalculationUnderWay underWay(m_database);
    if (!computed([&] { return m_workbook.recalculate(); }))
        return false;
    m_record.takeAll();
    explainRecord();
    return true;
}

bool ReportEvaluation::recalculateChanged()
{
    const RecalculationUnderWay underWay(m_database);
    if (!computed([&] { return m_workbook.recalculateChanged(); }))
        return false;
    m_record.takeChanged();
    explainRecord();
    return true;
}

std::int16_t ReportEvaluation::isShowFormula() const
{
    return m_workbook.formulasShown() ? 1 : 0;
}

/// The formulas themselves are shown when the step ends. A report that was saved with its formulas shown has
/// its types in the tags already.
void ReportEvaluation::showFormulas()
{
    const spreadsheet::DisplayOnly display(m_workbook);
    const spreadsheet::UndoStep step(m_workbook, "显示公式");
    if (m_workbook.formulasShown())
        return;
    if (!showsTexts(m_workbook))
        forEveryCell(m_workbook, keepType);
    m_workbook.setFormulasShown(true);
}

/// What changed cells show once a step ends, whatever changed them: the formulas that they hold now, or data.
void ReportEvaluation::keepDisplay()
{
    const bool formulas = m_workbook.formulasShown();
    if (!formulas && !(m_workbook.journal().enabled() && showsTexts(m_workbook)))
        return;
    const spreadsheet::UndoJournal& journal = m_workbook.journal();
    forEveryCell(m_workbook, [&](Sheet& sheet, CellAddress cell) {
        const spreadsheet::Column* const before = journal.formerColumn(sheet.id(), cell.column);
        if (formulas && sheet.hasFormula(cell))
            showFormula(sheet, cell);
        else if (formulas && before)
            restoreType(sheet, cell, *before);
        else if (before && !sheet.shownText(cell).empty() && !showedText(*before, cell.row))
            showValue(sheet, cell); // pasted from a sheet that shows its formulas
    });
}

void ReportEvaluation::showStoredData()
{
    const spreadsheet::DisplayOnly display(m_workbook);
    const spreadsheet::UndoStep step(m_workbook, "显示数据");
    m_workbook.setFormulasShown(false);
    forEveryCell(m_workbook, showValue);
}

bool ReportEvaluation::showData()
{
    showStoredData();
    return recalculate();
}

bool ReportEvaluation::startRun()
{
    showStoredData();
    return recalculate();
}

} // namespace selfreport
