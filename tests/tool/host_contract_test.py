"""docs/host-contract.md: that its tables are those of the sources and of what the plug-in asks for."""

import os
import pathlib
import re
import subprocess

from harness import OPAQUE, PICTUREHOST, PicturehostTest, main
from png import write_png

ROOT = pathlib.Path(__file__).resolve().parents[2]
PLUGIN = pathlib.Path(os.environ["VALIDATE_REAL_PLUGIN"])
TEXT = (ROOT / "docs/host-contract.md").read_text()
CLEAR = [[(10, 20, 30, 255), (30, 40, 50, 128)], [(1, 2, 3, 0), (4, 5, 6, 9)]]

# Below, at and between all versions that matter.
VERSIONS = "0 2009 2010.029 2011.0399 2011.04 2011.99 2012 2012.99 2013 2013.03 2013.04".split()
VERSIONS += "2999.99 3000 4000".split()

OLD = [version for version in VERSIONS if float(version) < 2012]
MODULE = [version for version in VERSIONS if 2013 <= float(version) < 3000]
ASKED_AT = {
    "all": VERSIONS,
    "2013.0 to below 3000.0": MODULE,
    "below 2013.0, from 3000.0": [version for version in VERSIONS if version not in MODULE],
    "all, without the other name": VERSIONS,
    'below 2012.0, without "DrawPicture"': OLD,
    "none": [],
}

# Calls that together need everything: on in.png (opaque, 2x1) and on clear.png (alpha channel, 2x2).
OPAQUE_RESULTS = [
    "in.png ScaleZVQ 5 4 false 600",
    "in.png ScaleImageAndMaskZVQ 5 4 --mask in.png",
    "in.png ScalingZVQ 3 5 4",
    "in.png BlurZVQ 1",
    "clear.png BlurZVQ 1",
    "clear.png ScaleImageAndMaskZVQ 5 4",
]
ALPHA_RESULTS = ["clear.png ScaleZVQ 5 4", "clear.png ScaleZVQ 5 4 true", "clear.png ScalingZVQ 1 5 4"]
DRAW = "in.png DrawPictureFZVQ in.png 0.5 0.5 --mask in.png"
OWN_SIZE = "in.png ScaleZVQ 2 1"
RAISES = "in.png DrawPictureFZVQ nil 0 0"
CALLS = [*OPAQUE_RESULTS, *ALPHA_RESULTS, DRAW, OWN_SIZE, RAISES]

# How the declaration of the host's drawing method ends.
DRAW_PICTURE_END = "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)"


def section(title):
    return re.split(r"^#{2,3} ", TEXT.split(f"# {title}\n", 1)[1], flags=re.MULTILINE)[0]


def tables(title):
    """The rows of each table of a section, without head and rule."""
    found, rows = [], []
    for line in [*section(title).splitlines(), ""]:
        if line.startswith("|"):
            rows.append([cell.strip() for cell in line.strip("|").split("|")])
        elif rows:
            found.append(rows[2:])
            rows = []
    return found


def code(cell):
    return cell.strip("`")


def source(*patterns):
    files = sorted(path for pattern in patterns for path in ROOT.glob(pattern))
    assert files
    return "\n".join(path.read_text() for path in files)


INTERFACE = source("plugin/host_interface.h")
BRIDGE = source("plugin/*.cpp", "pixels/*.cpp")


def looked_up():
    """Each name that the sources look up, with the type of its routine or None."""
    slots = dict(re.findall(r"^(\w+Entry)\* (p\w+) = nullptr;", BRIDGE, re.MULTILINE))
    types = {slot: entry for entry, slot in slots.items()}
    names = {name: types[slot] for slot, name in re.findall(r'Resolve\((\w+),\s*"(\w+)"', BRIDGE)}
    for entry, name in re.findall(r'(?:<(\w+Entry)\*>\()?LookUpEntry\("(\w+)"\)', BRIDGE):
        names[name] = entry or None
    return names


