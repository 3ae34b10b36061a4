"""picturehost: the host that its options describe, the trace, and what the plug-in registers."""

import pathlib
import re
import shutil
import subprocess

from harness import PICTUREHOST, TRIAL_PLUGIN, PicturehostTest, main
from png import write_png

BUILT_PLUGIN = pathlib.Path(PICTUREHOST).with_name("Varnell.so")
CLEAR = [[(255, 100, 0, 255), (200, 10, 20, 128), (9, 8, 7, 0)]]


class Transparency(PicturehostTest):
    def setUp(self):
        super().setUp()
        write_png(self.folder / "clear.png", CLEAR)

    def saved(self, name, *words, method=("Echo", 1)):
        self.assert_done(self.trial(name, *method, *words, "-o", "out.png"))
        return self.pixels()

    def test_as_an_alpha_channel_of_premultiplied_pixels(self):
        # 200 * 128 / 255 is stored as 100, and 100 * 255 / 128 is 199.2.
        expected = [[(255, 100, 0, 255), (199, 10, 20, 128), (0, 0, 0, 0)]]
        self.assertEqual(self.saved("clear.png"), expected)
        for pixel_format in range(1, 7):
            saved = self.saved("clear.png", "--alpha", "channel", "--pixel-format", pixel_format)
            self.assertEqual(saved, expected)

    def test_as_an_alpha_channel_of_straight_pixels_in_host_buffers(self):
        for kind in ("console", "web"):
            self.assertEqual(self.saved("clear.png", "--kind", kind), CLEAR)

    def test_as_a_mask(self):
        for kind in ("desktop", "web", "console", "none"):
            saved = self.saved("clear.png", "--alpha", "mask", "--kind", kind)
            self.assertEqual(saved, CLEAR)
            mask = self.saved("clear.png", "--alpha", "mask", "--kind", kind, method=("MaskOf",))
            self.assertEqual(mask, [[(0,) * 3, (127,) * 3, (255,) * 3]])

    def test_dropped(self):
        opaque = [[pixel[:3] for pixel in row] for row in CLEAR]
        for kind in ("desktop", "console"):
            self.assertEqual(self.saved("clear.png", "--alpha", "drop", "--kind", kind), opaque)

    def test_of_a_palette_and_of_greys(self):
        write_png(
            self.folder / "a.png", [[(0,), (1,)]], palette=[(1, 2, 3), (4, 5, 6)],
            transparency=b"\xff\x80",
        )  # fmt: skip
        write_png(self.folder / "b.png", [[(90, 255), (80, 40)]])
        self.assertEqual(self.saved("a.png", "--alpha", "mask"), [[(1, 2, 3, 255), (4, 5, 6, 128)]])
        self.assertEqual(
            self.saved("b.png", "--alpha", "mask"), [[(90, 90, 90, 255), (80, 80, 80, 40)]]
        )

    def test_a_picture_without_it_stays_opaque(self):
        for alpha in ("channel", "mask", "drop"):
            saved = self.saved("in.png", "--alpha", alpha)
            self.assertEqual(saved, [[(10, 20, 30), (30, 40, 50)]])

    def test_a_transparent_picture_argument_is_laid_over_the_receiver(self):
        write_png(self.folder / "over.png", [[(90, 80, 70, 255), (0, 0, 0, 0)]])
        for alpha in ("channel", "mask"):
            saved = self.saved("in.png", "--alpha", alpha, method=("Overlay", "over.png"))
            self.assertEqual(saved, [[(90, 80, 70), (30, 40, 50)]])


