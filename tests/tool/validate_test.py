"""picturehost validate: every check passes for the plug-in, and fails for some fault."""

import json
import os

from harness import PicturehostTest, TRIAL_PLUGIN, main

FAULTY_PLUGIN = os.environ["FAULTY_PLUGIN"]
REAL_PLUGIN = os.environ.get("VARNELL_PLUGIN") or os.environ["VALIDATE_REAL_PLUGIN"]

# The faults in the tables of faulty/, and checks that must fail for each.
FAULTS = {
    "registers-twice": ["registers-once"],
    "dropped-method": [
        "registers-five-methods-by-module",
        "registers-class-extension-on-old-hosts",
    ],
    "old-path-everywhere": ["registers-five-methods-by-module", "announces-its-record-version"],
    "new-path-everywhere": [
        "registers-class-extension-on-old-hosts",
        "announces-its-record-version",
        "alpha-needs-a-newer-host",
    ],
    "wrong-announcement": ["announces-its-record-version"],
    "wrong-flags": ["flags-follow-the-version"],
    "changed-default": ["declares-its-methods"],
    "needs-every-entry": ["starts-without-any-entry"],
    "second-start-drops": ["second-start-registers-the-same"],
    "own-size-copies": ["own-size-returns-the-picture"],
    "wrong-size": ["result-has-the-asked-size"],
    "clamps-size": ["size-limits-are-kept"],
    "wrong-pixel": [
        "halving-ignores-odd-rows",
        "enlarging-repeats-pixels",
        "smooth-doubling-interpolates",
        "smooth-enlarging-keeps-one-alpha",
        "box-halving-averages",
        "box-to-one-column-averages-all",
        "same-size-copies-colours",
        "uniform-stays-uniform",
        "one-pixel-fills-any-size",
        "blur-keeps-one-colour",
        "blur-averages-a-box",
        "random-scaling",
        "random-resampling",
        "random-blurring",
        "random-drawing",
    ],
    "wrong-every-second-time": [
        "random-scaling",
        "random-resampling",
        "random-blurring",
        "random-drawing",
    ],
    "wrong-image-and-mask": ["without-a-mask-both-scale-alike"],
    "wrong-format-5": ["every-pixel-format"],
    "wrong-in-host-buffers": ["works-in-every-kind-of-application"],
    "unused-byte": ["results-are-opaque"],
    "alpha-dropped": ["scaling-keeps-the-alpha-channel", "alpha-needs-a-newer-host"],
    "mask-forgotten": [
        "mask-is-scaled-alongside",
        "alpha-becomes-a-mask",
        "draw-honours-the-mask",
    ],
    "any-mode": ["unknown-modes-are-refused"],
    "no-sharp-modes": ["sharp-modes-overshoot"],
    "rounds-radius": ["small-radius-returns-the-picture", "blur-averages-a-box"],
    "blur-keeps-alpha": ["blur-is-opaque"],
    "crash-at-huge-radius": ["huge-radius-is-survived"],
    "draws-beside": ["draw-at-whole-pixels-copies"],
    "draws-at-whole-pixels": ["draw-between-pixels-blends"],
    "clamps-opacity": ["draw-honours-the-opacity"],
    "respects-alpha-channel": ["draw-forgets-the-alpha-channel"],
    "silent-nil": ["draw-raises-on-nil"],
    "never-refuses": ["unusable-formats-are-refused", "wrong-locks-are-refused"],
    "returned-twice": ["result-has-one-reference"],
    "leaked-reference": [
        "scale-leaves-nothing-over",
        "image-and-mask-leaves-nothing-over",
        "resampling-leaves-nothing-over",
        "blur-leaves-nothing-over",
        "draw-leaves-nothing-over",
    ],
    "missing-unlock": [
        "scale-leaves-nothing-over",
        "image-and-mask-leaves-nothing-over",
        "resampling-leaves-nothing-over",
        "blur-leaves-nothing-over",
        "draw-leaves-nothing-over",
    ],
    "nil-makes-a-picture": ["nil-receiver-is-refused"],
    "changed-source": ["source-is-unchanged"],
    "silent-changes": ["host-learns-of-changes"],
    "extra-yield": [
        "scale-yield-count",
        "image-and-mask-yield-count",
        "resampling-yield-count",
        "blur-yield-count",
        "draw-yield-count",
    ],
    "reads-clock": ["no-yield-without-period"],
    "hasty-yields": ["periods-are-kept"],
    "yields-blindly": ["survives-a-host-without-yields"],
    "not-reentrant": ["nested-calls"],
    "writes-padding": ["padding-is-untouched"],
    "word-too-far": ["stays-before-the-end"],
    "word-too-early": ["stays-behind-the-start"],
    "trusts-mask-size": ["mask-of-another-size"],
    "trusts-result-size": ["other-sizes-are-survived"],
    "calls-missing-entry": ["survives-every-withheld-entry"],
    "calls-missing-method": ["survives-every-withheld-host-method"],
    "leak-after-refusal": ["survives-each-failing-entry"],
    "half-made-locks-stay": ["failed-lock-on-old-host-is-unlocked"],
    "undrawn-copy": ["unlockable-picture-is-copied"],
    "swallows-exceptions": ["releases-everything-when-the-host-throws"],
}
RANDOM = [
    "stays-before-the-end",
    "stays-behind-the-start",
    "random-scaling",
    "random-resampling",
    "random-blurring",
    "random-drawing",
]


