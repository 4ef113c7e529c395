#!/usr/bin/env python3
"""A person's way through the program, in a real window: window_story.py PROGRAM [unittest options]"""

import os
import signal
import sys
import time
import unittest

from desktop import Desktop, wait_until, write_png

PROGRAM = ""
PANEL = 250
STRIP = 60
BAR = 36
MARGIN = 20
# From the window's right and top edges.
BRUSH_BUTTON = (218, 88)
ERASER_BUTTON = (178, 88)

STRIPES = (1600, 1000)  # pixels of the photo with stripes; the darks are 40, the lights 220


class Story(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        self.stripes = self.desktop.path("stripes.png")
        write_png(self.stripes, *STRIPES, lambda x: 220 if x // 16 % 2 else 40)
        self.plain = self.desktop.path("plain grey.png")
        write_png(self.plain, 900, 1200, lambda x: 150)

    # What is seen

    def photo_frame(self, size=STRIPES):
        """x, y, width, height of the photo on the screen."""
        left, top, width, height = self.desktop.geometry()
        room = (width - PANEL - 2 * MARGIN, height - STRIP - BAR - 2 * MARGIN)
        scale = min(room[0] / size[0], room[1] / size[1])
        fitted = (size[0] * scale, size[1] * scale)
        return (left + MARGIN + (room[0] - fitted[0]) / 2, top + STRIP + MARGIN + (room[1] - fitted[1]) / 2, *fitted)

    def place(self, fx, fy, size=STRIPES):
        """A fraction of the photo as a place on the screen."""
        x, y, width, height = self.photo_frame(size)
        return round(x + fx * width), round(y + fy * height)

    def contrast(self, fx, fy):
        return self.desktop.screenshot().contrast(*self.place(fx, fy))

    def is_sharp(self, fx, fy):
        return self.contrast(fx, fy) > 150

    def is_blurred(self, fx, fy):
        return self.contrast(fx, fy) < 80

    def wait_for(self, condition, what):
        wait_until(condition, what + "; the log: " + self.desktop.program_log())

    def wait_for_stripes(self):
        self.wait_for(lambda: self.is_sharp(0.5, 0.5) and self.is_sharp(0.1, 0.9), "the photo with stripes")

    def wait_for_plain(self):
        def shown():
            picture = self.desktop.screenshot()
            return all(picture.at(*self.place(x, y, (900, 1200))) == (150, 150, 150) for x in (0.1, 0.5) for y in (0.1, 0.8))
        self.wait_for(shown, "the grey photo")

    # What is done

    def start(self, *arguments):
        self.desktop.start_program(PROGRAM, *arguments)

    def point_away(self):
        left, top, width, _ = self.desktop.geometry()
        self.desktop.xdotool("mousemove", left + width // 2, top + 20)

    def stroke(self, fx0, fx1, fy):
        self.desktop.drag(self.place(fx0, fy), self.place(fx1, fy))
        self.point_away()

    def press(self, button):
        left, top, width, _ = self.desktop.geometry()
        self.desktop.click(left + width - button[0], top + button[1])

    def open_with_panel(self, path):
        self.wait_for(lambda: "Open a photo" in self.desktop.titles(), "the open panel")
        time.sleep(0.3)
        self.desktop.type(path)

        def gone():
            # The first Return may go to the list of names that fit.
            self.desktop.key("Return")
            time.sleep(0.5)
            return "Open a photo" not in self.desktop.titles()
        self.wait_for(gone, "the open panel to go")

    def leave_promotion(self):
        """The window that comes when the main window closes; Return is its quit button."""
        main = self.desktop.window
        self.desktop.window = wait_until(
            lambda: next((w for w in self.desktop.windows("^Hazelmark$") if w != main), ""), "the last window")
        wait_until(lambda: self.desktop.active_window() == self.desktop.window, "the last window in front")
        self.desktop.key("Return")

    def assert_ends(self):
        self.wait_for(lambda: self.desktop.program.poll() is not None, "the end of the program")
        self.assertEqual(self.desktop.program.returncode, 0, self.desktop.program_log())

    # The stories

    def test_open_paint_erase_resize_open_another_close(self):
        self.start()
        left, top, width, height = self.desktop.geometry()
        picture = self.desktop.screenshot()
        self.assertEqual(len(set(picture.at(left + x, top + STRIP + 30) for x in range(100, width - 100, 50))), 1,
                         "an even, empty area")

        self.desktop.key("ctrl+o")
        self.open_with_panel(self.stripes)
        self.wait_for_stripes()

        # Paint: green while the pointer is over the photo, blurred once the button is up.
        self.desktop.drag(self.place(0.3, 0.3), self.place(0.7, 0.3), let_go=False)
        self.wait_for(lambda: self.desktop.screenshot().greenness(*self.place(0.5, 0.3)) > 60, "the paint")
        self.assertTrue(self.contrast(0.5, 0.3) > 60, "nothing is blurred before the button is up")
        self.desktop.xdotool("mouseup", 1)
        self.point_away()
        self.wait_for(lambda: self.is_blurred(0.5, 0.3), "the blur where it was painted")
        self.assertTrue(self.is_sharp(0.5, 0.7), "and nowhere else")
        self.assertLess(self.desktop.screenshot().greenness(*self.place(0.5, 0.3)), 10, "the paint is hidden")

        # Erase half of it, once the redraw that follows an opening is over: it ends with the last stroke's tool.
        time.sleep(1.2)
        self.press(ERASER_BUTTON)
        for _ in range(3):
            self.stroke(0.25, 0.5, 0.3)
        self.wait_for(lambda: self.is_sharp(0.38, 0.3), "the sharp photo where it was erased")
        self.assertTrue(self.is_blurred(0.62, 0.3))

        # Make the window larger and smaller; what is painted stays at its place on the photo.
        for size in ((1420, 760), (1240, 880)):
            self.desktop.xdotool("windowsize", self.desktop.window, *size)
            self.wait_for(lambda: self.desktop.geometry()[2:] == size, "the new size")
            time.sleep(1.5)
            self.wait_for(lambda: self.is_blurred(0.62, 0.3) and self.is_sharp(0.38, 0.3) and self.is_sharp(0.5, 0.7),
                          "the same parts blurred at another size")

        # Paint once more: the tool is chosen anew.
        self.press(BRUSH_BUTTON)
        self.stroke(0.3, 0.7, 0.7)
        self.wait_for(lambda: self.is_blurred(0.5, 0.7), "a second stroke")

        # Another photo, from the menu.
        left, top, _, _ = self.desktop.geometry()
        self.desktop.click(left + 163, top + 30)
        time.sleep(0.4)
        self.desktop.key("Down")
        self.desktop.key("Return")
        self.open_with_panel(self.plain)
        self.wait_for_plain()

        self.desktop.key("ctrl+w")
        self.leave_promotion()
        self.assert_ends()

    def test_a_photo_from_the_command_line_and_one_that_is_none(self):
        words = self.desktop.path("words.jpg")
        with open(words, "w") as file:
            file.write("This is no picture.")
        photo = self.desktop.path("Streifen für 100%.png")
        os.rename(self.stripes, photo)
        self.start(photo)
        self.wait_for_stripes()
        self.stroke(0.3, 0.7, 0.5)
        self.wait_for(lambda: self.is_blurred(0.5, 0.5), "the blur")
        self.desktop.key("ctrl+o")
        self.open_with_panel(words)

        def sheet():
            x, y = self.place(0.5, 0.05)
            return self.contrast(0.5, 0.02) < 150 or self.desktop.screenshot().at(x, y) == (0x33, 0x33, 0x33)
        self.wait_for(sheet, "a sheet that says so")
        self.desktop.key("Return")
        self.wait_for(lambda: self.is_sharp(0.5, 0.02), "the sheet to go")
        self.assertTrue(self.is_blurred(0.5, 0.5), "the painting is still there")

        # The file vanishes: what is loaded can still be worked on.
        os.remove(photo)
        self.stroke(0.3, 0.7, 0.8)
        self.wait_for(lambda: self.is_blurred(0.5, 0.8), "a preview of a photo whose file is gone")
        self.desktop.key("ctrl+q")
        self.assert_ends()

    def test_many_quick_resizes_with_strokes_between_them(self):
        self.start(self.stripes)
        self.wait_for_stripes()
        self.stroke(0.3, 0.7, 0.3)
        self.wait_for(lambda: self.is_blurred(0.5, 0.3), "the blur")
        for i in range(200):
            self.desktop.xdotool("windowsize", self.desktop.window, 1220 + i * 37 % 200, 700 + i * 53 % 180)
            if i % 50 == 25:
                self.desktop.drag(self.place(0.3, 0.6), self.place(0.7, 0.6), steps=6)
        self.desktop.xdotool("windowsize", self.desktop.window, 1300, 800)
        self.point_away()
        self.wait_for(lambda: self.desktop.geometry()[2:] == (1300, 800), "the last size")
        self.wait_for(lambda: self.is_blurred(0.5, 0.3) and self.is_blurred(0.5, 0.6) and self.is_sharp(0.5, 0.9),
                      "all strokes at their places")
        # Closed by the window manager.
        self.desktop.key("alt+F4")
        self.leave_promotion()
        self.assert_ends()


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
