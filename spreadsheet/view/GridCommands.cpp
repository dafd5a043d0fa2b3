// Commands on contents: undo, clipboard, filling, sorting, searching.
#include "spreadsheet/view/commands/fill.h"
#include "spreadsheet/view/commands/go_to.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/UndoJournal.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

namespace spreadsheet {

namespace {

/// Names by sheet id, in the order of the sheets.
std::vector<std::pair<int, std::string>> sheetNames(const Workbook& workbook)
{
    std::vector<std::pair<int, std::string>> names;
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        names.emplace_back(workbook.sheet(index).id(), workbook.sheet(index).name());
    return names;
}

/// The sheet to show after some came, went or moved: the last one that came back, else the one shown before.
/// 0 if that is gone.
int sheetToShow(const Workbook& workbook, const std::vector<std::pair<int, std::string>>& before, int shownId)
{
    for (int index = workbook.sheetCount(); index > 0; --index) {
        const int id = workbook.sheet(index).id();
        if (std::ranges::find(before, id, &std::pair<int, std::string>::first) == before.end())
            return index;
    }
    return workbook.sheetIndexOfId(shownId);
}

QString roomQuestion(const PastePlan& plan)
{
    QStringList missing;
    if (plan.missingRows > 0)
        missing << QStringLiteral("%1 行").arg(plan.missingRows);
    if (plan.missingColumns > 0)
        missing << QStringLiteral("%1 列").arg(plan.missingColumns);
    return QStringLiteral("粘贴的内容超出表的范围。要增加 %1吗?")
        .arg(missing.join(QStringLiteral("、")) + ' ');
}

} // namespace

bool SpreadsheetControl::refuse(const Refusal& why)
{
    if (why)
        Q_EMIT refused(QString::fromStdString(why.reason()));
    return static_cast<bool>(why);
}

bool SpreadsheetControl::refuseInRun()
{
    return mode() == GridMode::run && refuse(inRunMode);
}

bool SpreadsheetControl::refuseEdit(const std::vector<CellRange>& ranges)
{
    return std::ranges::any_of(ranges, [this](const CellRange& range) { return refuse(editRefusal(range)); });
}

std::optional<CellRange> SpreadsheetControl::onlyRange()
{
    if (selection().size() == 1)
        return firstRange();
    refuse("不能对多个选定区域使用此命令");
    return std::nullopt;
}

void SpreadsheetControl::travelInTime(std::optional<ChangedCells> (UndoJournal::*travel)())
{
    if (isEditing())
        return;
    const auto names = sheetNames(workbook());
    const int shownId = workbook().sheet(activeSheet()).id();
    const auto changed = (workbook().journal().*travel)(); // afterEdit recalculates
    if (sheetNames(workbook()) != names) {
        if (const int index = sheetToShow(workbook(), names, shownId))
            workbook().setActiveSheet(index);
        sheetSwitched();
        Q_EMIT sheetsChanged();
    }
    afterEdit();
    const bool showsAnother = workbook().sheet(activeSheet()).id() != shownId;
    if (changed && !showsAnother)
        showRange(workbook().sheetIndexOfId(changed->sheetId), changed->range);
}

void SpreadsheetControl::undo()
{
    if (!refuseInRun() && workbook().canUndo())
        travelInTime(&UndoJournal::undo);
}

void SpreadsheetControl::redo()
{
    if (!refuseInRun() && workbook().canRedo())
        travelInTime(&UndoJournal::redo);
}

std::optional<PackedOrigin> SpreadsheetControl::copyRange(const CellRange& range)
{
    auto copied = copyToClipboard(workbook(), workbook().sheet(activeSheet()), range);
    if (const auto* why = std::get_if<Refusal>(&copied)) {
        refuse(*why);
        return std::nullopt;
    }
    const PackedOrigin origin = std::get<Copied>(copied).origin;
    QGuiApplication::clipboard()->setMimeData(std::get<Copied>(copied).data.release());
    setCopiedRange(origin.sheetId, range);
    return origin;
}

void SpreadsheetControl::copy()
{
    m_cut.reset();
    if (const auto range = onlyRange())
        copyRange(*range);
}

void SpreadsheetControl::cut()
{
    const auto range = onlyRange();
    if (!range || refuseEdit({*range}))
        return;
    if (const auto origin = copyRange(*range))
        m_cut = Cut{*origin, workbook().revision()};
}

void SpreadsheetControl::paste()
{
    pasteClipboard(PasteKind::all);
}

void SpreadsheetControl::pasteValues()
{
    pasteClipboard(PasteKind::valuesOnly);
}

void SpreadsheetControl::pasteClipboard(PasteKind kind)
{
    if (isEditing())
        return;
    const QMimeData* offer = QGuiApplication::clipboard()->mimeData();
    if (!offer || offer->formats().isEmpty()) {
        refuse("剪贴板是空的");
        return;
    }
    const auto content = readClipboard(workbook(), *offer);
    if (const auto* why = std::get_if<Refusal>(&content)) {
        refuse(*why);
        return;
    }
    const auto& offered = std::get<ClipboardContent>(content);
    Sheet& target = workbook().sheet(activeSheet());
    const auto plan = planPaste(target, offered, firstRange());
    if (const auto* why = std::get_if<Refusal>(&plan)) {
        refuse(*why);
        return;
    }
    pastePlanned(target, offered, std::get<PastePlan>(plan), kind);
}

void SpreadsheetControl::pastePlanned(Sheet& target, const ClipboardContent& content, const PastePlan& plan,
                                      PasteKind kind)
{
    if (refuseEdit({plan.goal}))
        return;
    if (plan.needsMoreRoom() && !(ask && ask(roomQuestion(plan)))) {
        refuse("粘贴的内容超出表的范围，没有粘贴");
        return;
    }
    const bool moves = m_cut && content.own && content.own->origin.token == m_cut->origin.token &&
                       m_cut->revision == workbook().revision() && kind == PasteKind::all &&
                       plan.across * plan.down == 1;
    const int source = moves ? workbook().sheetIndexOfId(m_cut->origin.sheetId) : 0;
    const auto why = source != 0 ? spreadsheet::pasteCut(workbook(), workbook().sheet(source),
                                                         m_cut->origin.range, target, plan)
                                 : spreadsheet::paste(workbook(), target, content, plan, kind);
    if (refuse(why))
        return;
    if (source != 0) {
        m_cut.reset();
        setCopiedRange(target.id(), std::nullopt);
        QGuiApplication::clipboard()->clear(); // what it held is no longer there
    }
    select(plan.goal);
    afterEdit();
    if (source == 0 && content.own && content.own->refusedFormulas > 0)
        refuse("有 " + std::to_string(content.own->refusedFormulas) +
               " 个公式在这里没有意义，只粘贴了它们的值");
}

void SpreadsheetControl::clear()
{
    if (!commitEdit() || refuseEdit(selection()))
        return;
    const std::vector<CellRange> ranges = selection();
    if (!refuse(clearRanges(workbook(), workbook().sheet(activeSheet()), ranges)))
        afterEdit(isBlockSelected() ? std::nullopt : std::optional(activeCell()));
}

void SpreadsheetControl::fillAlong(bool down)
{
    if (!commitEdit() || refuseEdit(selection()))
        return;
    const std::vector<CellRange> ranges = selection();
    Sheet& shown = workbook().sheet(activeSheet());
    Refusal why;
    {
        UndoStep step(workbook(), down ? "向下填充" : "向右填充");
        for (CellRange goal : ranges) {
            int& first = down ? goal.top : goal.left;
            if ((down ? goal.rows() : goal.columns()) == 1)
                first = std::max(1, first - 1); // a single line is filled from the one before it
            CellRange source = goal;
            (down ? source.bottom : source.right) = first;
            why = fillFromBlock(workbook(), shown, source, goal, false);
            if (why) {
                step.takeBack();
                break;
            }
        }
    }
    afterEdit();
    refuse(why); // last, so that nothing else is told after it
}

void SpreadsheetControl::fillDown()
{
    fillAlong(true);
}

void SpreadsheetControl::fillRight()
{
    fillAlong(false);
}

void SpreadsheetControl::fillTo(const CellRange& goal, bool asSeries)
{
    if (!commitHere() || refuseEdit({goal}))
        return;
    if (refuse(fillFromBlock(workbook(), workbook().sheet(activeSheet()), firstRange(), goal, asSeries)))
        return;
    select(goal);
    afterEdit();
}

void SpreadsheetControl::sortBlock(const std::vector<SortKey>& keys, bool headerRow)
{
    if (!commitEdit())
        return;
    const auto range = onlyRange();
    if (!range)
        return;
    Sheet& shown = workbook().sheet(activeSheet());
    const CellRange block = isBlockSelected() ? *range : blockAround(shown, activeCell());
    const std::vector<SortKey> used = keys.empty() ? std::vector{SortKey{activeCell().column}} : keys;
    if (refuseEdit({block}) || refuse(spreadsheet::sortBlock(workbook(), shown, block, used, headerRow)))
        return;
    select(block);
    afterEdit();
}

bool SpreadsheetControl::findNext(const Search& search, bool backwards)
{
    const auto found =
        spreadsheet::findNext(workbook().sheet(activeSheet()), search, activeCell(), backwards);
    if (!found)
        refuse("找不到“" + search.what + "”");
    return found && moveTo(*found);
}

int SpreadsheetControl::replaceAll(const Search& search, const QString& replacement)
{
    if (refuseInRun())
        return 0;
    Sheet& shown = workbook().sheet(activeSheet());
    auto cells = findAll(shown, search);
    const std::size_t found = cells.size();
    std::erase_if(cells, [this](CellAddress cell) {
        return !mayEdit({cell.column, cell.row, cell.column, cell.row});
    });
    const Replacement done = replaceIn(workbook(), shown, cells, search, replacement.toStdString());
    const std::size_t kept = done.kept.size() + found - cells.size();
    if (done.replaced > 0)
        afterEdit();
    if (found == 0)
        refuse("找不到“" + search.what + "”");
    else if (kept > 0)
        refuse("有 " + std::to_string(kept) + " 个单元格不能替换");
    return done.replaced;
}

Refusal SpreadsheetControl::goTo(const QString& text)
{
    const auto place = placeOfText(workbook(), text.toStdString(), activeSheet());
    if (!place)
        return "没有这个位置: " + text.toStdString();
    return showRange(place->sheet, place->range) ? Refusal() : "请先完成或取消正在输入的内容";
}

} // namespace spreadsheet
