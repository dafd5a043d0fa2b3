#include "spreadsheet/files/xlsx/xlsx_write.h"

#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/ContentError.h"
#include "spreadsheet/files/xlsx/xlsx_formula.h"
#include "spreadsheet/files/xlsx/XlsxSheetWriter.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"

#include <memory>
#include <xlsxwriter.h>

namespace spreadsheet {

namespace {

/// Closing writes the file; a book that is never closed leaks.
class Book {
public:
    explicit Book(const std::filesystem::path& file)
    {
        m_folder = file.parent_path().string();
        lxw_workbook_options options{0, m_folder.empty() ? nullptr : m_folder.data(), 1};
        m_book = workbook_new_opt(file.c_str(), &options);
        if (!m_book)
            throw ContentError("无法写入 .xlsx 文件: 内存不足");
    }
    ~Book()
    {
        if (m_book)
            lxw_workbook_free(m_book);
    }
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    lxw_workbook* get() { return m_book; }
    void close()
    {
        const lxw_error error = workbook_close(std::exchange(m_book, nullptr));
        if (error != LXW_NO_ERROR)
            throw ContentError("无法写入 .xlsx 文件: 磁盘可能已满,或临时文件夹不能写");
    }

private:
    std::string m_folder; ///< temporary files stand beside the file
    lxw_workbook* m_book = nullptr;
};

void writeNames(const Workbook& workbook, lxw_workbook* book, const SheetResolver& sheetId,
                Warnings& warnings)
{
    for (int number = 0; number < workbook.names().size(); ++number) {
        const NameTable::Entry& entry = workbook.names()[number];
        if (entry.formula == 0)
            continue;
        const std::string formula =
            "=" + portableFormula(workbook.formulas().text(entry.formula, {1, 1}), {1, 1}, sheetId);
        if (workbook_define_name(book, entry.name.c_str(), formula.c_str()) != LXW_NO_ERROR)
            warnings.add("名称“" + entry.name + "”没有写出: .xlsx 不接受这个名称");
    }
}

} // namespace

void writeXlsx(const Workbook& workbook, const std::filesystem::path& file, Warnings& warnings)
{
    const SheetResolver sheetId = [&workbook](std::string_view name) {
        const int index = workbook.sheetIndex(name);
        return index == 0 ? 0 : workbook.sheet(index).id();
    };
    Book book(file);
    XlsxFormats formats(workbook.styles(), book.get(), warnings);
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const Sheet& sheet = workbook.sheet(index);
        // Asked before: the library would print its refusal.
        if (workbook_validate_sheet_name(book.get(), sheet.name().c_str()) != LXW_NO_ERROR)
            throw ContentError("表名“" + sheet.name() + "”在 .xlsx 中不能使用,请改短(最多 31 个字)后再引出");
        lxw_worksheet* const target = workbook_add_worksheet(book.get(), sheet.name().c_str());
        if (!target)
            throw ContentError("无法写入 .xlsx 文件: 内存不足");
        XlsxSheetWriter({workbook, sheet, formats, sheetId, warnings}, target).write();
        if (index == workbook.activeSheet())
            worksheet_activate(target);
        if (sheet.settings().isHidden)
            worksheet_hide(target);
    }
    writeNames(workbook, book.get(), sheetId, warnings);
    book.close();
}

} // namespace spreadsheet
