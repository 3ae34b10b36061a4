"""docs/methods.md and docs/pixel-formats.md taken apart, and what picturehost says of the methods."""

import pathlib
import re
import subprocess

from harness import PICTUREHOST

ROOT = pathlib.Path(__file__).resolve().parents[2]
METHODS = (ROOT / "docs/methods.md").read_text()
FORMATS = (ROOT / "docs/pixel-formats.md").read_text()
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
