"""What picturehost says of itself: its help, its manual page, and what it answers to slips of the pen."""

import re
import subprocess

from harness import PicturehostTest, main

COMMANDS = ["run", "methods", "sample", "info", "compare", "sheet", "gallery", "validate"]
WIDTH = 80


class Overview(PicturehostTest):
    def test_without_a_word_it_tells_what_it_does_with_two_examples(self):
        result = self.picturehost()
        self.assert_done(result)
        lines = result.stdout.splitlines()
        self.assertTrue(lines[0].startswith("Run the methods of a picture plug-in"))
        self.assertEqual([line.split()[1] for line in lines if "picturehost run" in line], ["run"] * 2)
        for command in COMMANDS:
            self.assertRegex(result.stdout, rf"\n  {command} +[A-Z]")
        self.assertIn("picturehost COMMAND --help", lines[-1])
        self.assertLess(len(lines), 25)


class Help(PicturehostTest):
    def help(self, *words):
        result = self.picturehost(*words)
        self.assert_done(result)
        return result.stdout

    def test_lists_every_command(self):
        text = self.help("--help")
        listed = re.findall(r"^  ([a-z]+) +[A-Z]", text.split("Commands:")[1], re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(COMMANDS))

    def test_of_each_command_has_purpose_usage_options_and_exit_status(self):
        for command in COMMANDS:
            with self.subTest(command):
                text = self.help(command, "--help")
                self.assertRegex(text, rf"^[A-Z][^.]*\n\nUsage: picturehost {command} ")
                self.assertIn("\nOptions:\n  -h, --help", text)
                self.assertIn("\nExit status:", text)
                self.assertRegex(text, f"\nExamples:\n  picturehost {command} ")
                self.assertEqual(self.help("help", command), text)

    def test_is_no_wider_than_a_terminal(self):
        for words in ([], ["--help"], *([command, "--help"] for command in COMMANDS)):
            for line in self.help(*words).splitlines():
                with self.subTest(words):
                    if not line.startswith("  picturehost "):
                        self.assertLessEqual(len(line), WIDTH, line)
                    self.assertEqual(line, line.rstrip())

    def test_paragraphs_stand_apart(self):
        text = self.help("compare", "--help")
        self.assertIn(" count too.\n\nPSNR is 10 * log10", text)
        self.assertIn(" reading order.\n\nExamples:\n", text)

    def test_names_allowed_values_ranges_and_defaults(self):
        for command, *phrases in [
            ("run", "(desktop, web, console or none; default: desktop)", "(1 to 6; default: 6)"),
            ("run", "(default: 2013.04)", "(channel, mask or drop; default: channel)"),
            ("sheet", "(1 to 64; default: 1)", "(1 to 1000)"),
            ("sample", "(scene, rings or stamp)"),
            ("validate", "(1 to 3600; default: 20)", "0 to 2^64 - 1", "(default: 1)"),
            ("compare", "(0 to 255; default: 0)", "(1 to 255)", "10 * log10(255^2 / MSE)"),
        ]:
            text = " ".join(self.help(command, "--help").split())
            for phrase in phrases:
                self.assertIn(phrase, text)

    def test_every_allowed_value_is_taken(self):
        for option, values in [
            ("--kind", ("desktop", "WEB", "Console", "none")),
            ("--alpha", ("channel", "mask", "drop")),
            ("--pixel-format", "123456"),
        ]:
            for value in values:
                words = ("run", "in.png", "ScaleZVQ", 1, 1, "-o", "out.png", option, value)
                self.assert_done(self.picturehost(*words))


