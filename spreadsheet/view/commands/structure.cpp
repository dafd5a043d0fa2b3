#include "spreadsheet/view/commands/structure.h"

#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <ranges>

namespace spreadsheet {

// Users change several stretches of lines at once and mean them as they see them. Everything that could
// refuse is looked at for all stretches before the first one moves, and they are worked on from the end, so
// that the numbers of those before stay what they were.

namespace {

AxisSizes& sizesOf(SheetSettings& settings, Axis axis)
{
    return axis == Axis::rows ? settings.rows : settings.columns;
}

int countOf(const SheetSettings& settings, Axis axis)
{
    return axis == Axis::rows ? settings.rowCount : settings.columnCount;
}

/// Lines that would still be in sight.
int shownBesides(const Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    const int count = countOf(sheet.settings(), axis);
    const AxisSizes& sizes = axis == Axis::rows ? sheet.settings().rows : sheet.settings().columns;
    int hidden = 0;
    for (const LineRange& range : lines)
        hidden += std::max(0, std::min(range.last, count) - range.first + 1);
    for (const auto& [line, isHidden] : sizes.hidden) {
        const bool listed = std::ranges::any_of(
            lines, [line = line](const LineRange& r) { return line >= r.first && line <= r.last; });
        hidden += isHidden && line <= count && !listed;
    }
    return count - hidden;
}

/// Checked for all stretches before the first one changes the sheet.
Refusal arrayRefusal(const Sheet& sheet, Axis axis, const std::vector<LineRange>& lines, bool inserts)
{
    for (const CellRange& array : sheet.settings().arrays) {
        const LineRange held =
            axis == Axis::rows ? LineRange{array.top, array.bottom} : LineRange{array.left, array.right};
        for (const LineRange& line : lines) {
            const bool whole = line.first <= held.first && held.last <= line.last;
            const bool met = line.first <= held.last && held.first <= line.last;
            if (inserts ? held.first < line.first && line.first <= held.last : met && !whole)
                return "不能更改数组公式的一部分";
        }
    }
    return {};
}

CellRange wholeLines(const Sheet& sheet, Axis axis, const LineRange& lines)
{
    const SheetSettings& settings = sheet.settings();
    return axis == Axis::rows ? CellRange{1, lines.first, settings.columnCount, lines.last}
                              : CellRange{lines.first, 1, lines.last, settings.rowCount};
}

/// What a merged area shows stands in its first cell. If that goes and others stay, the first of these gets
/// it, and formulas that read it follow.
void keepWhatSpansShow(Sheet& sheet, Axis axis, const LineRange& lines)
{
    const bool isRows = axis == Axis::rows;
    const std::vector<CellRange> spans = sheet.settings().spans;
    for (const CellRange& span : spans) {
        const CellAddress first{span.left, span.top};
        const int begin = isRows ? span.top : span.left, end = isRows ? span.bottom : span.right;
        const bool isEmpty = !sheet.hasFormula(first) && sheet.value(first).isEmpty();
        if (isEmpty || begin < lines.first || begin > lines.last || end <= lines.last)
            continue;
        CellRange rest = span;
        (isRows ? rest.top : rest.left) = lines.last + 1;
        sheet.removeSpans(span);
        if (sheet.moveCells({first.column, first.row, first.column, first.row}, sheet, {rest.left, rest.top}))
            rest = span; // part of an array
        if (!rest.isOneCell())
            sheet.addSpan(rest);
    }
}

int countOf(const std::vector<LineRange>& lines)
{
    int count = 0;
    for (const LineRange& line : lines)
        count += line.count();
    return count;
}

} // namespace

std::vector<LineRange> linesOf(const std::vector<CellRange>& ranges, Axis axis)
{
    std::vector<LineRange> lines;
    for (const CellRange& range : ranges)
        lines.push_back(axis == Axis::rows ? LineRange{range.top, range.bottom}
                                           : LineRange{range.left, range.right});
    std::ranges::sort(lines);
    std::vector<LineRange> joined;
    for (const LineRange& line : lines) {
        if (!joined.empty() && line.first <= joined.back().last + 1)
            joined.back().last = std::max(joined.back().last, line.last);
        else
            joined.push_back(line);
    }
    return joined;
}

Refusal insertLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    const int limit = axis == Axis::rows ? maxRows : maxColumns;
    const int last = axis == Axis::rows ? sheet.lastDataRow() : sheet.lastDataColumn();
    if (!lines.empty() && last >= lines.front().first && last > limit - countOf(lines))
        return "表的末尾有数据,不能再插入";
    if (auto problem = arrayRefusal(sheet, axis, lines, true))
        return problem;
    const UndoStep step(workbook, axis == Axis::rows ? "插入行" : "插入列");
    for (const LineRange& line : std::views::reverse(lines)) { // so that places before stay where they are
        if (auto problem = axis == Axis::rows ? sheet.insertRows(line.first, line.count())
                                              : sheet.insertColumns(line.first, line.count()))
            return problem;
        partSharedEdge(workbook, sheet, wholeLines(sheet, axis, line));
    }
    return {};
}

