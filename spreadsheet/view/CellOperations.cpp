#include "spreadsheet/view/CellOperations.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/view/commands/disjoint_ranges.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/workbook/typed_text.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

// What programs do with cells goes by a current position and an addressed sheet, which are not the user's
// cursor and active sheet: a handler may write anywhere without moving what the user sees. Whoever shows the
// cells is told that something changed, not what, and looks itself.

CellOperations::CellOperations()
    : m_own(std::make_unique<Workbook>())
    , m_workbook(m_own.get())
{
}

CellOperations::~CellOperations() = default;

void CellOperations::setWorkbook(Workbook* workbook)
{
    std::unique_ptr<Workbook> former; // lives until nothing looks at it any more
    if (workbook != m_own.get())
        former = std::exchange(m_own, nullptr);
    if (!workbook)
        m_own = std::make_unique<Workbook>();
    m_workbook = workbook ? workbook : m_own.get();
    m_addressedId = 0;
    m_current = {};
    workbookSwitched();
}

void CellOperations::setActiveSheet(int index)
{
    if (index < 1 || index > sheetCount())
        return;
    m_addressedId = 0;
    const bool another = index != activeSheet();
    m_workbook->setActiveSheet(index);
    if (another)
        sheetSwitched();
}

int CellOperations::addressedSheet() const
{
    const int index = m_addressedId == 0 ? 0 : m_workbook->sheetIndexOfId(m_addressedId);
    return index == 0 ? activeSheet() : index;
}

void CellOperations::setAddressedSheet(int index)
{
    if (index >= 1 && index <= sheetCount())
        m_addressedId = m_workbook->sheet(index).id();
}

QString CellOperations::sheetName() const
{
    return QString::fromUtf8(sheet().name());
}

Refusal CellOperations::setSheetCount(int count)
{
    const UndoStep step(*m_workbook, "表的个数");
    const int former = sheetCount();
    const PrintSettings print = m_workbook->sheet(1).settings().print;
    auto refusal = m_workbook->setSheetCount(count);
    printAlike(*m_workbook, former + 1, print);
    if (activeSheet() > sheetCount())
        setActiveSheet(sheetCount());
    changed();
    return refusal;
}

Refusal CellOperations::setSheetName(const QString& name)
{
    auto refusal = m_workbook->renameSheet(addressedSheet(), name.toStdString());
    changed();
    return refusal;
}

Refusal CellOperations::setRowCount(int count)
{
    return setLineCount(count, rowCount(), maxRows, &Sheet::deleteRows, &SheetSettings::rowCount);
}

Refusal CellOperations::setColumnCount(int count)
{
    return setLineCount(count, columnCount(), maxColumns, &Sheet::deleteColumns, &SheetSettings::columnCount);
}

Refusal CellOperations::setLineCount(int count, int former, int most, Refusal (Sheet::*remove)(int, int),
                                     int SheetSettings::*kept)
{
    if (count < 1 || count > most)
        return "行列数应在 1 到 " + std::to_string(most) + " 之间";
    if (count == former)
        return {};
    if (count < former) {
        if (auto problem = (sheet().*remove)(count + 1, former - count))
            return problem;
    } else {
        sheet().changeSettings([&](SheetSettings& settings) { settings.*kept = count; });
    }
    changed();
    return {};
}

void CellOperations::setRowHeight(int row, int twips)
{
    sheet().changeSettings([&](SheetSettings& settings) { settings.rows.sizes[row] = std::max(twips, 0); });
    changed();
}

void CellOperations::setColumnWidth(int column, int twips)
{
    sheet().changeSettings(
        [&](SheetSettings& settings) { settings.columns.sizes[column] = std::max(twips, 0); });
    changed();
}

Refusal CellOperations::insertRowsAt(int row, int count)
{
    const UndoStep step(*m_workbook, "插入行");
    auto refusal = sheet().insertRows(row, count);
    if (!refusal)
        partSharedEdge(*m_workbook, sheet(), {1, row, columnCount(), row + count - 1});
    changed();
    return refusal;
}

Refusal CellOperations::insertColumnsAt(int column, int count)
{
    const UndoStep step(*m_workbook, "插入列");
    auto refusal = sheet().insertColumns(column, count);
    if (!refusal)
        partSharedEdge(*m_workbook, sheet(), {column, 1, column + count - 1, rowCount()});
    changed();
    return refusal;
}

void CellOperations::setCurrent(int column, int row)
{
    if (column >= 1 && column <= columnCount() && row >= 1 && row <= rowCount())
        m_current = {column, row};
}

QString CellOperations::text(int column, int row) const
{
    return QString::fromUtf8(sheet().displayText({column, row}));
}

void CellOperations::setText(int column, int row, const QString& text)
{
    const CellAddress cell{column, row};
    const std::string bytes = text.toStdString();
    if (text.isEmpty()) {
        sheet().setValue(cell, {});
    } else if (cellTypeRow(sheet().style(cell).type).holds != CellHolds::anything) {
        const Value value = typedConstant(bytes).value;
        sheet().setValue(cell, value.isNumber() ? value : Value::text(bytes));
    } else {
        sheet().setText(cell, bytes);
    }
    changed();
}

