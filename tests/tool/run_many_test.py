"""picturehost run: several pictures, their outputs, processes, and the summary."""

import os
import resource
import subprocess
import time

from harness import PICTUREHOST, PicturehostTest, main
from png import write_png


class ManyPicturesTest(PicturehostTest):
    """a.png is 2x1, b.png 4x2, c.png 6x3."""

    def setUp(self):
        super().setUp()
        for number, name in enumerate(("a", "b", "c"), 1):
            row = [(10 * number, 20, 30)] * (2 * number)
            write_png(self.folder / f"{name}.png", [row] * number)

    def scale(self, *inputs, to="{name}-small.png", options=()):
        return self.picturehost("run", *inputs, "ScaleZVQ", "50%", "-o", to, *options)

    def assert_summary(self, result, status, *lines):
        self.assertEqual(result.stderr.splitlines(), ["picturehost: " + line for line in lines])
        self.assertEqual(result.returncode, status)

    def assert_made(self, *names):
        before = ["a.png", "b.png", "c.png", "in.png"]
        self.assertEqual(self.files(), sorted(before + list(names)))


class SeveralPictures(ManyPicturesTest):
    def test_each_is_saved_by_the_pattern(self):
        result = self.scale("a.png", "b.png", "c.png")
        self.assert_summary(result, 0, "3 of 3 done")
        self.assertEqual(result.stdout, "")
        self.assert_made("a-small.png", "b-small.png", "c-small.png")
        self.assertEqual(self.pixels("a-small.png"), [[(10, 20, 30)]])
        self.assertEqual(self.pixels("b-small.png"), [[(20, 20, 30)] * 2])
        self.assertEqual(self.pixels("c-small.png"), [[(30, 20, 30)] * 3] * 2)

    def test_placeholders(self):
        (self.folder / "sub").mkdir()
        for pattern, names in [
            ("x-{name}.{ext}", ["x-a.png", "x-b.png"]),
            ("{index}{index}.png", ["11.png", "22.png"]),
            ("sub/{index}-{name}.jpg", ["sub/1-a.jpg", "sub/2-b.jpg"]),
        ]:
            self.assert_summary(self.scale("a.png", "./b.png", to=pattern), 0, "2 of 2 done")
            for name in names:
                (self.folder / name).unlink()
        (self.folder / "sub").rmdir()
        self.assert_made()

    def test_numbers_have_as_many_digits_as_the_last(self):
        self.assert_summary(self.scale(*["a.png"] * 10, to="n{index}.png"), 0, "10 of 10 done")
        self.assert_made(*[f"n{number:02}.png" for number in range(1, 11)])

    def test_the_same_pixels_however_many_processes(self):
        for jobs in ("1", "2", "256", "0", "auto"):
            result = self.scale("a.png", "b.png", "c.png", options=("--jobs", jobs))
            self.assert_summary(result, 0, "3 of 3 done")
            self.assertEqual(self.pixels("c-small.png"), [[(30, 20, 30)] * 3] * 2)
            for name in "abc":
                (self.folder / f"{name}-small.png").unlink()

    def test_one_that_takes_long_among_more_than_files_may_be_open(self):
        os.mkfifo(self.folder / "slow")
        process = subprocess.Popen(
            [PICTUREHOST, "run", "slow", *["a.png"] * 299, "ScaleZVQ", "50%", "-o", "n{index}.png",
             "--jobs", "2"],
            cwd=self.folder, stderr=subprocess.PIPE, text=True,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (450, 450)),
        )  # fmt: skip
        while not (self.folder / "n200.png").exists():
            self.assertIsNone(process.poll())
            time.sleep(0.01)
        time.sleep(0.5)  # for more, of which there must be none
        (self.folder / "slow").write_bytes((self.folder / "b.png").read_bytes())
        self.assertEqual(process.communicate(timeout=100)[1], "picturehost: 300 of 300 done\n")
        self.assertEqual(self.pixels("n001.png"), [[(20, 20, 30)] * 2])

    def test_a_picture_called_like_a_method_is_written_with_its_folder(self):
        os.rename(self.folder / "b.png", self.folder / "ScaleZVQ")
        self.assert_summary(self.scale("a.png", "./ScaleZVQ"), 0, "2 of 2 done")
        self.assertEqual(self.pixels("ScaleZVQ-small.png"), [[(20, 20, 30)] * 2])
        result = self.picturehost("run", "a.png", "ScaleZVQ", "50%", "-o", "out.png")
        self.assert_done(result)

    def test_the_first_word_is_always_a_picture(self):
        os.rename(self.folder / "a.png", self.folder / "BlurZVQ")
        self.assert_done(self.picturehost("run", "BlurZVQ", "ScaleZVQ", "50%", "-o", "out.png"))
        self.assertEqual(self.pixels(), [[(10, 20, 30)]])

    def test_numbers_come_with_their_pictures(self):
        result = self.trial("a.png", "b.png", "IsNil", "nil", "-o", "{name}2.png")
        self.assert_summary(result, 0, "2 of 2 done")
        self.assertEqual(result.stdout, "a.png: 1\nb.png: 1\n")

    def test_what_plug_ins_write_stays_together_in_the_order_of_the_pictures(self):
        result = self.trial(
            "a.png", "b.png", "c.png", "Chatter", "-o", "{name}2.png", "--jobs", "3", "--quiet"
        )
        self.assertEqual(result.stdout, "")
        piece = "one one line\nline\nanother another lineline\n"
        self.assertEqual((result.returncode, result.stderr), (0, piece * 3))

    def test_each_loads_the_plug_in_for_itself_and_nobody_else_does(self):
        result = self.trial("a.png", "b.png", "Echo", "1", "-o", "{name}2.png", "--trace")
        self.assertEqual(result.stderr.count("RegisterPluginVersion(13)\n"), 2, result.stderr)
        self.assertEqual(result.stderr.count("REALBuildString("), 2)

    def test_one_picture_may_have_a_pattern_too(self):
        self.assert_done(self.scale("a.png", to="{index}-{name}.{ext}"))
        self.assert_done(self.scale("a.png", to="{other}.png"))
        self.assert_made("1-a.png", "{other}.png")


