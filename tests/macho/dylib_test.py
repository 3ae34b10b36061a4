"""The built library, VARNELL_DYLIB: one export, the expected imports, no address in its code, nothing of
the machine that built it, sound unwinding tables, and the same bytes from any folder."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

from library import Library, tool
from linking import ROOT, main

DYLIB = pathlib.Path(os.environ["VARNELL_DYLIB"])
FRAMEWORKS = "/System/Library/Frameworks/{0}.framework/Versions/A/{0}"
LIBRARIES = [
    "/usr/lib/libSystem.B.dylib",
    "/usr/lib/libgcc_s.1.dylib",
    "/usr/lib/libstdc++.6.dylib",
    *(FRAMEWORKS.format(name) for name in
      ("ApplicationServices", "CoreAudio", "CoreFoundation", "CoreServices")),
]  # fmt: skip
# The sources that the library is built from, and what builds them.
BUILT_FROM = ["CMakeLists.txt", "CMakePresets.json", "cmake", "toolchain", "platform", "plugin", "pixels",
              "scale", "resample", "effects"]  # fmt: skip
LOCAL_SECTIONS = {"__TEXT", "__DATA"}


def listed_imports():
    """(library's short name, symbol, weak) of each line of the table of imports."""
    library, result = None, set()
    for line in (ROOT / "toolchain/imports.txt").read_text().splitlines():
        line = line.split("#")[0].rstrip()
        if line and not line.startswith(" "):
            # As LLVM's tools shorten it.
            library = re.sub(r"\.(B|1|6)?\.?dylib$", "", line.split("/")[-1])
        elif line:
            result.add((library, line.split()[0], line.endswith(" weak")))
    return result


class Dylib(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.library = Library(DYLIB)
        cls.code = cls.library.section("__TEXT", "__text")

    def test_it_exports_one_function(self):
        exports = self.library.exports()
        self.assertEqual(list(exports), ["_REALPluginMain"])
        self.assertTrue(self.code.holds(exports["_REALPluginMain"]))
        listed = tool("llvm-nm", "--extern-only", "--defined-only", "--format=just-symbols", DYLIB)
        self.assertEqual(listed.split(), ["_REALPluginMain"])

    def test_it_imports_what_the_table_lists_and_nothing_else(self):
        listed = listed_imports()
        self.assertGreater(len(listed), 40)
        bound = {bind[2:] for bind in self.library.binds()}
        self.assertEqual(bound, {one[:2] for one in listed})
        weak = {bind[2] for bind in self.library.weak_binds()}
        self.assertEqual(weak, {one[1] for one in listed if one[2]})
        undefined = tool("llvm-nm", "--undefined-only", "--format=just-symbols", DYLIB).split()
        self.assertEqual(sorted(undefined), sorted(one[1] for one in listed))

    def test_the_document_lists_its_imports(self):
        rows = re.findall(
            r"^\| `(\S+)` \| ((?:`\S+`(?: \(weak\))? ?)+) \|$",
            (ROOT / "docs/macos.md").read_text(), re.MULTILINE,
        )  # fmt: skip
        documented = {
            (library, name, bool(weak))
            for library, names in rows
            for name, weak in re.findall(r"`(\S+)`( \(weak\))?", names)
        }
        self.assertEqual(documented, listed_imports())

    def test_it_asks_for_the_systems_own_libraries(self):
        self.assertEqual(self.library.libraries(), LIBRARIES)
        for command, data in self.library.commands:
            if command == 12:  # any version will do
                self.assertEqual(data[16:24], b"\0\0\1\0\0\0\1\0")

    def test_it_is_for_32_bit_intel_macos_10_6(self):
        text = tool("llvm-objdump", "--macho", "--private-headers", DYLIB)
        self.assertRegex(text, r"MH_MAGIC +I386 +ALL +0x00 +DYLIB ")
        self.assertRegex(text, r"cmd LC_VERSION_MIN_MACOSX\n +cmdsize 16\n +version 10\.6\n")
        flags = re.search(r"DYLIB +\d+ +\d+ +(.*)", text).group(1).split()
        self.assertEqual(
            flags, ["NOUNDEFS", "DYLDLINK", "TWOLEVEL", "BINDS_TO_WEAK", "NO_REEXPORTED_DYLIBS"]
        )

    def test_its_code_is_never_written(self):
        text, data, link_edit = self.library.segments
        self.assertEqual((text.protection, data.protection, link_edit.protection), (5, 3, 1))
        words = self.library.rebases() + [bind[0] for bind in self.library.binds()]
        self.assertGreater(len(words), 80)
        for address in words:
            section = self.library.section_at(address)
            self.assertEqual((section.segment, address % 4), ("__DATA", 0))
        self.assertEqual(len(words), len(set(words)))

    def test_what_moves_with_it_points_into_it(self):
        for address in self.library.rebases():
            target = self.library.section_at(self.library.word(address))
            self.assertIsNotNone(target, hex(address))
            self.assertIn(target.segment, LOCAL_SECTIONS)

    def test_every_call_reaches_a_function_or_an_import(self):
        functions = {one[4] for one in self.library.symbols if one[2]}
        stubs = self.library.section("__TEXT", "__symbol_stub")
        text = tool("llvm-objdump", "--disassemble", "--no-show-raw-insn", "--section=__text", DYLIB)
        calls = re.findall(r"^ *([0-9a-f]+): +\tcalll?\t0x([0-9a-f]+)", text, re.MULTILINE)
        self.assertGreater(len(calls), 300)
        imports = set()
        for at, target in ((int(at, 16), int(target, 16)) for at, target in calls):
            if stubs.holds(target):
                self.assertEqual((target - stubs.address) % 12, 0, hex(at))
                imports.add(self.library.import_called(at))
            elif target != at + 5:  # to the next instruction: asks where it is
                self.assertIn(target, functions, hex(at))
        for name in ("_calloc", "_sin", "_CGBitmapContextGetData", "_TickCount", "__Unwind_Resume"):
            self.assertIn(name, imports)

    def test_every_unwinding_entry_covers_functions_of_its_code(self):
        text = tool("llvm-dwarfdump", "--eh-frame", DYLIB)
        self.assertNotRegex(text, "(?i)error|warning|unknown|invalid")
        found = re.findall(
            r"FDE cie=\w+ pc=(\w+)\.\.\.(\w+)\n +Format: .*\n(?: +LSDA Address: (\w+))?", text
        )
        self.assertEqual(len(found), text.count(" FDE "))
        self.assertGreater(len(found), 80)
        handlers = self.library.section("__TEXT", "__gcc_except_tab")
        ranges = []
        for start, end, table in found:
            start, end = int(start, 16) & 0xFFFFFFFF, int(end, 16) & 0xFFFFFFFF
            self.assertTrue(self.code.holds(start, end - start), hex(start))
            ranges.append((start, end))
            if table:
                self.assertTrue(handlers.holds(int(table, 16) & 0xFFFFFFFF), table)
        ranges.sort()
        for (_, end), (start, _) in zip(ranges, ranges[1:]):
            self.assertLessEqual(end, start)
        named = {one[4] for one in self.library.symbols if one[2]}
        starts = {start for start, _ in ranges}
        self.assertGreater(len(starts & named), len(starts) // 2)
        # Only the function that ends the process has none.
        without = {one[0] for one in self.library.symbols if one[2] and one[4] not in starts}
        self.assertEqual(without, {"___clang_call_terminate"})

    def test_handlers_are_found_by_the_languages_routine(self):
        text = tool("llvm-dwarfdump", "--eh-frame", DYLIB)
        routines = {int(word, 16) for word in re.findall(r"Personality Address: (\w+)", text)}
        expected = {bind[0] for bind in self.library.binds() if bind[3] == "___gxx_personality_v0"}
        self.assertEqual(routines, expected)

    def test_handlers_find_the_types_they_catch(self):
        types = {name for _, name, _ in listed_imports() if name.startswith("__ZTI")}
        self.assertEqual(len(types), 9)
        self.assertEqual(set(self.library.caught_types().values()), types)

    def test_nothing_in_it_tells_of_the_machine_that_built_it(self):
        data = self.library.data
        strings = set(re.findall(rb"[ -~]{4,}", data))
        paths = {text for text in strings if re.search(rb"/[A-Za-z0-9_.-]+/", text)}
        self.assertEqual(paths, {name.encode() for name in LIBRARIES})
        for word in (str(ROOT), str(DYLIB.parent), str(pathlib.Path.home()), ".cpp", ".o\0"):
            self.assertNotIn(word.encode(), data)
        debugging = [one for one in self.library.symbols if one[1] & 0xE0]
        self.assertEqual(debugging, [])

    def test_another_folder_gives_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as temporary:
            copy = pathlib.Path(temporary) / "a copy that lies elsewhere"
            copy.mkdir()
            for name in BUILT_FROM:
                source = ROOT / name
                (shutil.copytree if source.is_dir() else shutil.copy)(source, copy / name)
            for words in (["--preset", "macos-i386"], ["--build", "--preset", "macos-i386", "-j2"]):
                result = subprocess.run(
                    ["cmake", *words], cwd=copy, capture_output=True, text=True, timeout=500
                )
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
            built = (copy / "build/macos-i386/bin/Varnell.dylib").read_bytes()
        self.assertTrue(built == self.library.data, "the two differ")


if __name__ == "__main__":
    main()
