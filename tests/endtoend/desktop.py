"""A desktop of the test's own (Xvfb with openbox), the program in it, and a person at its mouse and keyboard."""

import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest


def wait_until(condition, what, seconds=60.0):
    """Asks again and again; hands back the first answer that is true."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"not within {seconds} s: {what}")
        time.sleep(0.05)


class Screenshot:
    """The pixels of the X server's frame buffer as (red, green, blue), read from the file that it keeps them in."""

    def __init__(self, frame_buffer):
        with open(frame_buffer, "rb") as file:
            data = file.read()
        words = struct.unpack(">25I", data[:100])
        header_size, self.width, self.height = words[0], words[4], words[5]
        bits_per_pixel, self.stride, colors = words[11], words[12], words[19]
        assert bits_per_pixel == 32 and words[7] == 0, "little-endian pixels of four bytes"
        self.pixels = data[header_size + 12 * colors:]

    def at(self, x, y):
        blue, green, red = self.pixels[int(y) * self.stride + 4 * int(x):][:3]
        return red, green, blue

    def contrast(self, x, y, length=60):
        """The difference between the lightest and the darkest green value on a level line around a place."""
        values = [self.at(x + i - length // 2, y)[1] for i in range(length)]
        return max(values) - min(values)

    def greenness(self, x, y, length=60):
        """How far green stands above red, at most, on a level line around a place: paint is green, the photo grey."""
        return max(g - r for r, g, _ in (self.at(x + i - length // 2, y) for i in range(length)))


class Desktop:
    """Starts what a desktop needs; everything ends, and is gone from the disk, with `close()`."""

    def __init__(self, size="1440x900"):
        self.folder = tempfile.mkdtemp(prefix="hazelmark-desktop-")
        self.processes = []
        self.log = open(self.path("log"), "w+")
        read, write = os.pipe()
        # Depth 24 in a server that finds a free number itself.
        self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", size + "x24", "-fbdir", self.folder, "-nolisten",
                     "tcp", "-noreset"], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            display = number.readline().strip()
        assert display, "Xvfb did not start"
        self.environment = {
            "DISPLAY": ":" + display, "HOME": self.folder, "LANG": "C.UTF-8", "PATH": os.environ["PATH"],
            "QT_QPA_PLATFORM": "xcb", "XDG_CONFIG_HOME": self.folder, "XDG_RUNTIME_DIR": self.folder,
            "XDG_STATE_HOME": self.folder,
        }
        # The desktop's libraries (libdbus) keep memory to the end; the other tests look for the program's own leaks.
        self.environment["ASAN_OPTIONS"] = "detect_leaks=0"
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        os.chmod(self.folder, 0o700)
        # A window that asks to be shown while the window manager starts may be overlooked.
        ready = self.path("ready")
        self._start(["openbox", "--sm-disable", "--startup", "touch " + ready], env=self.environment)
        wait_until(lambda: os.path.exists(ready), "a window manager")

    def close(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.send_signal(signal.SIGTERM)
                try:
                    process.wait(10)
                except subprocess.TimeoutExpired:
                    process.kill()
        self.log.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def _start(self, command, **options):
        process = subprocess.Popen(command, stdout=options.pop("stdout", subprocess.DEVNULL),
                                   stderr=options.pop("stderr", subprocess.DEVNULL), **options)
        self.processes.append(process)
        return process

    def start(self, command, **options):
        """Another program on this desktop."""
        return self._start(command, env=self.environment, **options)

    def _output(self, *command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              text=True).stdout.strip()

    def path(self, name):
        return os.path.join(self.folder, name)

    def screenshot(self):
        return Screenshot(self.path("Xvfb_screen0"))

    def start_program(self, program, *arguments):
        process = self._start([program, *arguments], env=self.environment, stderr=self.log)
        self.program = process
        self.window = wait_until(lambda: self._window_of(process), "the main window")
        wait_until(lambda: self.active_window() == self.window, "an active window")
        return process

    def _window_of(self, process):
        assert process.poll() is None, "the program ended: " + self.program_log()
        windows = self.windows(".")  # its caption is the photo's name as soon as there is one
        return windows[0] if windows else ""

    def active_window(self):
        return self._output("xdotool", "getactivewindow")

    def windows(self, name):
        """Ids of the program's windows on show whose title matches."""
        return self._output("xdotool", "search", "--onlyvisible", "--pid", str(self.program.pid), "--name",
                            name).split()

    def program_log(self):
        with open(self.path("log")) as log:
            return log.read()

    def geometry(self):
        """x, y, width, height of the main window."""
        text = self._output("xdotool", "getwindowgeometry", "--shell", self.window)
        value = dict(re.findall(r"(\w+)=(\d+)", text))
        return tuple(int(value[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def xdotool(self, *words):
        subprocess.run(["xdotool", *(str(word) for word in words)], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)

    def key(self, name):
        self.xdotool("key", "--clearmodifiers", name)

    def type(self, text):
        self.xdotool("type", "--delay", 2, text)

    def click(self, x, y):
        self.xdotool("mousemove", x, y, "sleep", 0.1, "click", 1)

    def drag(self, start, end, steps=12, let_go=True):
        """Presses the left button at `start` and moves to `end`, as fast as a person would."""
        words = ["mousemove", *start, "sleep", 0.25, "mousedown", 1]
        for i in range(1, steps + 1):
            words += ["mousemove", *(round(a + (b - a) * i / steps) for a, b in zip(start, end)), "sleep", 0.01]
        if let_go:
            words += ["mouseup", 1]
        self.xdotool(*words)

    def titles(self):
        """Of all windows on show."""
        windows = self._output("xdotool", "search", "--onlyvisible", "--name", ".").split()
        return [self._output("xdotool", "getwindowname", window) for window in windows]

    def is_in_front(self, title):
        return title in self._output("xdotool", "getactivewindow", "getwindowname")


PANEL = 250
STRIP = 60
BAR = 36
MARGIN = 20


class Story(unittest.TestCase):
    """What both stories see and do. Places on the photo are fractions of it."""
    program = other_program = ""

    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)

    def other(self, *arguments):
        return subprocess.run([self.other_program, *arguments], env=self.desktop.environment, check=True,
                              stdout=subprocess.PIPE, text=True).stdout

    def wait_for(self, condition, what):
        return wait_until(condition, what + "; the log: " + self.desktop.program_log())

    def do_until(self, act, condition, what):
        """Acts again and again, as a person who sees that nothing has come of it: on a machine that is busy what was
        there before may still take a click or a key."""
        def done():
            if not condition():
                act()
            try:
                return wait_until(condition, what, 3)
            except AssertionError:
                return False
        self.wait_for(done, what)

    def place(self, fx, fy, size):
        """Where a photo of that many pixels has the fraction on the screen."""
        left, top, width, height = self.desktop.geometry()
        room = (width - PANEL - 2 * MARGIN, height - STRIP - BAR - 2 * MARGIN)
        scale = min(room[0] / size[0], room[1] / size[1])
        fitted = (size[0] * scale, size[1] * scale)
        return (round(left + MARGIN + (room[0] - fitted[0]) / 2 + fx * fitted[0]),
                round(top + STRIP + MARGIN + (room[1] - fitted[1]) / 2 + fy * fitted[1]))

    def point_away(self):
        left, top, width, _ = self.desktop.geometry()
        self.desktop.xdotool("mousemove", left + width // 2, top + 20)

    def click_from_right(self, x, y):
        left, top, width, _ = self.desktop.geometry()
        self.desktop.click(left + width - x, top + y)


def main():
    """Runs the stories of the script: SCRIPT PROGRAM OTHER_PROGRAM [unittest options]"""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    Story.program, Story.other_program = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))
    unittest.main("__main__")
