#!/usr/bin/env python3
"""The whole road of one edit, from dropping a photo to the file on disk: export_story.py PROGRAM OTHER_PROGRAM"""

import json
import os
import subprocess
import time

from desktop import Story, main

SIZE = (1000, 600)  # pixels as stored, with orientation 6: on the screen dark on top, bright below
UPRIGHT = (600, 1000)

# From the window's right and top edges.
BLUR_FIELD = (41, 372)
SHARE_BUTTON = (72, 30)


class Export(Story):
    def setUp(self):
        super().setUp()
        # The desktop's opener writes down what it is to open.
        self.opened = self.desktop.path("opened")
        os.mkdir(self.desktop.path("tools"))
        with open(self.desktop.path("tools/xdg-open"), "w") as script:
            script.write(f'#!/bin/sh\necho "$1" >> "{self.opened}"\n')
        os.chmod(script.name, 0o755)
        self.desktop.environment["PATH"] = self.desktop.path("tools") + ":" + self.desktop.environment["PATH"]
        self.photo = self.desktop.path("ein Foto 50 % ä.jpg")
        self.other("stripes", self.photo, *map(str, SIZE), "500")
        self.exiftool("-Orientation#=6", "-Make=Hazel & Co", "-GPSLatitude=48.2", "-GPSLatitudeRef=N",
                      "-overwrite_original", self.photo)
        self.photo_bytes = self.content(self.photo)

    def content(self, path):
        if not os.path.exists(path):
            return b""
        with open(path, "rb") as file:
            return file.read()

    def exiftool(self, *arguments):
        return subprocess.run(["exiftool", *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout

    def pixels(self, path, *places):
        """Width, height, then a grey value for each place."""
        return list(map(int, self.other("pixels", path, *(f"{x},{y}" for x, y in places)).split()))

    def shows(self, size, *values):
        """Whether the photo looks so: a fraction of it and the grey that is there, more or less."""
        picture = self.desktop.screenshot()
        return all(abs(picture.at(*self.place(fx, fy, size))[1] - grey) < 8 for fx, fy, grey in values)

    def drop(self, file):
        """Drags the file from a file manager into the window; hands back what became of it there."""
        manager = self.desktop.start([self.other_program, "drag", file], stdout=subprocess.PIPE, text=True)
        self.wait_for(lambda: "Files" in self.desktop.titles(), "the file manager")
        left, top, width, height = self.desktop.geometry()
        self.desktop.drag((30, 200), (left + width // 3, top + height // 2), steps=30, let_go=False)
        time.sleep(1)  # what is dropped before the window has answered the drag is not dropped
        self.desktop.xdotool("mousemove_relative", 1, 1, "sleep", 0.2, "mouseup", 1)
        with manager.stdout:
            action = manager.stdout.readline().strip()
        time.sleep(0.5)  # the files are asked for after the drop
        manager.terminate()
        manager.wait()
        return action

    def paint(self, fy):
        self.desktop.drag(self.place(0.3, fy, UPRIGHT), self.place(0.7, fy, UPRIGHT), steps=20)
        self.point_away()

    def test_drop_paint_export_share(self):
        self.desktop.start_program(self.program)
        self.assertEqual(self.drop(self.photo), "copied", "though the file manager would rather move it")
        self.wait_for(lambda: self.shows(UPRIGHT, (0.5, 0.2, 40), (0.5, 0.8, 220)), "the photo, upright")

        # Paint over the edge, and blur more.
        self.click_from_right(*BLUR_FIELD)
        self.desktop.key("ctrl+a")
        self.desktop.type("90")
        self.paint(0.5)
        self.wait_for(lambda: 70 < self.desktop.screenshot().at(*self.place(0.5, 0.503, UPRIGHT))[1] < 190,
                      "a blurred edge where it was painted")
        self.assertTrue(self.shows(UPRIGHT, (0.06, 0.51, 220)), "and nowhere else")

        # Export. The panel takes the extension's usual form.
        target = self.desktop.path("Ergebnis.tiff")
        self.desktop.key("ctrl+s")
        self.wait_for(lambda: self.desktop.is_in_front("Save the picture"), "the save panel")
        self.desktop.key("ctrl+a")
        self.desktop.type(self.desktop.path("Ergebnis.TIF"))
        self.desktop.key("Return")
        self.wait_for(lambda: os.path.exists(target), "the file")
        self.wait_for(lambda: b"/Ergebnis.tiff\n" in self.content(self.opened), "its viewer")

        # From outside: size, metadata and pixels as the photo stores them.
        metadata = json.loads(self.exiftool("-json", "-n", "-Orientation", "-Make", "-GPSLatitude", "-FileType",
                                            target))[0]
        self.assertEqual((metadata["FileType"], metadata["Orientation"], metadata["Make"]), ("TIFF", 6, "Hazel & Co"))
        self.assertAlmostEqual(metadata["GPSLatitude"], 48.2, 4)
        width, height, painted, plain, dark = self.pixels(target, (503, 300), (503, 20), (20, 300))
        self.assertEqual((width, height), SIZE)
        self.assertTrue(70 < painted < 190 and abs(plain - 220) < 8 and abs(dark - 40) < 8, (painted, plain, dark))
        self.assertEqual(self.content(self.photo), self.photo_bytes, "the photo itself is never changed")

        # The rating that an export asks for; then share without a change: at once.
        self.wait_for(lambda: "Rate Us" in self.desktop.titles(), "the rate prompt")
        self.do_until(lambda: self.desktop.key("Escape"), lambda: "Rate Us" not in self.desktop.titles(),
                      "the rate prompt to go")
        self.click_from_right(*SHARE_BUTTON)
        self.wait_for(lambda: "show SocialServiceProvider" in self.desktop.program_log(), "the services")
        for key in ("Down", "Down", "Return"):
            self.desktop.key(key)
        self.wait_for(lambda: "Picked this service: Copy to the clipboard" in self.desktop.program_log(), "a log line")
        shared = self.desktop.path("shared.png")
        self.other("clipboard", shared)
        width, height, painted, plain = self.pixels(shared, (300, 503), (20, 503))
        self.assertEqual((width, height), UPRIGHT)
        self.assertTrue(70 < painted < 190 and abs(plain - 220) < 8, (painted, plain))

        self.desktop.key("ctrl+q")
        self.assertEqual(self.desktop.program.wait(60), 0, self.desktop.program_log())


if __name__ == "__main__":
    main()
