#include "spreadsheet/workbook/Workbook.h"

#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/functions/FunctionTable.h"
#include "spreadsheet/workbook/sheet_name.h"
#include "spreadsheet/workbook/SheetStructure.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/WorkbookContent.h"

#include <algorithm>
#include <stdexcept>

namespace spreadsheet {

// The book is data that anyone may read; what may not be done to it is said here, before anything changes. A
// refusal leaves the workbook as it was, and every change of sheets goes through one exchange, so that the
// book's sheets and those that can be edited never differ.

namespace {

/// Names that a name may stand for, nested ones counted as often as they are evaluated.
constexpr std::size_t maxNameUses = 4096;

/// True if a name leads back to itself or stands for more than maxNameUses others.
bool namesTooDeep(const FormulaPool& pool)
{
    const NameTable& names = pool.names();
    for (int start = 0; start < names.size(); ++start) {
        std::vector<int> open{start};
        for (std::size_t uses = 0; !open.empty(); ++uses) {
            const std::uint32_t formula = names[open.back()].formula;
            open.pop_back();
            if (uses > maxNameUses)
                return true;
            if (formula != 0)
                open.insert(open.end(), pool[formula].names.begin(), pool[formula].names.end());
        }
    }
    return false;
}

} // namespace

Workbook::Workbook()
    : m_book(std::make_unique<Book>(findFunction))
    , m_recalculation(std::make_unique<Recalculation>(*m_book))
    , m_journal(std::make_unique<UndoJournal>(*this))
{
    exchangeSheets({freshSheet("Sheet1")});
}

Workbook::~Workbook() = default;

StylePool& Workbook::styles()
{
    return m_book->styles;
}

const StylePool& Workbook::styles() const
{
    return m_book->styles;
}

TextPool& Workbook::texts()
{
    return m_book->texts;
}

FormulaPool& Workbook::formulas()
{
    return m_book->formulas;
}

const FormulaPool& Workbook::formulas() const
{
    return m_book->formulas;
}

const NameTable& Workbook::names() const
{
    return m_book->names();
}

Sheet& Workbook::sheet(int index)
{
    if (index < 1 || index > sheetCount())
        throw std::out_of_range("no such sheet");
    return *m_sheets[static_cast<std::size_t>(index) - 1];
}

const Sheet& Workbook::sheet(int index) const
{
    return const_cast<Workbook*>(this)->sheet(index);
}

int Workbook::sheetIndex(std::string_view name) const
{
    return m_book->sheetIndex(name);
}

int Workbook::sheetIndexOfId(int id) const
{
    return m_book->sheetIndexOfId(id);
}

int Workbook::activeSheet() const
{
    return m_book->activeSheet;
}

void Workbook::setActiveSheet(int index)
{
    if (index >= 1 && index <= sheetCount())
        m_book->activeSheet = index;
}

std::shared_ptr<Sheet> Workbook::freshSheet(std::string_view name)
{
    return std::make_shared<Sheet>(*this,
                                   std::make_shared<BookSheet>(m_book->nextSheetId++, std::string(name)));
}

std::vector<std::shared_ptr<Sheet>> Workbook::exchangeSheets(std::vector<std::shared_ptr<Sheet>> sheets)
{
    std::vector<std::shared_ptr<BookSheet>> cells;
    for (const auto& sheet : sheets)
        cells.push_back(sheet->m_cells);
    m_book->sheets = std::move(cells);
    m_sheets.swap(sheets);
    return sheets;
}

void Workbook::noteEdit()
{
    ++m_revision;
    if (m_displayOnly > 0)
        return;
    m_journal->keepDesignRevision();
    m_designRevision = m_revision;
}

Refusal Workbook::addSheet(std::string_view name, int before)
{
    if (sheetCount() == maxSheets)
        return "表的个数已到上限";
    if (auto problem = sheetNameProblem(name))
        return problem;
    if (sheetIndex(name) != 0)
        return "已有名为“" + std::string(name) + "”的表";
    const UndoStep step(*this, "插入表");
    m_journal->keepSheets();
    auto sheets = m_sheets;
    const auto place = before >= 1 && before <= sheetCount() ? sheets.begin() + (before - 1) : sheets.end();
    sheets.insert(place, freshSheet(name));
    exchangeSheets(std::move(sheets));
    m_recalculation->noteMoved(); // formulas are kept by the index of their sheet
    noteEdit();
    return {};
}

Refusal Workbook::removeSheet(int index)
{
    if (index < 1 || index > sheetCount())
        return "没有这张表";
    if (sheetCount() == 1)
        return "至少要保留一张表";
    const UndoStep step(*this, "删除表");
    SheetStructure(*this).breakReferences(sheet(index).id());
    m_journal->keepSheets();
    auto sheets = m_sheets;
    sheets.erase(sheets.begin() + (index - 1));
    exchangeSheets(std::move(sheets));
    if (m_book->activeSheet > index || m_book->activeSheet > sheetCount())
        --m_book->activeSheet;
    m_recalculation->noteMoved();
    noteEdit();
    return {};
}

Refusal Workbook::renameSheet(int index, std::string_view name)
{
    if (index < 1 || index > sheetCount())
        return "没有这张表";
    if (sheet(index).name() == name)
        return {}; // also a name from an older file that is longer than a new one may be
    if (auto problem = sheetNameProblem(name))
        return problem;
    if (const int other = sheetIndex(name); other != 0 && other != index)
        return "已有名为“" + std::string(name) + "”的表";
    const UndoStep step(*this, "重命名表");
    sheet(index).editableSettings().name = name;
    respell(sheet(index).id());
    return {};
}

/// Writes the present name into every reference to the sheet.
void Workbook::respell(int sheetId)
{
    m_book->formulas.respellSheet(sheetId, [this](int id) {
        const int index = sheetIndexOfId(id);
        return index == 0 ? std::string() : sheet(index).name();
    });
}

Refusal Workbook::moveSheet(int from, int to)
{
    if (from < 1 || from > sheetCount() || to < 1 || to > sheetCount())
        return "没有这张表";
    const UndoStep step(*this, "移动表");
    m_journal->keepSheets();
    auto sheets = m_sheets;
    sheets.erase(sheets.begin() + (from - 1));
    sheets.insert(sheets.begin() + (to - 1), m_sheets[static_cast<std::size_t>(from) - 1]);
    exchangeSheets(std::move(sheets));
    m_recalculation->noteMoved();
    noteEdit();
    return {};
}

Refusal Workbook::setSheetCount(int count)
{
    if (count < 1 || count > maxSheets)
        return "表的个数应在 1 到 256 之间";
    const UndoStep step(*this, "表的个数");
    while (sheetCount() > count) {
        if (auto problem = removeSheet(sheetCount()))
            return problem;
    }
    for (int number = sheetCount() + 1; sheetCount() < count; ++number) {
        const std::string name = "Sheet" + std::to_string(number);
        if (sheetIndex(name) == 0) {
            if (auto problem = addSheet(name))
                return problem;
        }
    }
    return {};
}

Refusal Workbook::defineName(std::string_view name, std::string_view formula, int sheet)
{
    if (!NameTable::isValid(name))
        return Refusal("名称写法不对");
    const UndoStep step(*this, "定义名称");
    const int number = m_book->formulas.names().number(name);
    std::uint32_t meaning = 0;
    if (formula.starts_with('='))
        formula.remove_prefix(1);
    if (!formula.empty()) {
        const auto sheetId = [this](std::string_view sheetName) {
            const int index = sheetIndex(sheetName);
            return index == 0 ? 0 : this->sheet(index).id();
        };
        const auto parsed =
            m_book->formulas.intern(formula, {1, 1}, sheetId, false, maxFormulaText, Unions::everywhere);
        if (const auto* problem = std::get_if<Refusal>(&parsed))
            return *problem;
        meaning = std::get<std::uint32_t>(parsed);
    }
    const NameTable::Entry former = m_book->formulas.names()[number];
    m_journal->keepNames();
    m_book->formulas.names().define(number, meaning, sheet);
    if (namesTooDeep(m_book->formulas)) {
        m_book->formulas.names().define(number, former.formula, former.sheet);
        return Refusal("名称引用了自己,或嵌套得太多");
    }
    m_recalculation->noteNames();
    noteEdit();
    return {};
}

void Workbook::registerFunction(std::string_view name, int parameterCount, FunctionHandler handler)
{
    m_book->formulas.customs().add(name, parameterCount, std::move(handler));
}

void Workbook::setPrepareHook(PrepareHook hook)
{
    m_recalculation->setPrepareHook(std::move(hook));
}

void Workbook::setPauseHook(PauseHook hook)
{
    m_recalculation->setPauseHook(std::move(hook));
}

RecalculationReport Workbook::recalculate()
{
    return m_recalculation->all();
}

RecalculationReport Workbook::recalculateChanged()
{
    return m_recalculation->changed();
}

void Workbook::markCalculated()
{
    m_recalculation->forgetChanges();
}

void Workbook::replaceContent(Workbook&& fresh)
{
    auto content = std::make_shared<WorkbookContent>();
    for (const auto& cells : fresh.m_book->sheets)
        content->sheets.push_back(std::make_shared<Sheet>(*this, cells));
    content->recalculation = std::make_unique<Recalculation>(*fresh.m_book);
    content->book = std::move(fresh.m_book);
    content->book->formulasShown = formulasShown();
    m_journal->replaceContent(std::move(content));
}

void Workbook::setUndoEnabled(bool enabled)
{
    m_journal->setEnabled(enabled);
}

bool Workbook::canUndo() const
{
    return m_journal->canUndo();
}

bool Workbook::canRedo() const
{
    return m_journal->canRedo();
}

std::string Workbook::undoLabel() const
{
    return m_journal->label();
}

void Workbook::undo()
{
    m_journal->undo();
    recalculateChanged();
}

void Workbook::redo()
{
    m_journal->redo();
    recalculateChanged();
}

std::size_t Workbook::bytes() const
{
    return bytesOf(*m_book, *m_recalculation);
}

bool Workbook::countsFrom1904() const
{
    return m_book->countsFrom1904;
}

void Workbook::setCountsFrom1904(bool from1904)
{
    m_book->countsFrom1904 = from1904;
}

bool Workbook::formulasShown() const
{
    return m_book->formulasShown;
}

void Workbook::setFormulasShown(bool shown)
{
    if (m_book->formulasShown == shown)
        return;
    const UndoStep step(*this, "显示");
    m_journal->keepFormulasShown();
    m_book->formulasShown = shown;
}

UndoStep::UndoStep(Workbook& workbook, std::string label)
    : m_workbook(workbook)
{
    m_workbook.journal().open(std::move(label));
}

UndoStep::~UndoStep()
{
    m_workbook.journal().close();
}

void UndoStep::takeBack()
{
    m_workbook.journal().takeBack();
}

} // namespace spreadsheet
