"""picturehost run: each of the five methods on small pictures, and masks given by hand."""

from harness import PicturehostTest, main
from png import write_png

BLACK, WHITE = (0, 0, 0), (255, 255, 255)


class RunsMethods(PicturehostTest):
    def run_method(self, *words):
        self.assert_done(self.picturehost("run", *words, "-o", "out.png"))
        return self.pixels()

    def test_scales(self):
        self.assertEqual(self.run_method("in.png", "ScaleZVQ", 1, 1), [[(20, 30, 40)]])

    def test_resamples_by_mode(self):
        # The box takes both pixels, (10 + 30) / 2; the triangle's middle of three too.
        for mode in (1, 2):
            self.assertEqual(
                self.run_method("in.png", "ScalingZVQ", f"mode={mode}", "width=1", "height=1"),
                [[(20, 30, 40)]],
            )

    def test_blurs(self):
        write_png(self.folder / "edge.png", [[BLACK, WHITE]])
        self.assertEqual(
            self.run_method("edge.png", "BlurZVQ", "Radius=1"), [[(85, 85, 85), (170, 170, 170)]]
        )

    def test_draws_a_second_picture(self):
        write_png(self.folder / "white.png", [[WHITE]])
        # Half a pixel to the right, half opaque: a quarter of 255 on each, 63, and three quarters of
        # what was there: trunc(10 * 0.75) = 7 and so on.
        self.assertEqual(
            self.run_method("in.png", "DrawPictureFZVQ", "pic=white.png", "x=0.5", "y=0", "alpha=0.5"),
            [[(63 + 7, 63 + 15, 63 + 22), (63 + 22, 63 + 30, 63 + 37)]],
        )

    def test_a_mask_goes_to_the_picture_that_is_drawn(self):
        write_png(self.folder / "white.png", [[WHITE, WHITE]])
        write_png(self.folder / "mask.png", [[BLACK, WHITE]])
        self.assertEqual(
            self.run_method("in.png", "DrawPictureFZVQ", "white.png", 0, 0, "--mask", "mask.png"),
            [[WHITE, (30, 40, 50)]],
        )

    def test_a_mask_goes_to_the_receiver_where_nothing_is_drawn(self):
        write_png(self.folder / "wide.png", [[(1, 2, 3)] * 2 + [(5, 6, 7)] * 2])
        write_png(self.folder / "mask.png", [[BLACK] * 2 + [(51, 51, 51)] * 2])
        for kind in ("desktop", "console"):
            self.assertEqual(
                self.run_method(
                    "wide.png", "ScaleImageAndMaskZVQ", 2, 1, "--mask", "mask.png", "--kind", kind
                ),
                [[(1, 2, 3, 255), (5, 6, 7, 204)]],
            )

    def test_transparency_of_a_stamp_counts_as_a_mask(self):
        write_png(self.folder / "stamp.png", [[(255, 255, 255, 255), (255, 255, 255, 0)]])
        self.assertEqual(
            self.run_method("in.png", "DrawPictureFZVQ", "stamp.png", 0, 0, "--alpha", "mask"),
            [[WHITE, (30, 40, 50)]],
        )

    def test_a_raised_exception_is_told_with_its_class(self):
        result = self.picturehost("run", "in.png", "DrawPictureFZVQ", "nil", 0, 0, "-o", "out.png")
        self.assertEqual(result.returncode, 1)
        self.assertIn("NilObjectException: picture is nil", result.stderr)
        self.assertEqual(self.files(), ["in.png"])

    def test_a_mask_that_is_no_picture_is_refused(self):
        result = self.picturehost(
            "run", "in.png", "ScaleImageAndMaskZVQ", 2, 2, "--mask", "none.png", "-o", "out.png"
        )
        self.assert_refused(result, 2, "none.png")


if __name__ == "__main__":
    main()
