// Commands on contents: undo, clipboard, filling, sorting, searching.
#include "spreadsheet/view/GridCommands.h"

#include "spreadsheet/view/commands/fill.h"
#include "spreadsheet/view/reference_text.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/UndoJournal.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

namespace spreadsheet {

// A command is the same whether a menu, a key or a program asks for it: an open entry is entered first, what
// may not be is refused with a sentence, the change is one undo step, and what it did is brought into sight.
// That frame stands here; the work itself is done in commands, which knows no widget and can be tested
// without one.

namespace {

constexpr int marchInterval = 150; // milliseconds

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

constexpr const char* severalRanges = "不能对多个选定区域使用此命令";

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

/// What is told when a paste is done.
Refusal refusedFormulas(const ClipboardContent& content)
{
    if (!content.own || content.own->refusedFormulas == 0)
        return {};
    return "有 " + std::to_string(content.own->refusedFormulas) + " 个公式在这里没有意义，只粘贴了它们的值";
}

} // namespace

GridCommands::GridCommands(SpreadsheetControl& control, SheetView& view)
    : m_control(control)
    , m_view(view)
{
    m_march.setInterval(marchInterval);
    QObject::connect(&m_march, &QTimer::timeout, [this] { m_view.march(); });
}

void GridCommands::setCopiedRange(int sheetId, std::optional<CellRange> range)
{
    m_view.setCopied(sheetId, range);
    if (range)
        m_march.start();
    else
        m_march.stop();
}

std::optional<CellRange> GridCommands::onlyRange()
{
    if (m_control.cursor().selection().size() == 1)
        return m_control.cursor().firstRange();
    m_control.refuse(severalRanges);
    return std::nullopt;
}

void GridCommands::travelInTime(std::optional<ChangedCells> (UndoJournal::*travel)())
{
    if (m_control.entry().isOpen())
        return;
    const auto names = sheetNames(m_control.cells().workbook());
    const int shownId = m_control.cells().shownSheet().id();
    const Book* const book = &m_control.cells().workbook().book();
    const std::uint64_t design = m_control.cells().workbook().designRevision();
    const PrintSettings print = m_control.cells().workbook().sheet(1).settings().print;
    const auto changed = (m_control.cells().workbook().journal().*travel)(); // afterEdit recalculates
    if (&m_control.cells().workbook().book() != book) {
        m_control.cells().setWorkbook(&m_control.cells().workbook()); // another content: from its first cell
        Q_EMIT m_control.sheetsChanged();
    } else if (sheetNames(m_control.cells().workbook()) != names) {
        if (const int index = sheetToShow(m_control.cells().workbook(), names, shownId))
            m_control.cells().workbook().setActiveSheet(index);
        m_control.showActiveSheet();
        Q_EMIT m_control.sheetsChanged();
    }
    m_control.afterEdit();
    const bool showsAnother = m_control.cells().shownSheet().id() != shownId;
    // Of several ranges that a command worked on, what lies between them is not selected with them.
    const bool isSelected = changed && changed->sheetId == shownId &&
                            m_control.cursor().selection().size() > 1 &&
                            m_control.cursor().selectedBlock().contains(changed->range);
    if (changed && !showsAnother && !isSelected)
        m_control.cursor().showRange(m_control.cells().workbook().sheetIndexOfId(changed->sheetId),
                                     changed->range);
    if (m_control.cells().workbook().sheet(1).settings().print != print)
        Q_EMIT m_control.printSettingsTravelled(m_control.cells().workbook().designRevision() == design);
}

void GridCommands::undo()
{
    if (!m_control.refuseInRun() && m_control.cells().workbook().canUndo())
        travelInTime(&UndoJournal::undo);
}

void GridCommands::redo()
{
    if (!m_control.refuseInRun() && m_control.cells().workbook().canRedo())
        travelInTime(&UndoJournal::redo);
}

std::optional<PackedOrigin> GridCommands::copyRange(const CellRange& range)
{
    auto copied = copyToClipboard(m_control.cells().workbook(), m_control.cells().shownSheet(), range);
    if (const auto* why = std::get_if<Refusal>(&copied)) {
        m_control.refuse(*why);
        return std::nullopt;
    }
    const PackedOrigin origin = std::get<Copied>(copied).origin;
    QGuiApplication::clipboard()->setMimeData(std::get<Copied>(copied).data.release());
    setCopiedRange(origin.sheetId, range);
    return origin;
}

void GridCommands::copy()
{
    m_cut.reset();
    if (const auto range = onlyRange())
        copyRange(*range);
}

void GridCommands::cut()
{
    const auto range = onlyRange();
    if (!range || m_control.refuseEdit({*range}))
        return;
    if (const auto origin = copyRange(*range))
        m_cut = Cut{*origin, m_control.cells().workbook().revision()};
}

void GridCommands::paste()
{
    pasteClipboard(PasteKind::all);
}

void GridCommands::pasteValues()
{
    pasteClipboard(PasteKind::valuesOnly);
}

/// Null after telling that there is nothing, or while something is typed.
const QMimeData* GridCommands::clipboardOffer()
{
    if (m_control.entry().isOpen())
        return nullptr;
    const QMimeData* const offer = QGuiApplication::clipboard()->mimeData();
    if (offer && !offer->formats().isEmpty())
        return offer;
    m_control.refuse("剪贴板是空的");
    return nullptr;
}

void GridCommands::pasteText()
{
    const QMimeData* const offer = clipboardOffer();
    if (!offer)
        return;
    QMimeData text;
    if (offer->hasText())
        text.setText(offer->text());
    pasteOffered(text, m_control.cells().shownSheet().extent(m_control.cursor().activeCell()),
                 PasteKind::all);
}

void GridCommands::pasteClipboard(PasteKind kind)
{
    if (const QMimeData* const offer = clipboardOffer())
        pasteOffered(*offer, std::nullopt, kind);
}

void GridCommands::pasteOffered(const QMimeData& offer, const std::optional<CellRange>& place, PasteKind kind)
{
    const auto content = readClipboard(m_control.cells().workbook(), offer);
    if (const auto* why = std::get_if<Refusal>(&content)) {
        m_control.refuse(*why);
        return;
    }
    const auto& offered = std::get<ClipboardContent>(content);
    Sheet& target = m_control.cells().shownSheet();
    if (!place && m_control.cursor().selection().size() > 1)
        return pasteIntoEach(target, offered, kind);
    const auto plan = planPaste(target, offered, place.value_or(m_control.cursor().firstRange()));
    if (const auto* why = std::get_if<Refusal>(&plan)) {
        m_control.refuse(*why);
        return;
    }
    pastePlanned(target, offered, std::get<PastePlan>(plan), kind);
}

void GridCommands::pastePlanned(Sheet& target, const ClipboardContent& content, const PastePlan& plan,
                                PasteKind kind)
{
    if (m_control.refuseEdit({plan.goal}))
        return;
    if (plan.needsMoreRoom() && !(m_control.ask && m_control.ask(roomQuestion(plan)))) {
        m_control.refuse("粘贴的内容超出表的范围，没有粘贴");
        return;
    }
    const bool moves = m_cut && content.own && content.own->origin.token == m_cut->origin.token &&
                       m_cut->revision == m_control.cells().workbook().revision() && kind == PasteKind::all &&
                       plan.across * plan.down == 1;
    const int source = moves ? m_control.cells().workbook().sheetIndexOfId(m_cut->origin.sheetId) : 0;
    const auto why =
        source != 0
            ? spreadsheet::pasteCut(m_control.cells().workbook(), m_control.cells().workbook().sheet(source),
                                    m_cut->origin.range, target, plan)
            : spreadsheet::paste(m_control.cells().workbook(), target, content, plan, kind);
    if (m_control.refuse(why))
        return;
    if (source != 0) {
        m_cut.reset();
        setCopiedRange(target.id(), std::nullopt);
        QGuiApplication::clipboard()->clear(); // what it held is no longer there
    }
    m_control.cursor().select(plan.goal);
    m_control.afterEdit();
    if (source == 0)
        m_control.refuse(refusedFormulas(content));
}

/// One cell goes into all selected ones, a block nowhere: it would be unclear where it begins.
void GridCommands::pasteIntoEach(Sheet& target, const ClipboardContent& content, PasteKind kind)
{
    const std::vector<CellRange> ranges = m_control.cursor().selection();
    if (content.columns() != 1 || content.rows() != 1) {
        m_control.refuse(severalRanges);
        return;
    }
    if (m_control.refuseEdit(ranges))
        return;
    Refusal why;
    {
        UndoStep step(m_control.cells().workbook(), "粘贴");
        for (std::size_t i = 0; i < ranges.size() && !why; ++i) {
            const auto plan = planPaste(target, content, ranges[i]);
            const auto* const refused = std::get_if<Refusal>(&plan);
            why = refused ? *refused
                          : spreadsheet::paste(m_control.cells().workbook(), target, content,
                                               std::get<PastePlan>(plan), kind);
        }
        if (why)
            step.takeBack();
    }
    m_control.afterEdit();
    m_control.refuse(why ? why : refusedFormulas(content)); // last, so that nothing else is told after it
}

void GridCommands::clear()
{
    if (!m_control.entry().commit() || m_control.refuseEdit(m_control.cursor().selection()))
        return;
    const std::vector<CellRange> ranges = m_control.cursor().selection();
    if (!m_control.refuse(clearRanges(m_control.cells().workbook(), m_control.cells().shownSheet(), ranges)))
        m_control.afterEdit(m_control.cursor().isBlockSelected()
                                ? std::nullopt
                                : std::optional(m_control.cursor().activeCell()));
}

void GridCommands::fillAlong(bool down)
{
    if (!m_control.entry().commit() || m_control.refuseEdit(m_control.cursor().selection()))
        return;
    const std::vector<CellRange> ranges = m_control.cursor().selection();
    Sheet& shown = m_control.cells().shownSheet();
    Refusal why;
    {
        UndoStep step(m_control.cells().workbook(), down ? "向下填充" : "向右填充");
        for (CellRange goal : ranges) {
            int& first = down ? goal.top : goal.left;
            if ((down ? goal.rows() : goal.columns()) == 1)
                first = std::max(1, first - 1); // a single line is filled from the one before it
            CellRange source = goal;
            (down ? source.bottom : source.right) = first;
            why = fillFromBlock(m_control.cells().workbook(), shown, source, goal, false);
            if (why) {
                step.takeBack();
                break;
            }
        }
    }
    m_control.afterEdit();
    m_control.refuse(why); // last, so that nothing else is told after it
}

void GridCommands::fillDown()
{
    fillAlong(true);
}

void GridCommands::fillRight()
{
    fillAlong(false);
}

void GridCommands::fillTo(const CellRange& goal, bool asSeries)
{
    if (!m_control.entry().commitHere() || m_control.refuseEdit({goal}))
        return;
    if (m_control.refuse(fillFromBlock(m_control.cells().workbook(), m_control.cells().shownSheet(),
                                       m_control.cursor().firstRange(), goal, asSeries)))
        return;
    m_control.cursor().select(goal);
    m_control.afterEdit();
}

void GridCommands::sortBlock(const std::vector<SortKey>& keys, bool headerRow)
{
    if (!m_control.entry().commit())
        return;
    const auto range = onlyRange();
    if (!range)
        return;
    Sheet& shown = m_control.cells().shownSheet();
    const CellRange block =
        m_control.cursor().isBlockSelected() ? *range : blockAround(shown, m_control.cursor().activeCell());
    const std::vector<SortKey> used =
        keys.empty() ? std::vector{SortKey{m_control.cursor().activeCell().column}} : keys;
    if (m_control.refuseEdit({block}) ||
        m_control.refuse(spreadsheet::sortBlock(m_control.cells().workbook(), shown, block, used, headerRow)))
        return;
    m_control.cursor().select(block);
    m_control.afterEdit();
}

bool GridCommands::findNext(const Search& search, bool backwards)
{
    const auto found = spreadsheet::findNext(m_control.cells().shownSheet(), search,
                                             m_control.cursor().activeCell(), backwards);
    if (!found)
        m_control.refuse("找不到“" + search.what + "”");
    return found && m_control.cursor().moveTo(*found);
}

int GridCommands::replaceAll(const Search& search, const QString& replacement)
{
    if (m_control.refuseInRun())
        return 0;
    Sheet& shown = m_control.cells().shownSheet();
    auto cells = findAll(shown, search);
    const std::size_t found = cells.size();
    std::erase_if(cells, [this](CellAddress cell) {
        return !m_control.mayEdit({cell.column, cell.row, cell.column, cell.row});
    });
    const Replacement done =
        replaceIn(m_control.cells().workbook(), shown, cells, search, replacement.toStdString());
    const std::size_t kept = done.kept.size() + found - cells.size();
    if (done.replaced > 0)
        m_control.afterEdit();
    if (found == 0)
        m_control.refuse("找不到“" + search.what + "”");
    else if (kept > 0)
        m_control.refuse("有 " + std::to_string(kept) + " 个单元格不能替换");
    return done.replaced;
}

void GridCommands::sumHere()
{
    const auto range = figuresBefore(m_view.sheet(), m_control.cursor().activeCell());
    QString formula = QStringLiteral("=SUM(");
    if (range)
        formula += referenceText(m_control.cells().workbook(), m_control.cells().activeSheet(),
                                 m_control.cells().activeSheet(), *range) +
                   ')';
    m_control.entry().begin(EditStart::replace, formula);
}

} // namespace spreadsheet
