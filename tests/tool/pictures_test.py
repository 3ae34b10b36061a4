"""picturehost: which picture files it reads and writes, and how it leaves the folder behind."""

import os
import resource

from harness import PicturehostTest, main
from png import read_png, write_bmp, write_png

RED, BLUE = (200, 10, 20), (5, 15, 250)


def limit_files_to_100_bytes():
    resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))


class ReadsPictures(PicturehostTest):
    def saved(self, name):
        self.assert_done(self.trial(name, "Echo", 1, "-o", "out.png"))
        return self.pixels()

    def test_png_of_every_kind(self):
        cases = [
            ("grey", [[(7,), (250,)]], {}, [[(7, 7, 7), (250, 250, 250)]]),
            ("rgb", [[RED, BLUE]], {}, [[RED, BLUE]]),
            ("16 bits", [[(0x1234, 0xFFFF, 0x80FF)]], {"depth": 16}, [[(0x12, 0xFF, 0x80)]]),
            ("palette", [[(1,), (0,)]], {"palette": [RED, BLUE]}, [[BLUE, RED]]),
        ]
        for name, rows, options, expected in cases:
            with self.subTest(name):
                write_png(self.folder / "a.png", rows, **options)
                self.assertEqual(self.saved("a.png"), expected)

    def test_bmp(self):
        rows = [[RED, BLUE, RED], [BLUE, BLUE, RED]]
        write_bmp(self.folder / "a.bmp", rows)
        self.assertEqual(self.saved("a.bmp"), rows)

    def test_jpeg(self):
        write_png(self.folder / "flat.png", [[(60, 120, 180)] * 16] * 16)
        self.assert_done(self.trial("flat.png", "Echo", 1, "-o", "flat.jpg"))
        rows = self.saved("flat.jpg")
        self.assertEqual((len(rows), len(rows[0])), (16, 16))
        for row in rows:
            for pixel in row:
                for channel, wanted in zip(pixel, (60, 120, 180)):
                    self.assertLessEqual(abs(channel - wanted), 2)

    def test_info_tells_size_and_transparency(self):
        write_png(self.folder / "clear.png", [[(1, 2, 3, 4)]] * 3)
        for name, line in (("in.png", "2 1 opaque\n"), ("clear.png", "1 3 alpha\n")):
            result = self.picturehost("info", name)
            self.assert_done(result)
            self.assertEqual(result.stdout, line)


class RefusesPictures(PicturehostTest):
    def test_no_such_file(self):
        result = self.trial("none.png", "Echo", 1, "-o", "out.png")
        self.assert_refused(result, 2, "'none.png'", "No such file")

    def test_a_folder(self):
        (self.folder / "sub").mkdir()
        self.assert_refused(self.trial("sub", "Echo", 1, "-o", "out.png"), 2, "'sub'", "folder")

    def test_not_a_picture(self):
        (self.folder / "text.png").write_text("no picture at all")
        result = self.trial("text.png", "Echo", 1, "-o", "out.png")
        self.assert_refused(result, 2, "'text.png'", "not a PNG, JPEG or BMP")

    def test_an_empty_file(self):
        (self.folder / "empty.png").touch()
        self.assert_refused(self.trial("empty.png", "Echo", 1, "-o", "out.png"), 2, "'empty.png'")

    def test_a_picture_cut_off(self):
        whole = (self.folder / "in.png").read_bytes()
        (self.folder / "cut.png").write_bytes(whole[:45])
        self.assert_refused(self.trial("cut.png", "Echo", 1, "-o", "out.png"), 2, "'cut.png'")

    def test_a_missing_picture_argument(self):
        result = self.trial("in.png", "Overlay", "none.png", "-o", "out.png")
        self.assert_refused(result, 2, "'none.png'", "No such file")


