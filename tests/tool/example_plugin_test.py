"""The example plug-in, and the documents for people who build on the project: every command that
docs/debugging-a-plugin.md shows says what it shows; what HACKING.md and CONTRIBUTING.md name is there."""

import pathlib
import re
import subprocess
import tempfile
import unittest

from harness import PICTUREHOST, main

ROOT = pathlib.Path(__file__).resolve().parents[2]
BIN = pathlib.Path(PICTUREHOST).parent
EXAMPLE = ROOT / "examples/minimal_plugin.cpp"
PLUGINS = ["minimal_plugin", "leaking_plugin", "unset_plugin", "overrunning_plugin"]

PROMPT = re.compile(r"(build/[\w-]+/bin)\$ (.*)")
ELLIPSIS = "..."
# What differs from run to run, and from compiler to compiler.
CHANGING = [
    (r"==\d+==", "==P=="),
    (r"\(process \d+\)", "(process P)"),
    (r"\b0x[0-9a-f]+", "0xA"),
    (r"[^\s(]*/(\w+\.(?:cpp|so))", r"\1"),
    (r"(\.cpp:\d+):\d+:", r"\1:"),
    (r"\bbool \[", "bool["),
]


def blocks(text):
    """The contents of fenced blocks, each a list of lines."""
    return [block.split("\n") for block in re.findall(r"^```\n(.*?)\n```$", text, re.MULTILINE | re.DOTALL)]


def commands(text):
    """(folder, command, lines of output) of everything that is given at a prompt."""
    found = []
    for lines in blocks(text):
        goes_on = False
        for line in lines:
            match = PROMPT.fullmatch(line)
            if match:
                found.append((match.group(1), match.group(2), []))
            elif goes_on:
                folder, command, output = found[-1]
                found[-1] = (folder, f"{command}\n{line}", output)
            elif found and PROMPT.fullmatch(lines[0]):
                found[-1][2].append(line)
            goes_on = bool(match or goes_on) and line.endswith("\\")
    return found


def settled(line):
    for pattern, replacement in CHANGING:
        line = re.sub(pattern, replacement, line)
    return line


def pattern_of(shown):
    """What the whole output must match. A line of three dots stands for any lines, also none; three dots
    within a line for any characters."""
    parts = []
    for line in shown:
        if line == ELLIPSIS:
            parts.append(r"(?:.*\n)*?")
        else:
            parts.append(".*".join(re.escape(part) for part in settled(line).split(ELLIPSIS)) + r"\n")
    return "".join(parts)


class BuildKind:
    """What the tested build can run of the document."""

    def __init__(self):
        content = pathlib.Path(PICTUREHOST).read_bytes()
        self.is_sanitized = b"__asan_init" in content
        self.is_64_bit = content[4] == 2

    def runs(self, folder):
        if folder == "build/asan/bin":
            return self.is_sanitized
        if folder == "build/native/bin":
            return self.is_64_bit and not self.is_sanitized
        return folder == "build/i386/bin" and not self.is_sanitized  # the same in either word size


class DebuggingDocument(unittest.TestCase):
    def setUp(self):
        self.text = (ROOT / "docs/debugging-a-plugin.md").read_text()

    def test_shows_what_its_commands_say(self):
        kind = BuildKind()
        chosen = [each for each in commands(self.text) if kind.runs(each[0])]
        self.assertGreaterEqual(len(chosen), 3)
        with tempfile.TemporaryDirectory() as folder:
            for name in ["picturehost", *(f"{plugin}.so" for plugin in PLUGINS)]:
                (pathlib.Path(folder) / name).symlink_to(BIN / name)
            for _, command, shown in chosen:
                result = subprocess.run(
                    ["bash", "-c", command], cwd=folder, stdin=subprocess.DEVNULL, text=True, timeout=100,
                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                )  # fmt: skip
                said = "".join(settled(line) + "\n" for line in result.stdout.splitlines())
                with self.subTest(command=command):
                    if not re.fullmatch(pattern_of(shown), said):
                        self.fail("\n".join(["", "shown:", *shown, "said:", said]))

    def test_has_commands_for_every_kind_of_build(self):
        counts = {}
        for folder, _, shown in commands(self.text):
            counts[folder] = counts.get(folder, 0) + (shown != [ELLIPSIS])
        self.assertEqual(sorted(counts), ["build/asan/bin", "build/i386/bin", "build/native/bin"])
        for folder, count in counts.items():
            self.assertGreaterEqual(count, 2, folder)

    def test_quotes_the_whole_leak_report(self):
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run(
                [PICTUREHOST, "run", "--plugin", BIN / "leaking_plugin.so", ROOT / "docs/images/modes.png",
                 "MinimalCountGreys", "-o", f"{folder}/out.png"],
                capture_output=True, text=True, timeout=100,
            )  # fmt: skip
            self.assertEqual(list(pathlib.Path(folder).iterdir()), [])
        quoted = re.search(r'The line goes on: "([^"]*)"', self.text).group(1)
        self.assertEqual(result.returncode, 1)
        self.assertIn(" ".join(quoted.split()), result.stderr)

    def test_builds_only_targets_that_are_there(self):
        targets = re.search(r"--preset i386 --target ([\w ]+)\n", self.text).group(1).split()
        self.assertEqual(targets, ["picturehost", *PLUGINS])


