"""A display of its own with a window manager on it. Its picture is read from the server's memory."""

import mmap
import os
import struct
import subprocess
import time
from pathlib import Path

from picture import Picture
from waiting import until


class Display:
    def __init__(self, folder, width, height):
        self.folder = Path(folder)
        self.log = open(self.folder / "display.log", "w")
        self.server = self.start_server(width, height)
        self.environment = {**os.environ, "DISPLAY": f":{self.number}", "HOME": str(self.folder)}
        self.manager = self.start_manager()
        try:
            self.memory = self.map_memory()
            until("窗口管理器", self.is_managed)
        except Exception:
            self.close()
            raise

    def start_server(self, width, height):
        reading, writing = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24", "-fbdir", str(self.folder),
             "-nolisten", "tcp", "-dpi", "96",
             "-r"],  # a key that a slow machine releases late is no second one
            pass_fds=[writing], stdout=self.log, stderr=self.log)
        os.close(writing)
        with os.fdopen(reading) as answer:
            self.number = answer.readline().strip()
        return server

    def start_manager(self):
        return subprocess.Popen(["openbox"], env=self.environment, stdout=self.log, stderr=self.log)

    def is_managed(self):
        """A manager that gave up, on a server that was too slow for it, is started once more."""
        if self.manager.poll() is not None:
            self.manager = self.start_manager()
        return self.xdotool("get_num_desktops").isdigit()

    def map_memory(self):
        with open(self.folder / "Xvfb_screen0", "rb") as file:
            memory = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        header = struct.unpack(">25I", memory[:100])
        self.width, self.height, self.line = header[4], header[5], header[12]
        self.start = header[0] + header[19] * 12  # behind the header and the colours
        return memory

    def picture(self):
        size = self.line * self.height
        return Picture(self.width, self.height, self.memory[self.start:self.start + size])

    def still_picture(self, look=None):
        """The picture, or what a look at it gives, once it has stopped changing."""
        look = look or self.picture
        before, since = None, 0

        def is_still():
            nonlocal before, since
            now = look()
            if before is None or now.pixels != before.pixels:
                before, since = now, time.monotonic()
                return None
            return now if time.monotonic() - since > 0.2 else None

        return until("画面静止", is_still)

    def xdotool(self, *arguments):
        """What the command prints; empty if it fails."""
        done = subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True, text=True)
        return done.stdout.strip() if done.returncode == 0 else ""

    def windows(self):
        """All that are open, menus too. The list fails where one closes while it is made."""
        return until("窗口列表", lambda: set(self.xdotool("search", "--onlyvisible", "--class", ".").split()))

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()
        self.log.close()