class HostOptions(PicturehostTest):
    def answer(self, *words):
        result = self.trial("in.png", *words, "-o", "out.png")
        self.assert_done(result)
        return int(result.stdout)

    def test_pixel_format_is_that_of_the_bitmap_context(self):
        self.assertEqual(self.answer("Format"), 6)
        for pixel_format in range(1, 7):
            for kind in ("desktop", "none"):
                words = ("Format", "--pixel-format", pixel_format, "--kind", kind)
                self.assertEqual(self.answer(*words), pixel_format)
                self.assertEqual(self.pixels(), [[(10, 20, 30), (30, 40, 50)]])

    def test_alpha_channels_have_the_premultiplied_format_of_the_same_order(self):
        write_png(self.folder / "in.png", CLEAR)
        for pixel_format, expected in ((1, 1), (2, 2), (3, 1), (4, 2), (5, 1), (6, 2)):
            self.assertEqual(self.answer("Format", "--pixel-format", pixel_format), expected)

    def test_new_pictures_have_the_formats_of_given_ones(self):
        for pixel_format, clear in ((1, 1), (2, 2), (3, 1), (4, 2), (5, 1), (6, 2)):
            option = ("--pixel-format", pixel_format)
            self.assertEqual(self.answer("FormatOfOpaque", *option), pixel_format)
            self.assertEqual(self.answer("FormatOfClear", *option), clear)
            self.assertEqual(self.answer("FormatOfClear", *option, "--kind", "web"), 8)

    def test_console_and_web_hosts_have_host_buffers(self):
        for kind in ("console", "web", "Console"):
            self.assertEqual(self.answer("Format", "--kind", kind, "--pixel-format", 3), 8)

    def test_new_pictures_start_white_or_transparent(self):
        for kind in ("desktop", "web", "console", "none"):
            for method, pixel in (("Opaque", (255,) * 3), ("Clear", (0,) * 4)):
                words = ("in.png", method, 2, 3, "--kind", kind, "-o", "out.png")
                self.assert_done(self.trial(*words))
                self.assertEqual(self.pixels(), [[pixel] * 2] * 3)

    def test_scaling_gives_the_same_picture_in_every_kind_format_and_version(self):
        write_png(self.folder / "in.png", [[(10, 20, 30), (30, 40, 50)], [(1, 1, 1), (99, 9, 9)]])
        expected = [[(20, 30, 40)]]
        for kind in ("desktop", "web", "console", "none"):
            for version in ("2009", "2010.029", "2012", "2013.04", "3000"):
                words = ("ScaleZVQ", 1, 1, "--kind", kind, "--host-version", version)
                self.assert_done(self.picturehost("run", "in.png", *words, "-o", "out.png"))
                self.assertEqual(self.pixels(), expected)
        for pixel_format in range(1, 7):
            words = ("ScaleZVQ", 1, 1, "--pixel-format", pixel_format)
            self.assert_done(self.picturehost("run", "in.png", *words, "-o", "out.png"))
            self.assertEqual(self.pixels(), expected)

    def test_a_picture_of_the_requested_size_is_saved_all_the_same(self):
        self.assert_done(self.picturehost("run", "in.png", "ScaleZVQ", 2, 1, "-o", "out.png"))
        self.assertEqual(self.pixels(), [[(10, 20, 30), (30, 40, 50)]])

    def test_a_smooth_enlargement_keeps_the_transparency_of_an_alpha_channel(self):
        write_png(self.folder / "in.png", [[(50, 60, 70, 0)] * 2] * 2)
        words = ("run", "in.png", "ScaleZVQ", 4, 4, "true", "-o", "out.png")
        self.assert_done(self.picturehost(*words))
        self.assertEqual(self.pixels(), [[(0, 0, 0, 0)] * 4] * 4)


