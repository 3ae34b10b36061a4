"""picturehost sample: the project's own test pictures are the same bytes on every machine."""

import zlib

from harness import PicturehostTest, main


class Samples(PicturehostTest):
    def check(self, name, width, height, samples, checksum):
        self.assert_done(self.picturehost("sample", name, "-o", "out.png"))
        rows = self.pixels()
        self.assertEqual((len(rows[0]), len(rows), len(rows[0][0])), (width, height, samples))
        data = bytes(sample for row in rows for pixel in row for sample in pixel)
        self.assertEqual(f"{zlib.crc32(data):08x}", checksum)
        return rows

    def test_scene(self):
        rows = self.check("scene", 640, 480, 3, "fa51b29a")
        self.assertGreater(len({pixel for row in rows for pixel in row}), 20000)

    def test_rings(self):
        rows = self.check("rings", 256, 256, 3, "9e1a574c")
        for row in rows[:128]:
            self.assertEqual(row, row[::-1])
        self.assertEqual(rows, rows[::-1])

    def test_stamp(self):
        rows = self.check("stamp", 64, 64, 4, "998a8cab")
        alphas = {pixel[3] for row in rows for pixel in row}
        self.assertTrue({0, 255} <= alphas)
        self.assertGreater(len(alphas), 50)


if __name__ == "__main__":
    main()
