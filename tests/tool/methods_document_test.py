"""docs/methods.md and docs/pixel-formats.md: that what they say is what picturehost does."""

import os
import pathlib
import re
import struct
import subprocess

from harness import PICTUREHOST, TRIAL_PLUGIN, PicturehostTest, main
from png import read_png, write_png

ROOT = pathlib.Path(__file__).resolve().parents[2]
METHODS = (ROOT / "docs/methods.md").read_text()
FORMATS = (ROOT / "docs/pixel-formats.md").read_text()
FAULTY_PLUGIN = os.environ["FAULTY_PLUGIN"]
EVERY_YIELD = -(2**31)  # the one period that is due at each point
MINUS, NOTHING = "\N{MINUS SIGN}", "\N{EN DASH}"


def blocks(text, kind):
    """The contents of the fenced blocks of that kind."""
    return re.findall(rf"^```{kind}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def tables(text, first):
    """The rows, without the two of the head, of the tables whose first column is called so."""
    found = []
    for table in re.findall(r"(?:^\|.*\n)+", text, re.MULTILINE):
        rows = [[cell.strip() for cell in line[1:-1].split("|")] for line in table.splitlines()]
        if rows[0][0] == first:
            found.append(rows[2:])
    return found


def sections():
    """The text of each second-level section by its heading."""
    parts = re.split(r"^## (.*)\n", METHODS, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def number(text):
    return float(text.replace(MINUS, "-").replace(",", ""))


class Parameter:
    def __init__(self, text):
        pattern = r"(\w+) as (\w+)(?:\s*=\s*(.*))?"
        self.name, kind, self.default = re.fullmatch(pattern, text.strip()).groups()
        self.kind = kind.lower()


class Declaration:
    def __init__(self, text):
        self.text = text
        self.name, inner, self.result = re.fullmatch(r"(\w+)\((.*)\) as (\w+)", text).groups()
        self.parameters = [Parameter(part) for part in inner.split(",")]

    def required(self):
        return sum(parameter.default is None for parameter in self.parameters)


def registered(version):
    result = subprocess.run(
        [PICTUREHOST, "methods", "--host-version", version],
        capture_output=True, text=True, check=True,
    )  # fmt: skip
    lines = [line.split(None, 1)[1] for line in result.stdout.splitlines() if line[0] == " "]
    return {line.split("(")[0]: line for line in lines}


DECLARATIONS = {name: Declaration(text) for name, text in registered("2012").items()}


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


class Examples(PicturehostTest):
    """The calls in the examples against the declarations; of the language, what they use."""

    ALWAYS = {"p": "Picture", "photo": "Picture", "frame": "Picture", "sprite": "Picture",
              "w": "Integer", "h": "Integer", "x": "Double", "y": "Double"}  # fmt: skip
    PROPERTIES = {"width": "integer", "height": "integer"}
    # All that the examples use of the host's own classes: what is not here must be declared.
    MEMBERS = set(
        "Append Child CopyColorChannels CopyMask Count DrawPicture Enabled FillRect ForeColor "
        "Graphics HasAlphaChannel Height Invalidate Item Mask Maximum Mode ModeMultiple ModeOff "
        "Name Open PathTypeNative Rect Run Save SaveAsPNG Value Width".split()
    )
    TAKES = {"integer": ("integer",), "double": ("integer", "double"), "boolean": ("boolean",),
             "picture": ("picture",)}  # fmt: skip

    def kind(self, expression, types):
        """The type of an expression of names, properties, numbers and arithmetic."""
        expression = expression.strip()
        if expression.lower() in ("true", "false"):
            return "boolean"
        kinds = set()
        for operand in re.split(r"[-+*/\\()]", expression):
            operand = operand.strip().lower()
            if re.fullmatch(r"\d+", operand):
                kinds.add("integer")
            elif re.fullmatch(r"\d*\.\d+", operand):
                kinds.add("double")
            elif operand:
                name, *properties = operand.split(".")
                known = types.get(name, "nothing known").lower()
                kinds.add(self.PROPERTIES.get(properties[-1], operand) if properties else known)
        if kinds <= {"integer", "double"}:
            return "double" if "/" in expression or "double" in kinds else "integer"
        return kinds.pop() if len(kinds) == 1 else "a mixture"

    def arguments(self, text):
        """What stands between the parenthesis that `text` begins with and its partner, split at
        commas, and what follows."""
        depth, parts = 0, [""]
        for at, character in enumerate(text):
            depth += {"(": 1, ")": -1}.get(character, 0)
            if depth == 0:
                return parts, text[at + 1 :]
            if character == "," and depth == 1:
                parts.append("")
            elif at > 0:
                parts[-1] += character
        self.fail(f"no end: {text}")

    def ranges(self, name):
        (rows,) = tables(sections()[name], "Argument")
        found = [re.match(rf"({MINUS}?\d+) to (\d+)", row[3]) for row in rows]
        return [tuple(map(number, match.groups())) if match else None for match in found]

    def check_call(self, line, types, wanted=None):
        """Checks the calls in a line; `wanted` is the type that the function returns."""
        members = re.findall(r"\.([A-Za-z]\w*)", re.sub(r'"[^"]*"', "", line))
        for name in members:
            if name in self.MEMBERS:
                continue
            self.assertIn(name, DECLARATIONS, line)
            declaration = DECLARATIONS[name]
            before, _, after = line.partition(name)
            receiver = re.search(r"(\w+)\.$", before)
            self.assertIsNotNone(receiver, line)
            self.assertEqual(types.get(receiver[1].lower()), "Picture", line)
            given, rest = self.arguments(after)
            self.assertGreaterEqual(len(given), declaration.required(), line)
            self.assertLessEqual(len(given), len(declaration.parameters), line)
            for text, parameter, range_ in zip(given, declaration.parameters, self.ranges(name)):
                where = f"{parameter.name} in {line}"
                self.assertIn(self.kind(text, types), self.TAKES[parameter.kind], where)
                if range_ and re.fullmatch(r"\s*-?[\d.]+\s*", text):
                    self.assertTrue(range_[0] <= float(text) <= range_[1], where)
            self.check_result(before[: receiver.start()], rest, declaration, types, wanted, line)

    def check_result(self, before, rest, declaration, types, wanted, line):
        before = before.strip()
        if re.fullmatch(r"If( Not)?", before):
            self.assertEqual((declaration.result, rest.strip()), ("boolean", "Then"), line)
            return
        self.assertEqual(rest.strip(), "", line)
        declared = re.fullmatch(r"Dim \w+ As (\w+) =", before)
        assigned = re.fullmatch(r"(\w+) =", before)
        if declared:
            target = declared[1]
        elif assigned:
            target = types[assigned[1].lower()]
        else:
            self.assertEqual(before, "Return", "a result must be used: " + line)
            target = wanted
        self.assertEqual(target.lower(), declaration.result, line)

    def declared(self, text):
        """Names and types in declarations; arrays are not told apart from their elements."""
        found = re.findall(r"\b(\w+)(?:\(\))? As (?:New )?([\w.]+)", text)
        return {name.lower(): kind for name, kind in found}

    def test_call_what_is_declared(self):
        called = set()
        for section in re.split(r"^##+ ", METHODS, flags=re.MULTILINE):
            prose = re.sub(r"^```.*?^```$", "", section, flags=re.MULTILINE | re.DOTALL)
            properties = self.declared(" ".join(re.findall(r"`([^`]*)`", prose)))
            for block in blocks(section, "xojo"):
                types, wanted = {**self.ALWAYS, **properties}, None
                for line in block.splitlines():
                    line = line.partition("//")[0].strip()
                    head = re.match(r"(?:Sub|Function) \w+\((.*)\)(?: As (\w+))?$", line)
                    if head:
                        types, wanted = {**properties, **self.declared(head[1])}, head[2]
                    types = {**types, **self.declared(line)}
                    self.check_call(line, types, wanted)
                    called |= set(re.findall(r"\w+ZVQ", line))
        self.assertEqual(called, set(DECLARATIONS))

    def test_in_a_few_words_call_what_is_declared(self):
        (rows,) = tables(METHODS, "To do")
        types = dict(self.ALWAYS)
        called = set()
        for row in rows:
            for call in re.findall(r"`([^`]*)`", row[1]):
                name = re.search(r"\w+ZVQ", call)[0]
                called.add(name)
                draws = DECLARATIONS[name].result == "boolean"
                self.check_call(f"If {call} Then" if draws else f"Return {call}", types, "Picture")
        self.assertEqual(called, set(DECLARATIONS))


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


class PixelWords(PicturehostTest):
    """The hexadecimal pixels. Nothing prints a word, but a plug-in that is faulty on purpose flips
    known bits of the first one of a result; what colours that changes tells where channels lie."""

    FLIPPED = 0x00808000  # by the fault "wrong-pixel"
    COLOUR, ALPHA = (200, 100, 50), 128

    def setUp(self):
        super().setUp()
        (rows,) = tables(FORMATS, "Format")[:1]
        self.layouts = {int(row[0]): row[3].split() for row in rows}
        self.multiplied = {int(row[0]): row[5] for row in rows}
        self.words = {int(row[0]): row[1:] for row in tables(FORMATS, "Format")[1]}
        write_png(self.folder / "opaque.png", [[self.COLOUR]])
        write_png(self.folder / "clear.png", [[(*self.COLOUR, self.ALPHA)]])

    def host(self, pixel_format):
        if pixel_format == 8:
            return ("--kind", "console")
        return ("--pixel-format", pixel_format)

    def first_pixels(self, name, pixel_format, fault):
        """The first two pixels of an enlargement that copies all four bytes."""
        words = ("run", "--plugin", FAULTY_PLUGIN, name, "ScaleZVQ", 2, 2, "true", "-o", "out.png")
        environment = dict(os.environ, VALIDATE_FAULT=fault)
        self.assert_done(self.picturehost(*words, *self.host(pixel_format), env=environment))
        return self.pixels()[0]

    def decoded(self, word, pixel_format, has_alpha):
        """The colour of a word, by what the document says of the format."""
        at = dict(zip(self.layouts[pixel_format], struct.pack("<I", word)))
        colour = (at["R"], at["G"], at["B"])
        if not has_alpha:
            return colour
        if self.multiplied[pixel_format] == "premultiplied":
            alpha = at["A"]
            rounded = [(2 * 255 * c + alpha) // (2 * alpha) if alpha else 0 for c in colour]
            colour = tuple(min(255, c) for c in rounded)
        return (*colour, at["A"])

    def unused_or_alpha(self, pixel_format):
        """The bits that the fault "unused-byte" flips."""
        return 0xFF000000 if pixel_format == 8 or pixel_format % 2 else 0x000000FF

    def check(self, name, pixel_format, word, has_alpha):
        for fault, bits in (("wrong-pixel", self.FLIPPED),
                            ("unused-byte", self.unused_or_alpha(pixel_format))):  # fmt: skip
            spoilt, whole = self.first_pixels(name, pixel_format, fault)
            where = f"format {pixel_format}, {fault}"
            self.assertEqual(whole, self.decoded(word, pixel_format, has_alpha), where)
            self.assertEqual(spoilt, self.decoded(word ^ bits, pixel_format, has_alpha), where)

    def test_bytes_and_words_of_the_table_agree(self):
        self.assertEqual(list(self.words), [1, 2, 3, 4, 5, 6, 8])
        self.assertEqual(list(self.layouts), list(self.words))
        for cells in self.words.values():
            for memory, word in (cells[:2], cells[2:]):
                if word != NOTHING:
                    self.assertEqual(struct.pack("<I", int(word, 16)), bytes.fromhex(memory))

    def test_opaque_pixels_are_those_of_the_table(self):
        for pixel_format, cells in self.words.items():
            self.check("opaque.png", pixel_format, int(cells[1], 16), False)
            layout = self.layouts[pixel_format]
            unused = bytes.fromhex(cells[0])[layout.index("A" if "A" in layout else "X")]
            self.assertEqual(unused, 0 if pixel_format == 8 else 255)

    def test_half_transparent_pixels_are_those_of_the_table(self):
        # Options 1 to 6 give alpha channels in formats 1 and 2.
        self.assertEqual([f for f, c in self.words.items() if c[3] != NOTHING], [1, 2, 8])
        for pixel_format in (1, 2, 8):
            self.check("clear.png", pixel_format, int(self.words[pixel_format][3], 16), True)

    def test_methods_write_alpha_as_the_table_of_opaque_pixels_says(self):
        # Seen where the result has an alpha channel.
        for pixel_format in (1, 2, 8):
            words = ("run", "clear.png", "ScalingZVQ", 2, 2, 2, "-o", "out.png")
            self.assert_done(self.picturehost(*words, *self.host(pixel_format)))
            at = dict(zip(self.layouts[pixel_format], bytes.fromhex(self.words[pixel_format][0])))
            self.assertEqual({pixel[3] for row in self.pixels() for pixel in row}, {at["A"]})

    def test_the_other_bytes_are_what_is_written_in_every_format(self):
        result = self.picturehost("validate", "--check", "results-are-opaque")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_formats_are_those_that_the_host_has(self):
        for pixel_format in self.layouts:
            words = ("opaque.png", "Format", *self.host(pixel_format), "-o", "out.png")
            result = self.picturehost("run", "--plugin", TRIAL_PLUGIN, *words)
            self.assertEqual(result.stdout.strip(), str(pixel_format))


if __name__ == "__main__":
    main()