def words_of(entry):
    """The arguments and the result of an entry's type in the document's words."""
    result, arguments = re.search(rf"using {entry} =\s*([\w:*]+)\(([^)]*)\);", INTERFACE).groups()
    words = {
        "void": "nothing",
        "double": "double",
        "std::int32_t": "int32",
        "std::uint32_t": "uint32",
        "std::uint8_t": "byte",
        "std::int32_t*": "place of int32",
        "std::uint8_t*": "place of byte",
        "void*": "buffer",
        "REALobject": "object",
        "REALroutine": "routine",
        "REALclassRef": "class",
        "REALpicture": "picture",
        "REALgraphics": "graphics",
        "REALstring": "string",
        "REALpictureDescription*": "description",
        "REALmoduleDefinition*": "module record",
        "REALclassDefinition*": "class record",
    }
    takes = []
    for argument in filter(None, (part.strip() for part in arguments.split(","))):
        kind, name = argument.rsplit(None, 1)
        if kind == "const char*":
            takes.append("bytes" if name == "bytes" else "text")
        else:
            takes.append(words[kind])
    return takes or ["nothing"], words[result]


def documented_words(cell):
    """`3 × int32 (a, b, c), buffer` as a list of words."""
    listed = []
    for part in re.sub(r"\([^)]*\)", "", cell).split(","):
        count, word = re.fullmatch(r"\s*(?:(\d) × )?(.*?)\s*", part).groups()
        listed += [word] * int(count or 1)
    return listed


class Contract(PicturehostTest):
    def setUp(self):
        super().setUp()
        write_png(self.folder / "clear.png", CLEAR)

    def call(self, call, *options):
        picture, *words = call.split()
        return self.picturehost("run", picture, *words, *options, "--trace", "-o", "out.png")

    def without(self, *names):
        """The option for a copy of the plug-in that asks for other, unknown names instead."""
        content = PLUGIN.read_bytes()
        for name in names:
            text = name.encode() + b"\0"
            self.assertIn(text, content)
            content = content.replace(text, b"!" + text[1:])
        (self.folder / "without.so").write_bytes(content)
        return "--plugin", self.folder / "without.so"

    def names_at(self, version, calls=CALLS, options=(), kinds=("desktop",)):
        names = set()
        for call in calls:
            for kind in kinds:
                result = self.call(call, "--host-version", version, "--kind", kind, *options)
                self.assertIn(result.returncode, (0, 1), result.stderr)
                names |= set(re.findall(r"^resolve\((\w+)\)", result.stderr, re.MULTILINE))
        return names


