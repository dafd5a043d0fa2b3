"""Tasks in which something has gone wrong: a figure, a formula, the database, the program, the user."""

import shutil

import openpyxl

from waiting import until

from desk import DESIGNER, HOST, LIST

COPY, PASTE = 2, 3  # in what the right button offers


def mends_what_somebody_broke(desk):
    """Somebody typed a number over a formula of the income statement; another user finds and mends it."""
    user, books = desk.user, desk.books
    right = books.figures("利润表")
    desk.display.environment["USER"] = "li"
    desk.opens_for_design(2)
    desk.goes_to("C16")
    user.enters("12345")
    desk.saves()
    desk.leaves_all()
    assert books.figures("利润表") != right
    assert books.asks("select fbillerid from tblCWSelfReport where noid=2") == [("li",)]

    desk.display.environment["USER"] = "wang"
    desk.opens_for_design(2)
    broken, right_one = desk.place_of("C16"), desk.place_of("D16")  # formulas of the same kind
    desk.menu(4, 3)  # formulas instead of figures
    user.keeps("显示公式: 一个数字露了出来")
    desk.menu(4, 2)
    user.keeps("显示数据")
    desk.chooses_from_popup(right_one, COPY)
    user.clicks(*broken)
    desk.chooses_from_popup(broken, PASTE)
    user.presses("Escape", "F9")
    desk.saves()
    assert books.figures("利润表") == right
    assert books.asks("select fbillerid from tblCWSelfReport where noid=2") == [("wang",)]
    desk.leaves_all()


def finds_out_why_a_figure_is_nothing(desk):
    user, books = desk.user, desk.books
    desk.begins_report("货币资金")
    user.enters('=Acct("1002","2","","2032","","12")')  # a year that the ledger does not have
    desk.menu(4, 1)
    desk.menu(4, 4)
    user.keeps("取数诊断说明原因")
    desk.saves()
    assert float(books.figures("货币资金")[0][0]) == 0
    assert "A1" in books.complaints("货币资金"), books.complaints("货币资金")

    desk.goes_to("A1")
    user.presses("F2", "Home", *["Right"] * len('=Acct("1002","2","","20'), "Delete", "Delete")
    user.types("25")
    user.presses("Return")
    desk.menu(4, 1)
    user.keeps("改正之后")
    desk.saves()
    assert float(books.figures("货币资金")[0][0].replace(",", "")) == books.balance("1002", 2025, 12)
    assert "A1" not in books.complaints("货币资金")
    desk.leaves_all()


def finds_the_voucher_behind_a_wrong_figure(desk):
    """The board asks why 其他应收款 is so high: a deposit was booked with a digit too many. By keys alone."""
    user, books = desk.user, desk.books
    right = books.balance("1221", 2025, 12)
    books.books_a_deposit(888880.00)
    desk.opens_for_design(1)
    desk.goes_to("D12")
    user.presses("ctrl+j", "ctrl+bracketleft")
    user.sees("联查")
    user.keeps("联查: 其他应收款")
    user.presses("Right", "Right", "Down")  # its accounts, and the second of them
    user.keeps("联查: 押金")
    user.presses("Right", "Right", "Down", "Right", "Right")  # opening, debit; the vouchers of the debit
    user.keeps("联查: 凭证")
    exported = desk.folder / "drill.xlsx"
    user.presses("alt+x")
    user.sees("引出联查")
    user.presses("ctrl+a")
    user.types(str(exported))
    user.presses("Return")
    user.sees_gone()
    until("引出的文件", exported.exists)
    rows = [[cell.value for cell in row] for row in openpyxl.load_workbook(exported).active]
    number, amount = books.largest_debit("122102", 2025, 12)
    found = [row for row in rows if row[1] and f" {number}/" in row[1]]
    assert [row[4] for row in found] == [amount], rows
    totals = {row[1]: row[4] for row in rows if row[1] in ("合计", "单元格", "差额")}
    assert totals["差额"] == 0 and round(totals["单元格"] - right, 2) == 888880, totals

    user.presses("Escape")  # up to the first level
    user.keeps("联查: 回到第一级")
    user.presses("Escape")
    user.sees_gone()
    desk.leaves_all()


def loses_the_database(desk):
    """The folder with the ledger goes while a design is open, and comes back: nothing that was typed is lost."""
    user, books = desk.user, desk.books
    desk.begins_report("断线")
    user.enters("11", "22")
    desk.saves()
    user.enters("33")
    away = desk.folder.with_name("away")
    shutil.move(desk.folder, away)
    user.presses("ctrl+s")
    user.answers(HOST, "Return")  # says why it was not saved
    user.enters("44")
    shutil.move(away, desk.folder)
    assert [row[0] for row in books.figures("断线")] == ["11", "22"]
    desk.saves()
    assert [row[0] for row in books.figures("断线")] == ["11", "22", "33", "44"]
    desk.leaves_all()


