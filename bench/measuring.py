"""What scripts/bench measures: lists of works, and the figures of each candidate."""

import re
import statistics
import time

from workers import ROOT

# The larger picture of a work of --scaling.
SIDES = [(side, side) for side in (64, 128, 256, 512, 1024, 2048, 4096)] + [(14000, 10000)]
# Name, kind, and by what the sides of the source and of the result are smaller than that.
METHODS = [
    ("fast 4:1", "fast", 1, 4),
    ("fast 1:4", "fast", 4, 1),
    ("smooth 1:2", "smooth", 2, 1),
    *[(f"mode {mode} 4:1", f"resample{mode}", 1, 4) for mode in range(1, 8)],
    *[(f"mode {mode} 1:2", f"resample{mode}", 2, 1) for mode in range(1, 8)],
    ("blur 20", "blur20", 1, 1),
    ("draw", "draw", 1, 1),
]
RADII = [1, 2, 5, 10, 20, 50, 100, 200, 500]
# Works that take long are not done in all rounds: no more once this many seconds have passed, and this many rounds.
ENOUGH_SECONDS, ENOUGH_ROUNDS = 15, 3


def named_works():
    """The table works.txt."""
    text = (ROOT / "bench/works.txt").read_text()
    return dict(re.findall(r"^([^#\n].*): (\S+ \S+ \S+)$", text, re.MULTILINE))


def scaling_works():
    """(name, words, pixels of the larger picture) of works that differ in size, then of blurs that differ in radius."""
    for method, kind, from_, to in METHODS:
        for width, height in SIDES:
            sizes = [f"{width // divisor}x{height // divisor}" for divisor in (from_, to)]
            yield f"{method}, {width}x{height}", f"{kind} {sizes[0]} {sizes[1]}", width * height
    for radius in RADII:
        yield f"blur {radius}, 2048x2048", f"blur{radius} 2048x2048 2048x2048", 2048 * 2048


def fixed_works():
    """The smallest work of every method and mode: what a call costs whatever the pictures are."""
    down, same = "32x32 16x16", "32x32 32x32"
    works = {"fast": f"fast {down}", "smooth (16 to 32)": "smooth 16x16 32x32", "both": f"both {down}"}
    works.update({f"mode {mode}": f"resample{mode} {down}" for mode in range(1, 8)})
    works.update({"blur 3": f"blur3 {same}", "draw": f"draw {same}", "draw masked": f"drawmasked {same}"})
    return works


def measure(workers, work, rounds, count=0, is_cut_short=False):
    """Figures by candidate, round after round through all of them; the first round only warms up."""
    taken, outcomes = {}, {}
    started = time.monotonic()
    for number in range(rounds + 1):
        for worker in workers:
            for candidate in worker.candidates:
                if candidate in outcomes:
                    continue
                answer = worker.take(candidate, work, count)
                if isinstance(answer, str):
                    outcomes[candidate] = answer
                elif number > 0:
                    taken.setdefault(candidate, []).append(answer)
        if is_cut_short and number >= ENOUGH_ROUNDS and time.monotonic() - started > ENOUGH_SECONDS:
            break
    results = {candidate: figures(each) for candidate, each in taken.items()}
    results.update({candidate: {"outcome": answer} for candidate, answer in outcomes.items() if answer != "-"})
    return results


def figures(taken):
    milliseconds = [one[0] for one in taken]
    quartiles = statistics.quantiles(milliseconds, n=4, method="inclusive") if len(taken) > 1 else milliseconds * 3
    return {
        "median": statistics.median(milliseconds),
        "quartiles": [quartiles[0], quartiles[2]],
        "least": min(milliseconds),
        "rounds": len(taken),
        "faults": statistics.median(one[1] for one in taken),
    }
