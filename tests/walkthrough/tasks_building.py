"""Tasks that make a report: from nothing, from an old workbook, for the board, on two sheets, in Chinese."""

import xlrd
import xlwt
from waiting import until

from books import paper
NUMBER = 3  # 数字型 stands so many entries below the first type


def builds_a_balance_sheet(desk):
    user, books = desk.user, desk.books
    desk.begins_report("小型资产负债表")
    user.pastes("小型资产负债表\n\n项目\t期末数\n库存现金\n银行存款\n应收账款\n合计")
    desk.goes_to("B4")
    writes_acct_by_dialog(desk, "1001", "2", "", "2025", "", "12")
    desk.goes_to("B5")
    user.enters('=Acct("1002","2","","2025","","12")', '=Acct("1122","2","","2025","","12")')
    user.presses("alt+equal", "Return")  # the sum of the figures above
    user.keeps("写好公式")
    desk.saves()
    pdf = desk.prints_to("balance.pdf")

    figures = [books.balance(account, 2025, 12) for account in ("1001", "1002", "1122")]
    shown = [row[1] for row in books.figures("小型资产负债表")[3:7]]
    assert [amount(text) for text in shown] == [*figures, round(sum(figures), 2)], shown
    design = books.design("小型资产负债表").worksheets[0]
    assert design["B7"].value == "=SUM(B4:B6)", design["B7"].value
    printed = paper(pdf)
    for text in ("小型资产负债表", "银行存款", "合计"):
        assert text in printed, (text, printed)
    for figure in figures:
        assert f"{figure:.2f}" in printed.replace(",", ""), (figure, printed)
    desk.leaves_all()


def writes_acct_by_dialog(desk, *arguments):
    user = desk.user
    user.presses("ctrl+g")
    user.sees("选择函数")
    user.presses("Return")
    user.windows.pop()  # it gives way
    user.sees("总账取数公式")
    for argument in arguments:
        user.types(argument)
        user.presses("Tab")
    user.keeps("取数公式的六个参数")
    user.presses("Return")
    user.sees_gone()


def amount(text):
    return float(text.replace(",", ""))


def takes_over_an_old_workbook(desk):
    """Figures of an .xls become formulas; the result goes back to an .xls that other programs read."""
    user, books = desk.user, desk.books
    old = xlwt.Workbook()
    sheet = old.add_sheet("Costs")
    rows = [("费用", "一月", "二月"), ("工资", 1200.5, 1300), ("房租", 800, 800), ("差旅", 99.5, 250.25),
            ("合计", 2100, 2350.25)]
    for row, texts in enumerate(rows):
        for column, text in enumerate(texts):
            sheet.write(row, column, text)
    old.save(str(desk.folder / "old.xls"))

    desk.begins_report("费用表")
    desk.menu(1, 5)
    opens_file(desk, "选择Excel文件", desk.folder / "old.xls")
    user.keeps("引入之后")
    desk.goes_to("B5")
    user.enters("=SUM(B2:B4)")
    user.presses("Up")
    desk.fills_by_mouse(1)  # the column beside it
    user.keeps("用鼠标向右填充")
    desk.goes_to("B2")
    user.enters("1300.5")  # a hundred more
    desk.saves()
    desk.menu(1, 6)
    opens_file(desk, None, desk.folder / "new.xls")
    until("引出的文件", (desk.folder / "new.xls").exists)

    design = books.design("费用表").worksheets[0]
    assert [design[cell].value for cell in ("B5", "C5")] == ["=SUM(B2:B4)", "=SUM(C2:C4)"], design["C5"].value
    assert [amount(text) for text in books.figures("费用表")[4][1:3]] == [2200, 2350.25]
    written = xlrd.open_workbook(str(desk.folder / "new.xls")).sheet_by_index(0)
    assert written.row_values(4)[:3] == ["合计", 2200, 2350.25], written.row_values(4)
    desk.leaves_all()


def opens_file(desk, title, path):
    """Names a file in a file dialog; none: of any title."""
    user = desk.user
    user.sees(title)
    user.presses("ctrl+a")
    user.types(str(path))
    user.keeps("文件对话框")
    user.presses("Return")
    user.sees_gone()


