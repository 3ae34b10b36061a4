"""picturehost run: sizes such as 800x in the place of a width, and what is no size."""

import json

from harness import PicturehostTest, main
from png import write_png


class Sizes(PicturehostTest):
    """The receiver is 6x4."""

    def setUp(self):
        super().setUp()
        write_png(self.folder / "six.png", [[(9, 9, 9)] * 6] * 4)

    def called(self, *words):
        result = self.picturehost("run", "six.png", *words, "--json", "-o", "out.png")
        self.assert_done(result)
        outcome = json.loads(result.stdout)
        rows = self.pixels()
        self.assertEqual((outcome["width"], outcome["height"]), (len(rows[0]), len(rows)))
        return outcome["call"]

    def test_follow_the_proportions_of_the_picture(self):
        for word, size in [
            ("3x5", "3, 5"),
            ("3x", "3, 2"),
            ("X6", "9, 6"),
            ("50%", "3, 2"),
            ("100%", "6, 4"),
            ("150.5%", "9, 6"),
            ("1x", "1, 1"),
            ("0.1%", "1, 1"),
            ("x1", "2, 1"),
            ("12.5%", "1, 1"),
            ("37.5%", "2, 2"),
        ]:
            with self.subTest(word):
                self.assertEqual(self.called("ScaleZVQ", word), f"ScaleZVQ({size}, false, 0)")

    def test_stand_for_width_and_height(self):
        for words, call in [
            (("ScaleZVQ", "50%", "true"), "ScaleZVQ(3, 2, true, 0)"),
            (("ScaleZVQ", "50%", "true", "7"), "ScaleZVQ(3, 2, true, 7)"),
            (("ScaleZVQ", "WIDTH=x2", "AntiAlias=true"), "ScaleZVQ(3, 2, true, 0)"),
            (("ScaleZVQ", "YieldTicks=7", "3x"), "ScaleZVQ(3, 2, false, 7)"),
            (("ScalingZVQ", "2", "50%"), "ScalingZVQ(2, 3, 2, 0)"),
            (("ScalingZVQ", "mode=2", "width=50%"), "ScalingZVQ(2, 3, 2, 0)"),
            (("ScaleImageAndMaskZVQ", "12x"), "ScaleImageAndMaskZVQ(12, 8, false, 0)"),
        ]:
            with self.subTest(words):
                self.assertEqual(self.called(*words), call)

    def test_whole_numbers_stay_what_they_are(self):
        for words, call in [
            (("0x3", "2"), "ScaleZVQ(3, 2, false, 0)"),
            (("3", "0x2"), "ScaleZVQ(3, 2, false, 0)"),
        ]:
            self.assertEqual(self.called("ScaleZVQ", *words), call)

    def test_what_is_no_size(self):
        for word in (
            "x", "0x", "x0", "3x0", "0%", "%", "-50%", "+50%", "-3x", "3x-2", "3.5x", "3x2x1", "3x2%",
            "5e1%", "inf%", "nan%", "50%%", "5.0.1%", "3 x", "2147483648x", "x99999999999",
        ):  # fmt: skip
            with self.subTest(word):
                result = self.picturehost("run", "six.png", "ScaleZVQ", word, "-o", "out.png")
                self.assert_refused(
                    result, 2, "or a size such as 800x600, 800x, x600 or 50%, not '" + word + "';",
                    "the declaration is ScaleZVQ(width",
                )  # fmt: skip

    def test_more_than_32_bits_hold(self):
        for word in ("99999999999%", "x2147483647"):
            result = self.picturehost("run", "six.png", "ScaleZVQ", word, "-o", "out.png")
            self.assert_refused(result, 2, f"'{word}' of a picture of 6x4", "2147483647 pixels")

    def test_either_side_twice(self):
        for words in (("3x2", "height=2"), ("height=2", "3x"), ("3x", "width=3"), ("width=3x", "2")):
            result = self.picturehost("run", "six.png", "ScaleZVQ", *words, "-o", "out.png")
            self.assert_refused(result, 2, "is given twice")

    def test_only_in_the_place_of_a_width(self):
        for words, fragment in [
            (("ScaleZVQ", "3", "x2"), "'height' must be a whole number of 32 bits, not 'x2'"),
            (("ScaleZVQ", "3", "height=50%"), "'height' must be a whole number of 32 bits, not"),
            (("ScalingZVQ", "50%"), "'mode' must be a whole number of 32 bits, not '50%'"),
            (("BlurZVQ", "50%"), "'Radius' must be a number, not '50%'"),
        ]:
            result = self.picturehost("run", "six.png", *words, "-o", "out.png")
            self.assert_refused(result, 2, fragment)


class Suggestions(PicturehostTest):
    def test_for_a_mistyped_method(self):
        for word, meant in [
            ("ScaleZQV", "ScaleZVQ"),
            ("scalezvg", "ScaleZVQ"),
            ("ScalingVQ", "ScalingZVQ"),
            ("Blur", "BlurZVQ"),
            ("DrawPicture", "DrawPictureFZVQ"),
        ]:
            result = self.picturehost("run", "in.png", word, "1", "1", "-o", "out.png")
            self.assert_refused(
                result, 2, f"the plug-in has no method '{word}'; did you mean '{meant}'?\n"
            )

    def test_for_a_method_mistyped_after_several_pictures(self):
        for words in (("in.png", "BlurQVZ", "2"), ("./in.png", "none.png", "BlurQVZ", "2")):
            result = self.picturehost("run", "in.png", *words, "-o", "{index}.png")
            self.assert_refused(result, 2, "no method 'BlurQVZ'; did you mean 'BlurZVQ'?\n")

    def test_for_a_mistyped_parameter(self):
        for words, meant in [
            (("ScaleZVQ", "widht=1", "1"), "width"),
            (("ScaleZVQ", "1", "HIGHT=1"), "height"),
            (("BlurZVQ", "radios=1"), "Radius"),
        ]:
            result = self.picturehost("run", "in.png", *words, "-o", "out.png")
            self.assert_refused(result, 2, f"; did you mean '{meant}'? The declaration is ")

    def test_none_where_nothing_is_near(self):
        result = self.picturehost("run", "in.png", "Rotate", "1", "-o", "out.png")
        self.assert_refused(result, 2, "no method 'Rotate'; picturehost methods lists what it has")
        result = self.picturehost("run", "in.png", "BlurZVQ", "sigma=1", "-o", "out.png")
        self.assert_refused(result, 2, "no parameter 'sigma'; the declaration is BlurZVQ(")


if __name__ == "__main__":
    main()
