"""picturehost: what goes to standard output and to standard error; JSON and --quiet."""

import json

from harness import TRIAL_PLUGIN, PicturehostTest, main
from png import write_png

KEYS = [
    "input", "output", "call", "width", "height", "milliseconds", "yields", "number", "status", "error",
]  # fmt: skip


class RunAsJson(PicturehostTest):
    def outcomes(self, result):
        outcomes = [json.loads(line) for line in result.stdout.splitlines()]
        for outcome in outcomes:
            self.assertEqual(list(outcome), KEYS)
        return outcomes

    def test_a_line_for_one_picture(self):
        result = self.picturehost("run", "in.png", "ScaleZVQ", "4x", "true", "-o", "out.png", "--json")
        self.assert_done(result)
        (outcome,) = self.outcomes(result)
        self.assertGreaterEqual(outcome.pop("milliseconds"), 0)
        self.assertEqual(
            outcome,
            {
                "input": "in.png", "output": "out.png", "call": "ScaleZVQ(4, 2, true, 0)", "width": 4,
                "height": 2, "yields": 0, "number": None, "status": "done", "error": None,
            },
        )  # fmt: skip

    def test_time_and_yields(self):
        result = self.trial("in.png", "Dawdle", "1", "-o", "out.png", "--json")
        (outcome,) = self.outcomes(result)
        self.assertGreaterEqual(outcome["milliseconds"], 1000)
        self.assertEqual(outcome["yields"], 50)

    def test_numbers_are_not_printed_beside_it(self):
        (outcome,) = self.outcomes(self.trial("in.png", "IsNil", "nil", "-o", "out.png", "--json"))
        self.assertEqual(outcome["number"], 1)

    def test_a_picture_that_cannot_be_read(self):
        result = self.picturehost("run", "no.png", "ScaleZVQ", "4x", "-o", "out.png", "--json")
        (outcome,) = self.outcomes(result)
        self.assertEqual(
            (outcome["status"], outcome["call"], outcome["width"]), ("failed", None, None)
        )
        self.assertIn("cannot read 'no.png'", outcome["error"])
        self.assertEqual(result.stderr, "picturehost: " + outcome["error"] + "\n")
        self.assertEqual(result.returncode, 2)

    def test_a_refused_call(self):
        result = self.picturehost("run", "in.png", "ScaleZVQ", "0", "1", "-o", "out.png", "--json")
        (outcome,) = self.outcomes(result)
        self.assertEqual((result.returncode, outcome["status"]), (1, "failed"))
        self.assertEqual(outcome["call"], "ScaleZVQ(0, 1, false, 0)")
        self.assertIn("refused", outcome["error"])
        self.assertGreaterEqual(outcome["milliseconds"], 0)

    def test_nothing_where_the_command_line_is_not_understood(self):
        for words in (("None",), ("ScaleZVQ", "a")):
            result = self.picturehost("run", "in.png", *words, "-o", "out.png", "--json")
            self.assert_refused(result, 2)

    def test_a_line_for_each_of_several_in_their_order(self):
        write_png(self.folder / 'quote".png', [[(1, 2, 3)] * 6] * 4)
        result = self.trial(
            "in.png", "none.png", 'quote".png', "Perish", "100%", "-o", "{index}.png", "--json",
            "--jobs", "3",
        )  # fmt: skip
        first, second, third = self.outcomes(result)
        self.assertEqual((first["input"], first["output"], first["status"]), ("in.png", "1.png", "done"))
        self.assertEqual((second["input"], second["call"]), ("none.png", None))
        self.assertEqual((third["input"], third["status"]), ('quote".png', "failed"))
        self.assertEqual(third["call"], "Perish(6, 4, false)")
        self.assertIn("signal 9", third["error"])
        self.assertIn("picturehost: 1 of 3 done, 2 failed\n", result.stderr)


class Quiet(PicturehostTest):
    def test_no_summary_but_errors(self):
        for words, status, lines in [(("in.png",), 0, 0), (("in.png", "none.png"), 1, 1)]:
            result = self.picturehost(
                "run", "in.png", *words, "ScaleZVQ", "1x", "-o", "{index}.png", "--quiet"
            )
            self.assertEqual((result.returncode, result.stdout), (status, ""))
            self.assertEqual(result.stderr.count("\n"), lines, result.stderr)

    def at_a_terminal(self, *words):
        return self.seen_on_terminal("run", *words, "--plugin", TRIAL_PLUGIN)

    def test_no_progress(self):
        for words in (("in.png", "-o", "o.png"), ("in.png", "in.png", "-o", "{index}.png")):
            inputs = words[:-2]
            output = words[-2:]
            shown = self.at_a_terminal(*inputs, "Dawdle", "3", *output)
            self.assertIn("Dawdle: ", shown)
            self.assertEqual(self.at_a_terminal(*inputs, "Dawdle", "3", *output, "--quiet"), "")

    def test_the_progress_of_several_is_cleared_before_the_summary(self):
        shown = self.at_a_terminal("in.png", "in.png", "Dawdle", "-o", "{index}.png")
        self.assertIn("\r\x1b[KDawdle: 1 of 2", shown)
        self.assertTrue(shown.endswith("\r\x1b[Kpicturehost: 2 of 2 done\r\n"), repr(shown))


class ListsAsJson(PicturehostTest):
    def test_methods(self):
        result = self.picturehost("methods", "--json")
        self.assert_done(result)
        told = json.loads(result.stdout)
        self.assertEqual((told["registered_as"], told["class_flags"]), ("module", None))
        self.assertEqual(len(told["methods"]), 5)
        (blur,) = [method for method in told["methods"] if method["name"] == "BlurZVQ"]
        self.assertEqual(blur["flags"], 0x14)
        self.assertEqual(
            blur["parameters"],
            [
                {"name": "Radius", "type": "double", "default": None},
                {"name": "yield", "type": "integer", "default": "0"},
            ],
        )
        self.assertIn(blur["declaration"], self.picturehost("methods").stdout)
        result = self.picturehost("methods", "--json", "--host-version", "2012")
        told = json.loads(result.stdout)
        self.assertEqual((told["name"], told["record_version"], told["class_flags"]), ("Picture", 10, 4))

    def test_info(self):
        write_png(self.folder / "clear\n.png", [[(1, 2, 3, 4)]] * 3)
        for name, size, alpha in (("in.png", (2, 1), False), ("clear\n.png", (1, 3), True)):
            result = self.picturehost("info", name, "--json")
            self.assert_done(result)
            width, height = size
            told = {"file": name, "width": width, "height": height, "alpha": alpha}
            self.assertEqual(json.loads(result.stdout), told)


if __name__ == "__main__":
    main()
