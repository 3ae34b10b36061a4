"""Plug-in packages, zipped and as folders, and the script that makes one."""

import hashlib
import importlib.machinery
import importlib.util
import pathlib
import random
import unittest
import zipfile

from harness import TRIAL_PLUGIN, PicturehostTest, main

ROOT = pathlib.Path(__file__).resolve().parents[2]
COCOA = "Trial/Build Resources/Mac Cocoa/Trial.dylib"
CARBON = "Trial/Build Resources/Mac Carbon Mach-O/Trial.dylib"
LIBRARY = pathlib.Path(TRIAL_PLUGIN).read_bytes()


class OpensPackages(PicturehostTest):
    def pack(self, files, method=zipfile.ZIP_STORED, comment=b""):
        path = self.folder / "Trial.xojo_plugin"
        with zipfile.ZipFile(path, "w", method) as archive:
            for name, contents in files.items():
                archive.writestr(name, contents)
            archive.comment = comment
        return path

    def assert_opens(self, path, shown):
        result = self.picturehost("methods", "--plugin", path)
        self.assertIn(f"plug-in: {shown}\n", result.stdout, result.stderr)
        self.assertIn("methods: ", result.stdout)

    def assert_no_plugin(self, path, *fragments):
        self.assert_refused(self.picturehost("methods", "--plugin", path), 2, *fragments)

    def test_stored_and_deflated(self):
        for method in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
            path = self.pack({"Trial/": b"", CARBON: b"no", COCOA: LIBRARY}, method)
            self.assert_opens(path, f"{path}/{COCOA}")

    def test_deflated_data_may_end_with_any_bit(self):
        # Read to its end, whichever bit of the last byte that is: then it is no library.
        for size in range(1, 60):
            contents = bytes((7 * i * i + i // 3) % 251 for i in range(size))
            path = self.pack({COCOA: contents}, zipfile.ZIP_DEFLATED)
            result = self.picturehost("methods", "--plugin", path)
            self.assertIn("not a shared library", result.stderr)

    def test_the_other_kind_serves_where_there_is_no_first(self):
        path = self.pack({CARBON: LIBRARY}, comment=b"PK\5\6 is no end here")
        self.assert_opens(path, f"{path}/{CARBON}")

    def test_as_folders(self):
        for top in ("Trial", "Trial.xojo_plugin/Trial"):
            file = self.folder / top / "Build Resources/Mac Cocoa/Trial.dylib"
            file.parent.mkdir(parents=True)
            file.write_bytes(LIBRARY)
            self.assert_opens(top.split("/")[0], file)

    def test_runs_and_validates(self):
        path = self.pack({COCOA: LIBRARY})
        result = self.picturehost("run", "--plugin", path, "in.png", "Invert", "-o", "out.png")
        self.assertNotIn("no plug-in", result.stderr)
        result = self.picturehost("validate", path, "--check", "registers-once", "--json")
        self.assertIn(f'"plugin": "{path}/{COCOA}"', result.stdout)

    def test_without_a_library_it_is_no_package(self):
        path = self.pack({"Trial/Build Resources/Windows/Trial.dll": b"x", "Mac Cocoa/a.dylib": b"y"})
        self.assert_no_plugin(path, "no plug-in package", "Build Resources/Mac Cocoa")
        (self.folder / "empty").mkdir()
        self.assert_no_plugin("empty", "no plug-in package")

    def test_a_library_that_does_not_load_is_named_by_its_place_in_the_package(self):
        path = self.pack({COCOA: b"not a library at all"})
        result = self.picturehost("methods", "--plugin", path)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(f"{path}/{COCOA}: not a shared library", result.stderr)
        self.assertNotIn("/proc/", result.stderr)

    def test_a_truncated_archive_is_refused_wherever_it_ends(self):
        whole = self.pack({COCOA: b"0123456789" * 20, CARBON: b"x"}, zipfile.ZIP_DEFLATED).read_bytes()
        path = self.folder / "cut.xojo_plugin"
        for size in range(2, len(whole), 3):
            path.write_bytes(whole[:size])
            self.assert_no_plugin(path, "cut.xojo_plugin")

    def test_a_damaged_archive_never_crashes_it(self):
        whole = self.pack({COCOA: b"0123456789" * 20}, zipfile.ZIP_DEFLATED).read_bytes()
        path = self.folder / "bad.xojo_plugin"
        choose = random.Random(2013)
        for _ in range(200):
            damaged = bytearray(whole)
            damaged[choose.randrange(2, len(whole))] = choose.randrange(256)
            path.write_bytes(damaged)
            result = self.picturehost("methods", "--plugin", path)
            self.assertIn(result.returncode, (1, 2))
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)

    def test_wrong_contents_are_noticed(self):
        path = self.pack({COCOA: LIBRARY})
        packed = bytearray(path.read_bytes())
        packed[200] ^= 1
        path.write_bytes(packed)
        self.assert_no_plugin(path, "damaged")


class MakesPackages(PicturehostTest):
    def setUp(self):
        super().setUp()
        loader = importlib.machinery.SourceFileLoader("package", str(ROOT / "scripts/package"))
        module = importlib.util.module_from_spec(importlib.util.spec_from_loader("package", loader))
        loader.exec_module(module)
        self.package = module

    def test_the_same_library_gives_the_same_bytes(self):
        digests = set()
        for name in ("one", "two"):
            self.package.write_package(self.folder / name, LIBRARY)
            digests.add(hashlib.sha256((self.folder / name).read_bytes()).hexdigest())
        self.assertEqual(len(digests), 1)

    def test_holds_the_library_for_both_kinds_and_nothing_else(self):
        self.package.write_package(self.folder / "made", LIBRARY)
        with zipfile.ZipFile(self.folder / "made") as archive:
            self.assertEqual(
                archive.namelist(),
                [
                    "Varnell/Build Resources/Mac Carbon Mach-O/Varnell.dylib",
                    "Varnell/Build Resources/Mac Cocoa/Varnell.dylib",
                ],
            )
            for entry in archive.infolist():
                self.assertEqual(archive.read(entry), LIBRARY)
                self.assertEqual(entry.date_time, (1980, 1, 1, 0, 0, 0))
                self.assertEqual(entry.external_attr >> 16, 0o100644)

    def test_picturehost_opens_what_it_makes(self):
        self.package.write_package(self.folder / "Made.xojo_plugin", LIBRARY)
        result = self.picturehost("methods", "--plugin", "Made.xojo_plugin")
        self.assertIn("Mac Cocoa/Varnell.dylib", result.stdout)


if __name__ == "__main__":
    main()
