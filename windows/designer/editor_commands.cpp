#include "windows/designer/editor_commands.h"

#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/frmEditor.h"
#include "windows/designer/frmGoTo.h"
#include "windows/designer/frmNothing.h"
#include "windows/formatting/cell_commands.h"
#include "windows/formatting/FormatPainter.h"
#include "windows/formatting/frmBorders.h"
#include "windows/formatting/frmButtonCaption.h"
#include "windows/formatting/frmDropDownEntries.h"
#include "windows/formatting/frmLineSize.h"
#include "windows/formatting/frmNumberFormat.h"
#include "windows/printing/frmPrintOptions.h"
#include "windows/printing/print_sheet.h"

namespace selfreport {

// Users learn commands by where they stand and which key they have, so menus and toolbar are tables that look
// like what they see. An entry without work is there because the suite's menus have it, and does nothing.

namespace {

using Window = frmEditor&;

constexpr EditorCommand separator{};

/// A separator before a group that is a menu of its own where the right button asks for one.
constexpr EditorCommand groupOf(const char* caption)
{
    return {.caption = caption};
}

using Horizontal = spreadsheet::HorizontalAlignment;
using Vertical = spreadsheet::VerticalAlignment;

template <void command(spreadsheet::SpreadsheetControl&)>
void onGrid(frmEditor& window)
{
    command(window.fps1());
    window.showCellLooks();
}

template <spreadsheet::Refusal command(spreadsheet::SpreadsheetControl&)>
void onGrid(frmEditor& window)
{
    const spreadsheet::Refusal refused = command(window.fps1());
    window.enterCell();
    window.tell(refused);
}

/// Of a dialog that changes cells.
template <class Dialog, auto... arguments>
void dialog(frmEditor& window)
{
    if (window.fps1().refuseInRun())
        return;
    Dialog(window.fps1(), arguments..., &window).exec();
    window.enterCell();
}

template <auto alignment>
void align(frmEditor& window)
{
    alignCells(window.fps1(), alignment);
    window.showCellLooks();
}

constexpr EditorCommand fileCommands[] = {
    {"MenuFileNew", "新建", nullptr, "Ctrl+N"},
    {"MenuFileOpen", "打开", nullptr, "Ctrl+O"},
    {"MenuFileSave", "保存", [](Window w) { w.files().MenuFileSave_Click(); }, "Ctrl+S"},
    {.name = "MenuFileClose", .caption = "关闭", .run = [](Window w) { w.close(); }, .whileTyping = true},
    separator,
    {"MenuImportExcelFile", "引入Excel文件", [](Window w) { w.files().MenuImportExcelFile_Click(); }},
    {"MenuExportExcel", "引出为Excel文件", [](Window w) { w.files().MenuExportExcel_Click(); }},
    separator,
    {"MenuImpoertSpreadFile", "引入Spread文件", [](Window w) { w.files().MenuImpoertSpreadFile_Click(); }},
    {"MenuEmportSpreadFile", "引出为Spread文件", [](Window w) { w.files().MenuEmportSpreadFile_Click(); }},
    separator,
    {"MenuPreview", "打印预览", [](Window w) { w.MenuPreview_Click(); }},
    {"MenuPrint", "打印", [](Window w) { w.MenuPrint_Click(); }, "Ctrl+P"},
    separator,
    {.name = "MenuFileExit", .caption = "退出", .run = [](Window w) { w.close(); }, .whileTyping = true},
    separator,
    {.addsMore = [](Window w, QMenu& menu) { w.addFileFormats(menu); }},
    {"MenuPrintAll", "打印全部表页", [](Window w) { printAllSheets(w.printedGrid()); }},
    {"MenuExportPdf", "另存为PDF", [](Window w) { w.exportPdf(); }},
    {"MenuExportPdfA", "另存为PDF/A存档文件", [](Window w) { exportPdf(w.printedGrid(), true); }},
    {"MenuPrintOptions", "打印选项", [](Window w) { frmPrintOptions(w.printedGrid(), &w).exec(); }},
    {"MenuPageBreak", "插入/取消分页符", [](Window w) { togglePageBreaksAtSelection(w.printedGrid()); }},
};

constexpr EditorCommand fillCommands[] = {
    {"MenuFillDown", "向下填充\tCtrl+D", [](Window w) { w.fps1().commands().fillDown(); }},
    {"MenuFillRight", "向右填充\tCtrl+R", [](Window w) { w.fps1().commands().fillRight(); }},
    separator,
    {"MenuSortUp", "升序排序", [](Window w) { w.sortSelection(false); }},
    {"MenuSortDown", "降序排序", [](Window w) { w.sortSelection(true); }},
};

constexpr EditorCommand lookCommands[] = {
    {"MenuStrikeOut", "删除线", onGrid<toggleStrikeOut>},
    {"MenuWrap", "自动换行", onGrid<toggleWrap>},
    {"MenuIndentMore", "增加缩进", onGrid<indentMore>},
    {"MenuIndentLess", "减少缩进", onGrid<indentLess>},
    {"MenuBorders", "边框…", dialog<frmBorders>},
    {"MenuClearFormats", "清除格式", onGrid<clearFormats>},
    {"MenuFormatPainter", "格式刷", onGrid<FormatPainter::start>},
    separator,
    {"MenuDropDownEntries", "下拉框列表", dialog<frmDropDownEntries>},
    {"MenuButtonCaption", "按钮标题", dialog<frmButtonCaption>},
};

constexpr EditorCommand lineCommands[] = {
    {"MenuDeleteRows", "删除行", [](Window w) { w.fps1().commands().deleteRows(); }},
    {"MenuDeleteColumns", "删除列", [](Window w) { w.fps1().commands().deleteColumns(); }},
    separator,
    {"MenuHideRows", "隐藏行\tCtrl+9", [](Window w) { w.fps1().commands().hideRows(); }},
    {"MenuHideColumns", "隐藏列\tCtrl+0", [](Window w) { w.fps1().commands().hideColumns(); }},
    {"MenuShowRows", "取消隐藏行\tCtrl+Shift+9", [](Window w) { w.fps1().commands().showRows(); }},
    {"MenuShowColumns", "取消隐藏列\tCtrl+Shift+0", [](Window w) { w.fps1().commands().showColumns(); }},
    separator,
    {"MenuRowHeight", "行高", dialog<frmLineSize, frmLineSize::Lines::rows>},
    {"MenuColumnWidth", "列宽", dialog<frmLineSize, frmLineSize::Lines::columns>},
    {"MenuAutofitRows", "最适合的行高", [](Window w) { w.fps1().commands().autofitRows(); }},
    {"MenuAutofitColumns", "最适合的列宽", [](Window w) { w.fps1().commands().autofitColumns(); }},
    {"MenuFreeze", "冻结窗格", [](Window w) { w.fps1().commands().freezeHere(); }},
};

constexpr EditorMenu fillMenu{"MenuFillSort", "填充和排序", fillCommands};
constexpr EditorMenu lookMenu{"MenuLooks", "字体和格式", lookCommands};
constexpr EditorMenu lineMenu{"MenuLines", "行和列", lineCommands};

constexpr EditorCommand editCommands[] = {
    groupOf("插入单元格"),
    {"MenuHInsertCell", "模向插入单元格"},
    {"MenuVInsertCell", "纵向插入单元格"},
    groupOf("删除单元格"),
    {"MenuHDelCell", "横向删除单元格"},
    {"MenuVDelCell", "纵向删除单元格"},
    groupOf("整行整列"),
    {"MenuInsertRow", "整行插入", [](Window w) { w.MenuInsertRow_Click(); }},
    {"MenuInsertCol", "整列插入", [](Window w) { w.MenuInsertCol_Click(); }},
    groupOf("字形"),
    {"MenuBold", "粗体", onGrid<toggleBold>, "Ctrl+B"},
    {"MenuItalic", "斜体", onGrid<toggleItalic>, "Ctrl+I"},
    groupOf("对齐"),
    {"MenuLeft", "左对齐", align<Horizontal::left>},
    {"MenuMiddle", "居中", align<Horizontal::centre>},
    {"MenuRight", "右对齐", align<Horizontal::right>},
    {"MenuVTop", "对齐顶端", align<Vertical::top>},
    {"MenuVMiddle", "垂直居中", align<Vertical::centre>},
    {"MenuVBottom", "对齐底端", align<Vertical::bottom>},
    groupOf("合并"),
    {"MenuCellSpan", "单元格合并", onGrid<mergeCells>},
    {"MenuUnCellSpan", "单元格合并取消", onGrid<unmergeCells>},
    groupOf("颜色、类型和边框"),
    {"MenuForeColor", "前景色", onGrid<chooseForeColour>},
    {"MenuBackColor", "背景色", onGrid<chooseBackColour>},
    {"MenuLock", "锁定/解锁", onGrid<toggleLock>},
    {"MenuSetTableInfo", "设置表格信息", [](Window w) { w.MenuSetTableInfo_Click(); }},
    {"MenuDataType", "设置数据类型", [](Window w) { w.MenuDataType_Click(); }},
    {"MenuCellBorder", "设置边框", [](Window w) { w.MenuCellBorder_Click(); }},
    groupOf("撤消和恢复"),
    {"MenuUndo", "撤消\tCtrl+Z", [](Window w) { w.fps1().commands().undo(); }},
    {"MenuRedo", "恢复\tCtrl+Y", [](Window w) { w.fps1().commands().redo(); }},
    groupOf("剪贴板"),
    {"MenuCut", "剪切\tCtrl+X", [](Window w) { w.fps1().commands().cut(); }},
    {"MenuCopy", "复制\tCtrl+C", [](Window w) { w.fps1().commands().copy(); }},
    {"MenuPaste", "粘贴\tCtrl+V", [](Window w) { w.fps1().commands().paste(); }},
    {"MenuPasteValues", "粘贴数值\tCtrl+Shift+V", [](Window w) { w.fps1().commands().pasteValues(); }},
    {"MenuClear", "清除内容\tDel", [](Window w) { w.fps1().commands().clear(); }},
    groupOf("查找和定位"),
    {"MenuFind", "查找", [](Window w) { w.find(false); }, "Ctrl+F"},
    {"MenuReplace", "替换", [](Window w) { w.find(true); }, "Ctrl+H"},
    {"MenuGoTo", "定位", [](Window w) { frmGoTo(w.fps1(), &w).exec(); }, "F5"},
    groupOf("数字格式"),
    {"MenuNumberFormat", "数字格式…", dialog<frmNumberFormat>, "Ctrl+1"},
    {"MenuThousands", "千分位", onGrid<toggleThousands>},
    separator,
    {"MenuUnderline", "下划线", onGrid<toggleUnderline>, "Ctrl+U"},
    {.submenu = &fillMenu},
    {.submenu = &lookMenu},
    {.submenu = &lineMenu},
};

constexpr EditorCommand insertCommands[] = {
    {"MenuFormula", "公式", [](Window w) { w.MenuFormula_Click(); }, "Ctrl+G"},
    separator,
    {"MenuEditFormula", "修改取数公式", [](Window w) { w.editCallInCell(); }},
    {.name = "MenuFormulaBox",
     .caption = "公式栏",
     .run = [](Window w) { w.MenuFormulaBox_Click(); },
     .shortcut = "Ctrl+F2",
     .whileTyping = true},
};

constexpr EditorCommand optionCommands[] = {
    {"MenuRecalculate", "重算", [](Window w) { w.formulas().MenuRecalculate_Click(); }, "Ctrl+J; F9"},
    {"MenuShowDate", "显示数据", [](Window w) { w.formulas().MenuShowDate_Click(); }},
    {"MenuShowFormula", "显示公式", [](Window w) { w.formulas().MenuShowFormula_Click(); }},
    separator,
    {"MenuDiagnostics", "取数诊断", [](Window w) { w.formulas().showDiagnostics(); }},
    {"MenuCoverage", "覆盖检查", [](Window w) { w.showCoverage(); }},
    {"MenuDrill", "联查", [](Window w) { w.showDrill(); }, "Ctrl+["},
    {"MenuProve", "账套自检…", [](Window w) { w.showProof(); }},
    {"MenuNothing", "空值显示…", dialog<frmNothing>},
    separator,
    {.addsMore = [](Window w, QMenu& menu) { w.addPreferences(menu); }},
};

constexpr EditorMenu menus[] = {
    {"MenuFile", "文件(&F)", fileCommands},
    {"MenuEdit", "编辑(&E)", editCommands},
    {"MenuInsert", "插入(&I)", insertCommands},
    {"MenuItem", "选项(&I)", optionCommands},
};

constexpr EditorButton gap{nullptr, nullptr, nullptr, nullptr};

constexpr EditorButton buttons[] = {
    {"New", "新建报表", "new", "MenuFileNew"},
    {"Open", "打开报表", "open", "MenuFileOpen"},
    gap,
    {"Save", "保存报表", "save", "MenuFileSave"},
    gap,
    {"Print", "打印", "print", "MenuPrint"},
    {"Preview", "打印预览", "preview", "MenuPreview"},
    gap,
    {"Copy", "复制", "copy", nullptr, [](Window w) { w.copyActiveText(); }},
    {"Paste", "粘贴", "paste", nullptr, [](Window w) { w.fps1().commands().pasteText(); }},
    gap,
    {"Bold", "粗体", "bold", "MenuBold", nullptr, true},
    {"Italic", "斜体", "italic", "MenuItalic", nullptr, true},
    gap,
    {"Left", "左对齐", "left", "MenuLeft", nullptr, true},
    {"Middle", "居中", "middle", "MenuMiddle", nullptr, true},
    {"Right", "右对齐", "right", "MenuRight", nullptr, true},
    gap,
    {"Thousands", "千分位", "thousands", "MenuThousands", nullptr, true},
    {"Borders", "边框", "borders", "MenuBorders"},
    gap,
    {"Drill", "联查", "drill", "MenuDrill"},
};

} // namespace

std::span<const EditorMenu> editorMenus()
{
    return menus;
}

std::span<const EditorButton> editorButtons()
{
    return buttons;
}

} // namespace selfreport
