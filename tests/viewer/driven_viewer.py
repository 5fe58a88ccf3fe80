"""A viewer on a screen of its own, driven by real keys and mouse, and looked at pixel by pixel.

The screen is an Xvfb, whose picture lies in a file that is read here. What pixels do not tell, viewer_probe.exe does.
Everything is waited for, with a deadline; nothing relies on how long something takes.
"""
import ctypes
import mmap
import os
import re
import select
import signal
import struct
import subprocess
import time
import zlib

DIALOG, MENU = "#32770", "#32768"  # window classes
DEADLINE = 30  # seconds; what is waited for comes in much less, unless the machine is very busy


class Screen:
    """An X server without a monitor, 1024 x 768 pixels of 24 bits."""

    def __init__(self, folder):
        reading, writing = os.pipe()
        command = ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-nocursor",
                   "-fbdir", folder]
        self.server = subprocess.Popen(command, pass_fds=[writing], preexec_fn=end_with_parent,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as display:
            self.display = ":" + read_line(display)
        with open(os.path.join(folder, "Xvfb_screen0"), "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        # The file is a window dump: a header of 32-bit numbers, a colour table, the rows.
        header = struct.unpack(">25I", self.memory[:100])
        self.width, self.height, self.row_bytes = header[4], header[5], header[12]
        self.pixels_at = header[0] + 12 * header[19]

    def color(self, x, y):
        at = self.pixels_at + y * self.row_bytes + 4 * x
        blue, green, red = self.memory[at:at + 3]
        return red, green, blue

    def save(self, path):
        """Keeps the picture as a PNG."""
        rows = b"".join(b"\0" + bytes(v for x in range(self.width) for v in self.color(x, y))
                        for y in range(self.height))
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n")
            for name, data in ((b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)),
                               (b"IDAT", zlib.compress(rows)), (b"IEND", b"")):
                file.write(struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data)))

    def xdotool(self, *words, check=True):
        """Real input, as if the user had made it, and questions to the X server."""
        return subprocess.run(["xdotool", *map(str, words)], env=dict(os.environ, DISPLAY=self.display), check=check,
                              timeout=DEADLINE, capture_output=True, text=True).stdout.strip()

    def focus(self):
        """The caption of the window that has it."""
        return self.xdotool("getwindowfocus", "getwindowname", check=False)

    def give_focus(self, caption):
        self.xdotool("search", "--onlyvisible", "--name", "^" + re.escape(caption) + "$", "windowfocus", check=False)

    def close(self):
        self.memory.close()
        self.server.terminate()
        self.server.wait(DEADLINE)


