#!/usr/bin/env python3
"""A person's way through the program, in a real window: window_story.py PROGRAM OTHER_PROGRAM [unittest options]"""

from desktop import Story, main

ERASER_BUTTON = (178, 88)  # from the window's right and top edges
STRIPES = (1600, 1000)  # pixels of the photo with stripes; the darks are 40, the lights 220
PLAIN = (900, 1200)


class Window(Story):
    def setUp(self):
        super().setUp()
        self.stripes = self.desktop.path("stripes.png")
        self.other("stripes", self.stripes, *map(str, STRIPES), "16")
        self.plain = self.desktop.path("plain.png")
        self.other("stripes", self.plain, *map(str, PLAIN), "9999")

    def contrast(self, fx, fy):
        return self.desktop.screenshot().contrast(*self.place(fx, fy, STRIPES))

    def greenness(self, fx, fy):
        return self.desktop.screenshot().greenness(*self.place(fx, fy, STRIPES))

    def is_sharp(self, fx, fy):
        return self.contrast(fx, fy) > 150

    def is_blurred(self, fx, fy):
        return self.contrast(fx, fy) < 80

    def stroke(self, fx0, fx1, fy, let_go=True):
        self.desktop.drag(self.place(fx0, fy, STRIPES), self.place(fx1, fy, STRIPES), let_go=let_go)
        if let_go:
            self.point_away()

    def erase(self, *places):
        self.click_from_right(*ERASER_BUTTON)
        self.stroke(*places)

    def open_with_panel(self, path):
        self.wait_for(lambda: self.desktop.is_in_front("Open a photo"), "the open panel")
        self.desktop.key("ctrl+a")
        self.desktop.type(path)
        # The first Return may go to the list of names that fit.
        self.do_until(lambda: self.desktop.key("Return"), lambda: "Open a photo" not in self.desktop.titles(),
                      "the open panel to go")

    def leave_promotion(self):
        """The window that comes when the main window closes; Return is its quit button."""
        main_window = self.desktop.window
        self.wait_for(lambda: self.desktop.active_window() in
                      [w for w in self.desktop.windows("^Hazelmark$") if w != main_window], "the last window in front")
        self.desktop.key("Return")
        self.wait_for(lambda: self.desktop.program.poll() is not None, "the end of the program")
        self.assertEqual(self.desktop.program.returncode, 0, self.desktop.program_log())

    def test_open_paint_erase_resize_open_another_close(self):
        self.desktop.start_program(self.program)
        self.desktop.key("ctrl+o")
        self.open_with_panel(self.stripes)
        self.wait_for(lambda: self.is_sharp(0.5, 0.5) and self.is_sharp(0.1, 0.9), "the photo with stripes")

        # Paint: green while the pointer is over the photo, blurred once the button is up.
        self.stroke(0.3, 0.7, 0.3, let_go=False)
        self.wait_for(lambda: self.greenness(0.5, 0.3) > 60, "the paint")
        self.desktop.xdotool("mouseup", 1)
        self.point_away()
        self.wait_for(lambda: self.is_blurred(0.5, 0.3) and self.greenness(0.5, 0.3) < 10,
                      "the blur where it was painted, and the paint hidden")
        self.assertTrue(self.is_sharp(0.5, 0.7), "and nowhere else")

        # Erase half of it. The redraw that follows an opening ends with the last stroke's tool, whenever it comes.
        self.do_until(lambda: self.erase(0.25, 0.5, 0.3), lambda: self.is_sharp(0.38, 0.3),
                      "the sharp photo where it was erased")
        self.assertTrue(self.is_blurred(0.62, 0.3))

        # The window is moved by its strip and made wider by its edge; what is painted stays at its place on the photo.
        left, top, width, height = self.desktop.geometry()
        self.desktop.drag((left + width // 2, top + 30), (left + width // 2 + 90, top + 70))
        self.wait_for(lambda: self.desktop.geometry()[0] > left + 20, "the window at another place")
        left, top, width, height = self.desktop.geometry()
        self.desktop.drag((left + 1, top + height // 2), (left - 80, top + height // 2))
        self.wait_for(lambda: self.desktop.geometry()[2] > width + 20, "a wider window")
        self.wait_for(lambda: self.is_blurred(0.62, 0.3) and self.is_sharp(0.38, 0.3) and self.is_sharp(0.5, 0.7),
                      "the same parts blurred at another size")

        # Another photo, from the menu.
        left, top, _, _ = self.desktop.geometry()
        self.desktop.click(left + 163, top + 30)
        self.desktop.key("Down")
        self.desktop.key("Return")
        self.open_with_panel(self.plain)
        self.wait_for(lambda: all(self.desktop.screenshot().at(*self.place(x, y, PLAIN)) == (40, 40, 40)
                                  for x in (0.1, 0.5) for y in (0.1, 0.8)), "the grey photo")
        self.desktop.key("ctrl+w")
        self.leave_promotion()

    def test_a_screen_that_is_too_small(self):
        self.desktop.environment["QT_SCALE_FACTOR"] = "1.6"  # 900 by 562 points
        self.desktop.start_program(self.program, self.stripes)
        left, top, width, height = self.desktop.geometry()
        self.assertTrue(left + width <= 1440 and top + height <= 900, "the window hangs off the screen")
        self.wait_for(lambda: "stripes.png" in self.desktop.titles(), "the photo")
        # Closed by the window manager.
        self.desktop.key("alt+F4")
        self.leave_promotion()


if __name__ == "__main__":
    main()
