#!/usr/bin/env python3
"""The example viewer as its user sees it. Pictures of the screen are kept in the work folder when a test fails.

  viewer_test.py --launcher scripts/wine --viewer viewer.exe --probe viewer_probe.exe --vellum vellum.exe --work FOLDER
                 [TEST...]
"""
import argparse
import os
import shutil
import sys
import unittest

sys.dont_write_bytecode = True

import made_pages
from driven_viewer import Probe, Screen, Wine
from made_pages import BLACK, BLUE, CELL, GREEN, RED, WHITE, YELLOW, cell_color
from note_cases import Notes  # its tests are run with these
from viewer_case import BACKGROUND, LABEL, ViewerTest, windows_path

CYAN = (0, 255, 255)


def corner(column, row, x, y):
    """The four pixels around the place (x, y), where the upper left corner of a cell of page 3 is to be."""
    return {(x, y): cell_color(column, row), (x - 1, y): cell_color(column - 1, row),
            (x, y - 1): cell_color(column, row - 1), (x - 1, y - 1): cell_color(column - 1, row - 1)}


class Opening(ViewerTest):
    def test_a_window_without_a_file_says_what_to_do(self):
        viewer = self.start()
        viewer.shows({(320, 228): LABEL, (320, 100): BACKGROUND, (5, 5): BACKGROUND, (635, 475): BACKGROUND})
        viewer.has_caption("Viewer")
        viewer.press("Next", "ctrl+r", "ctrl+i", "ctrl+c", "ctrl+s", "Down")
        viewer.press("ctrl+1")
        viewer.marks({"pixels"})  # so all the keys have come
        self.assertIsNone(viewer.dialog())

    def test_a_command_line_that_names_no_file_leaves_an_empty_window(self):
        viewer = self.start("Z:\\there\\is\\no.tif")
        viewer.has_dialog("Viewer")
        self.assertIn("no.tif", viewer.dialog(0xFFFF))
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.has_caption("Viewer")
        viewer.shows({(320, 228): LABEL, (320, 100): BACKGROUND})

    def test_a_path_of_any_length_is_answered(self):
        viewer = self.start("Z:\\" + "long" * 250)
        viewer.has_dialog("Viewer")
        self.assertIn("Pathname is longer than MAXPATH.", viewer.dialog(0xFFFF))
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.has_caption("Viewer")

    def test_the_command_line_names_a_file(self):
        viewer = self.open(name="three pages.tif")
        viewer.has_caption("three pages.tif - page 1 of 3 - Viewer")
        viewer.shows({(10, 10): RED, (630, 10): GREEN, (10, 470): BLUE, (630, 470): YELLOW})

    def test_the_menu_command_asks_for_a_file(self):
        path = self.file("asked.tif", made_pages.three_pages())
        viewer = self.start()
        viewer.press("ctrl+o")
        viewer.has_dialog("Open")
        viewer.type(windows_path(path))
        viewer.press("Return")
        viewer.has_caption("asked.tif - page 1 of 3 - Viewer")
        viewer.shows({(10, 10): RED, (630, 470): YELLOW})

    def test_a_file_is_dropped_on_the_window(self):
        path = self.file("dropped.tif", made_pages.tiff([made_pages.fax()]))
        viewer = self.open()
        viewer.shows({(10, 10): RED})
        viewer.press("ctrl+r")
        viewer.shows({(10, 10): BLUE})
        viewer.probe.ask("drop", windows_path(path))
        viewer.has_caption("dropped.tif - page 1 of 1 - Viewer")
        viewer.shows({(10, 10): BLACK, (470, 10): WHITE, (470, 470): WHITE})  # no longer turned

    def test_a_file_that_cannot_be_opened_leaves_what_was_shown(self):
        path = self.file("text.tif", b"This is not a TIFF file at all.")
        viewer = self.open()
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 2 of 3 - Viewer")
        viewer.probe.ask("drop", windows_path(path))
        viewer.has_dialog("Viewer")
        self.assertIn("text.tif", viewer.dialog(0xFFFF))
        self.assertIn("The file is neither a TIFF nor a CALS raster file.", viewer.dialog(0xFFFF))
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.shows({(10, 10): BLACK, (470, 470): WHITE})
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 3 of 3 - Viewer")

    def test_what_is_wrong_with_a_file_is_told_for_its_kind(self):
        bad_header = made_pages.drawing().replace(b"rtype: 1", b"rtype: 2")
        viewer = self.start()
        for name, content, message in (("drawing.dat", bad_header, "File has not a valid CALS format."),
                                       ("short.cal", b"rtype: 1", "File has not a valid CALS format."),
                                       ("intel.tif", b"II*\0\xff\xff\xff\x7f", "General I/O error"),
                                       ("motorola.dat", b"MM and no TIFF", "File has not a valid TIFF format."),
                                       ("blank.dat", bytes(4096), "The file is neither a TIFF nor a CALS"),
                                       ("empty.tif", b"", "The file is neither a TIFF nor a CALS")):
            viewer.probe.ask("drop", windows_path(self.file(name, content)))
            viewer.has_dialog("Viewer")
            self.assertIn(name, viewer.dialog(0xFFFF))
            self.assertIn(message, viewer.dialog(0xFFFF))
            viewer.press("Return")
            viewer.has_no_dialog()
        viewer.has_caption("Viewer")

    def test_a_file_that_has_become_one_of_another_kind_is_not_painted(self):
        viewer = self.open(made_pages.drawing(), "changing.cal")
        viewer.shows({(10, 10): BLACK, (630, 470): WHITE})
        self.file("changing.cal", made_pages.three_pages())
        viewer.probe.ask("paint")
        viewer.shows({(320, 228): LABEL, (10, 10): BLACK, (630, 470): WHITE})


