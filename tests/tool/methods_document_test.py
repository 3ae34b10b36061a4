"""docs/methods.md: that what it says is what picturehost does, and what both documents' commands do."""

import os
import re
import subprocess

from harness import PICTUREHOST, PicturehostTest, main
from method_documents import (
    DECLARATIONS,
    FORMATS,
    METHODS,
    MINUS,
    NOTHING,
    ROOT,
    blocks,
    number,
    registered,
    sections,
    tables,
)
from png import read_png, write_png

EVERY_YIELD = -(2**31)  # the one period that is due at each point


class Declarations(PicturehostTest):
    def documented(self):
        return [" ".join(block.split()) for block in blocks(METHODS, "declaration")]

    def test_are_those_that_are_registered(self):
        self.assertEqual(sorted(self.documented()), sorted(registered("2012").values()))

    def test_are_registered_on_newer_hosts_with_their_receiver(self):
        extended = [text.replace("(", "(extends ref as Picture, ") for text in self.documented()]
        self.assertEqual(sorted(extended), sorted(registered("2013.04").values()))

    def test_stand_at_the_head_of_their_sections(self):
        for name, declaration in DECLARATIONS.items():
            first = blocks(sections()[name], "declaration")
            self.assertEqual([" ".join(block.split()) for block in first], [declaration.text])

    def test_arguments_have_their_types_and_defaults(self):
        for name, declaration in DECLARATIONS.items():
            (rows,) = tables(sections()[name], "Argument")
            told = [[row[0].strip("`"), row[1], row[2]] for row in rows]
            wanted = [[p.name, p.kind, p.default or NOTHING] for p in declaration.parameters]
            self.assertEqual(told, wanted, name)


class Ranges(PicturehostTest):
    """Runs every method at, within and beyond both ends of what is said of its arguments."""

    def setUp(self):
        super().setUp()
        write_png(self.folder / "in.png", [[(0, 0, 0)]])
        write_png(self.folder / "clear.png", [[(0, 0, 0, 128)]])
        write_png(self.folder / "white.png", [[(255, 255, 255)]])

    GIVEN = {"mode": 1, "width": 2, "height": 2, "Radius": 1, "pic": "white.png", "x": 0, "y": 0}

    def call(self, name, argument, value, picture="in.png"):
        """The pixels that come out, or None."""
        parameters = DECLARATIONS[name].parameters
        values = {p.name: self.GIVEN[p.name] for p in parameters if p.default is None}
        values[argument] = value
        words = [f"{key}={given}" for key, given in values.items()]
        result = self.picturehost("run", picture, name, *words, "-o", "out.png")
        self.assertIn(result.returncode, (0, 1), result.stderr)
        return self.pixels() if result.returncode == 0 else None

    def rows(self, pattern):
        for name in DECLARATIONS:
            (table,) = tables(sections()[name], "Argument")
            for row in table:
                match = re.match(pattern, row[3])
                if match:
                    yield name, row[0].strip("`"), [number(g) for g in match.groups()], row

    def test_of_whole_numbers_end_in_nil(self):
        seen = 0
        for name, argument, (least, most), row in self.rows(r"(\d+) to (\d+)"):
            if row[1] != "integer":
                continue
            seen += 1
            least, most = int(least), int(most)
            self.assertEqual(row[4], "nil")
            for value, accepted in [(least - 1, False), (least, True), (most, True),
                                    (most + 1, False), (-1, False), (2**31 - 1, False)]:  # fmt: skip
                done = self.call(name, argument, value) is not None
                self.assertEqual(done, accepted, f"{name} {argument} {value}")
        self.assertEqual(seen, 7)

    def test_of_sizes_have_no_upper_end_with_an_alpha_channel_where_that_is_said(self):
        for name, argument, (_, most), row in self.rows(r"(\d+) to (\d+)"):
            if argument in ("width", "height"):
                done = self.call(name, argument, int(most) + 1, "clear.png") is not None
                self.assertEqual(done, "with an alpha channel, from 1" in row[3], name)

    def test_of_the_radius_end_without_blurring(self):
        ((name, argument, (least, most), row),) = self.rows(r"(\d+) to (\d+), as memory allows")
        self.assertEqual((name, argument), ("BlurZVQ", "Radius"))
        self.assertEqual(row[4], "below: the picture itself; above: not blurred")
        write_png(self.folder / "edge.png", [[(0, 0, 0), (255, 255, 255)]])
        itself = [[(0, 0, 0), (255, 255, 255)]]
        white = [[(255, 255, 255)] * 2]
        self.assertEqual(self.call(name, argument, least - 0.001, "edge.png"), itself)
        self.assertNotIn(self.call(name, argument, least, "edge.png"), (itself, white))
        self.assertNotIn(self.call(name, argument, 2000, "edge.png"), (itself, white))
        self.assertEqual(self.call(name, argument, most + 1, "edge.png"), white)
        self.assertIn(f"From {most + 1:.0f} up", METHODS)

    def test_of_places_end_where_nothing_appears(self):
        rows = list(self.rows(rf"({MINUS}\d+) to (\d+)"))
        self.assertEqual([(name, argument) for name, argument, _, _ in rows],
                         [("DrawPictureFZVQ", "x"), ("DrawPictureFZVQ", "y")])  # fmt: skip
        for name, argument, ends, row in rows:
            self.assertEqual(ends, [-(2**31), 2**31 - 1])
            self.assertEqual(row[4], "nothing appears")
            for beyond in (ends[0] - 1, ends[1] + 1, 1e300, -1e300):
                self.assertEqual(self.call(name, argument, beyond), [[(0, 0, 0)]])
        self.assertEqual(self.call("DrawPictureFZVQ", "x", 0), [[(255, 255, 255)]])

    def test_of_the_opacity_is_not_limited(self):
        write_png(self.folder / "in.png", [[(100, 100, 100)]])
        write_png(self.folder / "white.png", [[(50, 50, 50)]])
        for alpha, level in ((0, 100), (1, 50), (2, 100), (6, 255), (-1, 150), (-20, 255)):
            drawn = self.call("DrawPictureFZVQ", "alpha", alpha)
            self.assertEqual(drawn, [[(level,) * 3]], alpha)

    def test_white_between_pixels_becomes_what_is_said(self):
        (level,) = re.findall(r"white at \(0\.5, 0\.5\) becomes\s+(\d+)", METHODS)
        write_png(self.folder / "in.png", [[(0, 0, 0)] * 4] * 4)
        write_png(self.folder / "white.png", [[(255, 255, 255)] * 4] * 4)
        words = ("run", "in.png", "DrawPictureFZVQ", "white.png", 0.5, 0.5, "-o", "out.png")
        self.assert_done(self.picturehost(*words))
        self.assertEqual(self.pixels()[2][2], (int(level),) * 3)


