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

    def delete(self, viewer):
        left, top, width, height = viewer.area("#32770")
        self.screen.xdotool("mousemove", left + width * 207 // 240, top + height - 23, "click", 1)

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
        self.assertIn(made_pages.quarters().data, self.content(path))

        # The next one takes its place, with its text to begin with.
        self.place(viewer, 220, 200)
        self.assertEqual(viewer.dialog(*self.TEXT), "Hello note")
        self.store(viewer, "alt+h")
        viewer.has_no_dialog()
        viewer.shows({(50, 40): RED, (220, 200): WHITE, (219, 200): YELLOW, (220, 199): YELLOW})
        self.assertEqual(self.notes(path).count("Hello note"), 1)
        self.assertIn("from 220,200", self.notes(path))

        self.place(viewer, 10, 10)
        self.delete(viewer)
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
        self.choose(viewer, saved)
        self.take_save_dialog(viewer)
        viewer.shows({(50, 40): RED})
        self.assertEqual(self.content(os.path.join(self.options.work, "unburned.tif")), made_pages.three_pages())
        self.assertEqual(self.notes(saved), "")
        viewer.probe.ask("drop", windows_path(saved))
        viewer.has_caption("burned.tif - page 1 of 1 - Viewer")
        viewer.shows({(50, 40): WHITE, (49, 40): RED, (50, 39): RED})
        self.assertGreater(self.black_pixels(viewer, 50, 40), 30)

    def test_a_note_for_a_page_that_is_damaged_is_burned_in_after_a_question(self):
        damaged = made_pages.cut_off()
        path = os.path.join(self.options.work, "damaged.tif")
        saved = os.path.join(self.options.work, "damaged burned.tif")
        viewer = self.open(damaged, "damaged.tif")
        viewer.press("ctrl+1")
        viewer.shows({(50, 40): RED, (50, 150): BACKGROUND})
        for answer in ("alt+n", "alt+y"):
            self.place(viewer, 50, 40)
            viewer.type("Hello note")
            self.store(viewer, "alt+i")
            viewer.has_dialog("Viewer")
            self.assertIn("damaged.tif", viewer.dialog(0xFFFF))
            self.assertIn("The page is damaged. Save what there is?", viewer.dialog(0xFFFF))
            viewer.press(answer)
            if answer == "alt+n":
                viewer.has_no_dialog()
                self.assertFalse(os.path.exists(saved))
        self.choose(viewer, saved)
        self.take_save_dialog(viewer)
        self.assertEqual(self.content(path), damaged)
        viewer.probe.ask("drop", windows_path(saved))
        viewer.has_caption("damaged burned.tif - page 1 of 1 - Viewer")
        viewer.shows({(50, 40): WHITE, (49, 40): RED, (250, 99): GREEN, (50, 101): BLACK, (350, 299): BLACK})

    def test_a_note_for_a_file_that_is_write_protected_is_refused(self):
        content = made_pages.tiff([noted(made_pages.quarters(), 220, 20), made_pages.fax()])
        viewer = self.open(content, "protected.tif")
        path = os.path.join(self.options.work, "protected.tif")
        saved = os.path.join(self.options.work, "unprotected.tif")
        os.chmod(path, 0o444)
        viewer.press("ctrl+1")
        viewer.shows(frame(220, 20, GREEN))

        def is_told(*messages):
            viewer.has_dialog("Viewer")
            for message in ("protected.tif", "The file is write-protected.", *messages):
                self.assertIn(message, viewer.dialog(0xFFFF))
            viewer.press("Return")
        self.place(viewer, 50, 40)
        self.store(viewer, "alt+h")
        is_told("The note could not be stored.")
        viewer.has_no_dialog()
        self.place(viewer, 50, 40)
        self.delete(viewer)
        is_told("The note could not be deleted.")
        viewer.has_no_dialog()
        viewer.shows(frame(220, 20, GREEN))
        # Burned in, it is saved in another file: this one is refused, and the question comes again.
        self.place(viewer, 50, 40)
        self.store(viewer, "alt+i")
        self.choose(viewer, path)
        is_told()
        self.choose(viewer, saved)
        self.take_save_dialog(viewer)
        self.assertEqual(self.content(path), content)
        self.assertEqual(self.notes(saved), "")
        viewer.press("Next")
        viewer.has_caption("protected.tif - page 2 of 2 - Viewer")
        viewer.probe.ask("drop", windows_path(saved))
        viewer.shows({(50, 40): WHITE, (49, 40): RED, (220, 20): GREEN})

    # ---- saved

    def test_a_page_is_saved_with_its_note(self):
        saved = os.path.join(self.options.work, "saved with notes.tif")
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 220, 20, "Mine"), made_pages.fax(),
                                            noted(made_pages.cells(), 5, 7, "Yours\r\nand more")]))
        viewer.press("ctrl+r")  # that a turned page shows no note makes no difference
        self.save(viewer, saved, 1)
        self.assertEqual(self.notes(saved), "{}: page 1: opaque note from 220,20 to 310,36\n    Mine\n".format(
            windows_path(saved)))
        self.same_pixels(saved, 0, made_pages.quarters().data, "PackBits")
        viewer.press("Next")
        self.add(viewer, saved)
        viewer.press("Next")
        self.add(viewer, saved)
        self.assertEqual(self.notes(saved), (
            "{0}: page 1: opaque note from 220,20 to 310,36\n    Mine\n"
            "{0}: page 3: opaque note from 5,7 to 95,23\n    Yours\n    and more\n").format(windows_path(saved)))
        self.same_pixels(saved, 1, made_pages.fax().data, "None")
        self.same_pixels(saved, 2, made_pages.cells().data, "None")
        viewer.probe.ask("drop", windows_path(saved))
        viewer.has_caption("saved with notes.tif - page 1 of 3 - Viewer")
        viewer.press("ctrl+1")
        viewer.shows(frame(220, 20, GREEN))

    def test_a_page_that_is_added_to_its_own_file_takes_its_note_along(self):
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 220, 20), made_pages.fax()]), "own.tif")
        path = os.path.join(self.options.work, "own.tif")
        self.add(viewer, path)
        viewer.has_caption("own.tif - page 1 of 3 - Viewer")
        viewer.press("ctrl+1", "End")
        viewer.has_caption("own.tif - page 3 of 3 - Viewer")
        viewer.shows(frame(220, 20, GREEN))

    def test_a_note_stays_where_it_is_when_no_page_is_saved(self):
        path = self.file("target.tif", made_pages.three_pages())
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 220, 20)]))
        self.add(viewer, path, "Escape")
        # JPEG, which is above the first choice, too, wants a module that is not there.
        self.add(viewer, path, "Up", "Return", message="DCTLIB.DLL")
        self.assertEqual(self.content(path), made_pages.three_pages())

    def test_that_a_note_could_not_be_saved_with_its_page_is_told(self):
        # A directory beside the chain is one that a file cannot be rebuilt with.
        target = made_pages.tiff([made_pages.fax().change((330, 4, [8]))])
        path = self.file("beside.tif", target)
        viewer = self.open(made_pages.tiff([noted(made_pages.quarters(), 220, 20)]))
        self.add(viewer, path, "Return", message="The page was saved without its note.")
        self.assertEqual(self.notes(path), "")
        self.same_pixels(path, 1, made_pages.quarters().data, "None")

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
