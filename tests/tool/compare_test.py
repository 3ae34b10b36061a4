"""picturehost compare: numbers worked out by hand, and ways to be told them."""

import json
import os
import subprocess

from harness import PicturehostTest, main
from png import write_png

# Red differs by 3 and 0, green by 0 and 4: squares 9 and 16 of six samples.
FIRST = [[(10, 20, 30), (30, 40, 50)]]
SECOND = [[(13, 20, 30), (30, 36, 50)]]


class Compare(PicturehostTest):
    def setUp(self):
        super().setUp()
        write_png(self.folder / "a.png", FIRST)
        write_png(self.folder / "b.png", SECOND)

    def compare(self, *words):
        return self.picturehost("compare", *words)

    def told(self, status, *words):
        """The JSON of a comparison that ends with the status."""
        result = self.compare(*words, "--json")
        self.assertEqual((result.returncode, result.stderr), (status, ""))
        return json.loads(result.stdout)

    def table(self, result):
        """Each line of the table: its name, then its words."""
        lines = [line.split() for line in result.stdout.splitlines()[1:-1]]
        return {words[0]: words[1:] for words in lines}

    def test_each_channel_and_all_of_them(self):
        result = self.compare("a.png", "b.png")
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        self.assertEqual(
            self.table(result),
            {
                "red": ["1.5", "2.12132", "41.60", "3", "0,0", "1"],
                "green": ["2", "2.82843", "39.10", "4", "1,0", "1"],
                "blue": ["0", "0", "inf", "0", "-", "0"],
                "all": ["1.16667", "2.04124", "41.93", "4", "1,0", "2"],
            },
        )
        self.assertTrue(
            result.stdout.endswith("The pictures differ: 2 of 2 pixels, the most in green at 1,0.\n")
        )

    def test_json_holds_the_same(self):
        told = self.told(1, "a.png", "b.png")
        self.assertEqual((told["first"], told["second"]), ("a.png", "b.png"))
        self.assertEqual((told["width"], told["height"], told["tolerance"]), (2, 1, 0))
        self.assertIs(told["equal"], False)
        self.assertEqual(list(told["channels"]), ["red", "green", "blue"])
        self.assertEqual(told["channels"]["red"]["mean"], 1.5)
        self.assertEqual(
            told["channels"]["red"]["largest"], {"difference": 3, "x": 0, "y": 0, "channel": "red"}
        )
        self.assertIsNone(told["channels"]["blue"]["psnr"])
        self.assertIsNone(told["channels"]["blue"]["largest"])
        self.assertAlmostEqual(told["all"]["mean"], 7 / 6, places=14)
        self.assertAlmostEqual(told["all"]["rms"] ** 2, 25 / 6, places=14)
        self.assertAlmostEqual(told["all"]["psnr"], 41.932916, places=6)
        self.assertEqual(told["all"]["pixels"], 2)
        self.assertEqual(
            told["all"]["largest"], {"difference": 4, "x": 1, "y": 0, "channel": "green"}
        )
        self.assertNotIn("picture", told)

    def test_black_and_white_are_farthest_apart(self):
        write_png(self.folder / "black.png", [[(0, 0, 0)] * 3] * 2)
        write_png(self.folder / "white.png", [[(255, 255, 255)] * 3] * 2)
        every = self.told(1, "black.png", "white.png")["all"]
        self.assertEqual((every["mean"], every["rms"], every["psnr"]), (255, 255, 0))
        self.assertEqual(every["pixels"], 6)

    def test_the_place_is_the_first_in_reading_order(self):
        rows = [[(0, 0, 0)] * 3 for _ in range(3)]
        write_png(self.folder / "black.png", rows)
        rows[1][2] = (0, 9, 9)
        rows[2][0] = (9, 0, 0)
        write_png(self.folder / "other.png", rows)
        every = self.told(1, "black.png", "other.png")["all"]
        self.assertEqual(
            every["largest"], {"difference": 9, "x": 2, "y": 1, "channel": "green"}
        )
        self.assertEqual(every["pixels"], 2)

    def test_equal_pictures(self):
        result = self.compare("a.png", "a.png")
        self.assert_done(result)
        self.assertEqual(self.table(result)["all"], ["0", "0", "inf", "0", "-", "0"])
        self.assertTrue(result.stdout.endswith("The pictures are equal.\n"))
        self.assertIs(self.told(0, "a.png", "a.png")["equal"], True)

    def test_tolerance_allows_up_to_so_much_in_any_sample(self):
        for tolerance, status in ((0, 1), (3, 1), (4, 0), (255, 0)):
            with self.subTest(tolerance):
                result = self.compare("a.png", "b.png", "--tolerance", tolerance)
                self.assertEqual((result.returncode, result.stderr), (status, ""))
        self.assertIn("equal within the tolerance of 255: 2 of 2 pixels", result.stdout)
        self.assertIs(self.told(0, "a.png", "b.png", "--tolerance=4")["equal"], True)

    def test_quiet_says_it_by_the_status_alone(self):
        for words, status in ((("a.png", "b.png"), 1), (("a.png", "a.png"), 0)):
            result = self.compare(*words, "--quiet")
            self.assertEqual((result.returncode, result.stdout, result.stderr), (status, "", ""))

    def test_alpha_counts_where_either_has_it_and_missing_alpha_is_255(self):
        write_png(self.folder / "clear.png", [[(10, 20, 30, 255), (30, 40, 50, 250)]])
        for words in (("a.png", "clear.png"), ("clear.png", "a.png")):
            told = self.told(1, *words)
            self.assertEqual(list(told["channels"]), ["red", "green", "blue", "alpha"])
            self.assertEqual(told["channels"]["alpha"]["mean"], 2.5)
            self.assertEqual(told["all"]["mean"], 5 / 8)
            self.assertEqual(told["all"]["largest"]["channel"], "alpha")

    def test_colours_of_invisible_pixels_count(self):
        write_png(self.folder / "x.png", [[(1, 2, 3, 0)]])
        write_png(self.folder / "y.png", [[(1, 2, 4, 0)]])
        self.assertEqual(self.told(1, "x.png", "y.png")["all"]["mean"], 0.25)

    def test_the_difference_picture_makes_the_largest_difference_bright(self):
        result = self.compare("a.png", "b.png", "-o", "out.png")
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        # 255 / 4 = 63 and a rest.
        self.assertEqual(self.pixels(), [[(3 * 63, 0, 0), (0, 4 * 63, 0)]])
        self.assertIn("out.png shows the differences times 63.\n", result.stdout)
        told = self.told(1, "a.png", "b.png", "-o", "out.png")
        self.assertEqual(told["picture"], {"path": "out.png", "gain": 63})

    def test_the_gain_can_be_chosen_and_stops_at_white(self):
        self.compare("a.png", "b.png", "-o", "out.png", "--gain", 1, "--quiet")
        self.assertEqual(self.pixels(), [[(3, 0, 0), (0, 4, 0)]])
        self.compare("a.png", "b.png", "-o", "out.png", "--gain", 80)
        self.assertEqual(self.pixels(), [[(240, 0, 0), (0, 255, 0)]])

    def test_a_difference_of_alpha_shows_as_grey(self):
        write_png(self.folder / "x.png", [[(1, 2, 3, 255), (0, 0, 0, 9)]])
        write_png(self.folder / "y.png", [[(1, 5, 3, 253), (0, 0, 0, 9)]])
        self.compare("x.png", "y.png", "-o", "out.png", "--gain", 10)
        self.assertEqual(self.pixels(), [[(20, 30, 20), (0, 0, 0)]])

    def test_equal_pictures_give_a_black_difference(self):
        result = self.compare("a.png", "a.png", "-o", "out.png")
        self.assert_done(result)
        self.assertEqual(self.pixels(), [[(0, 0, 0)] * 2])

    def test_all_that_goes_wrong_is_status_2(self):
        write_png(self.folder / "tall.png", [[(0, 0, 0)], [(0, 0, 0)]])
        (self.folder / "text.png").write_text("no picture")
        for words, *fragments in [
            (("a.png", "tall.png"), "'a.png' of 2x1", "'tall.png' of 1x2", "sizes differ"),
            (("a.png", "none.png"), "'none.png'", "No such file"),
            (("text.png", "a.png"), "'text.png' is not a"),
            (("a.png",), "B is missing", "usage: picturehost compare A B"),
            (("a.png", "b.png", "in.png"), "'in.png' is too much"),
            (("a.png", "b.png", "-o", "none/out.png"), "cannot write 'none/out.png'"),
            (("a.png", "b.png", "-o", "out.gif"), "must end in .png"),
            (("a.png", "b.png", "--gain", "2"), "--gain requires --output"),
            (("a.png", "b.png", "--gain", "0", "-o", "out.png"), "whole number of 1 to 255"),
            (("a.png", "b.png", "--tolerance", "256"), "whole number of 0 to 255"),
            (("a.png", "b.png", "--tolerance", "1.5"), "whole number of 0 to 255"),
            (("a.png", "b.png", "--json", "--quiet"), "--quiet", "--json"),
        ]:
            with self.subTest(words):
                self.assert_refused(self.compare(*words), 2, *fragments)

    def test_a_full_standard_output_is_status_2_too(self):
        with open("/dev/full", "w") as full:
            result = subprocess.run(
                [os.environ["PICTUREHOST"], "compare", "a.png", "a.png"],
                cwd=self.folder,
                stdout=full,
                stderr=subprocess.PIPE,
                text=True,
            )
        self.assertEqual(result.returncode, 2)
        self.assertIn("picturehost: cannot write to standard output", result.stderr)


if __name__ == "__main__":
    main()
