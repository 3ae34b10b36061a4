"""picturehost sheet: pictures side by side."""

from harness import PicturehostTest, main
from png import write_png

WHITE = (255, 255, 255)
RED, BLUE = (255, 0, 0), (0, 0, 255)


class Sheet(PicturehostTest):
    def setUp(self):
        super().setUp()
        write_png(self.folder / "red.png", [[RED, RED]])
        write_png(self.folder / "blue.png", [[BLUE], [BLUE]])

    def test_lays_pictures_in_cells_of_equal_size(self):
        self.assert_done(self.picturehost("sheet", "red.png", "blue.png", "-o", "out.png"))
        gap = [WHITE] * 8
        self.assertEqual(
            self.pixels(),
            [[RED, RED] + gap + [BLUE, WHITE], [WHITE, WHITE] + gap + [BLUE, WHITE]],
        )

    def test_starts_a_new_row_after_so_many_columns(self):
        self.assert_done(
            self.picturehost(
                "sheet", "red.png", "blue.png", "red.png", "--columns", 2, "-o", "out.png"
            )
        )
        rows = self.pixels()
        self.assertEqual((len(rows[0]), len(rows)), (2 + 8 + 2, 2 + 8 + 2))
        self.assertEqual(rows[10][:3], [RED, RED, WHITE])
        self.assertEqual(rows[10][10:], [WHITE, WHITE])

    def test_magnifies_one_part_without_smoothing(self):
        write_png(self.folder / "four.png", [[RED, BLUE], [BLUE, RED]])
        self.assert_done(
            self.picturehost(
                "sheet", "four.png", "--part", "1,0,1,2", "--zoom", 2, "-o", "out.png"
            )
        )
        self.assertEqual(self.pixels(), [[BLUE, BLUE]] * 2 + [[RED, RED]] * 2)

    def test_lays_transparency_on_white(self):
        write_png(self.folder / "clear.png", [[(0, 0, 0, 0), (0, 0, 0, 51), (9, 9, 9, 255)]])
        self.assert_done(self.picturehost("sheet", "clear.png", "-o", "out.png"))
        self.assertEqual(self.pixels(), [[WHITE, (204, 204, 204), (9, 9, 9)]])

    def test_refuses_what_is_no_part(self):
        for part in ("1,2,3", "a,b,c,d", "0,0,0,1", "0,0,1,1,1", "0,0,1,1x", "0,0,4294967297,1"):
            result = self.picturehost("sheet", "red.png", "--part", part, "-o", "out.png")
            self.assert_refused(result, 2, "LEFT,TOP,WIDTH,HEIGHT")

    def test_refuses_a_part_outside_a_picture(self):
        for part in ("2,0,1,1", "0,1,1,1", "-1,0,1,1"):
            result = self.picturehost("sheet", "red.png", f"--part={part}", "-o", "out.png")
            self.assert_refused(result, 1, "outside a picture of 2x1")

    def test_refuses_a_sheet_without_pictures_or_beyond_its_options(self):
        self.assert_refused(self.picturehost("sheet", "-o", "out.png"), 2)
        for option in ("--zoom", "--columns"):
            self.assert_refused(
                self.picturehost("sheet", "red.png", option, 0, "-o", "out.png"), 2
            )


if __name__ == "__main__":
    main()
