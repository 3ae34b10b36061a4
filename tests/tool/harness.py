"""What the tests of picturehost share: running it in a folder of its own and judging how it ended."""

import os
import pathlib
import pty
import subprocess
import tempfile
import unittest

from png import read_png, write_png

PICTUREHOST = os.environ["PICTUREHOST"]
TRIAL_PLUGIN = os.environ["TRIAL_PLUGIN"]
OPAQUE = [[(10, 20, 30), (30, 40, 50)]]


class PicturehostTest(unittest.TestCase):
    """Each test works in its own empty folder, `self.folder`, with in.png (2x1, opaque) in it."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        write_png(self.folder / "in.png", OPAQUE)

    def picturehost(self, *words, **options):
        return subprocess.run(
            [PICTUREHOST, *map(str, words)],
            cwd=self.folder,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=110,
            **options,
        )

    def seen_on_terminal(self, *words, **environment):
        """Standard error of a run that ends well and whose standard error is a terminal. NO_COLOR is set only where
        it is given."""
        terminal, other_end = pty.openpty()
        process = subprocess.Popen(
            [PICTUREHOST, *map(str, words)],
            cwd=self.folder,
            env={**{k: v for k, v in os.environ.items() if k != "NO_COLOR"}, **environment},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=other_end,
        )
        os.close(other_end)
        text = b""
        while True:
            try:
                block = os.read(terminal, 4096)
            except OSError:  # the other end is closed
                break
            if not block:
                break
            text += block
        os.close(terminal)
        self.assertEqual(process.wait(), 0, text)
        return text.decode()

    def trial(self, *words, **options):
        """Runs a method of the trial plug-in."""
        return self.picturehost("run", "--plugin", TRIAL_PLUGIN, *words, **options)

    def assert_done(self, result):
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def assert_refused(self, result, status, *fragments):
        """One clear line on standard error, nothing on standard output, no output file."""
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("picturehost: "), result.stderr)
        for fragment in fragments:
            self.assertIn(fragment, result.stderr)
        self.assertEqual((result.returncode, result.stdout), (status, ""))
        self.assertFalse((self.folder / "out.png").exists())

    def pixels(self, name="out.png"):
        return read_png(self.folder / name)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())


def main():
    unittest.main(verbosity=2)