class Trace(PicturehostTest):
    def trace(self, *words):
        result = self.picturehost("run", "in.png", *words, "--trace", "-o", "out.png")
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stderr.splitlines()

    def test_tells_every_host_call_in_order(self):
        lines = self.trace("ScaleZVQ", 1, 1)
        wanted = [
            r"resolve\(REALGetRBVersion\)",
            r"REALGetRBVersion\(\) = 2013\.04",
            r"RegisterPluginVersion\(13\)",
            r"PluginRegisterModule\(",
            r'REALGetPropValueInteger\(Picture#1, "Width"\) = 2$',
            r'REALGetPropValueInteger\(Picture#1, "Height"\) = 1$',
            r'REALGetPropValueBool\(Picture#1, "HasAlphaChannel"\) = false$',
            r"REALLockPictureDescription\(Picture#1, 8\) = 1",
            r"newPicture\(1, 1, 32\) = Picture#2",
            r"REALLockPictureDescription\(Picture#2, 8\) = 1",
            r"REALPictureClearCache\(Picture#2\)",
            r"unlockPictureDescription\(Picture#2\)",
            r"unlockPictureDescription\(Picture#1\)",
        ]
        position = 0
        for pattern in wanted:
            places = [i for i in range(position, len(lines)) if re.match(pattern, lines[i])]
            self.assertTrue(places, f"{pattern} not after line {position} of\n" + "\n".join(lines))
            position = places[0] + 1

    def test_shows_host_buffers_on_console_hosts(self):
        lines = self.trace("ScaleZVQ", 1, 1, "--kind", "console")
        self.assertIn("REALLockPictureDescription(Picture#1, 10) = 1", lines)

    def test_without_it_nothing_is_told(self):
        self.assert_done(self.picturehost("run", "in.png", "ScaleZVQ", 1, 1, "-o", "out.png"))


class Methods(PicturehostTest):
    NAMES = ["DrawPictureFZVQ", "ScaleZVQ", "ScaleImageAndMaskZVQ", "ScalingZVQ", "BlurZVQ"]

    def listing(self, *words):
        result = self.picturehost("methods", *words)
        self.assert_done(result)
        head = dict(line.split(": ", 1) for line in result.stdout.splitlines() if ": " in line)
        methods = [line.split(None, 1) for line in result.stdout.splitlines() if line[0] == " "]
        return head, methods

    def test_modules_on_hosts_from_2013_to_below_3000(self):
        for version, record in (("2013", 11), ("2013.03", 12), ("2013.04", 13), ("2999.99", 13)):
            head, methods = self.listing("--host-version", version)
            self.assertEqual(head["registered as"], "module")
            self.assertEqual(head["module"], "PictureVarnellExtensionZVQ")
            self.assertEqual(head["record version"], str(record))
            self.assertEqual(head["announced version"], str(record))
            self.assertEqual([text.split("(")[0] for _, text in methods], self.NAMES)
            for flags, text in methods:
                self.assertEqual(flags, "0x14")
                self.assertIn("(extends ref as Picture, ", text)

    def test_class_extensions_on_older_and_much_newer_hosts(self):
        cases = [("2009", 9, "0x0"), ("2010.029", 9, "0x4"), ("2012", 10, "0x4"), ("3000", 13, "0x4")]
        for version, record, wanted in cases:
            head, methods = self.listing("--host-version", version)
            self.assertEqual(head["registered as"], "class extension")
            self.assertEqual(head["class"], "Picture")
            self.assertEqual(head["class flags"], wanted)
            self.assertEqual(head["record version"], str(record))
            self.assertEqual([text.split("(")[0] for _, text in methods], self.NAMES)
            for flags, text in methods:
                self.assertEqual(flags, wanted)
                self.assertNotIn("extends", text)

    def test_the_plug_in_beside_the_tool_is_the_default(self):
        head, _ = self.listing()
        self.assertTrue(head["plug-in"].endswith("/Varnell.so"), head)

    def test_an_installed_plug_in_lies_in_the_library_folder_next_to_the_tools(self):
        tool = self.folder / "bin" / "picturehost"
        plugin = self.folder / "lib" / "varnell" / "Varnell.so"
        for path, source in ((tool, PICTUREHOST), (plugin, BUILT_PLUGIN)):
            path.parent.mkdir(parents=True)
            shutil.copy(source, path)
        result = subprocess.run([tool, "methods"], capture_output=True, text=True)
        self.assert_done(result)
        self.assertIn(f"plug-in: {plugin}\n", result.stdout)
        plugin.unlink()
        result = subprocess.run([tool, "methods"], capture_output=True, text=True)
        self.assert_refused(result, 2, "no plug-in beside", "--plugin")

    def test_another_plug_in(self):
        head, methods = self.listing("--plugin", TRIAL_PLUGIN)
        self.assertEqual(head["plug-in"], TRIAL_PLUGIN)
        self.assertIn(["0x4", "Leak as picture"], methods)


if __name__ == "__main__":
    main()