class CalsFiles(ViewerTest):
    def test_a_cals_file_is_shown_in_every_size_and_turned(self):
        viewer = self.open(made_pages.drawing(), "drawing.cal")
        viewer.has_caption("drawing.cal - page 1 of 1 - Viewer")
        viewer.shows({(0, 0): BLACK, (317, 237): BLACK, (322, 237): WHITE, (317, 242): WHITE, (639, 479): WHITE})
        viewer.press("ctrl+2")
        viewer.shows({(127, 95): BLACK, (128, 95): WHITE, (127, 96): WHITE, (255, 191): WHITE, (256, 191): BACKGROUND})
        viewer.press("ctrl+1")
        viewer.shows({(63, 47): BLACK, (64, 47): WHITE, (127, 95): WHITE, (128, 95): BACKGROUND})
        viewer.press("ctrl+0", "ctrl+r")
        viewer.shows({(357, 0): BLACK, (182, 237): BLACK, (177, 0): WHITE, (357, 242): WHITE, (362, 0): BACKGROUND})
        viewer.press("ctrl+i")
        viewer.shows({(357, 0): WHITE, (177, 0): BLACK, (362, 0): BACKGROUND})

    def test_a_cals_file_is_copied(self):
        viewer = self.open(made_pages.drawing(), "drawing.cal")
        viewer.press("ctrl+c")
        viewer.until(lambda: viewer.probe.ask("clipboard") == "128 96", "the drawing on the clipboard")
        self.assertEqual(viewer.probe.ask("clipboard", 63, 47, 64, 47, 63, 48),
                         "128 96 0 0 0 255 255 255 255 255 255")

    def test_that_the_clipboard_is_in_use_is_told_of_a_damaged_page_too(self):
        viewer = self.open(made_pages.drawing_cut_off(), "cut.cal")
        self.assertEqual(viewer.probe.ask("hold"), "done")
        self.addCleanup(viewer.probe.ask, "release")
        viewer.press("ctrl+c")
        viewer.has_dialog("CALS warning")
        viewer.press("Return")
        viewer.has_dialog("Viewer")
        self.assertIn("The clipboard could not be opened.", viewer.dialog(0xFFFF))
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.probe.ask("drop", windows_path(self.file("cut.tif", made_pages.cut_off())))
        viewer.has_caption("cut.tif - page 1 of 1 - Viewer")
        viewer.press("ctrl+c")
        viewer.has_dialog("Viewer")
        self.assertIn("The clipboard could not be opened.", viewer.dialog(0xFFFF))
        viewer.press("Return")
        viewer.has_no_dialog()

    def test_the_information_about_a_cals_file_is_its_header(self):
        viewer = self.open(made_pages.drawing(), "drawing.cal")
        viewer.press("alt+Return")
        viewer.until(lambda: (viewer.dialog(111) or "").endswith("drawing.cal"), "the file's name in the dialog")
        viewer.press("Return")
        viewer.has_no_dialog()

    def test_a_cals_file_is_saved_as_tiff(self):
        path = os.path.join(self.options.work, "drawing.tif")
        viewer = self.open(made_pages.drawing(), "drawing.cal")
        self.save(viewer, path, 0)
        half = made_pages.DRAWING[1] // 2
        self.same_pixels(path, 0, (b"\xff" * 8 + bytes(8)) * half + bytes(16) * half, "None")