class Example(unittest.TestCase):
    def test_is_shorter_than_80_lines(self):
        lines = EXAMPLE.read_text().splitlines()
        self.assertLess(len(lines), 80)
        self.assertGreater(len(lines), 40)

    def test_needs_two_headers_of_the_project_and_none_of_the_system(self):
        included = re.findall(r"#include (\S+)", EXAMPLE.read_text())
        self.assertEqual(included, ['"platform/bitmap_context.h"', '"plugin/host_interface.h"'])

    def test_exports_one_function(self):
        symbols = subprocess.run(
            ["nm", "--dynamic", "--defined-only", BIN / "minimal_plugin.so"],
            capture_output=True, text=True, check=True,
        )  # fmt: skip
        functions = re.findall(r" [TW] (\w+)$", symbols.stdout, re.MULTILINE)
        self.assertEqual(functions, ["REALPluginMain"])

    def test_has_a_method_that_no_other_plug_in_here_has(self):
        name = re.search(r'"(\w+)\(', EXAMPLE.read_text()).group(1)
        self.assertEqual(name, "MinimalCountGreys")
        for path in ("plugin/method_table.cpp", "tests/tool/trial_plugin.cpp", "tests/host/trial_plugin.cpp"):
            self.assertNotIn(name.lower(), (ROOT / path).read_text().lower())


class GuidesForDevelopers(unittest.TestCase):
    """HACKING.md and CONTRIBUTING.md."""

    def texts(self):
        for name in ("HACKING.md", "CONTRIBUTING.md"):
            yield name, (ROOT / name).read_text()

    def quoted(self, text):
        """What stands in backticks, outside of blocks."""
        return re.findall(r"`([^`\n]+)`", re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL))

    def test_name_only_files_that_are_there(self):
        tops = {path.name for path in ROOT.iterdir() if path.is_dir()} - {"build", "out"}
        for name, text in self.texts():
            paths = [word.split()[0] for word in self.quoted(text)]
            paths += re.findall(r"^\s*(scripts/\S+)", "\n".join(map("\n".join, blocks(text))), re.MULTILINE)
            paths = [word for word in paths if word.split("/")[0] in tops and "/" in word]
            self.assertGreater(len(paths), 15, name)
            for path in paths:
                with self.subTest(document=name, path=path):
                    self.assertTrue(any(ROOT.glob(path.rstrip("/"))), path)

    def test_name_file_names_that_are_there(self):
        names = {path.name for top in ROOT.iterdir() if top.name not in ("build", "out", ".git")
                 for path in [top, *top.rglob("*")]}  # fmt: skip
        for name, text in self.texts():
            for word in self.quoted(text):
                if re.fullmatch(r"[\w.-]+\.(h|cpp|py|txt|md|json|cmake|patch)", word):
                    self.assertIn(word, names, name)

    def test_link_to_files_that_are_there(self):
        for name, text in self.texts():
            for target in re.findall(r"\]\(([^)#]+)\)", text):
                self.assertTrue((ROOT / target).exists(), f"{name}: {target}")

    def test_build_only_targets_and_presets_that_are_there(self):
        files = [*ROOT.glob("*/CMakeLists.txt"), *ROOT.glob("tests/*/CMakeLists.txt")]
        rules = "\n".join(path.read_text() for path in files)
        presets = (ROOT / "CMakePresets.json").read_text()
        found = 0
        for name, text in self.texts():
            for words in re.findall(r"--target ([\w ]+)", text):
                for target in words.split():
                    found += 1
                    self.assertRegex(rules, rf"\(\s*{target}\b", f"{name}: {target}")
            for preset in re.findall(r"--preset ([\w-]+)", text):
                found += 1
                self.assertIn(f'"name": "{preset}"', presets, name)
        self.assertGreater(found, 3)

    def test_name_only_options_that_scripts_have(self):
        found = 0
        for name, text in self.texts():
            for script, option in re.findall(r"(scripts/[\w-]+) (--[\w-]+)", text):
                found += 1
                self.assertIn(option, (ROOT / script).read_text(), f"{name}: {script}")
        self.assertGreaterEqual(found, 3)


if __name__ == "__main__":
    main()
