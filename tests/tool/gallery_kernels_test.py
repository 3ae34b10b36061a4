"""picturehost gallery: the plots of the kernels, with kernels written here once more."""

import math
import re

from gallery_harness import FAULTY_PLUGIN, GalleryTest
from harness import main


def sinc(x):
    return math.sin(math.pi * x) / (math.pi * x) if x else 1.0


def pieces(*polynomials):
    """A kernel of one polynomial for each unit of distance, coefficients from the highest power."""

    def weight(x):
        t = abs(x)
        if t >= len(polynomials):
            return 0.0
        value = 0.0
        for coefficient in polynomials[int(t)]:
            value = value * t + coefficient
        return value

    return weight


# Mode: radius and weight over the distance.
KERNELS = {
    1: (1, pieces((-1, 1))),
    2: (0.5, lambda x: 1.0 if abs(x) <= 0.5 else 0.0),
    3: (3, lambda x: sinc(x) * sinc(x / 3) if abs(x) < 3 else 0.0),
    4: (8, lambda x: sinc(x) * sinc(x / 8) if abs(x) < 8 else 0.0),
    5: (2, pieces((7 / 6, -2, 0, 8 / 9), (-7 / 18, 2, -10 / 3, 16 / 9))),
    6: (2, pieces((1.25, -2.25, 0, 1), (-0.75, 3.75, -6, 3))),
    7: (3, pieces((4 / 3, -7 / 3, 0, 1), (-7 / 12, 3, -59 / 12, 5 / 2), (1 / 12, -2 / 3, 7 / 4, -3 / 2))),
}  # fmt: skip
RESOLUTION = 1 / 191  # of a weight, for one level of a pixel


class GalleryKernels(GalleryTest):
    def curves(self, page):
        """Of each mode: its tile, and the points of line and dots as distances and weights."""
        for tile in page.in_section("kernels"):
            mode = int(tile.call[11])
            edge = KERNELS[mode][0] + 0.5

            def points(path):
                found = re.findall(r"[ML](-?[\d.]+) (-?[\d.]+)", path)
                return [((float(x) - 172) / 120 * edge, (160 - float(y)) / 152 * 1.35 - 0.25)
                        for x, y in found]  # fmt: skip

            yield mode, tile, points(tile.plots[0]["curve"]), points(tile.plots[0]["dots"])

    def test_lines_are_the_formulas(self):
        page, _ = self.gallery("small.png")
        for mode, tile, line, _ in self.curves(page):
            radius, weight = KERNELS[mode]
            self.assertGreater(len(line), 300)
            for x, y in line:
                if mode != 2 or abs(abs(x) - 0.5) > 0.01:
                    self.assertAlmostEqual(y, weight(x), delta=0.002, msg=(mode, x))

    def test_measured_points_lie_on_the_formulas(self):
        page, _ = self.gallery("small.png")
        for mode, tile, _, dots in self.curves(page):
            radius, weight = KERNELS[mode]
            self.assertGreater(len(dots), 20)
            self.assertLess(min(x for x, _ in dots), -radius)
            for x, y in dots:
                total = sum(weight(x + i) for i in range(-10, 11))
                self.assertAlmostEqual(y, weight(x) / total, delta=RESOLUTION / 2 + 0.0008, msg=(mode, x))
            told = re.search(r"follow it, at most (0\.\d+) off", tile.facts[-1])
            self.assertLessEqual(float(told[1]), RESOLUTION / 2 + 1e-4)

    def test_a_plug_in_that_does_otherwise_is_found_out(self):
        fault = self.faulty("no-sharp-modes")  # modes 3 to 7 do what mode 1 does
        page, _ = self.gallery("small.png", "--plugin", FAULTY_PLUGIN, **fault)
        for mode, tile in enumerate(page.in_section("kernels"), 1):
            verdict = "The points follow it" if mode < 3 else "The points do NOT follow it"
            self.assertIn(verdict, tile.facts[-1])

    def test_responses_are_the_transforms(self):
        page, _ = self.gallery("small.png")
        for tile in page.in_section("kernels"):
            mode = int(tile.call[11])
            radius, weight = KERNELS[mode]
            steps = [(i + 0.5) / 200 for i in range(int(radius * 200))]
            whole = sum(weight(t) for t in steps)
            found = re.findall(r"[ML](-?[\d.]+) (-?[\d.]+)", tile.plots[1]["curve"])
            self.assertGreater(len(found), 200)
            for x, y in found[:200:7]:  # up to 1 cycle per pixel
                frequency = (float(x) - 52) / 240 * 2
                decibels = (160 - float(y)) / 152 * 85 - 80
                gain = sum(weight(t) * math.cos(2 * math.pi * frequency * t) for t in steps) / whole
                self.assertAlmostEqual(10 ** (decibels / 20), abs(gain), delta=0.003, msg=(mode, frequency))


if __name__ == "__main__":
    main()