def end_with_parent():
    """Lets the system end this process when the one that starts it ends, however that comes."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGTERM)


def read_line(stream):
    """The next answer of a program, or an exception in place of waiting for ever."""
    if not select.select([stream], [], [], DEADLINE)[0]:
        raise TimeoutError("no answer")
    line = stream.readline().strip()
    if not line:
        raise EOFError("the program has ended")
    return line


class Wine:
    """The project's Wine, on a screen and apart from everybody else's programs."""

    def __init__(self, launcher, display, folder):
        self.launcher = launcher
        subprocess.run([launcher, "--branch", folder], check=True, stdin=subprocess.DEVNULL)
        self.environment = dict(os.environ, VELLUM_WINE_PREFIX=folder, DISPLAY=display)
        subprocess.run([launcher, "--start"], env=self.environment, check=True, stdin=subprocess.DEVNULL)

    def start(self, *words, **streams):
        return subprocess.Popen([self.launcher, *words], env=self.environment, **streams)

    def close(self):
        subprocess.run([self.launcher, "--stop"], env=self.environment, check=True, stdin=subprocess.DEVNULL)


class Probe:
    """viewer_probe.exe."""

    def __init__(self, wine, program):
        self.process = wine.start(program, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def ask(self, *words):
        self.process.stdin.write((" ".join(map(str, words)) + "\n").encode())
        self.process.stdin.flush()
        return read_line(self.process.stdout).decode()

    def close(self):
        self.process.stdin.close()
        self.process.wait(DEADLINE)
        self.process.stdout.close()


class Viewer:
    """A viewer that was started, its client area 640 x 480 pixels without scroll bars."""

    ROOM = (640, 480)

    def __init__(self, screen, wine, probe, program, *words, picture):
        """The screen is kept as the picture when something is waited for in vain."""
        self.screen, self.probe, self.picture = screen, probe, picture
        self.process = wine.start(program, *words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL)
        self.until(lambda: probe.ask("state") != "none", "the window is there")

    def place(self, width=ROOM[0], height=ROOM[1]):
        self.probe.ask("place", width, height)
        self.until(lambda: self.room() == (width, height), "the window has its size")

    def close(self):
        self.probe.ask("close")
        try:
            return self.process.wait(DEADLINE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise

    def until(self, condition, what):
        """Waits for a condition to hold, and to go on holding for a moment."""
        end = time.monotonic() + DEADLINE
        held = 0
        while held < 2:
            held = held + 1 if condition() else 0
            if time.monotonic() > end:
                self.screen.save(self.picture)
                raise AssertionError("waited in vain: " + what)
            time.sleep(0.04)

    # ---- what the user does

    def press(self, *keys):
        self.wait_for_focus()
        self.screen.xdotool("key", *keys)

    def type(self, text):
        self.wait_for_focus()
        self.screen.xdotool("type", "--delay", "5", text)

    def wait_for_focus(self):
        """Keys go to the active window, if it has the X server's focus. Wine sees to that when a window comes, or comes
        back; when the focus was lost with a window that went, it takes a user's click on the caption, or a window
        manager, whose part is taken here."""
        lend_a_hand = time.monotonic() + 1

        def has_focus():
            nonlocal lend_a_hand
            dialog = self.dialog()
            caption = self.caption() if dialog is None else dialog
            if self.screen.focus() == caption and self.probe.ask("foreground") == "text " + caption:
                return True
            if time.monotonic() > lend_a_hand:
                x, y = self.state()[:2] if dialog is None else self.area(DIALOG)[:2]
                self.screen.xdotool("mousemove", x + 60, y + (-30 if dialog is None else 12), "click", 1)
                self.screen.give_focus(caption)
                lend_a_hand += 1
            return False
        self.until(has_focus, "the window has the focus")

    def click(self, x, y, button=1, *, holding=None):
        """At a place of the client area, or beside it. Buttons 4 and 5 are the wheel."""
        left, top = self.state()[:2]
        words = ["mousemove", left + x, top + y]
        words += ["keydown", holding] if holding else []
        words += ["click", button]
        words += ["keyup", holding] if holding else []
        self.screen.xdotool(*words)

    def drag(self, start, end):
        """With the mouse, from place to place of the client area, or beside it."""
        left, top = self.state()[:2]
        middle = (start[0] + end[0]) // 2, (start[1] + end[1]) // 2
        words = ["mousemove", left + start[0], top + start[1], "mousedown", 1]
        for x, y in (middle, end):
            words += ["mousemove", left + x, top + y]
        self.screen.xdotool(*words, "mouseup", 1)

    # ---- what the user sees

    def state(self):
        """x, y, width and height of the client area; scroll positions; whether scroll bars are shown; their size."""
        return [int(word) for word in self.probe.ask("state").split()]

    def room(self):
        """The client area's size without scroll bars."""
        _, _, width, height, _, _, horizontal, vertical, thickness = self.state()
        return width + vertical * thickness, height + horizontal * thickness

    def area(self, window_class):
        """x, y, width and height of a dialog or menu on the screen; None without one."""
        words = self.probe.ask("area", window_class)
        return None if words == "none" else [int(word) for word in words.split()]

    def colors(self, places):
        left, top = self.state()[:2]
        return {place: self.screen.color(left + place[0], top + place[1]) for place in places}

    def shows(self, expected):
        """Waits until the client area has these colours: {(x, y): colour}."""
        try:
            self.until(lambda: self.colors(expected) == expected, "the page's pixels")
        except AssertionError:
            seen = self.colors(expected)
            raise AssertionError("; ".join("%s is %s, not %s" % (place, seen[place], expected[place])
                                           for place in expected if seen[place] != expected[place])) from None

    def caption(self):
        return self.probe.ask("caption")[len("text "):]

    def has_caption(self, caption):
        try:
            self.until(lambda: self.caption() == caption, "the caption")
        except AssertionError:
            raise AssertionError("the caption is %r" % self.caption()) from None

    def marks(self, expected):
        """Waits until these items of the View menu have marks, and no others."""
        self.press("alt+v")
        self.until(lambda: self.area(MENU) is not None, "the menu")
        try:
            self.until(lambda: self.marked_items() == expected, "marks at the menu's items")
        except AssertionError:
            raise AssertionError("%s are marked, not %s" % (self.marked_items(), expected)) from None
        self.press("Escape", "Escape")
        self.until(lambda: self.area(MENU) is None, "the menu is closed")

    def marked_items(self):
        """By their places in the menu."""
        places = {"fit": 0.12, "pixels": 0.29, "true size": 0.46, "rotate": 0.72, "invert": 0.89}
        left, top, _, height = self.area(MENU)
        marked = set()
        for y in range(top + 3, top + height - 3):
            # Left of the texts a line has one colour, that of the menu, a selection or a separator; or it shows a mark.
            if len({self.screen.color(x, y) for x in range(left + 4, left + 15)}) > 1:
                marked.add(min(places, key=lambda item: abs(places[item] - (y - top) / height)))
        return marked

    def dialog(self, *control):
        """The caption of a dialog, or a control's text; None without a dialog."""
        words = self.probe.ask("dialog", *control)
        return None if words == "none" else words[len("text "):]

    def has_dialog(self, caption):
        self.until(lambda: self.dialog() == caption, "a dialog with the caption %r, not %r" % (caption, self.dialog()))

    def has_no_dialog(self):
        self.until(lambda: self.dialog() is None, "the dialog is closed")