class BadPictures(ManyPicturesTest):
    def test_never_stop_the_others(self):
        (self.folder / "bad.png").write_text("no picture")
        for jobs in ("1", "3"):
            result = self.scale("a.png", "bad.png", "none.png", "c.png", options=("--jobs", jobs))
            lines = result.stderr.splitlines()
            self.assertEqual(len(lines), 3, result.stderr)
            self.assertIn("picturehost: bad.png: 'bad.png' is not a PNG, JPEG or BMP", lines[0])
            self.assertIn("picturehost: none.png: cannot read 'none.png': No such", lines[1])
            self.assertEqual(lines[2], "picturehost: 2 of 4 done, 2 failed")
            self.assertEqual(result.returncode, 1)
            self.assert_made("bad.png", "a-small.png", "c-small.png")

    def test_all_bad(self):
        result = self.scale("none.png", "nobody")
        self.assertEqual(result.returncode, 2)
        self.assertIn("picturehost: 0 of 2 done, 2 failed\n", result.stderr)

    def test_a_process_that_dies_is_one_failure(self):
        for orderly, how in [
            ("false", "was ended by signal 9 (Killed)"),
            ("true", "ended by itself, with status 0"),
        ]:
            result = self.trial("a.png", "b.png", "a.png", "Perish", "100%", orderly, "-o", "{index}.png")
            self.assert_summary(
                result, 1, f"b.png: Perish(4, 2, {orderly}): its process {how}", "2 of 3 done, 1 failed"
            )
            self.assert_made("1.png", "3.png")

    def test_refusals_and_exceptions(self):
        result = self.trial("a.png", "b.png", "Raise", "-o", "{name}2.png")
        self.assert_summary(
            result, 1,
            *(f"{name}.png: Raise() on Picture#1 of {size}: the plug-in raised "
              "OutOfBoundsException: too far out" for name, size in (("a", "2x1"), ("b", "4x2"))),
            "0 of 2 done, 2 failed",
        )  # fmt: skip
        self.assert_made()

    def test_an_output_that_cannot_be_written_is_one_failure(self):
        (self.folder / "b-small.png").mkdir()
        result = self.scale("a.png", "b.png")
        self.assert_summary(
            result, 1, "b.png: cannot write 'b-small.png': it is a folder", "1 of 2 done, 1 failed"
        )

    def test_a_size_that_one_picture_cannot_have(self):
        write_png(self.folder / "flat.png", [[(1, 2, 3)] * 3000])
        result = self.picturehost(
            "run", "flat.png", "a.png", "ScaleZVQ", "x1000000", "-o", "{name}2.png", "--quiet"
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn("flat.png: 'x1000000' of a picture of 3000x1 is more than", result.stderr)


class RefusedForAll(ManyPicturesTest):
    """What is wrong for all pictures is told in one line, before anything runs."""

    def refused(self, status, *fragments, **options):
        inputs = options.pop("inputs", ("a.png", "b.png"))
        self.assert_refused(self.scale(*inputs, **options), status, *fragments)
        self.assertFalse([name for name in self.files() if "small" in name])

    def test_outputs_that_do_not_tell_pictures_apart(self):
        self.refused(2, "need several outputs", "'out.png'", to="out.png")
        self.refused(2, "'a.png' and 'b.png' would both be saved as 'small.png'",
                     to="small.{ext}")  # fmt: skip
        self.refused(2, "'a.png' and './a.png' would both", inputs=("a.png", "./a.png"))

    def test_placeholders_that_there_are_not(self):
        self.refused(2, "'{nmae}'", "did you mean '{name}'?", to="{nmae}-small.png")
        self.refused(2, "'{}'", "none of {name}, {ext} and {index}\n", to="{}{name}-small.png")

    def test_outputs_that_are_read(self):
        self.refused(2, "the output 'a.png' of 'a.png'", to="{name}.png")
        (self.folder / "1.png").symlink_to("b.png")
        self.refused(2, "the output '1.png' of 'a.png'", "'b.png'", to="{index}.png")
        result = self.picturehost(
            "run", "a.png", "b.png", "ScaleImageAndMaskZVQ", "50%", "--mask", "c.png", "-o", "c.{ext}",
        )  # fmt: skip
        self.assert_refused(result, 2, "'c.png'")

    def test_outputs_of_another_kind(self):
        self.refused(2, "'a-small.bmp'", ".png, .jpg or .jpeg", to="{name}-small.bmp")

    def test_a_folder_that_is_not_there(self):
        self.refused(1, "cannot write 'new/a.png': No such file", to="new/{name}.png")
        self.assertFalse((self.folder / "new").exists())

    def test_a_mask_or_a_picture_argument_that_is_not_there(self):
        self.refused(2, "'none.png'", options=("--mask", "none.png"))
        result = self.picturehost(
            "run", "a.png", "b.png", "DrawPictureFZVQ", "none.png", "0", "0", "-o", "{name}2.png"
        )
        self.assert_refused(result, 2, "'none.png'")

    def test_arguments(self):
        result = self.picturehost("run", "a.png", "b.png", "ScaleZVQ", "big", "-o", "{name}2.png")
        self.assert_refused(result, 2, "'width' must be", "'big'")

    def test_numbers_of_processes(self):
        for jobs in ("-1", "257", "1.5", "many", ""):
            self.refused(2, "--jobs", "1 to 256", f"'{jobs}'", options=("--jobs", jobs))

    def test_plug_ins(self):
        self.refused(2, "no plug-in at 'none.so'", options=("--plugin", "none.so"))
        self.refused(2, "c.png: not a shared library", options=("--plugin", "c.png"))


if __name__ == "__main__":
    main()
