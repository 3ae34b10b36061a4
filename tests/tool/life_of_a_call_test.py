"""docs/life-of-a-call.md: that its traces are what picturehost prints, and its figures true."""

import collections
import difflib
import pathlib
import re
import shlex

from harness import PicturehostTest, main

ROOT = pathlib.Path(__file__).resolve().parents[2]

# The lines of the document: fenced blocks by their kind, and the sentences about what is held.
Part = collections.namedtuple("Part", "kind lines")


def parts():
    found = []
    fence = None
    for line in (ROOT / "docs/life-of-a-call.md").read_text().splitlines():
        if line.startswith("```"):
            if fence is None:
                fence = Part(line[3:], [])
                found.append(fence)
            else:
                fence = None
        elif fence is not None:
            fence.lines.append(line)
        elif line.startswith("*Held: "):
            found.append(Part("held", [line]))
    return found


def plural(count, noun):
    return f"{count} {noun}" if count == 1 else f"{count} {noun}s"


class Holdings:
    """What a plug-in holds after the lines of a trace."""

    def __init__(self):
        self.references = collections.Counter()
        self.locks = collections.Counter()

    def follow(self, line):
        call = re.match(r"(?:\w+#\d+\.)?(\w+)\((\w+#\d+)?.*?\)(?: = (.*))?$", line)
        entry, first, result = call.groups()
        if re.fullmatch(r"\w+#\d+", result or ""):  # every object that is given out carries one
            self.references[result] += 1
        elif entry == "REALLockObject":
            self.references[first] += 1
        elif entry in ("REALUnlockObject", "REALUnlockString"):
            self.references[first] -= 1
        elif entry == "REALLockPictureDescription" and result == "1":
            self.locks[first] += 1
        elif entry == "unlockPictureDescription":
            self.locks[first] -= 1

    def sentence(self):
        held = []
        for name in sorted(set(self.references) | set(self.locks)):
            counts = [(self.references[name], "reference"), (self.locks[name], "lock")]
            texts = [plural(count, noun) for count, noun in counts if count != 0]
            if texts:
                held.append(f"{name} with {' and '.join(texts)}")
        return f"*Held: {'; '.join(held) or 'nothing'}.*"


class LifeOfACall(PicturehostTest):
    def trace(self, commands, status=0):
        """Runs the lines of a block of commands; what the last one says on standard error."""
        for line in commands:
            words = shlex.split(line)
            self.assertEqual(words[0], "picturehost", line)
            result = self.picturehost(*words[1:])
            self.assertIn(result.returncode, (0, status), result.stderr)
        self.assertEqual(result.returncode, status, result.stderr)
        return result.stderr.splitlines()

    def sections(self):
        """One list of parts for each block of commands, which is its first."""
        sections = []
        for part in parts():
            if part.kind == "sh":
                sections.append([])
            sections[-1].append(part)
        return sections

    def status(self, section):
        """Refused are those whose trace ends with the tool's complaint."""
        return int(section[-1].lines[-1].startswith("picturehost: "))

    def test_the_trace_is_what_the_command_prints(self):
        first = self.sections()[0]
        documented = [line for part in first if part.kind == "trace" for line in part.lines]
        self.assertGreater(len(documented), 30)
        self.assertEqual(documented, self.trace(first[0].lines))

    def test_objects_appear_by_number_and_never_by_address(self):
        for section in self.sections():
            for line in self.trace(section[0].lines, self.status(section)):
                self.assertNotRegex(line, r"\b0x|unknown|[0-9a-f]{7,}")

    def test_what_is_held_follows_from_the_trace(self):
        holdings = Holdings()
        sentences = 0
        kinds = [part.kind for part in self.sections()[0]]
        self.assertEqual(kinds.count("held"), kinds.count("trace"))
        for part in self.sections()[0]:
            if part.kind == "trace":
                for line in part.lines:
                    holdings.follow(line)
            elif part.kind == "held":
                self.assertEqual(part.lines, [holdings.sentence()])
                sentences += 1
        self.assertGreater(sentences, 8)

    def test_differences_are_those_of_the_commands(self):
        first, *others = self.sections()
        base = self.trace(first[0].lines)
        self.assertGreater(len(others), 4)
        for section in others:
            (_, commands), (kind, documented) = section
            with self.subTest(commands[-1]):
                other = self.trace(commands, self.status(section))
                if kind == "end":
                    same = len(other) - len(documented) + 1  # its first line is the last that is the same
                    self.assertEqual(other[:same], base[:same])
                    self.assertEqual(documented, other[same - 1 :])
                    self.assertNotEqual(other[same], base[same])
                    continue
                self.assertEqual(kind, "diff")
                lines = list(difflib.unified_diff(base, other, n=1, lineterm=""))[2:]
                shown = ["@@" if line.startswith("@@ ") else line for line in lines]
                self.assertEqual(documented, shown)

    def test_the_pixels_are_those_of_the_pictures(self):
        self.trace(self.sections()[0][0].lines)
        text = (ROOT / "docs/life-of-a-call.md").read_text()
        row = r"^\| \((\d+), (\d+)\) \| (source|result) \| ([\d, ]+) \| ([0-9A-F]{8}) \|$"
        rows = re.findall(row, text, re.MULTILINE)
        self.assertEqual([of for _, _, of, _, _ in rows], ["source", "source", "result"])
        pictures = {"source": self.pixels("scene.png"), "result": self.pixels("small.png")}
        places = []
        for x, y, of, colour, word in rows:
            x, y = int(x), int(y)
            places.append((x, y))
            pixel = pictures[of][y][x]
            self.assertEqual(colour, ", ".join(map(str, pixel)))
            self.assertEqual(word, bytes((*pixel[::-1], 255)).hex().upper())
        x, y = places[2]
        self.assertEqual(places[:2], [(2 * x, 2 * y), (2 * x + 1, 2 * y)])

    def test_every_kind_of_host_makes_the_same_picture(self):
        self.trace(self.sections()[0][0].lines)
        pixels = self.pixels("small.png")
        for section in self.sections()[1:]:
            words = section[0].lines[-1].split()
            if words[2:6] != ["scene.png", "ScaleZVQ", "320", "240"]:
                continue
            self.trace(section[0].lines)
            self.assertEqual(self.pixels("small.png"), pixels, words)

    def test_functions_are_in_the_files_that_are_named(self):
        text = (ROOT / "docs/life-of-a-call.md").read_text()
        named = re.findall(r"`(~?\w+)`\s\(`([\w/]+\.(?:cpp|h))`\)", text)
        self.assertGreater(len(named), 30)
        self.assertEqual(len(named), len(re.findall(r"`[\w/]+\.(?:cpp|h)`", text)))
        for function, file in named:
            self.assertRegex((ROOT / file).read_text(), rf"(?<![\w~]){function}\b", file)


if __name__ == "__main__":
    main()
