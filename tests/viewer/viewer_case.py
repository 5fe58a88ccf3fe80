"""What the viewer's tests have in common: starting it with a file, saving, and the colours of the window."""
import os
import subprocess
import unittest

import made_pages
from driven_viewer import Viewer

BACKGROUND = (128, 128, 128)
LABEL = (255, 255, 255)  # behind a message in the window


class ViewerTest(unittest.TestCase):
    screen = wine = probe = options = None

    def start(self, *words):
        viewer = Viewer(self.screen, self.wine, self.probe, self.options.viewer, *words,
                        picture=os.path.join(self.options.work, self._testMethodName + ".png"))
        self.addCleanup(lambda: self.assertEqual(viewer.close(), 0))
        viewer.place()
        return viewer

    def file(self, name, content):
        path = os.path.join(self.options.work, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def open(self, content=None, name="pages.tif"):
        """Starts a viewer with a file on its command line."""
        return self.start(windows_path(self.file(name, content or made_pages.three_pages())))

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def choose(self, viewer, path):
        """Enters a path in the system's dialog for a file to save in."""
        viewer.has_dialog("Save As")
        viewer.press("ctrl+a")
        viewer.type(windows_path(path))
        viewer.press("Return")

    def save_as(self, viewer, path):
        viewer.press("ctrl+s")
        self.choose(viewer, path)

    def take_save_dialog(self, viewer, *keys):
        """Leaves the library's save dialog as it comes, or by these keys, with nothing more to be said."""
        viewer.until(lambda: (viewer.dialog() or "").startswith("Saving"), "the save dialog")
        viewer.press(*keys or ["Return"])
        viewer.has_no_dialog()

    def save(self, viewer, path, downs):
        """Saves with the compression that is so many arrow keys away from the first one."""
        self.save_as(viewer, path)
        self.take_save_dialog(viewer, *["Down"] * downs, "Return")
        viewer.until(lambda: os.path.exists(path), "the file")

    def add(self, viewer, path, *keys, message=None):
        """Saves in a file that is there already; message: what is said at the end."""
        self.save_as(viewer, path)
        viewer.has_dialog("Viewer")
        self.assertIn("Add the page", viewer.dialog(0xFFFF))
        viewer.press("Return")
        if message is None:
            self.take_save_dialog(viewer, *keys)
            return
        viewer.until(lambda: (viewer.dialog() or "").startswith("Saving"), "the save dialog")
        viewer.press(*keys)
        viewer.until(lambda: message in (viewer.dialog(0xFFFF) or ""), "a message: " + message)
        viewer.press("Return")
        viewer.has_no_dialog()

    def same_pixels(self, path, page, data, compression):
        """libtiff's judgement of a page that was saved. Result: what else it tells of the page."""
        said = subprocess.run(["tiffinfo", "-%d" % page, path], capture_output=True, text=True, check=True).stdout
        self.assertIn("Compression Scheme: " + compression, said)
        plain = os.path.join(self.options.work, "plain.tif")
        subprocess.run(["tiffcp", "-c", "none", "-r", "100000", "%s,%d" % (path, page), plain], check=True)
        with open(plain, "rb") as file:
            self.assertIn(data, file.read())
        return said


def windows_path(path):
    return "Z:" + path.replace("/", "\\")