class Commands(PicturehostTest):
    """Runs the commands of a document, all in one folder, and compares what they print and draw."""

    def steps(self, text):
        """(command, output) pairs."""
        steps = []
        for block in blocks(text, "text"):
            for line in block.splitlines():
                if line.startswith("$ "):
                    steps.append([line[2:], ""])
                elif line.startswith("> "):
                    steps[-1][0] += "\n" + line[2:]
                else:
                    steps[-1][1] += line + "\n"
        return steps

    def play(self, text):
        environment = dict(os.environ, LC_ALL="C")
        environment["PATH"] = os.path.dirname(PICTUREHOST) + ":" + environment["PATH"]
        for command, output in self.steps(text):
            with self.subTest(command):
                result = subprocess.run(
                    ["sh", "-c", command], cwd=self.folder, env=environment, timeout=100,
                    stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                    text=True,
                )  # fmt: skip
                self.assertEqual(result.stdout, output)
                refused = output.startswith("picturehost: ")
                self.assertEqual(result.returncode, 1 if refused else 0)

    def pictures(self, text):
        return set(re.findall(r"!\[[^]\n]+\]\(images/([\w.-]+)\)", text))

    def test_of_methods_do_and_draw_what_is_said(self):
        self.play(METHODS)
        pictures = self.pictures(METHODS)
        self.assertEqual(len(pictures), 6)
        for name in pictures:
            with self.subTest(name):
                drawn = read_png(self.folder / name)
                self.assertTrue(drawn == read_png(ROOT / "docs/images" / name), "drawn otherwise")

    def test_of_pixel_formats_do_what_is_said(self):
        self.play(FORMATS)

    def test_outside_blocks_name_only_what_there_is(self):
        known = re.findall(r"^  ([a-z]+) ", self.picturehost("--help").stdout, re.MULTILINE)
        self.assertIn("run", known)
        for text in (METHODS, FORMATS):
            prose = re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)
            for command in re.findall(r"`picturehost (\w+)", prose):
                self.assertIn(command, known)
            for option in re.findall(r"`(--[\w-]+)[ `]", prose):
                self.assertIn(option, self.picturehost("run", "--help").stdout)

    def test_links_lead_somewhere(self):
        for text in (METHODS, FORMATS):
            for target in re.findall(r"\]\(([^)]+)\)", text):
                path, _, anchor = target.partition("#")
                self.assertTrue((ROOT / "docs" / path).exists(), target)
                if anchor:
                    self.assertIn("# " + anchor.replace("-", " "), METHODS.lower())


