"""docs/pixel-formats.md: that pixels are what it says."""

import os
import struct

from harness import TRIAL_PLUGIN, PicturehostTest, main
from method_documents import FORMATS, NOTHING, tables
from png import write_png

FAULTY_PLUGIN = os.environ["FAULTY_PLUGIN"]


class PixelWords(PicturehostTest):
    """The hexadecimal pixels. Nothing prints a word, but a plug-in that is faulty on purpose flips
    known bits of the first one of a result; what colours that changes tells where channels lie."""

    FLIPPED = 0x00808000  # by the fault "wrong-pixel"
    COLOUR, ALPHA = (200, 100, 50), 128

    def setUp(self):
        super().setUp()
        (rows,) = tables(FORMATS, "Format")[:1]
        self.layouts = {int(row[0]): row[3].split() for row in rows}
        self.multiplied = {int(row[0]): row[5] for row in rows}
        self.words = {int(row[0]): row[1:] for row in tables(FORMATS, "Format")[1]}
        write_png(self.folder / "opaque.png", [[self.COLOUR]])
        write_png(self.folder / "clear.png", [[(*self.COLOUR, self.ALPHA)]])

    def host(self, pixel_format):
        if pixel_format == 8:
            return ("--kind", "console")
        return ("--pixel-format", pixel_format)

    def first_pixels(self, name, pixel_format, fault):
        """The first two pixels of an enlargement that copies all four bytes."""
        words = ("run", "--plugin", FAULTY_PLUGIN, name, "ScaleZVQ", 2, 2, "true", "-o", "out.png")
        # What a plug-in's start leaves is nobody's when the plug-in that loaded it has gone: no leak in a
        # sanitized build.
        options = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        environment = dict(os.environ, VALIDATE_FAULT=fault, ASAN_OPTIONS=options)
        self.assert_done(self.picturehost(*words, *self.host(pixel_format), env=environment))
        return self.pixels()[0]

    def decoded(self, word, pixel_format, has_alpha):
        """The colour of a word, by what the document says of the format."""
        at = dict(zip(self.layouts[pixel_format], struct.pack("<I", word)))
        colour = (at["R"], at["G"], at["B"])
        if not has_alpha:
            return colour
        if self.multiplied[pixel_format] == "premultiplied":
            alpha = at["A"]
            rounded = [(2 * 255 * c + alpha) // (2 * alpha) if alpha else 0 for c in colour]
            colour = tuple(min(255, c) for c in rounded)
        return (*colour, at["A"])

    def unused_or_alpha(self, pixel_format):
        """The bits that the fault "unused-byte" flips."""
        return 0xFF000000 if pixel_format == 8 or pixel_format % 2 else 0x000000FF

    def check(self, name, pixel_format, word, has_alpha):
        for fault, bits in (("wrong-pixel", self.FLIPPED),
                            ("unused-byte", self.unused_or_alpha(pixel_format))):  # fmt: skip
            spoilt, whole = self.first_pixels(name, pixel_format, fault)
            where = f"format {pixel_format}, {fault}"
            self.assertEqual(whole, self.decoded(word, pixel_format, has_alpha), where)
            self.assertEqual(spoilt, self.decoded(word ^ bits, pixel_format, has_alpha), where)

    def test_bytes_and_words_of_the_table_agree(self):
        self.assertEqual(list(self.words), [1, 2, 3, 4, 5, 6, 8])
        self.assertEqual(list(self.layouts), list(self.words))
        for cells in self.words.values():
            for memory, word in (cells[:2], cells[2:]):
                if word != NOTHING:
                    self.assertEqual(struct.pack("<I", int(word, 16)), bytes.fromhex(memory))

    def test_opaque_pixels_are_those_of_the_table(self):
        for pixel_format, cells in self.words.items():
            self.check("opaque.png", pixel_format, int(cells[1], 16), False)
            layout = self.layouts[pixel_format]
            unused = bytes.fromhex(cells[0])[layout.index("A" if "A" in layout else "X")]
            self.assertEqual(unused, 0 if pixel_format == 8 else 255)

    def test_half_transparent_pixels_are_those_of_the_table(self):
        # Options 1 to 6 give alpha channels in formats 1 and 2.
        self.assertEqual([f for f, c in self.words.items() if c[3] != NOTHING], [1, 2, 8])
        for pixel_format in (1, 2, 8):
            self.check("clear.png", pixel_format, int(self.words[pixel_format][3], 16), True)

    def test_methods_write_alpha_as_the_table_of_opaque_pixels_says(self):
        # Seen where the result has an alpha channel.
        for pixel_format in (1, 2, 8):
            words = ("run", "clear.png", "ScalingZVQ", 2, 2, 2, "-o", "out.png")
            self.assert_done(self.picturehost(*words, *self.host(pixel_format)))
            at = dict(zip(self.layouts[pixel_format], bytes.fromhex(self.words[pixel_format][0])))
            self.assertEqual({pixel[3] for row in self.pixels() for pixel in row}, {at["A"]})

    def test_the_other_bytes_are_what_is_written_in_every_format(self):
        result = self.picturehost("validate", "--check", "results-are-opaque")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_formats_are_those_that_the_host_has(self):
        for pixel_format in self.layouts:
            words = ("opaque.png", "Format", *self.host(pixel_format), "-o", "out.png")
            result = self.picturehost("run", "--plugin", TRIAL_PLUGIN, *words)
            self.assertEqual(result.stdout.strip(), str(pixel_format))


if __name__ == "__main__":
    main()
