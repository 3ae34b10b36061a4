"""What the tests of the linker share: making objects with clang, and linking them."""

import pathlib
import subprocess
import tempfile
import unittest

from library import Library

ROOT = pathlib.Path(__file__).resolve().parents[2]
TARGET = "--target=i386-apple-macosx10.6"
IMPORTS = """
/usr/lib/libSystem.B.dylib
  _imported
  _importedData
/usr/lib/libother.dylib
  _weakImport weak
  _otherImport
"""
CXX_IMPORTS = """
/usr/lib/libSystem.B.dylib
/usr/lib/libstdc++.6.dylib
  ___gxx_personality_v0
  ___cxa_begin_catch
  ___cxa_end_catch
  __ZSt9terminatev
  __Unwind_Resume
  _mayThrow
"""


class LinkingTest(unittest.TestCase):
    """Each test works in its own empty folder, `self.folder`."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def compile(self, name, *words, target=TARGET):
        output = self.folder / (name + ".o")
        subprocess.run(
            ["clang++", target, *map(str, words), "-c", "-o", output, self.folder / name],
            check=True,
            timeout=60,
        )
        return output

    def assemble(self, name, text, divisible=True, **options):
        """An object from assembly text."""
        (self.folder / (name + ".s")).write_text(
            text + ("\n.subsections_via_symbols\n" if divisible else "\n")
        )
        return self.compile(name + ".s", **options)

    def compile_cxx(self, name, text, *words):
        """An object from C++ text, built as the plug-in is."""
        (self.folder / (name + ".cpp")).write_text(text)
        return self.compile(
            name + ".cpp", "-std=c++17", "-O2", "-nostdlibinc", "-nostdinc++", "-isystem",
            ROOT / "toolchain/include", "-fvisibility=hidden", "-fno-stack-protector", *words,
        )  # fmt: skip

    def run_linker(self, *objects, exports=("_start",), imports=IMPORTS, output="out.dylib"):
        (self.folder / "imports.txt").write_text(imports)
        words = [word for name in exports for word in ("--export", name)]
        return subprocess.run(
            ["python3", "-B", ROOT / "toolchain/link", "--imports", self.folder / "imports.txt",
             *words, "--install-name", "@loader_path/out.dylib", "--output", self.folder / output,
             *objects],
            capture_output=True, text=True, timeout=60,
        )  # fmt: skip

    def link(self, *objects, output="out.dylib", **options):
        result = self.run_linker(*objects, output=output, **options)
        self.assertEqual((result.returncode, result.stderr, result.stdout), (0, "", ""))
        return Library(self.folder / output)

    def assert_refused(self, result, *fragments):
        """One line that says why, and no file."""
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        for fragment in ("link: ", *fragments):
            self.assertIn(fragment, result.stderr)
        self.assertFalse((self.folder / "out.dylib").exists())


def main():
    unittest.main(verbosity=2)