class Numbers(PicturehostTest):
    def words(self, call):
        """A call as it stands in a table, as words of the command line."""
        name, inner = re.fullmatch(r"`(\w+)\((.*)\)`", call).groups()
        values = [value.strip() for value in inner.split(",")]
        kinds = [p.kind for p in DECLARATIONS[name].parameters]
        return [name] + [v + ".png" if k == "picture" else v for v, k in zip(values, kinds)]

    def test_of_yields(self):
        (rows,) = tables(METHODS, "Call, on a picture of 640 × 480")
        self.assertEqual({self.words(row[0])[0] for row in rows}, set(DECLARATIONS))
        for sample in ("scene", "stamp"):
            self.assert_done(self.picturehost("sample", sample, "-o", f"{sample}.png"))
        for call, _, times in rows:
            words = self.words(call)
            period = f"{DECLARATIONS[words[0]].parameters[-1].name}={EVERY_YIELD}"
            words = ("run", "scene.png", *words, period, "--trace", "-o", "out.png")
            result = self.picturehost(*words)
            self.assertEqual(result.returncode, 0)
            yields = re.findall(r"^REALYieldToRB\(", result.stderr, re.MULTILINE)
            self.assertEqual(len(yields), int(times), call)

    def test_of_costs_are_those_that_were_measured(self):
        (rows,) = tables((ROOT / "docs/speed.md").read_text(), "Work")
        # A row that names no size goes on with those of the row before.
        measured, pixels = [], 0
        for row in rows:
            sizes = [int(w) * int(h) for w, h in re.findall(r"(\d+)×(\d+)", row[0])]
            pixels = max(sizes, default=pixels)
            # "→" alone: from the source of the row before.
            if row[0].startswith("→") and "AntiAlias" not in row[0]:
                pixels = 4000 * 3000
            measured.append(float(row[1]) * 1e6 / pixels)
        self.assertEqual(len(measured), 25)
        told = [float(cell) for cell in re.findall(r"\| (\d+\.\d+)(?= \|)", sections()["Cost"])]
        self.assertEqual(len(told), len(measured))
        for row, says, was in zip(rows, told, measured):
            self.assertAlmostEqual(says, was, delta=0.0051, msg=row[0])

    def test_of_what_comes_out_with_alpha_channels_and_masks(self):
        (rows,) = tables(METHODS, "Method")
        calls = {
            "`ScaleZVQ`": ("ScaleZVQ", 2, 2),
            "`ScaleZVQ`, enlarging with `AntiAlias`": ("ScaleZVQ", 8, 8, "true"),
            "`ScaleImageAndMaskZVQ`": ("ScaleImageAndMaskZVQ", 8, 8, "true"),
            "`ScalingZVQ`": ("ScalingZVQ", 1, 2, 2),
            "`BlurZVQ`": ("BlurZVQ", 1),
            "`DrawPictureFZVQ`": ("DrawPictureFZVQ", "in.png", 0, 0),
        }
        self.assertEqual([row[0] for row in rows], list(calls))
        pixel = (200, 100, 50, 128)
        write_png(self.folder / "clear.png", [[pixel] * 4] * 4)
        alphas = {
            "alpha channel; opaque": {255},
            "alpha of every pixel becomes opaque": {255},
            "alpha channel, scaled alongside": {128},
            "not scaled: a cut-out of the requested size, with a mask": {128},
            "opaque picture": {None},
            "no mask": {None},
            "mask, scaled alongside": {128},
            "keeps its mask": {128},
        }
        for method, *told in rows:
            for alpha, outcome in zip(("channel", "mask"), told):
                words = ("clear.png", *calls[method], "--alpha", alpha, "-o", "out.png")
                self.assert_done(self.picturehost("run", *words))
                seen = {p[3] if len(p) == 4 else None for row in self.pixels() for p in row}
                self.assertEqual(seen, alphas[outcome], f"{method}, {alpha}")

    def test_of_one_pixel_through_every_method(self):
        (rows,) = tables(FORMATS, "Call")
        write_png(self.folder / "pixel.png", [[(200, 100, 50, 128)]])
        write_png(self.folder / "white.png", [[(255, 255, 255)]])
        self.assertEqual({self.words(row[0])[0] for row in rows}, set(DECLARATIONS))
        hosts = (("desktop", "channel"), ("console", "channel"), ("desktop", "mask"))
        for call, *cells in rows:
            words = self.words(call)
            receiver = "white.png" if "pixel.png" in words else "pixel.png"
            for (kind, alpha), cell in zip(hosts, cells):
                options = ("--kind", kind, "--alpha", alpha, "-o", "out.png")
                self.assert_done(self.picturehost("run", receiver, *words, *options))
                wanted = tuple(int(value) for value in cell.split())
                self.assertEqual(self.pixels()[0][0], wanted, f"{call} {kind} {alpha}")


if __name__ == "__main__":
    main()
