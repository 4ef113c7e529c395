#!/usr/bin/env python3
"""The whole road of one edit, from dropping a photo to the file on disk: export_story.py PROGRAM OTHER_PROGRAM"""

import json
import os
import signal
import subprocess
import sys
import time
import unittest

from desktop import Desktop, wait_until

PROGRAM = ""
OTHER_PROGRAM = ""
PANEL = 250
STRIP = 60
BAR = 36
MARGIN = 20
UPRIGHT = (600, 1000)  # pixels; stored as 1000 x 600 with orientation 6: dark on top, bright below

# From the window's right and top edges.
BLUR_FIELD = (41, 372)
SHARE_BUTTON = (72, 30)


class Story(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        # The desktop's opener writes down what it is to open.
        self.opened = self.desktop.path("opened")
        tools = self.desktop.path("tools")
        os.mkdir(tools)
        with open(os.path.join(tools, "xdg-open"), "w") as script:
            script.write(f'#!/bin/sh\necho "$1" >> "{self.opened}"\n')
        os.chmod(os.path.join(tools, "xdg-open"), 0o755)
        self.desktop.environment["PATH"] = tools + ":" + self.desktop.environment["PATH"]
        self.photo = self.desktop.path("ein Foto 50 % ä.jpg")
        self.other("photo", self.photo)
        self.exiftool("-Orientation#=6", "-Make=Hazel & Co", "-GPSLatitude=48.2", "-GPSLatitudeRef=N",
                      "-overwrite_original", self.photo)
        with open(self.photo, "rb") as file:
            self.photo_bytes = file.read()

    def other(self, *arguments):
        return subprocess.run([OTHER_PROGRAM, *arguments], env=self.desktop.environment, check=True,
                              stdout=subprocess.PIPE, text=True).stdout

    def exiftool(self, *arguments):
        return subprocess.run(["exiftool", *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout

    def metadata(self, path):
        return json.loads(self.exiftool("-json", "-n", "-Orientation", "-Make", "-GPSLatitude", "-ImageWidth",
                                        "-ImageHeight", "-FileType", path))[0]

    def pixels(self, path, *places):
        """Size, then a grey value for each place."""
        lines = self.other("pixels", path, *(f"{x},{y}" for x, y in places)).split("\n")
        return tuple(map(int, lines[0].split())), [int(line.split()[0]) for line in lines[1:] if line]

    def wait_for(self, condition, what):
        return wait_until(condition, what + "; the log: " + self.desktop.program_log())

    def place(self, fx, fy, size=UPRIGHT):
        """A fraction of the photo as a place on the screen."""
        left, top, width, height = self.desktop.geometry()
        room = (width - PANEL - 2 * MARGIN, height - STRIP - BAR - 2 * MARGIN)
        scale = min(room[0] / size[0], room[1] / size[1])
        fitted = (size[0] * scale, size[1] * scale)
        return (round(left + MARGIN + (room[0] - fitted[0]) / 2 + fx * fitted[0]),
                round(top + STRIP + MARGIN + (room[1] - fitted[1]) / 2 + fy * fitted[1]))

    def shown(self, fx, fy, size=UPRIGHT):
        return self.desktop.screenshot().at(*self.place(fx, fy, size))[1]

    def from_right(self, place):
        left, top, width, _ = self.desktop.geometry()
        return left + width - place[0], top + place[1]

    def drop(self, *files):
        """Drags the files from a file manager into the window; hands back what became of them there."""
        manager = self.desktop.start([OTHER_PROGRAM, "drag", *files], stdout=subprocess.PIPE, text=True)
        wait_until(lambda: "Files" in self.desktop.titles(), "the file manager")
        time.sleep(0.3)
        left, top, width, height = self.desktop.geometry()
        self.desktop.drag((30, 200), (left + width // 3, top + height // 2), steps=30)
        with manager.stdout:
            action = manager.stdout.readline().strip()
        time.sleep(0.5)  # the files are asked for after the drop
        manager.terminate()
        manager.wait()
        return action

    def paint(self, fy):
        self.desktop.drag(self.place(0.3, fy), self.place(0.7, fy), steps=20)
        left, top, width, _ = self.desktop.geometry()
        self.desktop.xdotool("mousemove", left + width // 2, top + 20)

    def opened_paths(self):
        if not os.path.exists(self.opened):
            return []
        with open(self.opened) as file:
            return file.read().split("\n")

    def test_drop_paint_export_share_drop_another(self):
        self.desktop.start_program(PROGRAM)
        self.assertEqual(self.drop(self.photo, self.opened + ".pdf"), "refused", "a list with something else in it")
        self.assertEqual(self.drop(self.photo), "copied", "though the file manager would rather move it")
        self.wait_for(lambda: abs(self.shown(0.5, 0.2) - 40) < 8 and abs(self.shown(0.5, 0.8) - 220) < 8,
                      "the photo, upright")

        # Paint over the edge, and blur more.
        self.desktop.click(*self.from_right(BLUR_FIELD))
        self.desktop.key("ctrl+a")
        self.desktop.type("90")
        time.sleep(0.5)
        self.paint(0.5)
        self.wait_for(lambda: 70 < self.shown(0.5, 0.503) < 190, "a blurred edge where it was painted")
        self.assertGreater(self.shown(0.06, 0.51), 200, "and nowhere else")

        # Export. The panel takes the extension's usual form.
        target = self.desktop.path("Ergebnis.tiff")
        self.desktop.key("ctrl+s")
        self.wait_for(lambda: "Save the picture" in self.desktop.titles(), "the save panel")
        time.sleep(0.3)
        self.desktop.key("ctrl+a")
        self.desktop.type(self.desktop.path("Ergebnis.TIF"))
        self.desktop.key("Return")
        self.wait_for(lambda: os.path.exists(target), "the file")
        self.wait_for(lambda: any(line.endswith("/Ergebnis.tiff") for line in self.opened_paths()), "its viewer")

        # From outside: size, metadata and pixels as the photo stores them.
        metadata = self.metadata(target)
        self.assertEqual((metadata["ImageWidth"], metadata["ImageHeight"]), (1000, 600))
        self.assertEqual((metadata["FileType"], metadata["Orientation"], metadata["Make"]), ("TIFF", 6, "Hazel & Co"))
        self.assertAlmostEqual(metadata["GPSLatitude"], 48.2, 4)
        size, (painted, plain, dark) = self.pixels(target, (503, 300), (503, 20), (20, 300))
        self.assertEqual(size, (1000, 600))
        self.assertTrue(70 < painted < 190, painted)
        self.assertTrue(abs(plain - 220) < 8 and abs(dark - 40) < 8, (plain, dark))
        with open(self.photo, "rb") as file:
            self.assertEqual(file.read(), self.photo_bytes, "the photo itself is never changed")

        # The rating that an export asks for; then share without a change: at once.
        self.wait_for(lambda: "Rate Us" in self.desktop.titles(), "the rate prompt")
        self.desktop.key("Escape")
        self.wait_for(lambda: "Rate Us" not in self.desktop.titles(), "the rate prompt to go")
        self.desktop.click(*self.from_right(SHARE_BUTTON))
        time.sleep(0.5)
        self.desktop.key("Down")
        self.desktop.key("Down")
        self.desktop.key("Return")
        shared = self.desktop.path("shared.png")
        self.other("clipboard", shared)
        size, (painted, plain) = self.pixels(shared, (300, 503), (20, 503))
        self.assertEqual(size, UPRIGHT)
        self.assertTrue(70 < painted < 190 and abs(plain - 220) < 8, (painted, plain))
        self.wait_for(lambda: "Picked this service: Copy to the clipboard" in self.desktop.program_log(), "a log line")

        # After an export a drop counts again once the preview has changed.
        another = self.desktop.path("another.jpg")
        self.other("photo", another)
        self.drop(another)
        time.sleep(0.5)
        self.assertLess(abs(self.shown(0.5, 0.2) - 40), 8, "still the first photo")
        self.paint(0.8)
        time.sleep(0.5)
        self.drop(another)
        self.wait_for(lambda: abs(self.shown(0.25, 0.2, (1000, 600)) - 40) < 8 and
                      abs(self.shown(0.75, 0.2, (1000, 600)) - 220) < 8, "the other photo")
        self.assertTrue(os.path.exists(another) and os.path.exists(self.photo), "nobody moved them")
        self.desktop.key("ctrl+q")
        self.assertEqual(self.desktop.program.wait(10), 0, self.desktop.program_log())


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    OTHER_PROGRAM = os.path.abspath(sys.argv.pop(2))
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