def recovery_copies(desk):
    return list((desk.folder.parent / "data").rglob("*.copy"))


def comes_back_after_a_crash(desk):
    user, books = desk.user, desk.books
    name = desk.database.name
    desk.begins_report("来不及保存", name)
    user.enters("1", "2", "=A1+A2")
    user.keeps("还没有保存")
    until("恢复副本", lambda: recovery_copies(desk), patience=120)
    desk.is_killed()
    assert books.report("来不及保存") is None

    elsewhere = desk.folder.with_name("elsewhere")  # another ledger of that name is not asked
    elsewhere.mkdir()
    shutil.copyfile(desk.database, elsewhere / name)
    desk.opens_list(name, elsewhere)
    user.presses("alt+n")
    user.sees(DESIGNER)
    desk.leaves_all()

    desk.opens_list()
    user.presses("alt+n")
    user.answers(HOST, "y")  # restores what was not saved
    user.sees(DESIGNER)
    user.keeps("恢复之后")
    desk.saves()
    assert [row[0] for row in books.figures("来不及保存")] == ["1", "2", "3"]
    desk.leaves_all()
    assert not recovery_copies(desk), "a copy of what is stored is left behind"


def comes_back_after_closing(desk):
    """Who closes without saving is not asked, but may have the design back."""
    user, books = desk.user, desk.books
    desk.begins_report("没有保存就关了")
    user.presses("ctrl+a", "ctrl+Home")  # as in a fresh designer: nothing is said of a selection
    before = user.keeps("没有可以恢复的设计")
    user.enters("7", "8")
    user.presses("alt+F4")
    user.sees_gone()
    assert books.report("没有保存就关了") is None
    user.presses("alt+n")
    user.sees(DESIGNER)
    after = user.keeps("状态栏提示恢复")
    user.clicks(*first_button_of_offer(before, after))
    user.sees_change(after)
    user.keeps("恢复之后")
    desk.saves()
    assert [row[0] for row in books.figures("没有保存就关了")] == ["7", "8"]
    desk.leaves_all()


def first_button_of_offer(before, after):
    """At the bottom of the window stands what did not stand there before: a text and two buttons."""
    start = after.height * 3 // 4
    lower = (0, start, after.width, after.height - start)
    left, top, right, bottom = after.part(*lower).changes(before.part(*lower))
    return left + (right - left) * 6 // 10, start + (top + bottom) // 2


def undoes_an_hour(desk):
    """Whatever was done is undone to the first cell and done again to the last."""
    user, books = desk.user, desk.books
    desk.begins_report("一小时")
    user.enters("1", "2", "=A1+A2")
    desk.saves()
    before = cells(books, "一小时")
    steps = does_an_hour(desk)
    user.keeps("一小时之后")
    desk.saves()
    after = cells(books, "一小时")
    assert after != before

    user.presses(*["ctrl+z"] * steps)
    user.keeps("全部撤消")
    desk.saves()
    assert cells(books, "一小时") == before
    user.presses(*["ctrl+y"] * steps)
    user.keeps("全部恢复")
    desk.saves()
    assert cells(books, "一小时") == after
    desk.leaves_all()


def does_an_hour(desk):
    """Changes of all kinds. The number of steps that undo takes for them."""
    user = desk.user
    steps = 0
    desk.goes_to("B1")
    for number in range(20):
        user.enters(str(number * 7))
        steps += 1
    desk.goes_to("C1")
    user.types("=B1*2")
    user.presses("Return", "Up", *["shift+Down"] * 19, "ctrl+d")
    steps += 2
    for entry in (7, 10, 5, 6, 8, 12):  # bold, centred, a row, a column, italic, to the top
        desk.goes_to(f"B{entry}")
        desk.menu(2, entry)
        steps += 1
    desk.goes_to("A10")
    user.pastes("甲\t1\n乙\t2")
    user.presses("shift+F11")
    user.enters("9")
    desk.goes_to("A1")
    user.presses("Delete", "ctrl+Prior")
    return steps + 4


def cells(books, name):
    """Everything that the stored sheets hold and how it looks."""
    return [(sheet.title, cell.coordinate, cell.value, cell.font.bold, cell.font.italic, cell.alignment.horizontal,
             cell.alignment.vertical)
            for sheet in books.design(name).worksheets for row in sheet.iter_rows() for cell in row
            if cell.value is not None or cell.font.bold or cell.font.italic]
