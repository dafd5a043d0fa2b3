#include "spreadsheet/files/content/stored_sheets.h"

#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/values/range_overlap.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>

namespace spreadsheet {

// The content of a report may have been damaged, or made to do harm: whatever is read is held against the
// limits of a sheet before it is used, and rows, columns and marks must ascend, which keeps reading linear
// and refuses doubles. Writing clamps instead of refusing, because a program may have set anything and the
// user's report must be saved.

namespace {

/// The widest row, column or margin, in twips: beyond 17 metres.
constexpr int maxTwips = 1'000'000;

/// Programs may put any number into the settings; a file holds only what can be read back.
std::uint32_t limited(int value, int limit)
{
    return static_cast<std::uint32_t>(std::clamp(value, 0, limit));
}

int checked(std::uint32_t value, int limit, const char* what)
{
    requireContent(value <= static_cast<std::uint32_t>(limit), what);
    return static_cast<int>(value);
}

// Sizes and looks of rows and columns.

struct Axis {
    int last; ///< the highest index
    const char* what;
};
constexpr Axis rowAxis{maxRows, "行的设置不对"};
constexpr Axis columnAxis{maxColumns, "列的设置不对"};

using Entries = flatbuffers::Vector<const stored::AxisEntry*>;
using Indexes = flatbuffers::Vector<std::uint32_t>;

bool isOn(Axis axis, int index)
{
    return index >= 1 && index <= axis.last;
}

flatbuffers::Offset<Entries> writeSizes(flatbuffers::FlatBufferBuilder& builder, const AxisSizes& sizes,
                                        Axis axis)
{
    std::vector<stored::AxisEntry> entries;
    for (const auto& [index, size] : sizes.sizes) {
        if (isOn(axis, index))
            entries.emplace_back(static_cast<std::uint32_t>(index), limited(size, maxTwips));
    }
    return builder.CreateVectorOfStructs(entries);
}

/// The rows or columns that are marked.
flatbuffers::Offset<Indexes> writeMarks(flatbuffers::FlatBufferBuilder& builder,
                                        const std::map<int, bool>& marks, Axis axis)
{
    std::vector<std::uint32_t> indexes;
    for (const auto& [index, marked] : marks) {
        if (marked && isOn(axis, index))
            indexes.push_back(static_cast<std::uint32_t>(index));
    }
    return builder.CreateVector(indexes);
}

flatbuffers::Offset<Entries> writeStyles(flatbuffers::FlatBufferBuilder& builder,
                                         const std::map<int, std::uint32_t>& styles, StyleWriter& writer,
                                         Axis axis)
{
    std::vector<stored::AxisEntry> entries;
    for (const auto& [index, style] : styles) {
        if (isOn(axis, index) && style != 0)
            entries.emplace_back(static_cast<std::uint32_t>(index), writer.number(style));
    }
    return builder.CreateVectorOfStructs(entries);
}

/// Puts an entry behind the others; indexes must ascend.
template <typename T>
void append(std::map<int, T>& entries, std::uint32_t index, T value, Axis axis)
{
    const int at = checked(index, axis.last, axis.what);
    requireContent(at > (entries.empty() ? 0 : entries.rbegin()->first), axis.what);
    entries.emplace_hint(entries.end(), at, value);
}

std::map<int, bool> readMarks(const Indexes* indexes, Axis axis)
{
    std::map<int, bool> marks;
    if (indexes) {
        for (const std::uint32_t index : *indexes)
            append(marks, index, true, axis);
    }
    return marks;
}

AxisSizes readSizes(std::uint32_t defaultSize, const Entries* sizes, const Indexes* hidden, Axis axis)
{
    AxisSizes result{checked(defaultSize, maxTwips, axis.what), {}, {}};
    if (sizes) {
        for (const stored::AxisEntry* entry : *sizes)
            append(result.sizes, entry->index(), checked(entry->value(), maxTwips, axis.what), axis);
    }
    result.hidden = readMarks(hidden, axis);
    return result;
}

std::map<int, std::uint32_t> readStyles(const Entries* entries, std::span<const std::uint32_t> styles,
                                        Axis axis)
{
    std::map<int, std::uint32_t> result;
    if (entries) {
        for (const stored::AxisEntry* entry : *entries) {
            requireContent(entry->value() >= 1 && entry->value() < styles.size(), axis.what);
            append(result, entry->index(), styles[entry->value()], axis);
        }
    }
    return result;
}

// Spans and array formulas.

flatbuffers::Offset<flatbuffers::Vector<const stored::Range*>>
writeRanges(flatbuffers::FlatBufferBuilder& builder, const std::vector<CellRange>& ranges)
{
    std::vector<stored::Range> written;
    for (const CellRange& range : ranges)
        written.emplace_back(static_cast<std::uint32_t>(range.top), static_cast<std::uint32_t>(range.bottom),
                             static_cast<std::uint16_t>(range.left), static_cast<std::uint16_t>(range.right));
    return builder.CreateVectorOfStructs(written);
}

std::vector<CellRange> readRanges(const flatbuffers::Vector<const stored::Range*>* ranges, const char* what)
{
    std::vector<CellRange> result;
    if (!ranges)
        return result;
    for (const stored::Range* range : *ranges) {
        requireContent(range->left() >= 1 && range->left() <= range->right() &&
                           range->right() <= maxColumns && range->top() >= 1 &&
                           range->top() <= range->bottom() && range->bottom() <= maxRows,
                       what);
        result.push_back({range->left(), static_cast<int>(range->top()), range->right(),
                          static_cast<int>(range->bottom())});
    }
    return result;
}

std::vector<CellRange> readApartRanges(const flatbuffers::Vector<const stored::Range*>* ranges,
                                       const char* what)
{
    std::vector<CellRange> result = readRanges(ranges, what);
    requireContent(!anyOverlap(result), what);
    return result;
}

/// The cells of an array formula are those of its range, no more and no less.
void checkArrays(const Sheet& sheet, const std::vector<CellRange>& arrays, const FormulaPool& formulas)
{
    static constexpr const char* what = "数组公式的范围不符";
    std::int64_t inRanges = 0, inCells = 0;
    for (const CellRange& range : arrays) {
        inRanges += std::int64_t(range.rows()) * range.columns();
        const Column* first = sheet.column(range.left);
        const std::uint32_t formula = first ? first->formula(range.top) : 0;
        requireContent(formula != 0 && formulas[formula].isArrayFormula, what);
        for (int column = range.left; column <= range.right; ++column) {
            const Column* cells = sheet.column(column);
            for (int row = range.top; row <= range.bottom; ++row)
                requireContent(cells && cells->formula(row) == formula, what);
        }
    }
    for (int column = 1; column <= sheet.storedColumns(); ++column) {
        for (const Column::Slot& slot : sheet.column(column)->slots()) {
            const std::uint32_t* numbers = slot.block->formulas();
            for (int i = 0; numbers && i < slot.block->count(); ++i)
                inCells += numbers[i] != 0 && formulas[numbers[i]].isArrayFormula;
        }
    }
    requireContent(inCells == inRanges, what);
}

// Print settings.

flatbuffers::Offset<stored::Print> writePrint(flatbuffers::FlatBufferBuilder& builder,
                                              const PrintSettings& print)
{
    const auto header = builder.CreateString(print.header);
    const auto footer = builder.CreateString(print.footer);
    const auto rowBreaks = writeMarks(builder, print.rowBreaks, rowAxis);
    const auto columnBreaks = writeMarks(builder, print.columnBreaks, columnAxis);
    const auto area = print.area.empty() ? flatbuffers::Offset<flatbuffers::Vector<const stored::Range*>>()
                                         : writeRanges(builder, print.area);
    const bool fitsWidth = print.fitAcross == 1 && print.fitDown == 0;
    return stored::CreatePrint(
        builder, limited(print.marginTop, maxTwips), limited(print.marginBottom, maxTwips),
        limited(print.marginLeft, maxTwips), limited(print.marginRight, maxTwips), print.landscape, header,
        footer, print.columnHeadings, print.rowHeadings, print.gridLines, print.border, print.colour,
        print.shadows, limited(print.titleTop, maxRows), limited(print.titleBottom, maxRows),
        limited(print.titleLeft, maxColumns), limited(print.titleRight, maxColumns), !print.usedAreaOnly,
        fitsWidth, print.centredAcross, print.centredDown, print.stamp, rowBreaks, columnBreaks, area,
        limited(print.scale, largestPrintScale), fitsWidth ? 0 : limited(print.fitAcross, mostFittedPages),
        limited(print.fitDown, mostFittedPages), print.downFirst, limited(print.firstPage, largestFirstPage),
        limited(print.paperWidth, maxTwips), limited(print.paperHeight, maxTwips),
        limited(print.textDistance, maxTwips), print.strict);
}

PrintSettings readPrint(const stored::Print* stored)
{
    static constexpr const char* what = "打印设置不对";
    PrintSettings print;
    if (!stored)
        return print;
    print.marginTop = checked(stored->margin_top(), maxTwips, what);
    print.marginBottom = checked(stored->margin_bottom(), maxTwips, what);
    print.marginLeft = checked(stored->margin_left(), maxTwips, what);
    print.marginRight = checked(stored->margin_right(), maxTwips, what);
    print.landscape = stored->landscape();
    print.header = stored->header() ? stored->header()->str() : std::string();
    print.footer = stored->footer() ? stored->footer()->str() : std::string();
    print.columnHeadings = stored->column_headings();
    print.rowHeadings = stored->row_headings();
    print.gridLines = stored->grid_lines();
    print.border = stored->border();
    print.colour = stored->colour();
    print.shadows = stored->shadows();
    print.titleTop = checked(stored->title_top(), maxRows, what);
    print.titleBottom = checked(stored->title_bottom(), maxRows, what);
    print.titleLeft = checked(stored->title_left(), maxColumns, what);
    print.titleRight = checked(stored->title_right(), maxColumns, what);
    print.usedAreaOnly = !stored->whole_sheet();
    print.area = readRanges(stored->area(), what);
    print.scale = std::max(checked(stored->scale(), largestPrintScale, what), smallestPrintScale);
    print.fitAcross = stored->fit_width() ? 1 : checked(stored->fit_across(), mostFittedPages, what);
    print.fitDown = checked(stored->fit_down(), mostFittedPages, what);
    print.downFirst = stored->down_first();
    print.firstPage = checked(stored->first_page(), largestFirstPage, what);
    print.paperWidth = checked(stored->paper_width(), maxTwips, what);
    print.paperHeight = checked(stored->paper_height(), maxTwips, what);
    print.textDistance = checked(stored->text_distance(), maxTwips, what);
    print.centredAcross = stored->centred_across();
    print.centredDown = stored->centred_down();
    print.stamp = stored->stamp();
    print.strict = stored->strict();
    print.rowBreaks = readMarks(stored->row_breaks(), rowAxis);
    print.columnBreaks = readMarks(stored->column_breaks(), columnAxis);
    return print;
}

// Notes and captions.

flatbuffers::Offset<flatbuffers::Vector<const stored::CellText*>>
writeCellTexts(flatbuffers::FlatBufferBuilder& builder, const std::map<CellAddress, std::string>& cellTexts,
               TextWriter& texts)
{
    std::vector<stored::CellText> written;
    for (const auto& [cell, text] : cellTexts)
        written.emplace_back(static_cast<std::uint32_t>(cell.row), texts.number(Text(text)),
                             static_cast<std::uint16_t>(cell.column));
    return builder.CreateVectorOfStructs(written);
}

/// @param firstRow  the least row; 0 where whole columns may have one
std::map<CellAddress, std::string> readCellTexts(const flatbuffers::Vector<const stored::CellText*>* stored,
                                                 int firstRow, const StoredTexts& texts, const char* what)
{
    std::map<CellAddress, std::string> result;
    if (!stored)
        return result;
    for (const stored::CellText* entry : *stored) {
        const CellAddress cell{checked(entry->column(), maxColumns, what),
                               checked(entry->row(), maxRows, what)};
        requireContent(cell.column >= 1 && cell.row >= firstRow, what);
        if (const std::string_view text = texts[entry->text()].view(); !text.empty())
            result[cell] = text;
    }
    return result;
}

// Drop-down lists and captions.

struct WrittenDropDowns {
    flatbuffers::Offset<flatbuffers::Vector<const stored::DropDown*>> lists;
    flatbuffers::Offset<flatbuffers::Vector<std::uint32_t>> entries;
};

/// Equal lists are stored once.
WrittenDropDowns writeDropDowns(flatbuffers::FlatBufferBuilder& builder, const DropDowns& dropDowns,
                                TextWriter& texts)
{
    std::vector<stored::DropDown> lists;
    std::vector<std::uint32_t> entries;
    std::map<std::vector<std::string>, std::uint32_t> places;
    for (const auto& [cell, list] : dropDowns) {
        const auto [place, fresh] = places.try_emplace(*list, static_cast<std::uint32_t>(entries.size()));
        for (std::size_t i = 0; fresh && i < (*list).size(); ++i)
            entries.push_back(texts.number(Text((*list)[i])));
        lists.emplace_back(static_cast<std::uint32_t>(cell.row), place->second,
                           static_cast<std::uint32_t>((*list).size()),
                           static_cast<std::uint16_t>(cell.column));
    }
    return {builder.CreateVectorOfStructs(lists), builder.CreateVector(entries)};
}

DropDowns readDropDowns(const stored::Sheet& stored, const StoredTexts& texts)
{
    static constexpr const char* what = "下拉框的列表不对";
    DropDowns result;
    if (!stored.drop_downs())
        return result;
    const std::uint32_t count = stored.drop_down_entries() ? stored.drop_down_entries()->size() : 0;
    std::map<std::uint32_t, DropDownEntries> lists; ///< by their first entry
    std::uint32_t read = 0; // lists follow each other, so that no file grows when it is opened
    for (const stored::DropDown* list : *stored.drop_downs()) {
        const CellAddress cell{checked(list->column(), maxColumns, what),
                               checked(list->row(), maxRows, what)};
        const std::uint32_t first = list->first_entry(), size = list->entry_count();
        requireContent(cell.column >= 1 && first <= count && size <= count - first, what);
        auto known = lists.find(first);
        if (known == lists.end()) {
            requireContent(first >= read && size > 0, what);
            std::vector<std::string> entries;
            for (std::uint32_t i = first; i < first + size; ++i)
                entries.emplace_back(texts[stored.drop_down_entries()->Get(i)].view());
            known = lists.emplace(first, DropDownEntries(std::move(entries))).first;
            read = first + size;
        }
        requireContent((*known->second).size() == size, what);
        result.insert_or_assign(cell, known->second);
    }
    return result;
}

/// Sheets without any have no list.
flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<stored::NothingText>>>
writeNothings(flatbuffers::FlatBufferBuilder& builder, const std::map<int, std::string>& texts)
{
    std::vector<flatbuffers::Offset<stored::NothingText>> written;
    for (const auto& [kind, text] : texts)
        written.push_back(
            stored::CreateNothingText(builder, static_cast<std::uint8_t>(kind), builder.CreateString(text)));
    return written.empty() ? 0 : builder.CreateVector(written);
}

std::map<int, std::string>
readNothings(const flatbuffers::Vector<flatbuffers::Offset<stored::NothingText>>* stored)
{
    std::map<int, std::string> texts;
    if (stored)
        for (const stored::NothingText* entry : *stored)
            texts.emplace(entry->kind(), entry->text()->str());
    return texts;
}

} // namespace

flatbuffers::Offset<stored::Sheet> writeSheet(flatbuffers::FlatBufferBuilder& builder, const Sheet& sheet,
                                              CellWriters writers)
{
    const SheetSettings& settings = sheet.settings();
    const auto name = builder.CreateString(settings.name);
    const auto heights = writeSizes(builder, settings.rows, rowAxis);
    const auto widths = writeSizes(builder, settings.columns, columnAxis);
    const auto hiddenRows = writeMarks(builder, settings.rows.hidden, rowAxis);
    const auto hiddenColumns = writeMarks(builder, settings.columns.hidden, columnAxis);
    const auto rowStyles = writeStyles(builder, settings.rowStyles, writers.styles, rowAxis);
    const auto columnStyles = writeStyles(builder, settings.columnStyles, writers.styles, columnAxis);
    const auto spans = writeRanges(builder, settings.spans);
    const auto arrays = writeRanges(builder, settings.arrays);
    const auto print = writePrint(builder, settings.print);
    const auto notes = writeCellTexts(builder, settings.notes, writers.texts);
    const auto dropDowns = writeDropDowns(builder, settings.dropDowns, writers.texts);
    const auto captions = writeCellTexts(builder, settings.captions, writers.texts);
    const auto nothings = writeNothings(builder, settings.nothingTexts);
    const WrittenCells cells = writeCells(builder, sheet, writers);
    return stored::CreateSheet(
        builder, name, limited(settings.rowCount, maxRows), limited(settings.columnCount, maxColumns),
        limited(settings.rows.defaultSize, maxTwips), limited(settings.columns.defaultSize, maxTwips),
        heights, widths, hiddenRows, hiddenColumns, rowStyles, columnStyles, spans, arrays,
        limited(settings.frozenRows, maxRows), limited(settings.frozenColumns, maxColumns), print,
        cells.stretches, cells.kinds, cells.payloads, cells.styles, cells.formulas, cells.tags,
        cells.shownTexts, notes, dropDowns.lists, dropDowns.entries, captions, settings.isHidden, nothings,
        settings.isVeryHidden);
}

void readSheet(const stored::Sheet& stored, Sheet& sheet, const CellMeanings& meanings,
               const FormulaPool& formulas)
{
    readCells(stored, sheet, meanings);
    SheetSettings settings;
    settings.name = sheet.name();
    settings.rowCount = checked(stored.row_count(), maxRows, "行数超出范围");
    settings.columnCount = checked(stored.column_count(), maxColumns, "列数超出范围");
    settings.rows =
        readSizes(stored.default_row_height(), stored.row_heights(), stored.hidden_rows(), rowAxis);
    settings.columns =
        readSizes(stored.default_column_width(), stored.column_widths(), stored.hidden_columns(), columnAxis);
    settings.rowStyles = readStyles(stored.row_styles(), meanings.styles, rowAxis);
    settings.columnStyles = readStyles(stored.column_styles(), meanings.styles, columnAxis);
    settings.spans = readApartRanges(stored.spans(), "合并单元格的范围不对");
    settings.arrays = readApartRanges(stored.arrays(), "数组公式的范围不对");
    settings.frozenRows = checked(stored.frozen_rows(), maxRows, "冻结的行数不对");
    settings.frozenColumns = checked(stored.frozen_columns(), maxColumns, "冻结的列数不对");
    settings.print = readPrint(stored.print());
    settings.notes = readCellTexts(stored.notes(), 1, meanings.texts, "批注的位置不对");
    settings.dropDowns = readDropDowns(stored, meanings.texts);
    settings.captions = readCellTexts(stored.button_captions(), 0, meanings.texts, "按钮标题的位置不对");
    settings.isHidden = stored.is_hidden();
    settings.isVeryHidden = stored.is_very_hidden();
    if (std::ranges::find(meanings.formulas.begin() + 1, meanings.formulas.end(), 0u) !=
        meanings.formulas.end())
        std::erase_if(settings.arrays, [&sheet](const CellRange& range) {
            return !sheet.hasFormula({range.left, range.top}); // one that could not be read
        });
    settings.nothingTexts = readNothings(stored.nothing_texts());
    checkArrays(sheet, settings.arrays, formulas);
    sheet.changeSettings([&](SheetSettings& target) { target = std::move(settings); });
}

} // namespace spreadsheet
