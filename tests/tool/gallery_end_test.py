"""picturehost gallery: how it ends, and what a person at a terminal sees of it."""

import os
import re
import signal
import subprocess
import time

from gallery_harness import FAULTY_PLUGIN, GalleryTest, pattern, write_noise
from harness import PICTUREHOST, main
from png import write_png


class GalleryEnd(GalleryTest):
    def assert_no_page(self, result, status, *fragments):
        self.assert_refused(result, status, *fragments)
        self.assertFalse((self.folder / "out").exists())

    def test_a_missing_method_leaves_its_tiles_empty_and_fails(self):
        fault = self.faulty("dropped-method")
        page, errors = self.gallery("small.png", "--plugin", FAULTY_PLUGIN, status=1, **fault)
        lines = errors.splitlines()
        failed = [tile for tile in page.tiles if tile.classes == "failed"]
        self.assertEqual(len(failed), len(lines))
        for tile, line in zip(failed, lines):
            self.assertEqual(tile.images, [])
            self.assertEqual(line, "picturehost: " + tile.refusal)
            self.assertRegex(line, r"\w+\(…\) on .*small.png: the plug-in has no such method")
        self.assertEqual(len(page.tiles), 61)
        self.assertGreater(len(failed), 0)
        self.assertLess(len(failed), 30)

    def test_a_refused_call_says_so_in_its_tile_and_fails(self):
        write_png(self.folder / "wide.png", pattern(32768, 2))  # too wide to be blurred
        page, errors = self.gallery("wide.png", "small.png", status=1)
        (failed,) = (tile for tile in page.tiles if tile.classes == "failed")
        refusal = "BlurZVQ(327, 0) on wide.png of 32768x2 was refused by the plug-in: it returned nil"
        self.assertEqual(errors, f"picturehost: {refusal}\n")
        self.assertEqual((failed.call, failed.refusal), ("BlurZVQ(327, 0)", refusal))
        self.assertEqual((failed.images, failed.plots, failed.hash), ([], [], ""))
        self.assertTrue(all(tile.images or tile.plots for tile in page.tiles if tile is not failed))

    def test_what_a_plug_in_leaves_over_is_told(self):
        fault = self.faulty("leaked-reference")
        page, errors = self.gallery("small.png", "--plugin", FAULTY_PLUGIN, status=1, **fault)
        self.assertIn("the plug-in left something over", errors)
        self.assertTrue(any("left something over" in tile.refusal for tile in page.tiles))

    def test_a_bad_picture_makes_no_page(self):
        (self.folder / "bad.png").write_text("no picture")
        result = self.picturehost("gallery", "small.png", "bad.png", "-o", "out")
        self.assert_no_page(result, 2, "bad.png")
        result = self.picturehost("gallery", "missing.png", "-o", "out")
        self.assert_no_page(result, 2, "missing.png", "No such file")

    def test_wants_a_folder(self):
        self.assert_no_page(self.picturehost("gallery", "small.png"), 2, "-o DIR is missing")
        self.assert_no_page(self.picturehost("gallery", "small.png", "-o", ""), 2)

    def test_makes_no_more_than_one_folder(self):
        result = self.picturehost("gallery", "small.png", "-o", "out/deep")
        self.assert_no_page(result, 1, "out/deep", "No such file")

    def test_does_not_write_where_something_else_is(self):
        result = self.picturehost("gallery", "in.png", "-o", "small.png")
        self.assert_no_page(result, 1, "small.png/index.html", "Not a directory")
        (self.folder / "used/index.html").mkdir(parents=True)
        result = self.picturehost("gallery", "in.png", "-o", "used")
        self.assert_no_page(result, 1, "used/index.html", "folder")

    def test_replaces_an_older_page_and_nothing_else(self):
        (self.folder / "out").mkdir()
        (self.folder / "out/index.html").write_text("old")
        self.gallery("in.png")
        (self.folder / "out/note.txt").write_text("kept")
        result = self.picturehost("gallery", "in.png", "-o", "out/")
        self.assert_done(result)
        self.assertEqual(sorted(os.listdir(self.folder / "out")), ["index.html", "note.txt"])

    def test_takes_a_folder_with_a_slash_behind_it(self):
        self.assert_done(self.picturehost("gallery", "in.png", "-o", "new/"))
        self.assertEqual(os.listdir(self.folder / "new"), ["index.html"])

    def test_an_interruption_leaves_the_older_page(self):
        (self.folder / "out").mkdir()
        (self.folder / "out/index.html").write_text("old")
        process = subprocess.Popen(
            [PICTUREHOST, "gallery", "small.png", "-o", "out", "--plugin", FAULTY_PLUGIN],
            cwd=self.folder,
            **self.faulty("hang"),
        )
        time.sleep(0.5)
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(timeout=20), -signal.SIGINT)
        self.assertEqual(os.listdir(self.folder / "out"), ["index.html"])
        self.assertEqual((self.folder / "out/index.html").read_text(), "old")


class GalleryProgress(GalleryTest):
    def seen(self, *words, **environment):
        return self.seen_on_terminal("gallery", "-o", "out", *words, **environment)

    def setUp(self):
        super().setUp()
        write_noise(self.folder / "noise.png", 1200, 900)

    def test_a_bar_of_the_whole_grows_and_is_cleared_at_the_end(self):
        text = self.seen("noise.png", "noise.png")
        line = r"\r\x1b\[Kgallery \[([#-]{24})\] +(\d+) %  (\d+) of 94(?:: \w+)?"
        steps = [(bar.count("#"), int(percent), int(step)) for bar, percent, step in re.findall(line, text)]
        self.assertEqual(re.sub(line, "", text), "\r\x1b[K")
        self.assertGreaterEqual(len(steps), 5, text)
        self.assertEqual(steps, sorted(steps))
        for cells, percent, step in steps:
            self.assertLessEqual(percent, 100)
            self.assertIn(cells, (percent * 24 // 100, (percent + 1) * 24 // 100))
            self.assertTrue(1 <= step <= 94)

    def test_nothing_is_shown_to_who_wants_it_quiet(self):
        self.assertEqual(self.seen("noise.png", "--quiet"), "")
        self.assertEqual(self.seen("noise.png", NO_COLOR="1"), "")


if __name__ == "__main__":
    main()
