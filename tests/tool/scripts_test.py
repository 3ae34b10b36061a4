"""The scripts: that each notices what it is there to notice, tried on small trees of their own."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class ScriptTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def run_script(self, name, *words, **options):
        return subprocess.run(
            [self.root / "scripts" / name, *words],
            cwd=self.root,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=110,
            **options,
        )


class CheckLayers(ScriptTest):
    def check(self, **files):
        for name in ("platform/clocks.h", "platform/linux/clocks.h", "plugin/host_interface.h",
                     "plugin/wrappers.h", "pixels/editor.h", "scale/fast.h", "effects/blur.h",
                     "resample/lists.h", "host/runtime.h", "tool/progress.h"):  # fmt: skip
            self.write(name, "#pragma once\n")
        for name, text in files.items():
            self.write(name.replace("__", "/") + ".cpp", text)
        return subprocess.run(
            [ROOT / "scripts/check-layers", self.root], capture_output=True, text=True
        )

    def test_accepts_arrows_that_point_down(self):
        result = self.check(
            plugin__a='#include "platform/clocks.h"\n#include <cstdint>\n',
            pixels__a='#include "plugin/wrappers.h"\n#include "pixels/editor.h"\n',
            scale__a='#include "pixels/editor.h"\n#include "scale/fast.h"\n#include <cmath>\n',
            host__a='#include "plugin/host_interface.h"\n#include <vector>\n',
            tool__a='#include "host/runtime.h"\n#include "platform/linux/clocks.h"\n',
        )
        self.assertEqual((result.returncode, result.stdout), (0, "15 files looked at, 0 offences\n"))

    def test_keeps_instructions_of_the_processor_in_their_folders(self):
        result = self.check(
            plugin__processor="#include <cpuid.h>\n", scale__x86__fast="#include <immintrin.h>\n"
        )
        self.assertEqual((result.returncode, result.stdout), (0, "12 files looked at, 0 offences\n"))
        for name, header in [("scale__fast", "immintrin.h"), ("plugin__other", "cpuid.h")]:
            with self.subTest(name):
                result = self.check(**{name: f"#include <{header}>\n"})
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"the plug-in must not need <{header}>", result.stdout)

    def test_refuses_every_other_arrow(self):
        for folder, header in [
            ("platform", "plugin/host_interface.h"),
            ("platform", "platform/linux/clocks.h"),
            ("plugin", "pixels/editor.h"),
            ("plugin", "scale/fast.h"),
            ("plugin", "platform/linux/clocks.h"),
            ("pixels", "effects/blur.h"),
            ("scale", "effects/blur.h"),
            ("resample", "scale/fast.h"),
            ("effects", "resample/lists.h"),
            ("scale", "host/runtime.h"),
            ("host", "plugin/wrappers.h"),
            ("host", "tool/progress.h"),
            ("tool", "pixels/editor.h"),
        ]:
            with self.subTest(folder, header=header):
                result = self.check(**{folder + "__bad": f'\n#include "{header}"\n'})
                self.assertEqual(result.returncode, 1)
                self.assertIn(
                    f'{folder}/bad.cpp:2: {folder} must not include "{header}"', result.stdout
                )
                (self.root / folder / "bad.cpp").unlink()

    def test_refuses_standard_headers_that_the_plug_in_does_without(self):
        for folder in ("plugin", "pixels", "scale", "resample", "effects", "platform"):
            for header in ("vector", "string", "stdio.h", "thread"):
                result = self.check(**{folder + "__bad": f"#include <{header}>\n"})
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"the plug-in must not need <{header}>", result.stdout)
            (self.root / folder / "bad.cpp").unlink()

    def test_refuses_files_that_are_not_there_or_not_in_quotes(self):
        result = self.check(host__bad='#include "runtime.h"\n#include <host/runtime.h>\n')
        self.assertEqual(result.returncode, 1)
        self.assertIn('bad.cpp:1: "runtime.h" is no file of the project', result.stdout)
        self.assertIn("bad.cpp:2: <host/runtime.h> is a file of the project", result.stdout)

    def test_refuses_a_host_that_links_the_plug_in(self):
        self.write("host/CMakeLists.txt", "target_link_libraries(host PRIVATE pixels)\n")
        result = self.check()
        self.assertEqual(result.returncode, 1)
        self.assertIn("host/CMakeLists.txt:1: host must not link the plug-in", result.stdout)

    def test_refuses_an_empty_tree(self):
        result = subprocess.run([ROOT / "scripts/check-layers", self.root], capture_output=True)
        self.assertEqual(result.returncode, 1)


PROJECT = """cmake_minimum_required(VERSION 3.25)
project(Small LANGUAGES CXX)
enable_testing()
add_executable(small small.cpp)
add_test(NAME Small.AddsUp COMMAND small 1)
add_test(NAME Small.IsWhole COMMAND small 2)
"""
PRESETS = """{"version": 6,
 "configurePresets": [{"name": "native", "generator": "Ninja",
  "binaryDir": "${sourceDir}/build/native"}],
 "buildPresets": [{"name": "native", "configurePreset": "native"}],
 "testPresets": [{"name": "native", "configurePreset": "native"}]}
