"""picturehost: the command line, method arguments, and how each mistake in them ends."""

from harness import PicturehostTest, main
from png import write_png


class TakesArguments(PicturehostTest):
    def echoed(self, *words):
        """What the trial method received, told by the host's trace."""
        result = self.trial("in.png", "Echo", *words, "--trace", "-o", "out.png")
        self.assertEqual(result.returncode, 0, result.stderr)
        lines = [line for line in result.stderr.splitlines() if "REALBuildString(" in line]
        self.assertEqual(len(lines), 1)
        return lines[0].split('"')[1]

    def test_values_in_order_and_declared_defaults(self):
        for words, echo in [
            (("5",), "5 -0.5 true 7"),
            (("-5", "-2.5"), "-5 -2.5 true 7"),
            (("0", "1e3", "false", "-2147483648"), "0 1000 false -2147483648"),
            (("0x10", ".25", "TRUE", "+3"), "16 0.25 true 3"),
        ]:
            self.assertEqual(self.echoed(*words), echo)

    def test_values_by_name_in_any_letter_case(self):
        for words, echo in [
            (("number=5",), "5 -0.5 true 7"),
            (("LAST=-1", "Number=2"), "2 -0.5 true -1"),
            (("1", "flag=0"), "1 -0.5 false 7"),
            (("last=9", "4", "8.5"), "4 8.5 true 9"),
        ]:
            self.assertEqual(self.echoed(*words), echo)

    def test_options_stand_anywhere(self):
        result = self.picturehost(
            "run", "--kind", "console", "in.png", "-o", "out.png", "ScaleZVQ", "4",
            "--host-version=2012", "2", "AntiAlias=false", "--alpha", "drop",
        )  # fmt: skip
        self.assert_done(result)
        self.assertEqual(len(self.pixels()), 2)

    def test_method_names_in_any_letter_case(self):
        self.assert_done(self.picturehost("run", "in.png", "scalezvq", 1, 1, "-o", "out.png"))
        self.assertEqual(self.pixels(), [[(20, 30, 40)]])

    def test_picture_arguments_are_files_or_nil(self):
        write_png(self.folder / "a=b.png", [[(1, 2, 3)]])
        for word, nil in (("nil", "1\n"), ("in.png", "0\n"), ("a=b.png", "0\n"), ("pic=NIL", "1\n")):
            result = self.trial("in.png", "IsNil", word, "-o", "out.png")
            self.assert_done(result)
            self.assertEqual(result.stdout, nil)


class RefusesArguments(PicturehostTest):
    def refused(self, *words):
        return self.trial("in.png", *words, "-o", "out.png")

    def test_wrong_kinds_name_the_parameter_and_the_declaration(self):
        declaration = (
            "Echo(number as integer, fraction as double = -0.5, flag as boolean = true, "
            "last as integer = 7) as picture"
        )
        for words, *fragments in [
            (("1.5",), "'number' must be a whole number", "'1.5'"),
            (("2147483648",), "'number' must be a whole number of 32 bits"),
            (("1\n2\n",), "'number' must be a whole number", "'1 2 '"),
            (("",), "'number' must be a whole number"),
            (("1", "x"), "'fraction' must be a number", "'x'"),
            (("1", "2", "maybe"), "'flag' must be true or false", "'maybe'"),
            (("1", "last=1e3"), "'last' must be a whole number"),
        ]:
            self.assert_refused(self.refused("Echo", *words), 2, declaration, *fragments)

    def test_wrong_numbers(self):
        for words, fragment in [
            ((), "'number' is missing"),
            (("last=1",), "'number' is missing"),
            (("1", "2", "true", "4", "5"), "too many arguments"),
            (("1", "number=2"), "'number' is given twice"),
            (("1", "nobody=2"), "no parameter 'nobody'"),
        ]:
            self.assert_refused(self.refused("Echo", *words), 2, fragment, "Echo(number as integer")

    def test_the_receiver_is_no_argument(self):
        result = self.picturehost("run", "in.png", "ScaleZVQ", "1", "-o", "out.png")
        self.assert_refused(result, 2, "'height' is missing", "ScaleZVQ(width as integer, height")

    def test_a_type_that_has_no_text(self):
        self.assert_refused(self.refused("Spell", "abc"), 2, "'text' must be of a type")

    def test_unknown_method(self):
        self.assert_refused(self.refused("Nothing"), 2, "no method 'Nothing'")

    def test_bad_command_lines(self):
        for words in [
            ("dance",),
            ("run",),
            ("run", "in.png"),
            ("run", "in.png", "ScaleZVQ", "1", "1"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--nonsense"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--kind", "mainframe"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--pixel-format", "7"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--pixel-format", "0"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--alpha", "beta"),
            ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png", "--host-version", "new"),
            ("methods", "extra"),
            ("sample", "nothing", "-o", "out.png"),
            ("sample", "scene"),
            ("info",),
        ]:
            with self.subTest(words):
                self.assert_refused(self.picturehost(*words), 2)


class Refusals(PicturehostTest):
    def test_nil_and_false_results(self):
        for method, answer in (("Refuse", "nil"), ("Decline", "false")):
            result = self.trial("in.png", method, "-o", "out.png")
            self.assert_refused(result, 1, method + "()", "returned " + answer)

    def test_a_size_that_the_plug_in_refuses(self):
        for width, height in ((0, 1), (1, -1), (32768, 1)):
            result = self.picturehost("run", "in.png", "ScaleZVQ", width, height, "-o", "out.png")
            self.assert_refused(result, 1, f"ScaleZVQ({width}, {height}, false, 0)", "2x1", "nil")

    def test_a_raised_exception_is_told_with_class_and_message(self):
        result = self.trial("in.png", "Raise", "-o", "out.png")
        self.assert_refused(result, 1, "Raise()", "raised OutOfBoundsException: too far out")

    def test_a_leak_and_a_misuse_are_told_and_nothing_is_saved(self):
        for method, words in (("Leak", "left something over"), ("Misuse", "misused the host")):
            result = self.trial("in.png", method, "-o", "out.png")
            self.assert_refused(result, 1, method + "()", words, "Picture#")

    def test_a_plug_in_that_is_not_there_or_is_none(self):
        result = self.picturehost("methods", "--plugin", "none.so")
        self.assert_refused(result, 2, "'none.so'")
        result = self.picturehost("methods", "--plugin", "in.png")
        self.assert_refused(result, 2, "in.png: not a shared library")


class Help(PicturehostTest):
    def test_version_and_help_go_to_standard_output(self):
        result = self.picturehost("--version")
        self.assert_done(result)
        self.assertRegex(result.stdout, r"^picturehost \d+\.\d+\.\d+\n$")
        for words in (("--help",), ("run", "--help"), ("methods", "--help"), ("sample", "--help")):
            result = self.picturehost(*words)
            self.assert_done(result)
            self.assertIn("Usage: picturehost", result.stdout)

    def test_help_says_that_orientation_tags_are_not_applied(self):
        text = " ".join(self.picturehost("run", "--help").stdout.split())
        self.assertIn("orientation tags are not applied", text)


if __name__ == "__main__":
    main()