Refusal deleteLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    if (countOf(lines) >= countOf(sheet.settings(), axis))
        return axis == Axis::rows ? "不能删除所有的行" : "不能删除所有的列";
    if (shownBesides(sheet, axis, lines) < 1)
        return axis == Axis::rows ? "不能删除所有显示的行，其余的行都隐藏着"
                                  : "不能删除所有显示的列，其余的列都隐藏着";
    if (auto problem = arrayRefusal(sheet, axis, lines, false))
        return problem;
    UndoStep step(workbook, axis == Axis::rows ? "删除行" : "删除列");
    for (const LineRange& line : std::views::reverse(lines)) {
        keepWhatSpansShow(sheet, axis, line);
        takeSharedEdges(workbook, sheet, wholeLines(sheet, axis, line));
        if (auto problem = axis == Axis::rows ? sheet.deleteRows(line.first, line.count())
                                              : sheet.deleteColumns(line.first, line.count())) {
            step.takeBack();
            return problem;
        }
    }
    return {};
}

Refusal hideLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    if (shownBesides(sheet, axis, lines) < 1)
        return axis == Axis::rows ? "不能隐藏所有的行" : "不能隐藏所有的列";
    const UndoStep step(workbook, "隐藏");
    sheet.changeSettings([&](SheetSettings& settings) {
        for (const LineRange& range : lines) {
            for (int line = range.first; line <= range.last; ++line)
                sizesOf(settings, axis).hidden[line] = true;
        }
    });
    return {};
}

void showLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    const UndoStep step(workbook, "取消隐藏");
    sheet.changeSettings([&](SheetSettings& settings) {
        AxisSizes& sizes = sizesOf(settings, axis);
        for (const LineRange& range : lines) {
            LineRange shown = range;
            while (sizes.hidden.contains(shown.first - 1))
                --shown.first;
            while (sizes.hidden.contains(shown.last + 1))
                ++shown.last;
            sizes.hidden.erase(sizes.hidden.lower_bound(shown.first), sizes.hidden.upper_bound(shown.last));
            std::erase_if(sizes.sizes, [&](const auto& entry) {
                return entry.second == 0 && entry.first >= shown.first && entry.first <= shown.last;
            });
        }
    });
}

void resizeLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines, int size)
{
    const UndoStep step(workbook, axis == Axis::rows ? "行高" : "列宽");
    sheet.changeSettings([&](SheetSettings& settings) {
        AxisSizes& sizes = sizesOf(settings, axis);
        for (const LineRange& range : lines) {
            for (int line = range.first; line <= range.last; ++line) {
                if (size <= 0) {
                    sizes.hidden[line] = true;
                    continue;
                }
                sizes.hidden.erase(line);
                sizes.sizes[line] = std::min(size, maxLineSize);
            }
        }
    });
}

void freeRows(Workbook& workbook, Sheet& sheet, const std::vector<LineRange>& rows)
{
    const UndoStep step(workbook, "行高");
    sheet.changeSettings([&](SheetSettings& settings) {
        AxisSizes& sizes = settings.rows;
        for (const LineRange& range : rows) {
            sizes.hidden.erase(sizes.hidden.lower_bound(range.first), sizes.hidden.upper_bound(range.last));
            sizes.sizes.erase(sizes.sizes.lower_bound(range.first), sizes.sizes.upper_bound(range.last));
        }
    });
}

void freezeAt(Workbook& workbook, Sheet& sheet, CellAddress cell)
{
    const UndoStep step(workbook, "冻结窗格");
    sheet.changeSettings([&](SheetSettings& settings) {
        settings.frozenRows = std::clamp(cell.row - 1, 0, settings.rowCount - 1);
        settings.frozenColumns = std::clamp(cell.column - 1, 0, settings.columnCount - 1);
    });
}

Refusal clearRanges(Workbook& workbook, Sheet& sheet, const std::vector<CellRange>& ranges)
{
    for (const CellRange& range : ranges) {
        for (const CellRange& array : sheet.settings().arrays) {
            if (array.intersects(range) && !range.contains(array))
                return "不能更改数组公式的一部分";
        }
    }
    const UndoStep step(workbook, "清除");
    for (const CellRange& range : ranges)
        sheet.clearContents(range);
    return {};
}

void printAlike(Workbook& workbook, int first, const PrintSettings& like)
{
    for (int index = first; index <= workbook.sheetCount(); ++index)
        workbook.sheet(index).changeSettings([&](SheetSettings& settings) {
            PrintSettings& print = settings.print;
            print.marginTop = like.marginTop;
            print.marginBottom = like.marginBottom;
            print.marginLeft = like.marginLeft;
            print.marginRight = like.marginRight;
            print.landscape = like.landscape;
            print.header = like.header;
            print.footer = like.footer;
            print.paperWidth = like.paperWidth;
            print.paperHeight = like.paperHeight;
        });
}

} // namespace spreadsheet