class DidYouMean(PicturehostTest):
    def test_names_what_is_near(self):
        run = ("run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png")
        for words, *fragments in [
            (("rnu",), "there is no command 'rnu'", "did you mean 'run'?", "picturehost --help"),
            (("help", "smaple"), "no command 'smaple'", "did you mean 'sample'?"),
            ((*run, "--pixelformat", "1"), "'--pixelformat'", "did you mean '--pixel-format'?"),
            ((*run, "--pixel-fromat=1"), "no option '--pixel-fromat'", "'--pixel-format'?"),
            (("run", "in.png", "ScaleZVQ", "1", "1", "--ouptut", "out.png"), "'--output'?"),
            ((*run, "--kind", "dektop"), "--kind", "not 'dektop'", "did you mean 'desktop'?"),
            ((*run, "--alpha", "chanel"), "channel, mask or drop", "did you mean 'channel'?"),
            (("sample", "sceen", "-o", "out.png"), "did you mean 'scene'?"),
            (("validate", "--check", "bluris-opaque"), "did you mean 'blur-is-opaque'?"),
            ((*run[:-2], "-output", "out.png"), "no option '-output'", "did you mean '--output'?"),
            ((*run, "-kind=web"), "no option '-kind'", "did you mean '--kind'?"),
            (("--versoin",), "did you mean '--version'?"),
        ]:
            with self.subTest(words):
                self.assert_refused(self.picturehost(*words), 2, *fragments)

    def test_guesses_nothing_that_is_far(self):
        for words in (("dance",), ("info", "in.png", "--xylophone")):
            result = self.picturehost(*words)
            self.assert_refused(result, 2, words[-1], "--help")
            self.assertEqual("and validate" in result.stderr, words[0] == "dance")
            self.assertNotIn("did you mean", result.stderr)

    def test_tells_what_is_missing_or_too_much_with_the_usage(self):
        for words, *fragments in [
            (("run",), "IN, METHOD and -o OUT are missing; usage: picturehost run IN METHOD"),
            (("run", "in.png", "BlurZVQ", "1"), "-o OUT is missing; usage: picturehost run"),
            (("info", "in.png", "more"), "'more' is too much; usage: picturehost info IN"),
            (("sheet", "in.png", "-o"), "--output needs a value: --output OUT"),
            (("sheet", "in.png", "-o", "out.png", "-o", "b.png"), "--output is given more than once"),
        ]:
            with self.subTest(words):
                self.assert_refused(self.picturehost(*words), 2, *fragments)


class ManualPage(PicturehostTest):
    def setUp(self):
        super().setUp()
        result = self.picturehost("documentation", "man")
        self.assert_done(result)
        self.source = result.stdout

    def rendered(self):
        result = subprocess.run(
            ["groff", "-man", "-ww", "-Tascii", "-P-cbou", "-rLL=100n"],
            input=self.source,
            capture_output=True,
            text=True,
        )
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    def test_has_its_sections_without_a_warning(self):
        headings = re.findall(r"^[A-Z][A-Z ]+$", self.rendered(), re.MULTILINE)
        self.assertEqual(
            headings,
            ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "COMMANDS", "EXAMPLES", "EXIT STATUS",
             "ENVIRONMENT", "FILES", "SEE ALSO"],
        )  # fmt: skip

    def test_tells_all_that_the_help_tells(self):
        page = " ".join(self.rendered().split())
        for command in COMMANDS:
            text = self.picturehost(command, "--help").stdout
            usage = re.search(r"Usage: ((?:.|\n)*?)\n\n", text)[1]
            self.assertIn(" ".join(usage.split()), page)
            for name in re.findall(r"^  (?:-[a-z], )?(--[a-z-]+)", text, re.MULTILINE):
                self.assertIn(name, page)
            for line in text.split("Examples:\n")[1].split("\n\n")[0].splitlines():
                self.assertIn(" ".join(line.split()), page)

    def test_hyphens_are_those_that_can_be_copied(self):
        for line in self.source.splitlines():
            words = line.split(None, 1)[1:] if line.startswith(".") else [line]
            for word in words:
                self.assertNotRegex(word, r"(?<!\\)-")

    def test_is_ascii_and_has_no_date(self):
        self.assertTrue(self.source.isascii())
        title = self.source.splitlines()[0]
        self.assertRegex(title, r'^\.TH PICTUREHOST 1 "" "picturehost [\d.]+" "User Commands"$')


if __name__ == "__main__":
    main()