class Entries(Contract):
    def setUp(self):
        super().setUp()
        self.signatures = tables("Entries")[0]
        self.uses = tables("When they are asked for, and what is done without them")[0]

    def test_are_all_that_the_sources_look_up_and_no_more(self):
        names = sorted(looked_up())
        self.assertEqual(len(names), 30)
        for table in (self.signatures, self.uses):
            self.assertEqual(sorted(code(row[0]) for row in table), names)

    def test_are_all_in_the_file_that_is_loaded(self):
        content = PLUGIN.read_bytes()
        for row in self.signatures:
            self.assertIn(code(row[0]).encode() + b"\0", content)

    def test_have_the_signatures_of_the_header(self):
        types = looked_up()
        for name, takes, gives in self.signatures:
            entry = types[code(name)]
            if entry is None:
                self.assertEqual((takes, gives), ("never called", "never called"))
                continue
            expected = words_of(entry)
            self.assertEqual((documented_words(takes), gives.removesuffix(", new")), expected, name)

    def test_give_what_the_plug_in_has_to_give_back(self):
        new = [code(name) for name, _, gives in self.signatures if gives.endswith(", new")]
        given = {"REALobject", "REALpicture", "REALgraphics", "REALstring"}
        for name, entry in looked_up().items():
            gives = entry and re.search(rf"using {entry} =\s*(\w+)", INTERFACE).group(1)
            self.assertEqual(name in new, gives in given, name)

    def test_are_asked_for_at_the_host_versions_that_are_told(self):
        asked = {version: self.names_at(version) for version in VERSIONS}
        for kind in ("console", "web", "none"):
            asked["2013.04"] |= self.names_at("2013.04", kinds=(kind,))
        integers = self.without("REALGetPropValueInteger", "REALSetPropValueInteger")
        for version in VERSIONS:
            asked[version] |= self.names_at(version, [OWN_SIZE, RAISES], integers)
        drawing = self.without(DRAW_PICTURE_END)
        for version in VERSIONS:
            asked[version] |= self.names_at(version, ["clear.png ScaleImageAndMaskZVQ 5 4"], drawing)
        told = {code(name): versions for name, versions, _ in self.uses}
        self.assertEqual(set(told.values()), set(ASKED_AT))
        for name, versions in told.items():
            seen = [version for version in VERSIONS if name in asked[version]]
            self.assertEqual(seen, ASKED_AT[versions], name)
        self.assertLessEqual(set().union(*asked.values()), set(told))

    def test_second_names_are_asked_for_only_without_the_first(self):
        names = {code(name) for name, versions, _ in self.uses if "without the other" in versions}
        self.assertEqual(len(names), 2)
        for version in ("2009", "2013.04"):
            self.assertFalse(names & self.names_at(version))

    def test_do_without_each_what_is_told(self):
        for name, versions, told in self.uses:
            name = code(name)
            version = "2013.04" if "2013.04" in ASKED_AT[versions] else "2012"
            for kind in ("desktop", "console"):
                with self.subTest(name, kind=kind):
                    options = (*self.without(name), "--host-version", version, "--kind", kind)
                    keywords = "No method|No exception|Refused: all|Refused: opaque results"
                    keywords += "|Refused: alpha results|Unbalanced|Goes on"
                    self.assertEqual(set(re.findall(keywords, told)), self.seen_without(options))

    def seen_without(self, options):
        """What becomes of the calls, in the document's keywords."""
        seen = set()
        refused = set()
        for call in CALLS:
            result = self.call(call, *options)
            if "the plug-in has no method" in result.stderr:
                seen.add("No method")
                continue
            unbalanced = re.search("left something over|misused", result.stderr) is not None
            if unbalanced:
                seen.add("Unbalanced")
            if call == RAISES:
                self.assertIn("it returned false", result.stderr)
                if "raised NilObjectException" not in result.stderr:
                    seen.add("No exception")
            elif "was refused by the plug-in" in result.stderr:
                refused.add(call)
            else:
                self.assertEqual(result.returncode, int(unbalanced), result.stderr)
        groups = {
            "Refused: all": {*OPAQUE_RESULTS, *ALPHA_RESULTS, DRAW},
            "Refused: opaque results": set(OPAQUE_RESULTS),
            "Refused: alpha results": set(ALPHA_RESULTS),
            "": set(),
        }
        seen |= {text for text, calls in groups.items() if calls == refused} or {f"{refused}"}
        seen.discard("")
        return seen or {"Goes on"}


class HostMethods(Contract):
    def test_are_those_of_the_header_and_of_the_traces(self):
        texts = re.findall(r"inline constexpr char k\w+Declaration\[\] =([^;]*);", INTERFACE)
        declared = {"".join(re.findall(r'"([^"]*)"', text)) for text in texts}
        told = {code(row[1]) for row in tables("Methods of the host's objects")[0]}
        long = re.search(r"^```\n(.*?)\n```", section("Methods of the host's objects"), re.M | re.S)
        told.remove("DrawPicture`, below")
        told.add(long.group(1).replace("\n", " "))
        self.assertEqual(told, declared)
        asked = set()
        for call in [*ALPHA_RESULTS, *OPAQUE_RESULTS]:
            lines = self.call(call).stderr
            asked |= set(re.findall(r'^REALLoadObjectMethod\(\S+, "(.*)"\) = ', lines, re.MULTILINE))
        self.assertEqual(asked, told)


