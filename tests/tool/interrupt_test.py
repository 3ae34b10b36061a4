"""picturehost run: how Ctrl-C and its like end it, and that they never leave half a file."""

import json
import os
import signal
import subprocess
import time

from harness import PICTUREHOST, TRIAL_PLUGIN, PicturehostTest, main
from png import read_png, write_png

YIELD = "REALYieldToRB()"


class InterruptionTest(PicturehostTest):
    def start(self, *words, **options):
        return subprocess.Popen(
            [PICTUREHOST, "run", *map(str, words)],
            cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            text=True, start_new_session=True, **options,
        )  # fmt: skip

    def read_until(self, process, fragment):
        """Lines of the trace, with the first that has the fragment in it."""
        lines = []
        for line in process.stderr:
            lines.append(line)
            if fragment in line:
                return lines
        self.fail(f"no line with {fragment} in\n" + "".join(lines))

    def interrupted(self, process, fragment, number=signal.SIGINT):
        """Sends the signal when the fragment is traced; for a yield, when a second one is. Returns
        standard output, the trace after that, and the seconds that it took."""
        self.read_until(process, fragment)
        if fragment == YIELD:
            self.read_until(process, fragment)
        start = time.monotonic()
        process.send_signal(number)
        out, trace = process.communicate(timeout=60)
        self.assertEqual(process.returncode, -number, trace)
        return out, trace, time.monotonic() - start


class ScalingInterrupted(InterruptionTest):
    """A call of the plug-in that takes a quarter of a second or more."""

    CALL = ("in.png", "ScalingZVQ", 4, 8000, 6000)
    LAST_BEFORE_THE_WORK = "REALLockPictureDescription(Picture#1"

    def test_at_the_next_yield_where_the_method_yields(self):
        process = self.start(*self.CALL, -1, "-o", "out.png", "--trace", "--json")
        out, trace, _ = self.interrupted(process, YIELD)
        outcome = json.loads(out)
        self.assertEqual((outcome["status"], outcome["error"]), ("interrupted", "interrupted"))
        self.assertIsNone(outcome["milliseconds"])  # the call did not come to its end
        self.assertGreaterEqual(outcome["yields"], 2)
        for released in ("unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"):
            self.assertIn(released, trace)
        self.assertEqual(self.files(), ["in.png"])

    def test_at_once_where_it_does_not(self):
        process = self.start(*self.CALL, "-o", "out.png", "--trace", "--json")
        out, trace, _ = self.interrupted(process, self.LAST_BEFORE_THE_WORK)
        self.assertEqual(out, "")
        self.assertNotIn("unlockPictureDescription(Picture#1)", trace)
        self.assertEqual(self.files(), ["in.png"])


