#include "designer/editor_commands.h"

#include "designer/frmEditor.h"
#include "formatting/cell_commands.h"
#include "printing/frmPrintOptions.h"
#include "spreadsheet/view/SpreadsheetControl.h"

namespace selfreport {

namespace {

using Window = frmEditor&;

constexpr EditorCommand separator{nullptr, nullptr};

using Horizontal = spreadsheet::HorizontalAlignment;
using Vertical = spreadsheet::VerticalAlignment;

template <void command(spreadsheet::SpreadsheetControl&)>
void onGrid(frmEditor& window)
{
    command(window.fps1());
    window.enterCell();
}

template <auto alignment>
void align(frmEditor& window)
{
    alignCells(window.fps1(), alignment);
    window.enterCell();
}

constexpr EditorCommand fileCommands[] = {
    {"MenuFileNew", "新建", nullptr, "Ctrl+N"},
    {"MenuFileOpen", "打开", nullptr, "Ctrl+O"},
    {"MenuFileSave", "保存", [](Window w) { w.MenuFileSave_Click(); }, "Ctrl+S"},
    {"MenuFileClose", "关闭", [](Window w) { w.close(); }},
    separator,
    {"MenuImportExcelFile", "引入Excel文件", [](Window w) { w.MenuImportExcelFile_Click(); }},
    {"MenuExportExcel", "引出为Excel文件", [](Window w) { w.MenuExportExcel_Click(); }},
    separator,
    {"MenuImpoertSpreadFile", "引入Spread文件", [](Window w) { w.MenuImpoertSpreadFile_Click(); }},
    {"MenuEmportSpreadFile", "引出为Spread文件", [](Window w) { w.MenuEmportSpreadFile_Click(); }},
    separator,
    {"MenuPreview", "打印预览", [](Window w) { w.MenuPreview_Click(); }},
    {"MenuPrint", "打印", [](Window w) { w.MenuPrint_Click(); }},
    separator,
    {"MenuFileExit", "退出", [](Window w) { w.close(); }},
    separator,
    {"MenuExportPdf", "引出为PDF文件", [](Window w) { w.exportPdf(); }},
    {"MenuPrintOptions", "打印选项", [](Window w) { frmPrintOptions(&w).exec(); }},
    {"MenuPageBreak", "插入/取消分页符", [](Window) { togglePageBreaksAtSelection(); }},
};

constexpr EditorCommand editCommands[] = {
    {"MenuHInsertCell", "模向插入单元格"},
    {"MenuVInsertCell", "纵向插入单元格"},
    separator,
    {"MenuHDelCell", "横向删除单元格"},
    {"MenuVDelCell", "纵向删除单元格"},
    separator,
    {"MenuInsertRow", "整行插入", [](Window w) { w.MenuInsertRow_Click(); }},
    {"MenuInsertCol", "整列插入", [](Window w) { w.MenuInsertCol_Click(); }},
    separator,
    {"MenuBold", "粗体", onGrid<toggleBold>},
    {"MenuItalic", "斜体", onGrid<toggleItalic>},
    separator,
    {"MenuLeft", "左对齐", align<Horizontal::left>},
    {"MenuMiddle", "居中", align<Horizontal::centre>},
    {"MenuRight", "右对齐", align<Horizontal::right>},
    {"MenuVTop", "对齐顶端", align<Vertical::top>},
    {"MenuVMiddle", "垂直居中", align<Vertical::centre>},
    {"MenuVBottom", "对齐底端", align<Vertical::bottom>},
    separator,
    {"MenuCellSpan", "单元格合并", onGrid<mergeCells>},
    {"MenuUnCellSpan", "单元格合并取消", onGrid<unmergeCells>},
    separator,
    {"MenuForeColor", "前景色", onGrid<chooseForeColour>},
    {"MenuBackColor", "背景色", onGrid<chooseBackColour>},
    {"MenuLock", "锁定/解锁", onGrid<toggleLock>},
    {"MenuSetTableInfo", "设置表格信息", [](Window w) { w.MenuSetTableInfo_Click(); }},
    {"MenuDataType", "设置数据类型", [](Window w) { w.MenuDataType_Click(); }},
    {"MenuCellBorder", "设置边框", [](Window w) { w.MenuCellBorder_Click(); }},
    separator,
    {"MenuUndo", "撤消", [](Window w) { w.fps1().undo(); }},
    {"MenuRedo", "恢复", [](Window w) { w.fps1().redo(); }},
    separator,
    {"MenuCut", "剪切", [](Window w) { w.fps1().cut(); }},
    {"MenuCopy", "复制", [](Window w) { w.fps1().copy(); }},
    {"MenuPaste", "粘贴", [](Window w) { w.fps1().paste(); }},
    {"MenuPasteValues", "粘贴数值", [](Window w) { w.fps1().pasteValues(); }},
    {"MenuClear", "清除内容", [](Window w) { w.fps1().clear(); }},
    {"MenuFillDown", "向下填充", [](Window w) { w.fps1().fillDown(); }},
    {"MenuFillRight", "向右填充", [](Window w) { w.fps1().fillRight(); }},
    separator,
    {"MenuUnderline", "下划线", onGrid<toggleUnderline>},
    {"MenuStrikeOut", "删除线", onGrid<toggleStrikeOut>},
    {"MenuWrap", "自动换行", onGrid<toggleWrap>},
    {"MenuClearFormats", "清除格式", onGrid<clearFormats>},
    separator,
    {"MenuDeleteRows", "删除行", [](Window w) { w.fps1().deleteRows(); }},
    {"MenuDeleteColumns", "删除列", [](Window w) { w.fps1().deleteColumns(); }},
    {"MenuHideRows", "隐藏行", [](Window w) { w.fps1().hideRows(); }},
    {"MenuHideColumns", "隐藏列", [](Window w) { w.fps1().hideColumns(); }},
    {"MenuShowRows", "取消隐藏行", [](Window w) { w.fps1().showRows(); }},
    {"MenuShowColumns", "取消隐藏列", [](Window w) { w.fps1().showColumns(); }},
    {"MenuAutofitColumns", "最适合的列宽", [](Window w) { w.fps1().autofitColumns(); }},
    {"MenuFreeze", "冻结窗格", [](Window w) { w.fps1().freezeHere(); }},
};

constexpr EditorCommand insertCommands[] = {
    {"MenuFormula", "公式", [](Window w) { w.MenuFormula_Click(); }, "Ctrl+G"},
    separator,
    {"MenuEditFormula", "修改取数公式", [](Window w) { w.editCallInCell(); }},
};

constexpr EditorCommand optionCommands[] = {
    {"MenuRecalculate", "重算", [](Window w) { w.MenuRecalculate_Click(); }, "Ctrl+J"},
    {"MenuShowDate", "显示数据", [](Window w) { w.MenuShowDate_Click(); }},
    {"MenuShowFormula", "显示公式", [](Window w) { w.MenuShowFormula_Click(); }},
    separator,
    {"MenuDiagnostics", "取数诊断", [](Window w) { w.showDiagnostics(); }},
    {"MenuCoverage", "覆盖检查", [](Window w) { w.showCoverage(); }},
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
    {"Paste", "粘贴", "paste", nullptr, [](Window w) { w.pasteIntoActiveCell(); }},
    gap,
    {"Bold", "粗体", "bold", "MenuBold", nullptr, true},
    {"Italic", "斜体", "italic", "MenuItalic", nullptr, true},
    gap,
    {"Left", "左对齐", "left", "MenuLeft", nullptr, true},
    {"Middle", "居中", "middle", "MenuMiddle", nullptr, true},
    {"Right", "右对齐", "right", "MenuRight", nullptr, true},
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
