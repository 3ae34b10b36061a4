"""picturehost: what a person at a terminal sees of long work, and what an interruption leaves."""

import re
import signal
import subprocess
import time

from harness import PICTUREHOST, TRIAL_PLUGIN, PicturehostTest, main


class Terminal(PicturehostTest):
    def seen(self, *words):
        return self.seen_on_terminal(
            "run", "in.png", *words, "--plugin", TRIAL_PLUGIN, "-o", "out.png"
        )  # fmt: skip

    def test_a_line_shows_the_time_passed_and_is_cleared_at_the_end(self):
        text = self.seen("Dawdle")
        times = [float(t) for t in re.findall(r"\r\x1b\[KDawdle: working, (\d+\.\d) s", text)]
        self.assertGreaterEqual(len(times), 3, text)
        self.assertEqual(times, sorted(times))
        self.assertGreaterEqual(times[0], 0.2)
        self.assertTrue(text.endswith("\r\x1b[K"), text)

    def test_a_yield_argument_of_the_user_stays(self):
        self.assertEqual(self.seen("Dawdle", "0"), "")
        self.assertIn("working", self.seen("Dawdle", "YieldTicks=5"))

    def test_short_work_shows_nothing(self):
        self.assertEqual(self.seen("Echo", "1"), "")

    def test_away_from_a_terminal_nothing_is_shown_and_no_yields_are_asked_for(self):
        self.assert_done(self.trial("in.png", "Dawdle", "5", "-o", "out.png"))
        result = self.trial("in.png", "Dawdle", "--trace", "-o", "out.png")
        self.assertIn('"period 0"', result.stderr)


class Interruption(PicturehostTest):
    def test_ends_the_program_and_leaves_no_file_behind(self):
        (self.folder / "kept.png").write_text("old")
        process = subprocess.Popen(
            [PICTUREHOST, "run", "in.png", "Dawdle", "--plugin", TRIAL_PLUGIN, "-o", "kept.png"],
            cwd=self.folder,
        )
        time.sleep(0.4)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(timeout=20), -signal.SIGINT)
        self.assertEqual(self.files(), ["in.png", "kept.png"])
        self.assertEqual((self.folder / "kept.png").read_text(), "old")


if __name__ == "__main__":
    main()