class Validate(PicturehostTest):
    def validate(self, plugin, *words, fault=None):
        environment = dict(os.environ)
        environment.pop("VALIDATE_FAULT", None)
        if fault:
            environment["VALIDATE_FAULT"] = fault
        if "--timeout" not in words:  # sanitizers and busy machines take longer
            words += ("--timeout", "100")
        return self.picturehost("validate", plugin, *words, env=environment)

    def checks_of(self, result):
        """The outcomes of a run with --json, by name."""
        return {check["name"]: check for check in json.loads(result.stdout)["checks"]}

    def names(self):
        listed = json.loads(self.picturehost("validate", "--list", "--json").stdout)
        return [check["name"] for check in listed]

    def test_passes_the_plugin(self):
        result = self.validate(REAL_PLUGIN)
        self.assert_done(result)
        lines = result.stdout.splitlines()
        count = len(self.names())
        self.assertEqual(lines[-1], f"{count} checks, 0 failed, seed 1")
        self.assertEqual([line.split()[:2] for line in lines[:-1]], [["ok", n] for n in self.names()])
        for line in lines[:-1]:
            self.assertEqual("--seed 1" in line, line.split()[1] in RANDOM, line)

    def test_takes_the_plugin_beside_the_tool(self):
        result = self.picturehost("validate", "--check", "registers-once")
        self.assert_done(result)
        self.assertEqual(result.stdout, "ok    registers-once\n1 checks, 0 failed, seed 1\n")

    def test_passes_the_faulty_plugin_without_a_fault(self):
        self.assert_done(self.validate(FAULTY_PLUGIN))

    def test_fails_the_named_checks_for_every_fault(self):
        for fault, expected in FAULTS.items():
            with self.subTest(fault=fault):
                choice = [word for name in expected for word in ("--check", name)]
                result = self.validate(FAULTY_PLUGIN, "--json", *choice, fault=fault)
                self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
                checks = self.checks_of(result)
                self.assertEqual(sorted(checks), sorted(expected))
                for name, check in checks.items():
                    self.assertFalse(check["passed"], name)
                    self.assertRegex(check["message"], r"^\S.*\.$")

    def test_has_a_fault_for_every_check(self):
        failing = {name for names in FAULTS.values() for name in names}
        self.assertEqual(sorted(failing), sorted(self.names()))

    def test_a_crash_is_one_failed_check_and_the_others_run(self):
        result = self.validate(FAULTY_PLUGIN, "--json", fault="crash-in-blur")
        self.assertEqual(result.returncode, 1)
        checks = self.checks_of(result)
        self.assertEqual(sorted(checks), sorted(self.names()))
        for name in ("blur-keeps-one-colour", "blur-yield-count"):
            self.assertRegex(checks[name]["message"], r"signal 6 .* in BlurZVQ\(.* a desktop host")
        for name in ("registers-once", "halving-ignores-odd-rows", "random-scaling"):
            self.assertTrue(checks[name]["passed"], name)

    def test_a_crash_at_the_start_fails_every_check(self):
        result = self.validate(FAULTY_PLUGIN, "--json", fault="crash-at-start")
        self.assertEqual(result.returncode, 1)
        checks = self.checks_of(result)
        self.assertEqual(len(checks), len(self.names()))
        self.assertFalse(any(check["passed"] for check in checks.values()))

    def test_a_check_that_takes_too_long_has_failed(self):
        result = self.validate(
            FAULTY_PLUGIN, "--check", "blur-is-opaque", "--check", "registers-once", "--timeout", "3",
            fault="hang",
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn(
            "FAIL  blur-is-opaque: It was not done after 3 seconds in BlurZVQ(2, 0) in ",
            result.stdout,
        )
        self.assertIn("ok    registers-once\n", result.stdout)

    def test_lists_each_check_with_its_sentence(self):
        result = self.picturehost("validate", "--list")
        self.assert_done(result)
        lines = result.stdout.splitlines()
        self.assertEqual(lines[::2], self.names())
        self.assertEqual(len(set(self.names())), len(self.names()))
        for name, sentence in zip(lines[::2], lines[1::2]):
            self.assertRegex(name, r"^[a-z0-9]+(-[a-z0-9]+)+$")
            self.assertRegex(sentence, r"^    [A-Z].*\.$")
        listed = json.loads(self.picturehost("validate", "--list", "--json").stdout)
        self.assertEqual([c["name"] for c in listed if c["random"]], RANDOM)

    def test_shows_only_what_failed(self):
        choice = ["--only-failed", "--check", "registers-once", "--check", "wrong-locks-are-refused"]
        result = self.validate(FAULTY_PLUGIN, *choice, fault="never-refuses")
        lines = result.stdout.splitlines()
        self.assertEqual(len(lines), 2, result.stdout)
        self.assertTrue(lines[0].startswith("FAIL  wrong-locks-are-refused: "))
        self.assertEqual(lines[1], "2 checks, 1 failed, seed 1")
        result = self.validate(FAULTY_PLUGIN, "--json", *choice, fault="never-refuses")
        self.assertEqual(list(self.checks_of(result)), ["wrong-locks-are-refused"])
        whole = json.loads(result.stdout)
        self.assertEqual((whole["passed"], whole["failed"]), (1, 1))
        self.assertEqual(whole["plugin"], FAULTY_PLUGIN)

    def test_random_checks_follow_the_seed(self):
        def message(seed):
            result = self.validate(
                FAULTY_PLUGIN, "--json", "--seed", seed, "--check", "random-scaling",
                fault="wrong-pixel",
            )
            check = self.checks_of(result)["random-scaling"]
            self.assertEqual((check["passed"], check["seed"]), (False, int(seed)))
            return check["message"]

        self.assertEqual(message("7"), message("7"))
        self.assertGreater(len({message(str(seed)) for seed in range(5)}), 1)
        largest = self.validate(
            REAL_PLUGIN, "--seed", 2**64 - 1, "--check", "random-drawing", "--only-failed"
        )
        self.assert_done(largest)
        self.assertEqual(largest.stdout, f"1 checks, 0 failed, seed {2**64 - 1}\n")

    def test_escapes_what_json_cannot_hold(self):
        folder = self.folder / 'a "quoted"\\ name\n\t\u00fc'
        folder.mkdir()
        plugin = folder / "plugin.so"
        plugin.symlink_to(REAL_PLUGIN)
        result = self.validate(plugin, "--json", "--check", "registers-once")
        self.assert_done(result)
        self.assertEqual(json.loads(result.stdout)["plugin"], str(plugin))

    def test_tells_when_it_cannot_run(self):
        (self.folder / "text.so").write_text("no library")
        for words, fragment in (
            (["missing.so"], "no plug-in at 'missing.so'"),
            (["text.so"], "text.so"),
            ([os.environ["PICTUREHOST"], "--check", "registers-once"], "picturehost"),
            ([REAL_PLUGIN, "--check", "no-such-check"], "no check 'no-such-check'"),
            (["--list", "--check", "no-such-check"], "no check 'no-such-check'"),
            ([REAL_PLUGIN, "--seed", "x"], "'x' is no seed"),
            ([REAL_PLUGIN, "--seed", 2**64], "is no seed"),
            ([REAL_PLUGIN, "--seed=-1"], "'-1' is no seed"),
            ([REAL_PLUGIN, "--no-such-option"], ""),
            ([REAL_PLUGIN, REAL_PLUGIN], ""),
        ):
            with self.subTest(words=words):
                self.assert_refused(self.picturehost("validate", *words), 2, fragment)

    def test_fails_a_plugin_with_other_methods(self):
        result = self.validate(TRIAL_PLUGIN, "--json")
        self.assertEqual(result.returncode, 1)
        checks = self.checks_of(result)
        self.assertFalse(checks["registers-five-methods-by-module"]["passed"])
        self.assertIn("ScaleZVQ", checks["enlarging-repeats-pixels"]["message"])


if __name__ == "__main__":
    main()