class Pages(ViewerTest):
    def test_keys_turn_the_pages(self):
        viewer = self.open()
        for key, page, place, color in (("Next", 2, (10, 10), BLACK), ("Next", 3, (10, 10), cell_color(0, 0)),
                                        ("Next", 3, (630, 470), cell_color(7, 7)), ("Prior", 2, (10, 10), BLACK),
                                        ("Home", 1, (10, 10), RED), ("Prior", 1, (10, 10), RED),
                                        ("End", 3, (10, 10), cell_color(0, 0))):
            viewer.press(key)
            viewer.shows({place: color})
            viewer.has_caption("pages.tif - page %d of 3 - Viewer" % page)

    def test_a_page_that_cannot_be_decoded_is_passed_over(self):
        viewer = self.open(made_pages.pages_with_a_bad_one())
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 2 of 3 - Viewer")
        viewer.shows({(320, 228): LABEL, (10, 10): BACKGROUND, (630, 470): BACKGROUND})
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 3 of 3 - Viewer")
        viewer.shows({(10, 10): BLACK, (470, 470): WHITE})

    def test_of_a_page_that_ends_early_the_beginning_is_shown(self):
        viewer = self.open(made_pages.cut_off())
        viewer.shows({(10, 10): RED, (630, 10): GREEN, (10, 150): RED, (320, 228): LABEL, (10, 170): BACKGROUND})
        viewer.press("ctrl+r")
        viewer.shows({(230, 10): BACKGROUND, (10, 10): BACKGROUND, (250, 10): RED, (350, 470): GREEN})

    def test_a_message_that_the_painter_shows_comes_once(self):
        viewer = self.open(made_pages.pages_with_jpeg(), "jpeg.tif")
        viewer.press("Next")
        viewer.until(lambda: "DCTLIB.DLL" in (viewer.dialog(0xFFFF) or ""), "the message that a module is missing")
        # The window is to be painted while the painter is still at work.
        viewer.probe.ask("paint")
        viewer.press("Return")
        viewer.has_no_dialog()
        viewer.press("Next")
        viewer.has_caption("jpeg.tif - page 3 of 3 - Viewer")
        viewer.shows({(10, 10): BLACK, (470, 470): WHITE})

    def test_the_information_dialog_is_about_the_page(self):
        viewer = self.open()
        viewer.press("Next", "alt+Return")
        viewer.until(lambda: viewer.dialog(200) == "816", "the page's width in the dialog")
        self.assertEqual(viewer.dialog(201), "392")
        self.assertTrue(viewer.dialog().endswith("pages.tif"))
        viewer.press("Escape")
        viewer.has_no_dialog()
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 3 of 3 - Viewer")


