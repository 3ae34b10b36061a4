"""What the tests of picturehost gallery share: pictures, and the page of a run."""

import os
import random
import struct
import zlib

from gallery_page import Page
from harness import PicturehostTest
from png import SIGNATURE, chunk, write_png

FAULTY_PLUGIN = os.environ["FAULTY_PLUGIN"]


def pattern(width, height, alpha=False):
    """Something with edges, and all levels."""
    rows = [[((x * 37 + y * 11) % 256, (x * y) % 256, 255 * ((x // 3 + y // 2) % 2)) for x in range(width)]
            for y in range(height)]  # fmt: skip
    if alpha:
        rows = [[(*pixel, (x * 60) % 256) for x, pixel in enumerate(row)] for row in rows]
    return rows


def write_noise(path, width, height):
    """The picture that compresses worst."""
    bits = random.Random(1)
    raw = b"".join(b"\0" + bits.randbytes(width * 3) for _ in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    path.write_bytes(SIGNATURE + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 1))
                     + chunk(b"IEND", b""))  # fmt: skip


class GalleryTest(PicturehostTest):
    def setUp(self):
        super().setUp()
        write_png(self.folder / "small.png", pattern(40, 30))

    def gallery(self, *words, status=0, **options):
        """The page of a run, and what the run wrote on standard error."""
        result = self.picturehost("gallery", *words, "-o", "out", **options)
        self.assertEqual(result.returncode, status, result.stderr)
        self.assertEqual(result.stdout, "out/index.html\n")
        self.assertEqual(sorted(os.listdir(self.folder / "out")), ["index.html"])
        return Page((self.folder / "out/index.html").read_text()), result.stderr

    def faulty(self, fault):
        # Copies of the records that this plug-in registers stay for good; that is no leak.
        leaks = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        return {"env": {**os.environ, "VALIDATE_FAULT": fault, "ASAN_OPTIONS": leaks}}