def formats_a_statement_for_the_board(desk):
    user, books = desk.user, desk.books
    desk.begins_report("董事会报表")
    user.pastes("经营情况\n\n项目\t本年\t上年\n营业收入\t1234567.8\t1100000\n营业成本\t-900000\t-850000\n毛利")
    desk.goes_to("B6")
    user.enters("=B4+B5")
    user.presses("Up", "shift+Right", "ctrl+r")
    desk.widens_first_column(60)
    selects(desk, "A1", right=2)
    desk.menu(2, 15)  # merged
    desk.menu(2, 10)  # centred
    desk.menu(2, 7)  # bold
    desk.selects_by_mouse("A3", "C3")
    chooses_colour(desk, 18, "#FFF2CC")
    selects(desk, "A3", right=2, down=3)
    desk.menu(2, 22)
    user.sees("边框设置")
    user.presses("Return")  # all sides, a plain line
    user.sees_gone()
    selects(desk, "B4", right=1, down=2)
    desk.menu(2, 21)
    user.sees("数据类型")
    user.presses("Home", *["Down"] * NUMBER)
    user.keeps("选择数据类型")
    user.presses("alt+q")
    user.sees_gone()
    desk.saves()
    pdf = desk.prints_to("board.pdf")

    design = books.design("董事会报表").worksheets[0]
    assert [str(area) for area in design.merged_cells.ranges] == ["A1:C1"]
    assert design["A1"].font.bold and design["A1"].alignment.horizontal == "center"
    widths = [design.column_dimensions[column].width for column in "AB"]
    assert widths[0] > widths[1] + 5, widths
    for cell in ("A3", "B3", "C3"):
        assert design[cell].fill.fgColor.rgb == "FFFFF2CC", (cell, design[cell].fill.fgColor.rgb)
    for cell in ("A3", "C6", "B4"):
        border = design[cell].border
        assert all(side.style == "thin" for side in (border.left, border.right, border.top, border.bottom)), cell
    assert not design["A7"].border.bottom.style
    assert design["C6"].value == "=C4+C5", design["C6"].value
    printed = paper(pdf).replace(",", "")
    for text in ("经营情况", "毛利", "334567.8", "250000"):
        assert text in printed, (text, printed)
    desk.leaves_all()


def selects(desk, cell, right=0, down=0):
    desk.goes_to(cell)
    desk.user.presses(*["shift+Right"] * right, *["shift+Down"] * down)


def chooses_colour(desk, entry, colour):
    user = desk.user
    desk.menu(2, entry)
    user.sees()
    user.presses("alt+h", "ctrl+a")
    user.types(colour)
    user.keeps("选择颜色")
    user.presses("Return")
    user.sees_gone()


def works_on_two_sheets(desk):
    user, books = desk.user, desk.books
    desk.begins_report("两页报表")
    user.enters("100", "200", "=A1+A2")
    total = desk.place_of("A3")
    user.presses("shift+F11")  # a second sheet, shown at once
    user.enters("5")
    user.types("=A1*")
    user.presses("ctrl+Prior")
    user.clicks(*total)  # points at A3 of the first sheet
    user.presses("Return")
    user.keeps("第二页指向第一页")
    desk.saves()

    design = books.design("两页报表")
    first, second = design.worksheets
    assert first["A3"].value == "=A1+A2"
    assert second["A2"].value.replace("'", "") == f"=A1*{first.title}!A3", second["A2"].value
    assert "1500" in [cell.split(".")[0] for row in books.figures("两页报表") for cell in row]
    pdf = desk.folder / "two.pdf"
    books.run("run", str(books.report("两页报表")), "--db", str(desk.database), "--pdf", str(pdf))
    pages = paper(pdf).split("\f")
    assert "300" in pages[0] and "1500" in pages[1], pages
    desk.leaves_all()


def takes_chinese_from_elsewhere(desk):
    """What another program copied comes in as cells; account codes keep their zeros, grouped figures count."""
    user, books = desk.user, desk.books
    desk.begins_report("部门预算（修订）")
    user.pastes("编码\t部门\t预算\n0101\t财务部\t5,678.00\n0102\t龘靐齉　市场部\t1,000.50\n合计")
    user.keeps("从别处粘贴")
    desk.goes_to("C4")
    user.enters("=SUM(C2:C3)")
    user.presses("ctrl+f")
    user.sees("查找")
    user.pastes("市场部")
    user.presses("Return", "Escape")
    user.sees_gone()
    user.presses("F2", "End")  # the cell that was found
    user.pastes("—北区")
    user.presses("Return")
    desk.saves()
    pdf = desk.prints_to("chinese.pdf")

    rows = [row[:3] for row in books.figures("部门预算（修订）")]
    assert [row[0] for row in rows[1:3]] == ["0101", "0102"], rows
    assert [row[1] for row in rows[1:3]] == ["财务部", "龘靐齉　市场部—北区"], rows
    assert amount(rows[3][2]) == 6678.5, rows
    printed = paper(pdf)
    for text in ("财务部", "市场部—北区", "龘靐齉"):
        assert text in printed, (text, printed)
    desk.leaves_all()