class Sizes(ViewerTest):
    def test_fit_keeps_the_true_proportions_of_a_fax(self):
        viewer = self.open()
        viewer.press("Next")
        viewer.shows({(0, 0): BLACK, (238, 238): BLACK, (241, 238): WHITE, (238, 241): WHITE, (478, 478): WHITE,
                      (481, 10): BACKGROUND, (481, 470): BACKGROUND})
        viewer.marks({"fit"})
        self.assertEqual(viewer.state()[6:8], [0, 0])

    def test_fit_shows_the_whole_of_a_turned_page(self):
        viewer = self.open()
        viewer.press("ctrl+r")
        viewer.shows({(0, 0): BLUE, (178, 238): BLUE, (181, 0): RED, (358, 238): RED, (0, 241): YELLOW,
                      (358, 478): GREEN, (361, 10): BACKGROUND})

    def test_fit_follows_the_window(self):
        viewer = self.open()
        viewer.place(400, 480)
        viewer.shows({(0, 0): RED, (398, 298): YELLOW, (200, 302): BACKGROUND})
        viewer.place(640, 300)
        viewer.shows({(398, 298): YELLOW, (402, 150): BACKGROUND})

    def test_pixel_for_pixel(self):
        viewer = self.open()
        viewer.press("ctrl+1")
        viewer.shows({(199, 149): RED, (200, 149): GREEN, (199, 150): BLUE, (399, 299): YELLOW, (400, 299): BACKGROUND,
                      (399, 300): BACKGROUND})
        viewer.marks({"pixels"})
        viewer.press("Next")
        viewer.shows({(407, 195): BLACK, (408, 195): WHITE, (407, 196): WHITE, (639, 391): WHITE,
                      (639, 392): BACKGROUND})
        self.assertEqual(viewer.state()[6:8], [1, 0])

    def test_true_size_is_that_of_the_paper(self):
        viewer = self.open()
        viewer.press("Next", "ctrl+2")
        viewer.shows({(190, 190): BLACK, (193, 190): WHITE, (190, 193): WHITE, (383, 383): WHITE,
                      (384, 383): BACKGROUND, (383, 384): BACKGROUND})
        viewer.marks({"true size"})
        viewer.press("ctrl+0")
        viewer.shows({(238, 238): BLACK, (478, 478): WHITE, (481, 10): BACKGROUND})

    def test_dots_per_centimetre_are_taken_for_what_they_are(self):
        viewer = self.open(made_pages.tiff([made_pages.centimetres(), made_pages.fax()]))
        viewer.shows({(238, 238): BLACK, (241, 238): WHITE, (238, 241): WHITE, (478, 478): WHITE,
                      (481, 10): BACKGROUND, (481, 470): BACKGROUND})
        # 4 cm are 151 pixels of 96 to the inch.
        viewer.press("ctrl+2")
        viewer.shows({(74, 74): BLACK, (77, 74): WHITE, (74, 77): WHITE, (150, 150): WHITE, (151, 150): BACKGROUND,
                      (150, 151): BACKGROUND})
        self.assertEqual(viewer.state()[6:8], [0, 0])
        viewer.press("ctrl+r")
        viewer.shows({(150, 0): BLACK, (77, 74): BLACK, (74, 74): WHITE, (150, 150): WHITE, (151, 150): BACKGROUND})
        viewer.press("ctrl+1", "ctrl+r", "ctrl+r", "ctrl+r")
        viewer.shows({(159, 79): BLACK, (160, 79): WHITE, (159, 80): WHITE, (319, 159): WHITE, (320, 159): BACKGROUND,
                      (319, 160): BACKGROUND})
        viewer.press("ctrl+2", "Next")
        viewer.shows({(190, 190): BLACK, (193, 190): WHITE, (383, 383): WHITE, (384, 383): BACKGROUND})

    def test_scroll_bars_come_and_go(self):
        viewer = self.open()
        viewer.press("End", "ctrl+1")
        viewer.shows(corner(1, 1, *CELL))
        self.assertEqual(viewer.state()[6:8], [1, 1])
        viewer.press("ctrl+0")
        viewer.shows({(0, 0): cell_color(0, 0), (639, 479): cell_color(7, 7)})
        self.assertEqual(viewer.state()[6:8], [0, 0])
        viewer.press("ctrl+1", "Home")
        viewer.shows({(399, 299): YELLOW, (639, 479): BACKGROUND})
        self.assertEqual(viewer.state()[6:8], [0, 0])