class Locks(Contract):
    def test_are_taken_and_given_back_in_the_order_that_is_told(self):
        rows = {code(row[0]): [cell.split(", ") for cell in row[1:]] for row in tables("Locks")[0]}
        both = [rows.pop("ScaleImageAndMaskZVQ`, the picture"), rows.pop("the same, then the mask")]
        cases = {
            "ScaleZVQ 5 4": ("receiver result", [rows.pop("ScaleZVQ")]),
            "ScalingZVQ 3 5 4": ("receiver result", [rows.pop("ScalingZVQ")]),
            "BlurZVQ 1": ("receiver result", [rows.pop("BlurZVQ")]),
            "ScaleImageAndMaskZVQ 5 4 --mask in.png": ("receiver mask result scaled_mask", both),
            "DrawPictureFZVQ in.png 0 0 --mask in.png": (
                "receiver picture mask",
                [rows.pop("DrawPictureFZVQ")],
            ),
        }
        self.assertEqual(rows, {})
        for words, (roles, told) in cases.items():
            names = {f"Picture#{i + 1}": role.replace("_", " ") for i, role in enumerate(roles.split())}
            for kind in ("desktop", "console"):
                trace = self.call("in.png " + words, "--kind", kind).stderr
                pattern = r"^(?:REAL(L)ockPictureDescription|unlockPictureDescription)\((Picture#\d+)"
                seen = re.findall(pattern, trace, re.MULTILINE)
                expected = []
                for locks, unlocks in told:
                    expected += [("L", role) for role in locks] + [("", role) for role in unlocks]
                self.assertEqual([(lock, names[name]) for lock, name in seen], expected, words)


class Document(Contract):
    def test_names_every_version_that_the_sources_compare_with(self):
        literals = set(re.findall(r"\b[23]\d{3}\.\d+\b", BRIDGE))
        self.assertEqual({row[0] for row in tables("Versions")[0]}, literals)

    def test_names_only_checks_that_there_are(self):
        listed = subprocess.run(
            [PICTUREHOST, "validate", "--list"], capture_output=True, text=True, check=True
        )
        checks = {row for row in listed.stdout.splitlines() if row and not row.startswith(" ")}
        named = re.findall(r"`([a-z0-9]+(?:-[a-z0-9]+)+)`", TEXT)
        self.assertGreater(len(named), 30)
        self.assertEqual([name for name in named if name not in checks], [])
        self.assertEqual(len(named), len(set(named)))

    def test_has_the_mapping_of_exceptions(self):
        guard = source("plugin/exception_guard.cpp")
        pattern = r'catch \((?:const )?([\w:.]+)&?[^)]*\) \{\s*Raise\("(\w+)", (?:"([^"]*)"|error.what\(\))'
        expected = [
            ["anything else" if caught == "..." else caught, raised, message or "its own"]
            for caught, raised, message in re.findall(pattern, guard)
        ]
        self.assertEqual(len(expected), 10)
        rows = tables("Entries that throw")[0]
        self.assertEqual([[code(c), raised, message.strip('"')] for c, raised, message in rows], expected)

    def words_of_records(self):
        """On i386, where every field is of one word: each record's fields with their first words."""
        records = {}
        for name, body in re.findall(r"^struct (\w+) \{\n(.*?)^\};", INTERFACE, re.M | re.S):
            fields, word = {}, 0
            for line in body.splitlines():
                field = re.match(r"  [\w:]+[\w:\s*]*?\b(\w+)(?:\[(\d+)\])?;", line)
                if field is None:
                    self.assertRegex(line, r"^\s*(//.*)?$")
                    continue
                fields[field.group(1)] = word
                word += int(field.group(2) or 1)
            records[name] = fields, word
        return records

    def test_has_the_layout_of_the_records(self):
        records = self.words_of_records()
        sizes, fields = tables("Records in memory")
        told = {code(row[0]): (int(row[1]), int(row[2])) for row in sizes}
        self.assertEqual(told, {name: (words, 4 * words) for name, (_, words) in records.items()})
        self.assertGreater(len(fields), 20)
        for place, word, _ in fields:
            record, field = code(place).split(".")
            self.assertEqual(int(word), records[record][0][field], place)

    def test_has_the_functions_of_the_platform(self):
        declared = re.findall(
            r"^(?:extern \"C\" )?(?:const )?[\w:]+[\s*]+(\w+)\([^)]*\);", source("platform/*.h"), re.MULTILINE
        )
        rows = tables("What the process supplies besides")[0]
        self.assertEqual(sorted(re.findall(r"`(\w+)`", str(rows))), sorted(declared))


if __name__ == "__main__":
    main()