class Interrupted(InterruptionTest):
    def trial(self, *words, **options):
        return self.start("--plugin", TRIAL_PLUGIN, "-o", "out.png", "in.png", *words, **options)

    def test_by_the_signal_that_came_at_a_yield_or_at_once(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            process = self.trial("Dawdle", 1, "--trace", "--json")
            out, trace, _ = self.interrupted(process, YIELD, number)
            outcome = json.loads(out)
            self.assertEqual((outcome["status"], outcome["milliseconds"]), ("interrupted", None))
            self.assertNotIn("picturehost", trace)
            process = self.trial("Dawdle", 0, "--trace", "--json")
            out, trace, _ = self.interrupted(process, "period 0", number)
            self.assertEqual(out, "")
            self.assertNotIn("picturehost", trace)  # only what the host was still asked for
            self.assertEqual(self.files(), ["in.png"])

    def test_though_the_plug_in_keeps_exceptions_to_itself(self):
        out, trace, seconds = self.interrupted(self.trial("Swallow", "--trace"), YIELD)
        self.assertIn("swallowed", trace)
        self.assertLess(seconds, 5)
        self.assertEqual(self.files(), ["in.png"])

    def test_though_the_plug_in_lets_no_exception_pass(self):
        out, trace, seconds = self.interrupted(self.trial("Bar", "--trace"), YIELD)
        self.assertLess(seconds, 5)

    def test_two_seconds_later_where_it_yields_no_more(self):
        out, trace, seconds = self.interrupted(self.trial("Stall", 60, "--trace"), "stalls")
        self.assertGreater(seconds, 1)
        self.assertLess(seconds, 20)

    def test_a_signal_that_is_ignored_stays_so(self):
        for period in (0, 1):
            process = self.trial(
                "Dawdle", period, "--trace",
                preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN),
            )  # fmt: skip
            self.read_until(process, "period")
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=60)
            self.assertEqual(process.returncode, 0)

    def test_while_the_output_is_written_it_is_written_to_its_end(self):
        noise = [[tuple(os.urandom(3)) for _ in range(400)] for _ in range(300)]
        write_png(self.folder / "in.png", noise)
        for _ in range(50):
            process = self.trial("Echo", 1)
            part = f".picturehost-{process.pid}.part"
            while process.poll() is None and part not in os.listdir(self.folder):
                pass
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=60)
            if process.returncode == -signal.SIGINT:
                self.assertEqual(read_png(self.folder / "out.png"), noise)
                self.assertEqual(self.files(), ["in.png", "out.png"])
                return
        self.fail("the signal never came while the output was written")


class SeveralInterrupted(InterruptionTest):
    def assert_nobody_left(self, process):
        """No process of the session is there, at the latest soon."""
        end = time.monotonic() + 20
        while time.monotonic() < end:
            try:
                os.killpg(process.pid, 0)
            except ProcessLookupError:
                return
            time.sleep(0.05)
        self.fail("processes are left")

    def wait_for(self, name):
        end = time.monotonic() + 60
        while not (self.folder / name).exists():
            self.assertLess(time.monotonic(), end, f"no {name}")
            time.sleep(0.01)

    def several(self, *words):
        return self.start("in.png", *words, "--plugin", TRIAL_PLUGIN, "-o", "{index}.png", "--json")

    def statuses(self, out):
        return [json.loads(line)["status"] for line in out.splitlines()]

    def test_begin_nothing_more_and_tell_how_far_they_came(self):
        os.mkfifo(self.folder / "slow")  # whoever reads it waits
        for jobs in (1, 2):
            process = self.several("slow", "slow", "slow", "Echo", 1, "--jobs", jobs)
            self.wait_for("1.png")
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=60)
            self.assertEqual(process.returncode, -signal.SIGINT)
            self.assertEqual(err, "picturehost: interrupted; 1 of 4 done, 3 left\n")
            self.assertEqual(self.statuses(out), ["done"] + ["interrupted"] * 3)
            self.assert_nobody_left(process)
            self.assertEqual(self.files(), ["1.png", "in.png", "slow"])
            (self.folder / "1.png").unlink()

    def test_end_at_yields_also_when_everybody_gets_the_signal(self):
        for send in (os.kill, os.killpg):
            process = self.several("in.png", "in.png", "Swallow", "--jobs", 3)
            time.sleep(0.5)
            send(process.pid, signal.SIGINT)
            out, err = process.communicate(timeout=9)
            self.assertEqual(process.returncode, -signal.SIGINT)
            self.assertEqual(err, "picturehost: interrupted; 0 of 3 done, 3 left\n")
            self.assertEqual(self.statuses(out), ["interrupted"] * 3)
            self.assert_nobody_left(process)
            self.assertEqual(self.files(), ["in.png"])

    def test_end_with_the_one_that_began_them(self):
        process = self.several("in.png", "Stall", 60, "--jobs", 2)
        time.sleep(0.5)
        process.kill()
        process.wait()
        self.assert_nobody_left(process)
        process.communicate()


if __name__ == "__main__":
    main()