class TurnedAndInverted(ViewerTest):
    def test_four_turns_come_round(self):
        viewer = self.open()
        viewer.press("ctrl+1")
        for upper_left, upper_right, size in ((BLUE, RED, (300, 400)), (YELLOW, BLUE, (400, 300)),
                                              (GREEN, YELLOW, (300, 400)), (RED, GREEN, (400, 300))):
            viewer.press("ctrl+r")
            viewer.shows({(0, 0): upper_left, (size[0] - 1, 0): upper_right, (size[0], 0): BACKGROUND,
                          (0, size[1]): BACKGROUND})

    def test_a_turned_fax_has_its_true_proportions(self):
        viewer = self.open()
        viewer.press("Next", "ctrl+r")
        viewer.shows({(478, 0): BLACK, (242, 237): BLACK, (237, 0): WHITE, (478, 242): WHITE, (481, 10): BACKGROUND})
        viewer.place(400, 480)
        viewer.shows({(398, 0): BLACK, (202, 197): BLACK, (197, 0): WHITE, (398, 398): WHITE, (10, 402): BACKGROUND})

    def test_inverted(self):
        viewer = self.open()
        viewer.press("ctrl+i")
        viewer.shows({(10, 10): CYAN, (630, 470): BLUE})
        viewer.marks({"fit", "invert"})
        viewer.press("Next")
        viewer.shows({(10, 10): WHITE, (470, 470): BLACK, (500, 10): BACKGROUND})
        viewer.press("ctrl+i")
        viewer.shows({(10, 10): BLACK, (470, 470): WHITE, (500, 10): BACKGROUND})
        viewer.marks({"fit"})


