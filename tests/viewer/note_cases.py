"""Notes on pages: how the viewer shows them, and how its user places one with the mouse."""
import os
import subprocess

import made_pages
from driven_viewer import DEADLINE
from made_pages import BLACK, BLUE, GREEN, RED, WHITE, YELLOW, cell_color
from viewer_case import BACKGROUND, ViewerTest, windows_path

NOTE_SIZE = 90, 16  # what a note in these tests tells of its size, which is not that of its text


def noted(page, left, top, text="H"):
    """The page with an opaque note: white, with its text on the left."""
    right, bottom = left + NOTE_SIZE[0], top + NOTE_SIZE[1]
    value = "~,1,O,%d,%d,%d,%d,%d,%s" % (left, top, right, bottom, len(text) + 1, text)
    return page.change((316, 2, list(value.encode() + b"\0")))


def frame(left, top, around):
    """The corners of such a note, and colours of the page beside it."""
    right, bottom = left + NOTE_SIZE[0] - 1, top + NOTE_SIZE[1] - 1
    return {(left, top): WHITE, (right, top): WHITE, (right, bottom): WHITE, (left, bottom): WHITE,
            (left - 1, top): around, (right + 1, top): around, (left, top - 1): around, (left, bottom + 1): around}


class Notes(ViewerTest):
    def black_pixels(self, viewer, left, top, width=60, height=16):
        places = [(x, y) for x in range(left, left + width) for y in range(top, top + height)]
        return list(viewer.colors(places).values()).count(BLACK)

    def notes(self, path):
        """What the library's command line tool tells of the file's notes."""
        tool = self.wine.start(self.options.vellum, "note", "list", windows_path(path), stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, text=True)
        said = tool.communicate(timeout=DEADLINE)[0]
        self.assertEqual(tool.returncode, 0)
        return said.replace("\r", "")

    def begin(self, viewer):
        """Result: the number of the cursor before; then it is another one."""
        viewer.wait_for_focus()
        before = viewer.probe.ask("cursor")
        viewer.press("ctrl+n")
        viewer.until(lambda: viewer.probe.ask("cursor") != before, "the cursor becomes a cross")
        return before

    def place(self, viewer, x, y):
        """Clicks to the place of a note, and waits for the dialog."""
        self.begin(viewer)
        viewer.click(x, y)
        viewer.has_dialog("Notes")

    def store(self, viewer, choice):
        """Leaves the dialog: alt+h keeps the note in the header, alt+i makes it a part of the picture."""
        viewer.press(choice, "Return")

    # ---- shown

    def test_a_page_with_a_note_shows_it_at_once_and_in_every_size(self):
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 220, 20), made_pages.fax()]))
        viewer.shows(frame(352, 32, GREEN))  # the page is fitted: 1.6 times as large, but not the note
        self.assertGreater(self.black_pixels(viewer, 352, 32), 8)
        for key in ("ctrl+1", "ctrl+2"):
            viewer.press(key)
            viewer.shows(frame(220, 20, GREEN))
        viewer.press("Next")
        viewer.shows({(220, 20): WHITE, (220, 200): WHITE, (100, 20): BLACK})
        viewer.press("Prior", "ctrl+i")
        viewer.shows(frame(220, 20, (255, 0, 255)))

    def test_a_page_that_is_turned_shows_no_note(self):
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 0, 0)]))
        viewer.press("ctrl+1")
        viewer.shows({(0, 0): WHITE, (89, 15): WHITE, (90, 0): RED})
        viewer.press("ctrl+r")
        viewer.shows({(0, 0): BLUE, (299, 0): RED, (290, 80): RED, (299, 399): GREEN, (0, 399): YELLOW})
        viewer.press("ctrl+n")  # nor is one placed
        viewer.click(20, 20)
        viewer.press("ctrl+r", "ctrl+r", "ctrl+r")
        viewer.shows({(0, 0): WHITE, (89, 15): WHITE, (90, 0): RED})
        self.assertIsNone(viewer.dialog())

    def test_a_note_is_scrolled_with_its_page(self):
        viewer = self.open(made_pages.tiff([noted(made_pages.cells(), 210, 160)]))
        around = cell_color(1, 1)
        viewer.press("ctrl+1")
        viewer.shows(frame(210, 160, around))
        viewer.press("Right", "Down", "Down")
        viewer.shows(frame(170, 80, around))
        viewer.press("Right", "Right", "Right", "Right", "Right")  # its first 30 columns are gone now
        viewer.shows({(0, 80): WHITE, (59, 80): WHITE, (60, 80): around, (0, 79): around, (0, 96): around})

    def test_a_host_computers_name_is_no_note(self):
        page = made_pages.quarters().change((316, 2, list(b"a computer\0")))
        viewer = self.open(made_pages.tiff([page]), "host.tif")
        viewer.press("ctrl+1")
        viewer.shows({(0, 0): RED, (199, 149): RED, (200, 0): GREEN})
        path = os.path.join(self.options.work, "host.tif")
        for answer, notes in (("Escape", ""), ("alt+n", ""), ("alt+y", "opaque note from 50,40")):
            self.place(viewer, 50, 40)
            viewer.type("mine")
            if answer == "Escape":
                viewer.press(answer)
            else:
                self.store(viewer, "alt+h")
                viewer.has_dialog("Viewer")
                viewer.press(answer)
            viewer.has_no_dialog()
            self.assertIn(notes, self.notes(path))
            self.assertEqual(notes == "", self.notes(path) == "")

    # ---- placed

    def test_a_note_in_the_header_appears_where_the_user_clicked(self):
        path = os.path.join(self.options.work, "mine.tif")
        viewer = self.open(name="mine.tif")
        viewer.press("ctrl+1")
        viewer.shows({(50, 40): RED, (400, 10): BACKGROUND})
        self.place(viewer, 50, 40)
        viewer.type("Hello note")
        self.store(viewer, "alt+h")
        viewer.has_no_dialog()
        viewer.shows({(50, 40): WHITE, (49, 40): RED, (50, 39): RED})
        self.assertGreater(self.black_pixels(viewer, 50, 40), 30)
        told = self.notes(path)
        self.assertIn("opaque note from 50,40 to ", told)
        self.assertIn("\n    Hello note\n", told)
        with open(path, "rb") as file:
            self.assertIn(made_pages.quarters().data, file.read())

        # The next one takes its place, with its text to begin with.
        self.place(viewer, 220, 200)
        self.assertEqual(viewer.dialog(*self.TEXT), "Hello note")
        self.store(viewer, "alt+h")
        viewer.has_no_dialog()
        viewer.shows({(50, 40): RED, (220, 200): WHITE, (219, 200): YELLOW, (220, 199): YELLOW})
        self.assertEqual(self.notes(path).count("Hello note"), 1)
        self.assertIn("from 220,200", self.notes(path))

        self.place(viewer, 10, 10)
        left, top, width, height = viewer.area("#32770")
        self.screen.xdotool("mousemove", left + width * 207 // 240, top + height - 23, "click", 1)  # "Delete"
        viewer.has_no_dialog()
        viewer.shows({(220, 200): YELLOW, (10, 10): RED})
        self.assertEqual(self.notes(path), "")

    TEXT = (1004,)

    def test_a_click_counts_in_pixels_of_the_page_that_is_scrolled_and_scaled(self):
        path = os.path.join(self.options.work, "fax.tif")
        viewer = self.open(made_pages.tiff([made_pages.fax()]), "fax.tif")
        viewer.place(300, 200)
        viewer.press("ctrl+2")
        viewer.shows({(0, 0): BLACK})
        viewer.press("Down", "Right", "Right")
        viewer.shows({(111, 151): BLACK, (113, 151): WHITE, (111, 153): WHITE})
        self.place(viewer, 40, 70)
        viewer.type("far")
        self.store(viewer, "alt+h")
        viewer.has_no_dialog()
        viewer.shows({(40, 70): WHITE, (39, 70): BLACK, (40, 69): BLACK})
        self.assertIn("from 255,112 to ", self.notes(path))  # (40 + 80) * 204 / 96, (70 + 40) * 98 / 96

    def test_a_note_for_the_picture_is_saved_as_a_new_file(self):
        viewer = self.open(name="unburned.tif")
        saved = os.path.join(self.options.work, "burned.tif")
        viewer.press("ctrl+1")
        viewer.shows({(50, 40): RED})
        self.place(viewer, 50, 40)
        viewer.type("Hello note")
        self.store(viewer, "alt+i")
        viewer.has_dialog("Save As")
        viewer.type(windows_path(saved))
        viewer.press("Return")
        viewer.until(lambda: (viewer.dialog() or "").startswith("Saving"), "the save dialog")
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.shows({(50, 40): RED})
        with open(os.path.join(self.options.work, "unburned.tif"), "rb") as file:
            self.assertEqual(file.read(), made_pages.three_pages())
        self.assertEqual(self.notes(saved), "")
        viewer.probe.ask("drop", windows_path(saved))
        viewer.has_caption("burned.tif - page 1 of 1 - Viewer")
        viewer.shows({(50, 40): WHITE, (49, 40): RED, (50, 39): RED})
        self.assertGreater(self.black_pixels(viewer, 50, 40), 30)

    def test_escape_and_other_commands_end_the_placing(self):
        viewer = self.open()
        viewer.press("ctrl+1")
        viewer.shows({(399, 299): YELLOW, (400, 10): BACKGROUND})
        for key in ("Escape", "ctrl+1", "ctrl+i"):
            viewer.click(450, 20, 2)  # puts the mouse into the window
            arrow = self.begin(viewer)
            cross = viewer.probe.ask("cursor")
            viewer.click(450, 40)  # beside the page: the mode goes on
            viewer.until(lambda: viewer.probe.ask("cursor") == cross, "the cursor is still a cross")
            viewer.press(key)
            viewer.until(lambda: viewer.probe.ask("cursor") == arrow, "the cursor is an arrow again")
            viewer.click(50, 40)
        viewer.shows({(399, 299): BLUE})
        self.assertIsNone(viewer.dialog())
        self.place(viewer, 50, 40)
        viewer.press("Escape")
        viewer.has_no_dialog()

    def test_a_cals_file_has_no_notes(self):
        viewer = self.open(made_pages.drawing(), "drawing.cal")
        viewer.shows({(0, 0): BLACK})
        viewer.press("ctrl+n")
        viewer.click(50, 40)
        viewer.press("ctrl+i")
        viewer.shows({(0, 0): WHITE})
        self.assertIsNone(viewer.dialog())
