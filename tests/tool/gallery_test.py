"""picturehost gallery: the page and its pictures."""

import base64
import os
import pathlib
import re
import struct

from gallery_harness import GalleryTest, pattern, write_noise
from gallery_page import fnv1a, pixels_of
from harness import main
from png import SIGNATURE, write_png

METHODS = ["ScaleZVQ", "ScalingZVQ", "BlurZVQ", "DrawPictureFZVQ", "ScaleImageAndMaskZVQ"]


class GalleryPage(GalleryTest):
    def test_needs_neither_network_nor_scripts(self):
        page, errors = self.gallery("small.png")
        self.assertEqual(errors, "")
        for name, attributes in page.elements:
            self.assertNotIn(name, ("script", "iframe", "object", "embed", "base"))
            for attribute, value in attributes.items():
                self.assertFalse(attribute.startswith("on"), attribute)
                if attribute in ("src", "srcset"):
                    self.assertTrue(value.startswith("data:image/png;base64,"))
                if attribute == "href":
                    self.assertRegex(value, r"^(#|data:,$)")
        self.assertNotIn("url(", page.style)
        self.assertNotIn("@import", page.style)

    def test_can_be_read_by_everybody(self):
        page, _ = self.gallery("small.png")
        elements = dict(page.elements)
        self.assertEqual(elements["html"]["lang"], "en")
        names = [attributes.get("name") for name, attributes in page.elements if name == "meta"]
        self.assertIn("viewport", names)
        self.assertIn("title", elements)
        ids = [attributes["id"] for _, attributes in page.elements if "id" in attributes]
        self.assertEqual(len(ids), len(set(ids)))
        self.assertGreater(len(page.links), 8)
        for link in page.links:
            self.assertIn(link[1:], ids)
        for level, id_ in page.headings[1:]:
            self.assertIn("#" + id_, page.links + ["#reading"], level)
        for name, attributes in page.elements:
            if name == "img":
                self.assertGreater(len(attributes["alt"]), 5)
            if name == "svg" and "class" in attributes:
                for id_ in attributes["aria-labelledby"].split():
                    self.assertIn(id_, ids)

    def test_colours_of_text_stand_out_in_both_schemes(self):
        page, _ = self.gallery("small.png")
        schemes = re.findall(r":root \{(.*?)\}", page.style, re.DOTALL)
        self.assertEqual(len(schemes), 3)  # light, dark, printed

        def luminance(colour):
            if len(colour) == 3:
                colour = "".join(2 * digit for digit in colour)
            parts = [int(colour[i : i + 2], 16) / 255 for i in (0, 2, 4)]
            parts = [p / 12.92 if p <= 0.04045 else ((p + 0.055) / 1.055) ** 2.4 for p in parts]
            return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2]

        light = {}
        for scheme in schemes:
            colours = {**light, **dict(re.findall(r"--([a-z-]+): #([0-9a-f]+);", scheme))}
            light = light or colours
            for text in ("ink", "quiet", "accent", "bad"):
                for ground in ("paper", "raised"):
                    a, b = sorted((luminance(colours[text]), luminance(colours[ground])))
                    self.assertGreater((b + 0.05) / (a + 0.05), 4.5, (text, ground, colours))

    def test_without_a_picture_shows_the_tools_own_scene(self):
        page, errors = self.gallery()
        self.assertEqual(errors, "")
        self.assertEqual(page.tiles[0].facts[0], "640 × 480 · ")
        images = [image for tile in page.tiles for image in tile.images]
        self.assertGreater(len(images), 60)
        for image in images:
            prefix, data = image["src"].split(",")
            data = base64.b64decode(data, validate=True)
            self.assertEqual((prefix, data[:8]), ("data:image/png;base64", SIGNATURE))
            width, height = struct.unpack(">II", data[16:24])
            shown = int(image["width"]), int(image["height"])
            self.assertEqual((shown[0] % width, shown[1] % height), (0, 0))
            self.assertLessEqual(shown[0], 1000)
        small = [tile for tile in page.tiles if "magnified" in str(tile.images)]
        self.assertGreaterEqual(len(small), 8 + 8 + 8 + 9)

    def test_shows_every_method_and_every_mode(self):
        page, _ = self.gallery("small.png")
        self.assertEqual(
            {tile.call.split("(")[0] for tile in page.in_section("-methods")}, {"", *METHODS}
        )
        for section in ("-shrinking", "-enlarging", "rings", "kernels"):
            calls = [tile.call for tile in page.in_section(section)]
            modes = [call[11] for call in calls if call.startswith("ScalingZVQ(")]
            self.assertEqual(modes, list("1234567"), section)
        radii = [tile.call for tile in page.in_section("-blur")]
        self.assertEqual(radii, [""] + [f"BlurZVQ({r}, 0)" for r in (1, 2, 4, 8, 16, 32, 64)])
        sprites = [tile.call for tile in page.in_section("sprite")]
        self.assertEqual(
            sprites, [f"DrawPictureFZVQ(star, {4 + i / 8:g}, 4, 1, 0)" for i in range(9)]
        )
        for tile in page.in_section("mask"):
            self.assertEqual(len(tile.images), 3, tile.title)

    def test_each_tile_has_call_time_and_hash(self):
        page, _ = self.gallery("small.png")
        for tile in page.tiles:
            self.assertRegex(tile.hash, r"^[0-9a-f]{16}$")
            if tile.call:
                self.assertRegex("\n".join(tile.facts), r"(?m)^[\d.]+ ms · [\d.]+ ms/MP$")

    def test_hashes_name_the_pixels(self):
        page, _ = self.gallery("small.png")
        told = [tile for tile in page.tiles
                if len(tile.images) == 1 and "class" not in tile.images[0]]  # fmt: skip
        self.assertGreater(len(told), 10)
        for tile in told:
            self.assertEqual(tile.hash, fnv1a(pixels_of(tile.images[0])), tile.title)

    def test_results_are_those_of_run(self):
        page, _ = self.gallery("small.png")
        for tile in page.in_section("-shrinking"):
            method, words = re.fullmatch(r"(\w+)\((.*)\)", tile.call).groups()
            self.assert_done(
                self.picturehost("run", "small.png", method, *words.split(", "), "-o", "out.png")
            )
            self.assertEqual(tile.hash, fnv1a(self.pixels()))

    def test_parts_are_those_that_sheet_cuts_out(self):
        write_png(self.folder / "small.png", pattern(300, 200))
        page, _ = self.gallery("small.png")
        tiles = page.in_section("-enlarging") + page.in_section("-blur")[1:3]
        tiles += [tile for tile in page.in_section("-methods") if tile.call.startswith("ScaleZVQ(480")]
        self.assertEqual(len(tiles), 8 + 2 + 2)
        for tile in tiles:
            part = re.fullmatch(r"on the part ([\d,]+) of small.png", tile.facts[0])[1]
            method, words = re.fullmatch(r"(\w+)\((.*)\)", tile.call).groups()
            self.assert_done(self.picturehost("sheet", "small.png", "--part", part, "-o", "part.png"))
            self.assert_done(
                self.picturehost("run", "part.png", method, *words.split(", "), "-o", "out.png")
            )
            self.assertEqual(tile.hash, fnv1a(self.pixels()), tile.title)

    def test_large_results_are_shown_reduced_and_say_so(self):
        write_png(self.folder / "small.png", pattern(600, 3))
        page, _ = self.gallery("small.png")
        for tile in (page.tiles[0], page.in_section("-methods")[3]):
            self.assertEqual(tile.facts[-1], "Shown reduced to 480 × 2.")
            self.assertEqual((tile.images[0]["width"], tile.images[0]["height"]), ("480", "2"))

    def test_masks_are_seen(self):
        for alpha in (False, True):
            write_png(self.folder / "small.png", pattern(40, 30, alpha))
            page, _ = self.gallery("small.png")
            (tile,) = (tile for tile in page.in_section("-methods") if tile.call.startswith("ScaleImage"))
            opacities = {pixel[3] for row in pixels_of(tile.images[0]) for pixel in row}
            self.assertGreater(len(opacities), 3, alpha)
            self.assertEqual(tile.images[0]["class"], "clear")
        for tile in page.in_section("mask"):
            colours, mask, both = (pixels_of(image) for image in tile.images)
            for seen, colour, hidden in zip(sum(both, []), sum(colours, []), sum(mask, [])):
                self.assertEqual(seen, (*colour, 255 - hidden[0]))

    def test_hashes_repeat_in_every_kind_of_application(self):
        def hashes(*words):
            page, _ = self.gallery("small.png", *words)
            return [(tile.title, tile.hash) for tile in page.tiles]

        first = hashes()
        self.assertEqual(hashes(), first)
        for words in (("--kind", "console"), ("--kind", "web"), ("--pixel-format", 1)):
            self.assertEqual(hashes(*words), first, words)
        write_png(self.folder / "small.png", pattern(40, 31))
        self.assertNotEqual(hashes(), first)

    def test_several_pictures_have_a_chapter_each(self):
        name = 'a<b>&"c".png'
        write_png(self.folder / name, pattern(9, 7))
        page, _ = self.gallery("small.png", name, "in.png")
        for section, count in (("-methods", 9), ("-shrinking", 8), ("-enlarging", 8), ("-blur", 8)):
            for number in (1, 2, 3):
                self.assertEqual(len(page.in_section(f"picture-{number}{section}")), count)
        for section, count in (("rings", 8), ("kernels", 7), ("sprite", 9), ("mask", 4)):
            self.assertEqual(len(page.in_section(section)), count)
        self.assertIn(f"on {name}, 9 × 7", page.in_section("picture-2-methods")[1].facts)

    def test_a_name_of_any_bytes_is_shown(self):
        name = b"caf\xe9 \xc3\xa9\x01.png"
        write_png(pathlib.Path(os.fsdecode(os.fsencode(self.folder) + b"/" + name)), pattern(9, 7))
        page, _ = self.gallery(os.fsdecode(name))
        self.assertIn("on caf\ufffd é\ufffd.png, 9 × 7", page.tiles[1].facts)

    def test_takes_pictures_of_any_shape(self):
        for width, height, alpha in ((1, 1, False), (1, 500, False), (700, 1, True), (5, 3, True)):
            write_png(self.folder / "odd.png", pattern(width, height, alpha))
            for words in ((), ("--alpha", "mask"), ("--alpha", "drop", "--kind", "web")):
                page, errors = self.gallery("odd.png", *words)
                self.assertEqual(errors, "", (width, height, words))
                self.assertEqual(len(page.tiles), 61)

    def test_pages_stay_small(self):
        write_noise(self.folder / "noise.png", 1600, 1200)
        self.gallery("noise.png")
        size = (self.folder / "out/index.html").stat().st_size
        self.assertLess(size, 10_000_000)
        self.assertGreater(size, 1_000_000)


if __name__ == "__main__":
    main()