class Scrolling(ViewerTest):
    def setUp(self):
        self.viewer = self.open()
        self.viewer.press("ctrl+1", "End")
        self.viewer.shows(corner(1, 1, *CELL))

    def last_cell_is_in_the_corner(self):
        _, _, width, height = self.viewer.state()[:4]
        return {(width - 1, height - 1): cell_color(7, 7), (width - 199, height - 149): cell_color(7, 7),
                (width - 202, height - 152): cell_color(6, 6)}

    def test_arrow_keys(self):
        self.viewer.press("Down", "Right", "Right")
        self.viewer.shows(corner(1, 1, 120, 110))
        self.viewer.press("Up", "Left")
        self.viewer.shows(corner(1, 1, 160, 150))
        self.viewer.press("Up", "Left", "Left")
        self.viewer.shows(corner(1, 1, *CELL))

    def test_the_wheel(self):
        self.viewer.click(300, 200, 5)
        self.viewer.shows(corner(1, 1, 200, 30))
        self.viewer.click(300, 200, 5, holding="shift")
        self.viewer.shows(corner(1, 1, 80, 30))
        self.viewer.click(300, 200, 4)
        self.viewer.shows(corner(1, 1, 80, 150))
        self.viewer.click(300, 200, 4, holding="shift")
        self.viewer.shows(corner(1, 1, *CELL))

    def test_parts_of_a_notch_of_the_wheel_add_up(self):
        self.addCleanup(self.viewer.probe.ask, "lines", 3)
        self.viewer.probe.ask("lines", 1)
        for _ in range(12):
            self.viewer.probe.ask("wheel", -10)
        self.viewer.shows(corner(1, 1, 200, 110))
        for _ in range(6):
            self.viewer.probe.ask("wheel", -20, "shift")
        self.viewer.shows(corner(1, 1, 160, 110))
        for _ in range(24):
            self.viewer.probe.ask("wheel", 5)
        self.viewer.shows(corner(1, 1, 160, 150))

    def test_the_wheel_scrolls_by_screenfuls_when_the_user_wants_that(self):
        self.addCleanup(self.viewer.probe.ask, "lines", 3)
        self.viewer.probe.ask("lines", -1)
        height = self.viewer.state()[3]
        for _ in range(4):
            self.viewer.probe.ask("wheel", -30)
        # What was 40 pixels above the lower edge is at the upper one.
        row, hidden = divmod(height - 40, CELL[1])
        self.viewer.shows({(10, 0): cell_color(0, row), (10, CELL[1] - hidden): cell_color(0, row + 1)})

    def test_arrow_keys_move_a_page_of_any_size(self):
        viewer = self.viewer
        viewer.probe.ask("drop", windows_path(self.file("endless.tif", made_pages.tiff([made_pages.endless()]))))
        viewer.has_caption("endless.tif - page 1 of 1 - Viewer")
        viewer.press("ctrl+2")
        viewer.shows({(10, 10): BLACK, (106, 10): WHITE, (202, 10): WHITE, (298, 10): BLACK})
        viewer.press("Right")
        viewer.shows({(10, 10): WHITE, (106, 10): WHITE, (202, 10): BLACK, (298, 10): WHITE})
        viewer.press("Right")
        viewer.shows({(10, 10): WHITE, (106, 10): BLACK, (202, 10): WHITE, (298, 10): WHITE})
        viewer.press("Left", "Left")
        viewer.shows({(10, 10): BLACK, (106, 10): WHITE, (202, 10): WHITE, (298, 10): BLACK})

    def test_the_arrows_of_the_scroll_bars(self):
        _, _, width, height = self.viewer.state()[:4]
        self.viewer.click(width + 8, height - 8)
        self.viewer.shows(corner(1, 1, 200, 110))
        self.viewer.click(width - 8, height + 8)
        self.viewer.shows(corner(1, 1, 160, 110))

    def test_the_thumb_reaches_the_end_of_the_page(self):
        _, _, width, height = self.viewer.state()[:4]
        self.viewer.drag((width + 8, 24), (width + 8, height - 2))
        self.viewer.drag((24, height + 8), (width - 2, height + 8))
        self.viewer.shows(self.last_cell_is_in_the_corner())

    def test_a_larger_window_goes_on_showing_the_same_part(self):
        _, _, width, height = self.viewer.state()[:4]
        self.viewer.drag((width + 8, 24), (width + 8, height - 2))
        self.viewer.drag((24, height + 8), (width - 2, height + 8))
        self.viewer.shows(self.last_cell_is_in_the_corner())
        self.viewer.place(500, 300)
        self.viewer.shows(self.last_cell_is_in_the_corner())
        self.viewer.place(700, 500)
        self.viewer.shows(self.last_cell_is_in_the_corner())

    def test_a_turned_page_goes_on_showing_the_same_part(self):
        self.viewer.press("ctrl+r")
        _, _, width, _ = self.viewer.state()[:4]
        # What was the upper left corner is the upper right one.
        self.viewer.shows({(width - 1, 0): cell_color(0, 0), (width - 149, 199): cell_color(0, 0),
                           (width - 152, 202): cell_color(1, 1)})

    def test_another_page_begins_at_its_start(self):
        self.viewer.press("Down", "Right")
        self.viewer.shows(corner(1, 1, 160, 110))
        self.viewer.press("Prior", "Next")
        self.viewer.shows(corner(1, 1, *CELL))


