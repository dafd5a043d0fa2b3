"""What a task works with: a user before a display, a program on a copy of the demo ledger, a folder for files."""

import os
import shutil
import signal
import subprocess
from pathlib import Path

from books import Books
from display import Display
from user import User
from waiting import until

HOST, LIST, DESIGNER = "财务报表", "自定义报表", "报表系统"  # the titles of the windows; boxes have the first one's

MENUS = [["alt+f"], ["alt+e"], ["alt+f", "Left", "Left"], ["alt+f", "Left"]]  # the last two have the same letter
FRAME = (48, 140, 198)  # red, green, blue of the line around what is selected

# What a desktop tells programs. A cursor that does not blink lets pictures stand still.
SETTINGS = "[KDE]\nCursorBlinkRate=0\nSingleClick=false\n"


class Desk:
    def __init__(self, room, program, clipboard, ledger, album, width=1280, height=800, settings="", **environment):
        self.folder = Path(room) / "files"
        self.folder.mkdir()
        self.database = self.folder / "demo.db"
        shutil.copyfile(ledger, self.database)
        config = Path(room) / ".config"
        config.mkdir()
        (config / "kdeglobals").write_text(SETTINGS + settings, encoding="utf-8")
        self.display = Display(room, width, height)
        self.display.environment.update(
            XDG_CONFIG_HOME=str(config), XDG_DATA_HOME=str(Path(room) / "data"), XDG_RUNTIME_DIR=str(room),
            XDG_CURRENT_DESKTOP="KDE", KDE_SESSION_VERSION="5", QT_QPA_PLATFORM="xcb", USER="wang", LC_ALL="C.UTF-8",
            CUPS_SERVER=str(Path(room) / "none"),  # no paper is wasted where there is a printer
            **environment)
        os.chmod(room, 0o700)
        self.user = User(self.display, album, clipboard)
        self.program, self.process = program, None
        self.books = Books(program, self.database)

    # The program

    def starts(self, ledger=None, folder=None):
        """By default on its ledger by its whole name."""
        self.process = subprocess.Popen([self.program, "--db", ledger or str(self.database)], cwd=folder or self.folder,
                                        env=self.display.environment, stdout=self.display.log,
                                        stderr=self.display.log)
        self.user.sees(HOST)

    def is_killed(self):
        """As a crash or a power cut ends it."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        until("窗口消失", lambda: not any(self.display.xdotool("getwindowname", window) for window in
                                      self.user.windows))
        self.user.windows.clear()

    def leaves(self):
        """Closes the last window; the program ends by itself."""
        self.user.presses("alt+F4")
        until("程序结束", lambda: self.process.poll() is not None)
        assert self.process.returncode == 0, self.process.returncode
        self.user.windows.clear()

    def clear(self):
        self.user.forgets_copied()
        if self.process and self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.display.close()

    # Roads that many tasks take

    def opens_list(self, ledger=None, folder=None):
        self.starts(ledger, folder)
        self.user.presses("alt+d")
        self.user.sees(LIST)

    def begins_report(self, name, ledger=None):
        """A new design under a name, the cursor in A1."""
        self.opens_list(ledger)
        self.user.presses("alt+n")
        self.user.sees(DESIGNER)
        self.names(name)

    def names(self, name):
        """Saving asks for a name that is missing, and leaves the cursor in its box; afterwards A1 has it."""
        self.user.presses("ctrl+s")
        self.user.answers(HOST, "Return")
        self.user.pastes(name)
        self.user.presses("Return", "Tab", "Tab", "ctrl+Home")

    def saves(self):
        """Saves, and the box says so."""
        self.user.keeps("保存之前")
        self.user.presses("ctrl+s")
        self.user.answers(HOST, "Return")

    def opens_for_design(self, row):
        """A report of the list, by its place there."""
        self.opens_list()
        self.user.presses(*["Down"] * (row - 1))
        self.user.keeps("报表列表")
        self.user.presses("alt+u")
        self.user.sees(DESIGNER)

    def leaves_all(self):
        """Closes designer, list and program."""
        self.user.presses("alt+F4")
        self.user.sees_gone()
        self.user.presses("alt+F4")
        self.user.sees_gone()
        self.leaves()

    def goes_to(self, cell):
        self.user.presses("F5")
        self.user.sees("定位")
        self.user.types(cell)
        self.user.presses("Return")
        self.user.sees_gone()

    def frame(self):
        """Left, top, right, bottom of the line around what is selected, with the small square at its corner."""
        return self.display.still_picture().box_of(FRAME)

    def place_of(self, cell):
        """The middle of a cell on the screen; the cursor goes there."""
        self.goes_to(cell)
        left, top, right, bottom = self.frame()
        return (left + right) // 2, (top + bottom) // 2

    def selects_by_mouse(self, first, last):
        start, end = (self.place_of(cell) for cell in (first, last))
        self.user.drags(start, end)

    def fills_by_mouse(self, columns):
        """Drags the small square so many cells to the right, all about as wide as what is selected."""
        left, _, right, bottom = self.frame()
        self.user.drags((right - 3, bottom - 3), (right + (2 * columns - 1) * (right - left) // 2 - 10, bottom - 8))

    def widens_first_column(self, pixels):
        """By the edge of its heading."""
        self.goes_to("A1")
        _, top, right, _ = self.frame()
        self.user.drags((right - 2, top - 8), (right - 2 + pixels, top - 8))

    def chooses_from_popup(self, place, entry):
        """Of what the right button offers at a place, counted from 1."""
        menu = self.user.opens_menu(lambda: self.user.clicks(*place, button=3))
        self.user.picks(menu, entry)

    def menu(self, menu, entry):
        """An entry of the menu bar by keys: both count from 1, lines between entries do not."""
        opened = frozenset()
        for key in MENUS[menu - 1]:
            opened = self.user.opens_menu(lambda: self.user.presses(key), opened)
        self.user.picks(opened, entry - 1)  # the first one is chosen already

    def prints_to(self, file):
        """Prints at once; without a printer the program offers a PDF file."""
        pdf = self.folder / file
        self.menu(1, 10)
        self.user.answers(HOST, "y")
        self.user.sees("另存为PDF")
        self.user.presses("ctrl+a")
        self.user.types(str(pdf))
        self.user.presses("Return")
        self.user.sees_gone()
        until(f"文件 {file}", pdf.exists)
        return pdf