QString CellOperations::formula() const
{
    return QString::fromUtf8(sheet().formula(m_current));
}

Refusal CellOperations::setFormula(const QString& text)
{
    auto problem = sheet().setFormula(m_current, text.toStdString());
    changed();
    return problem;
}

QString CellOperations::tag() const
{
    return QString::fromUtf8(sheet().tag(m_current).view());
}

void CellOperations::setTag(const QString& tag)
{
    sheet().setTag(m_current, tag.toStdString());
}

void CellOperations::changeStyle(const std::function<void(CellStyle&)>& change)
{
    changeStyle({m_current.column, m_current.row, m_current.column, m_current.row}, change);
}

void CellOperations::changeStyle(const CellRange& range, const std::function<void(CellStyle&)>& change)
{
    sheet().restyle(range, change);
    changed();
}

namespace {

constexpr std::int64_t mostKept = 100'000; ///< cells of a range

void keepStyles(const Sheet& sheet, const CellRange& range,
                std::vector<std::pair<CellAddress, CellStyle>>& kept)
{
    for (int column = range.left; column <= range.right; ++column)
        for (int row = range.top; row <= range.bottom; ++row)
            kept.emplace_back(CellAddress{column, row}, sheet.style({column, row}));
}

} // namespace

void CellOperations::changeStyleOfEach(const std::vector<CellRange>& ranges,
                                       const std::function<void(CellStyle&)>& change)
{
    const UndoStep step(*m_workbook, "格式");
    std::vector<CellRange> done;
    for (const CellRange& range : ranges) {
        // Ranges stay whole, as a whole row or column has one style; cells that were changed before get what
        // they had then. Of too many to be kept what was inverted is inverted again.
        std::vector<std::pair<CellAddress, CellStyle>> before;
        std::vector<CellRange> again;
        for (const CellRange& part : disjoint(done)) {
            if (!part.intersects(range))
                continue;
            const CellRange both = common(part, range);
            if (std::int64_t{both.rows()} * both.columns() <= mostKept)
                keepStyles(sheet(), both, before);
            else
                again.push_back(both);
        }
        changeStyle(range, change);
        for (const CellRange& both : again)
            changeStyle(both, change);
        for (const auto& [cell, style] : before)
            sheet().setStyle(cell, style);
        done.push_back(range);
    }
}

void CellOperations::setBorder(const CellRange& range, int sides, Colour colour, LineStyle style)
{
    const BorderLine line{style, colour};
    BorderLines lines;
    if (sides & leftSide)
        lines.left = lines.betweenColumns = line;
    if (sides & rightSide)
        lines.right = lines.betweenColumns = line;
    if (sides & topSide)
        lines.top = lines.betweenRows = line;
    if (sides & bottomSide)
        lines.bottom = lines.betweenRows = line;
    if (sides != noSide)
        drawBorders({range}, lines);
}

void CellOperations::drawBorders(const std::vector<CellRange>& ranges, const BorderLines& lines)
{
    const UndoStep step(*m_workbook, "边框");
    for (const CellRange& range : ranges)
        spreadsheet::drawBorders(*m_workbook, sheet(), range, lines);
    changed();
}

QStringList CellOperations::dropDownOf(CellAddress cell) const
{
    QStringList entries;
    if (const auto* found = sheet().dropDownEntries(cell))
        for (const std::string& entry : *found)
            entries.append(QString::fromUtf8(entry));
    return entries;
}

QString CellOperations::buttonCaption() const
{
    const std::string* caption = sheet().buttonCaption(m_current);
    return caption ? QString::fromUtf8(*caption) : QString();
}

void CellOperations::putButtonCaption(CellAddress place, const QString& caption)
{
    sheet().changeSettings([&](SheetSettings& settings) {
        if (caption.isEmpty())
            settings.captions.erase(place);
        else
            settings.captions[place] = caption.toStdString();
    });
    changed();
}

void CellOperations::putDropDown(CellAddress place, const QStringList& entries)
{
    std::vector<std::string> list;
    for (const QString& entry : entries)
        list.push_back(entry.toStdString());
    sheet().changeSettings([&](SheetSettings& settings) {
        if (list.empty())
            settings.dropDowns.erase(place);
        else
            settings.dropDowns.insert_or_assign(place, DropDownEntries(std::move(list)));
    });
    changed();
}

int CellOperations::dropDownIndex() const
{
    return static_cast<int>(dropDown().indexOf(text()));
}

void CellOperations::setDropDownIndex(int index)
{
    const QStringList entries = dropDown();
    if (index >= 0 && index < entries.size())
        setText(entries[index]);
}

void CellOperations::changePrintSettings(const std::function<void(PrintSettings&)>& change)
{
    sheet().changeSettings([&](SheetSettings& settings) { change(settings.print); });
}

void CellOperations::registerFunction(const QString& name, int parameterCount, FunctionHandler handler)
{
    m_workbook->registerFunction(name.toStdString(), parameterCount, std::move(handler));
}

void CellOperations::recalculate()
{
    m_workbook->recalculate();
    changed();
}

void CellOperations::recalculateAfterEdit()
{
    if (recalculateChanged)
        recalculateChanged();
    else
        m_workbook->recalculateChanged();
}

} // namespace spreadsheet