class WritesPictures(PicturehostTest):
    def test_png_and_jpeg_by_ending_in_any_case(self):
        for name, start in (("o.PNG", b"\x89PNG"), ("o.jpg", b"\xff\xd8"), ("o.JPEG", b"\xff\xd8")):
            self.assert_done(self.trial("in.png", "Echo", 1, "-o", name))
            self.assertTrue((self.folder / name).read_bytes().startswith(start), name)

    def test_jpeg_lays_transparency_on_white(self):
        write_png(self.folder / "clear.png", [[(0, 0, 0, 0)] * 16] * 16)
        self.assert_done(self.trial("clear.png", "Echo", 1, "-o", "clear.jpg"))
        self.assert_done(self.trial("clear.jpg", "Echo", 1, "-o", "out.png"))
        self.assertEqual(self.pixels(), [[(255, 255, 255)] * 16] * 16)

    def test_the_old_output_is_replaced_with_its_mode_kept(self):
        output = self.folder / "out.png"
        output.write_text("old")
        output.chmod(0o640)
        self.assert_done(self.trial("in.png", "Echo", 1, "-o", "out.png"))
        self.assertEqual(self.pixels(), read_png(self.folder / "in.png"))
        self.assertEqual(output.stat().st_mode & 0o777, 0o640)
        self.assertEqual(self.files(), ["in.png", "out.png"])

    def test_a_new_output_has_the_usual_mode(self):
        self.assert_done(
            self.trial("in.png", "Echo", 1, "-o", "out.png", preexec_fn=lambda: os.umask(0o027))
        )
        self.assertEqual((self.folder / "out.png").stat().st_mode & 0o777, 0o640)

    def test_a_symbolic_link_is_followed(self):
        (self.folder / "sub").mkdir()
        (self.folder / "sub" / "real.png").write_text("old")
        (self.folder / "link.png").symlink_to("sub/real.png")
        self.assert_done(self.trial("in.png", "Echo", 1, "-o", "link.png"))
        self.assertTrue((self.folder / "link.png").is_symlink())
        self.assertEqual(self.pixels("sub/real.png"), read_png(self.folder / "in.png"))

    def test_the_input_may_be_the_output(self):
        self.assert_done(self.picturehost("run", "in.png", "ScaleZVQ", 1, 1, "-o", "in.png"))
        self.assertEqual(self.pixels("in.png"), [[(20, 30, 40)]])
        self.assertEqual(self.files(), ["in.png"])


class RefusesOutputs(PicturehostTest):
    def test_another_ending(self):
        for name in ("out.bmp", "out", "out.png.txt"):
            result = self.trial("in.png", "Echo", 1, "-o", name)
            self.assert_refused(result, 2, f"'{name}'", ".png, .jpg or .jpeg")
            self.assertEqual(self.files(), ["in.png"])

    def test_a_folder_that_is_not_there(self):
        result = self.trial("in.png", "Echo", 1, "-o", "none/out.png")
        self.assert_refused(result, 1, "'none/out.png'", "No such file")

    def test_a_file_in_place_of_the_folder(self):
        result = self.trial("in.png", "Echo", 1, "-o", "in.png/out.png")
        self.assert_refused(result, 1, "'in.png/out.png'", "Not a directory")

    def test_a_folder_in_place_of_the_file(self):
        (self.folder / "sub.png").mkdir()
        result = self.trial("in.png", "Echo", 1, "-o", "sub.png")
        self.assert_refused(result, 1, "'sub.png'", "folder")

    def test_a_pipe_in_place_of_the_file(self):
        os.mkfifo(self.folder / "pipe.png")
        (self.folder / "link.png").symlink_to("pipe.png")
        for name in ("pipe.png", "link.png"):
            result = self.trial("in.png", "Echo", 1, "-o", name)
            self.assert_refused(result, 1, f"'{name}'", "not a plain file")
            self.assertTrue((self.folder / "pipe.png").is_fifo())

    def test_before_the_plug_in_is_even_loaded(self):
        result = self.trial("in.png", "Echo", 1, "--trace", "-o", "none/out.png")
        self.assert_refused(result, 1, "'none/out.png'")

    def test_a_write_that_fails_half_way_leaves_the_old_output_and_no_other_file(self):
        output = self.folder / "kept.png"
        output.write_text("old")
        result = self.picturehost(
            "sample", "rings", "-o", "kept.png", preexec_fn=limit_files_to_100_bytes
        )
        self.assert_refused(result, 1, "'kept.png'", "File too large")
        self.assertEqual(output.read_text(), "old")
        self.assertEqual(self.files(), ["in.png", "kept.png"])

    def test_a_method_that_fails_leaves_the_old_output(self):
        output = self.folder / "kept.png"
        output.write_text("old")
        for words in (("Refuse",), ("Decline",), ("Leak",), ("Raise",), ("Echo", "x"), ("None",)):
            result = self.trial("in.png", *words, "-o", "kept.png")
            self.assertIn(result.returncode, (1, 2))
            self.assertEqual(output.read_text(), "old", words)
            self.assertEqual(self.files(), ["in.png", "kept.png"])


if __name__ == "__main__":
    main()
