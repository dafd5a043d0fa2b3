"""Tasks in other circumstances: no mouse, a screen of 200 %, a dark palette."""

from books import paper


def works_without_a_mouse(desk):
    """A figure is put together by choosers, all by keys, previewed and printed."""
    user, books = desk.user, desk.books
    desk.begins_report("只用键盘")
    user.presses("ctrl+g")
    user.sees("选择函数")
    user.presses("Return")
    user.windows.pop()
    user.sees("总账取数公式")
    user.presses("F7")
    user.sees("取数科目向导")
    user.presses("F7")
    user.sees("科目")
    user.types("yhck")  # pinyin initials of 银行存款
    user.keeps("按拼音首字母查找科目")
    user.presses("Return")
    user.sees_gone()
    user.presses("alt+q")
    user.sees_gone()
    user.presses("Tab")
    user.types("2")
    user.presses("Tab", "Tab")
    user.types("2025")
    user.presses("Tab", "Tab")
    user.types("12")
    user.keeps("选好的参数")
    user.presses("alt+q")
    user.sees_gone()
    desk.saves()
    desk.menu(1, 9)
    user.sees("报表打印")
    user.keeps("打印预览")
    user.presses("Escape")
    user.sees_gone()
    pdf = desk.prints_to("keyboard.pdf")

    expected = books.balance("1002", 2025, 12)
    assert float(books.figures("只用键盘")[0][0].replace(",", "")) == expected
    assert f"{expected:.2f}" in paper(pdf).replace(",", "")
    desk.leaves_all()


def works_at_200_percent_in_the_dark(desk):
    user, books = desk.user, desk.books
    desk.opens_for_design(2)  # 利润表
    picture = user.keeps("深色的设计窗口")
    left, _, right, _ = picture.box_of((42, 46, 50))  # the palette's window
    assert right - left > picture.width // 2
    desk.goes_to("A1")
    user.pastes("利润表（合并）")
    desk.saves()
    user.presses("ctrl+g")
    user.sees("选择函数")
    user.keeps("选择函数")
    user.presses("Escape")
    user.sees_gone()
    desk.menu(2, 21)
    user.sees("数据类型")
    user.keeps("数据类型")
    user.presses("Escape")
    user.sees_gone()
    pdf = desk.prints_to("dark.pdf")

    assert books.figures("利润表")[0][0] == "利润表（合并）"
    assert "利润表（合并）" in paper(pdf)  # on white, whatever the screen's palette is
    desk.leaves_all()


DARK = """
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
"""

works_at_200_percent_in_the_dark.screen = {
    "width": 2560, "height": 1600, "settings": DARK, "QT_SCALE_FACTOR": "2"}
