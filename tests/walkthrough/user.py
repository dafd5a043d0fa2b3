"""A user at the screen: sees windows by their titles, presses keys and buttons, looks at the picture."""

import select
import subprocess

from waiting import Late, until


class User:
    def __init__(self, display, album, clipboard):
        self.display, self.album, self.clipboard = display, album, clipboard
        self.windows = []  # that the user has seen open, the front one last
        self.copied = None  # the program that holds the clipboard

    # Windows

    def front(self):
        """The window that has the focus, and its title; none while there is none."""
        window = self.display.xdotool("getactivewindow")
        return (window, self.display.xdotool("getwindowname", window)) if window else None

    def sees(self, title=None):
        """Waits until a window has opened in front, with this in its title if it is given, and has the keys."""
        def opened():
            window, shown = self.front() or (None, "")
            is_new = window and window not in self.windows and (title or "") in shown
            return is_new and self.has_keys(window) and window

        try:
            self.windows.append(until(f"窗口“{title or ''}”", opened))
        except Late as late:
            raise Late(f"{late}; 前面是 {self.front()}") from None

    def has_keys(self, window):
        return self.display.xdotool("getwindowfocus") == window

    def sees_gone(self):
        """Waits until the front window has closed and another one has the keys."""
        gone = self.windows.pop()

        def is_gone():
            window = (self.front() or (gone,))[0]
            return window != gone and self.has_keys(window)

        until("窗口关闭", is_gone)

    def answers(self, title, *keys):
        """Meets a box, and it goes when it is answered."""
        self.sees(title)
        self.keeps(f"{title}: 提问")
        self.presses(*keys)
        self.sees_gone()

    # Hands

    def presses(self, *keys):
        """Keys one after the other, as "ctrl+s" or "Down"."""
        self.display.xdotool("key", "--delay", "12", *keys)

    def types(self, text):
        assert text.isascii(), "Chinese comes through the clipboard"
        self.display.xdotool("type", "--delay", "12", "--", text)

    def enters(self, *texts):
        """Texts into cells, going down."""
        for text in texts:
            self.types(text)
            self.presses("Return")

    def copies_elsewhere(self, text):
        """Copies a text in another program, which holds it until something else is copied."""
        self.forgets_copied()
        self.copied = subprocess.Popen([self.clipboard, text], env=self.display.environment, stdout=subprocess.PIPE,
                                       bufsize=0)
        self.hears("held")

    def pastes(self, text):
        self.copies_elsewhere(text)
        self.presses("ctrl+v")
        self.hears("asked")

    def hears(self, word):
        """Waits until the program that holds the clipboard says something."""
        said = self.copied.stdout
        until(f"剪贴板 {word}", lambda: select.select([said], [], [], 0)[0] and said.readline().strip() == word.encode())

    def forgets_copied(self):
        if self.copied:
            self.copied.kill()
            self.copied.wait()
            self.copied.stdout.close()
            self.copied = None

    def clicks(self, x, y, button=1, times=1):
        self.display.xdotool("mousemove", "--sync", str(x), str(y))
        self.display.xdotool("click", "--repeat", str(times), "--delay", "60", str(button))

    def drags(self, start, end):
        self.display.xdotool("mousemove", "--sync", *map(str, start), "mousedown", "1")
        middle = [(a + b) // 2 for a, b in zip(start, end)]
        for place in (middle, end):
            self.display.xdotool("mousemove", "--sync", *map(str, place))
        self.display.xdotool("mouseup", "1")

    # Eyes

    def keeps(self, caption):
        """Keeps a picture of this step, once it has stopped changing."""
        picture = self.display.still_picture()
        self.album.add(picture, caption)
        return picture

    def opens_menu(self, how, former=frozenset()):
        """Waits until a menu is open and, where it takes the place of another one, that has gone."""
        before = self.display.windows()

        def opened():
            now = self.display.windows()
            return None if now & former else now - before

        how()
        return until("菜单", opened)

    def picks(self, menu, entry):
        """An entry of an open menu, counted from 1; lines between entries do not count."""
        self.presses(*["Down"] * entry, "Return")
        until("菜单关闭", lambda: not self.display.windows() & menu)

    def sees_change(self, since):
        """Waits until the screen shows something else than a picture, and stands still."""
        until("画面变化", lambda: self.display.picture().pixels != since.pixels)
        return self.display.still_picture()
