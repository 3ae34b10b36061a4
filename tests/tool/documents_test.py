"""The numbers in the documents: that they are those of the project."""

import pathlib
import re
import subprocess
import unittest

from harness import PICTUREHOST, main

ROOT = pathlib.Path(__file__).resolve().parents[2]


def number(text):
    return int(text.replace(",", ""))


class TrustDocument(unittest.TestCase):
    def setUp(self):
        self.text = (ROOT / "docs/trust.md").read_text()

    def found(self, pattern, text=None):
        match = re.search(pattern, self.text if text is None else text)
        self.assertIsNotNone(match, pattern)
        return [number(group) for group in match.groups()]

    def test_names_what_the_torture_must_reach(self):
        counts = (ROOT / "tests/torture/expected_counts.h").read_text()
        points, calls = self.found(r"points == (\d+) && kExpectedTotal.calls == (\d+)", counts)
        children = sum(map(int, re.findall(r"= \{\d+, \d+, (\d+)\};", counts)))
        self.assertGreater(children, 0)
        documented = self.found(
            r"\*\*([\d,]+) points of failure, ([\d,]+) calls, ([\d,]+) of them in child processes\.\*\*"
        )
        self.assertEqual(documented, [points, calls, children])

    def test_names_how_much_is_tortured(self):
        scenarios = (ROOT / "tests/torture/scenarios.cpp").read_text()
        versions = re.search(r"kVersions = \{([^}]*)\}", scenarios).group(1).split(",")
        variants = re.findall(r'^    \{"\w+", M::', scenarios, re.MULTILINE)
        self.assertEqual(self.found(r"in (\d+) variants"), [len(variants)])
        self.assertEqual(self.found(r"\s(\d+) host versions"), [len(versions)])

    def test_names_the_number_of_checks(self):
        listed = subprocess.run(
            [PICTUREHOST, "validate", "--list"], capture_output=True, text=True, check=True
        )
        names = [row for row in listed.stdout.splitlines() if row and not row.startswith(" ")]
        self.assertEqual(self.found(r"\*\*(\d+) checks\*\*"), [len(names)])

    def test_names_the_number_of_mutations(self):
        patches = list((ROOT / "tests/mutations").glob("*.patch"))
        self.assertEqual(self.found(r"\*\*(\d+) patches\*\*"), [len(patches)])

    def test_names_only_scripts_that_are_there(self):
        scripts = re.findall(r"`(scripts/[\w-]+)", self.text)
        self.assertGreater(len(scripts), 5)
        for script in scripts:
            self.assertTrue((ROOT / script).is_file(), script)


if __name__ == "__main__":
    main()