class TakingPages(ViewerTest):
    def test_copy_puts_the_page_on_the_clipboard(self):
        viewer = self.open()
        viewer.press("ctrl+c")
        viewer.until(lambda: viewer.probe.ask("clipboard") == "400 300", "the page on the clipboard")
        self.assertEqual(viewer.probe.ask("clipboard", 0, 0, 200, 149, 0, 150, 399, 299),
                         "400 300 255 0 0 0 255 0 0 0 255 255 255 0")
        viewer.press("Next", "ctrl+c")
        viewer.until(lambda: viewer.probe.ask("clipboard") == "816 392", "the fax on the clipboard")
        self.assertEqual(viewer.probe.ask("clipboard", 407, 195, 408, 195, 407, 196),
                         "816 392 0 0 0 255 255 255 255 255 255")

    def test_copy_takes_what_there_is_of_a_page_that_ends_early(self):
        viewer = self.open(made_pages.cut_off(made_pages.fax()))
        viewer.press("ctrl+c")
        viewer.until(lambda: viewer.probe.ask("clipboard") == "816 392", "the fax on the clipboard")
        viewer.press("Next", "ctrl+c")
        viewer.until(lambda: viewer.probe.ask("clipboard", 0, 0, 399, 99) == "400 300 255 0 0 0 255 0",
                     "the beginning of the page on the clipboard")
        viewer.press("Prior")
        viewer.has_caption("pages.tif - page 1 of 2 - Viewer")
        self.assertIsNone(viewer.dialog())

    def test_save_as_writes_the_page_in_the_chosen_compression(self):
        path = os.path.join(self.options.work, "saved.tif")
        viewer = self.open()
        viewer.press("Next", "Next")
        viewer.shows({(630, 470): cell_color(7, 7)})
        self.save(viewer, path, 1)
        self.same_pixels(path, 0, made_pages.cells().data, "PackBits")

        # The same name again: the page is added when the user agrees.
        viewer.press("Prior")
        self.add(viewer, path)
        viewer.has_caption("pages.tif - page 2 of 3 - Viewer")
        viewer.press("Prior")
        viewer.shows({(10, 10): RED})
        self.same_pixels(path, 1, made_pages.fax().data, "None")

    def test_a_page_in_dots_per_centimetre_is_saved_with_its_resolution(self):
        path = os.path.join(self.options.work, "centimetres saved.tif")
        viewer = self.open(made_pages.tiff([made_pages.centimetres()]))
        self.save(viewer, path, 0)
        told = self.same_pixels(path, 0, made_pages.centimetres().data, "None")
        self.assertIn("Resolution: 203, 101 pixels/inch", told)

    def test_a_save_that_is_cancelled_writes_nothing(self):
        path = os.path.join(self.options.work, "cancelled.tif")
        viewer = self.open()
        self.save_as(viewer, path)
        viewer.until(lambda: (viewer.dialog() or "").startswith("Saving"), "the save dialog")
        # Meanwhile the viewer takes no commands.
        viewer.click(5, 5)
        viewer.press("Next", "Escape")
        viewer.has_no_dialog()
        viewer.has_caption("pages.tif - page 1 of 3 - Viewer")
        viewer.press("Next")
        viewer.has_caption("pages.tif - page 2 of 3 - Viewer")
        self.assertFalse(os.path.exists(path))


def main():
    parser = argparse.ArgumentParser()
    for name in ("launcher", "viewer", "probe", "vellum", "work"):
        parser.add_argument("--" + name, required=True, type=os.path.abspath)
    options, names = parser.parse_known_args()
    shutil.rmtree(options.work, ignore_errors=True)
    os.makedirs(os.path.join(options.work, "screen"))
    ViewerTest.options = options
    ViewerTest.screen = Screen(os.path.join(options.work, "screen"))
    ViewerTest.wine = Wine(options.launcher, ViewerTest.screen.display, os.path.join(options.work, "wine"))
    try:
        ViewerTest.probe = Probe(ViewerTest.wine, options.probe)
        program = unittest.main(argv=[sys.argv[0], *names], exit=False, verbosity=1)
        ViewerTest.probe.close()
    finally:
        ViewerTest.wine.close()
        ViewerTest.screen.close()
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