"""
SOURCE = """int two = 2;
int unused = 5;
int main(int argc, char** argv) { return argc == 2 && *argv[1] == '1' ? two + 2 != 4 : 0; }
"""


def patch(old, new):
    """Exchanges one line of small.cpp."""
    lines = SOURCE.splitlines()
    text = "What it breaks.\n--- a/small.cpp\n+++ b/small.cpp\n@@ -1,3 +1,3 @@\n"
    for line in lines:
        text += f"-{line}\n+{new}\n" if line == old else f" {line}\n"
    return text


class SmallProject(ScriptTest):
    def setUp(self):
        super().setUp()
        shutil.copytree(ROOT / "scripts", self.root / "scripts")
        self.write("CMakeLists.txt", PROJECT)
        self.write("CMakePresets.json", PRESETS)
        self.write("small.cpp", SOURCE)
        self.write("host/a.h", "#pragma once\n")
        self.write(".gitignore", "/build/\n")
        subprocess.run(["git", "init", "-q"], cwd=self.root, check=True)


class Mutate(SmallProject):
    def test_tells_noticed_mutations_from_all_others(self):
        self.write("tests/mutations/noticed.patch", patch("int two = 2;", "int two = 3;"))
        self.write("tests/mutations/survivor.patch", patch("int unused = 5;", "int unused = 6;"))
        self.write("tests/mutations/broken.patch", patch("int two = 2;", "int two = ;"))
        self.write("tests/mutations/stale.patch", "--- a/small.cpp\n+++ b/small.cpp\n"
                   "@@ -1,1 +1,1 @@\n-int three = 3;\n+int three = 4;\n")  # fmt: skip
        result = self.run_script("mutate", "noticed")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertRegex(result.stdout, r"noticed +noticed by Small.AddsUp ")
        result = self.run_script("mutate")
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"(?m)^broken +DOES NOT COMPILE ")
        self.assertRegex(result.stdout, r"(?m)^noticed +noticed by Small.AddsUp ")
        self.assertRegex(result.stdout, r"(?m)^stale +DOES NOT APPLY ")
        self.assertRegex(result.stdout, r"(?m)^survivor +SURVIVED ")
        self.assertIn("4 mutations, 3 not noticed", result.stdout)
        self.assertEqual((self.root / "small.cpp").read_text(), SOURCE)
        listed = self.run_script("mutate", "--list").stdout
        self.assertRegex(listed, r"(?m)^survivor +What it breaks\.$")

    def test_refuses_to_judge_when_the_tests_fail_anyway(self):
        self.write("small.cpp", SOURCE.replace("int two = 2;", "int two = 3;"))
        self.write("tests/mutations/noticed.patch", patch("int unused = 5;", "int unused = 6;"))
        result = self.run_script("mutate")
        self.assertEqual(result.returncode, 1)
        self.assertIn("the tests fail without a mutation", result.stderr)

    def test_refuses_to_judge_nothing(self):
        self.assertEqual(self.run_script("mutate").returncode, 1)
        self.assertEqual(self.run_script("mutate", "unknown").returncode, 1)


class Test(SmallProject):
    def last_line(self, result):
        return result.stdout.splitlines()[-1]

    def test_counts_tests_builds_and_the_layer_check(self):
        result = self.run_script("test", "--quick")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(self.last_line(result), "4 passed, 0 failed")
        self.assertRegex(result.stdout, r"(?m)^tests, native +2 passed, 0 failed +\d+ s$")

    def test_fails_with_a_failing_test(self):
        self.write("small.cpp", SOURCE.replace("int two = 2;", "int two = 3;"))
        result = self.run_script("test", "--quick")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.last_line(result), "3 passed, 1 failed")
        self.assertIn("Small.AddsUp", result.stdout)

    def test_fails_with_a_build_that_fails(self):
        self.write("small.cpp", "int main( { }\n")
        result = self.run_script("test", "--quick")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.last_line(result), "1 passed, 1 failed")

    def test_fails_without_any_test(self):
        self.write("CMakeLists.txt", PROJECT.split("add_test")[0])
        result = self.run_script("test", "--quick")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.last_line(result), "2 passed, 1 failed")

    def test_fails_with_a_bad_include(self):
        self.write("host/a.h", '#include "tool/b.h"\n')
        self.write("tool/b.h", "#pragma once\n")
        result = self.run_script("test", "--quick")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.last_line(result), "3 passed, 1 failed")

    def test_refuses_unknown_arguments(self):
        self.assertEqual(self.run_script("test", "--fast").returncode, 2)


class Setup(SmallProject):
    """Runs with a PATH of its own, on which programs can be missing or replaced."""

    def path_without(self, *missing):
        folder = self.root / "bin"
        folder.mkdir()
        needed = re.findall(r"^ *need_command (\S+)", (ROOT / "scripts/setup").read_text(), re.MULTILINE)
        used = "as bash basename cat dirname env head id mktemp rm sed sort uname".split()
        for name in set(needed + used) - set(missing):
            (folder / name).symlink_to(shutil.which(name))
        return folder

    def replace(self, folder, name, script):
        (folder / name).unlink(missing_ok=True)
        (folder / name).write_text("#!/bin/sh\n" + script)
        (folder / name).chmod(0o755)

    def run_setup(self, folder, *words):
        return self.run_script("setup", *words, env={**os.environ, "PATH": str(folder)})

    def test_says_nothing_when_all_is_there(self):
        result = self.run_setup(self.path_without())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertNotIn("nstall", result.stdout + result.stderr)

    def test_prints_the_one_command_when_the_user_may_not_install(self):
        folder = self.path_without("ninja", "id")
        self.replace(folder, "id", "echo 1000\n")
        result = self.run_setup(folder)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(
            result.stdout,
            "sudo apt-get update && sudo apt-get install -y --no-install-recommends ninja-build\n",
        )

    def test_wants_a_browser_only_when_asked_for_one(self):
        folder = self.path_without("id")
        self.replace(folder, "id", "echo 1000\n")
        self.assertEqual(self.run_setup(folder).returncode, 0)
        result = self.run_setup(folder, "--browser")
        self.assertEqual(result.returncode, 1)
        self.assertTrue(result.stdout.endswith(" --no-install-recommends chromium\n"), result.stdout)
        self.replace(folder, "chromium", "exit 0\n")
        self.assertEqual(self.run_setup(folder, "--browser").returncode, 0)
        self.assertEqual(self.run_setup(folder, "--bowser").returncode, 2)

    def test_refreshes_the_index_and_installs_what_is_missing(self):
        folder = self.path_without("ninja", "id")
        self.replace(folder, "id", "echo 0\n")
        # What the package would bring.
        ninja = shutil.which("ninja")
        ln = shutil.which("ln")
        self.replace(
            folder,
            "apt-get",
            f'echo "$DEBIAN_FRONTEND $*" >>"{self.root}/apt"\n'
            f'case $1 in install) {ln} -s "{ninja}" "{folder}/ninja" ;; esac\n',
        )
        result = self.run_setup(folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("Installing: ninja-build\n", result.stdout)
        self.assertEqual(
            (self.root / "apt").read_text().splitlines(),
            [
                "noninteractive update",
                "noninteractive install -y --no-install-recommends ninja-build",
            ],
        )

    def test_goes_on_with_one_line_where_32_bits_are_impossible(self):
        folder = self.path_without("g++", "uname")
        self.replace(folder, "uname", "echo aarch64\n")
        self.replace(folder, "g++", "exit 1\n")
        result = self.run_setup(folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(
            result.stdout,
            "No 32-bit program can be built on this machine: going on in its own word size only.\n",
        )


if __name__ == "__main__":
    unittest.main(verbosity=2)
