#!/usr/bin/env python3
"""Times Pillow as bench/worker.h describes it. Pictures are of mode RGB: four bytes a pixel in memory, of which
three are worked on."""

import random
import re
import resource
import sys
import time

from PIL import Image, ImageFilter

SHORT, REPEATED = 0.5, 5.0  # milliseconds, as in bench/worker.cpp


def scaling(filter_):
    return lambda work: lambda source: source.resize(work["result"], filter_)


def blurring(work):
    radius = ImageFilter.BoxBlur(work["number"])
    return lambda source: source.filter(radius)


def shrinks(work):
    return work["result"][0] < work["source"][0]


def resamples(work, *modes):
    return work["kind"] == "resample" and work["number"] in modes


# By name: what it is comparable with, and what makes the act.
CANDIDATES = {
    "pillow nearest": (
        lambda work: not shrinks(work) and (work["kind"] == "fast" or resamples(work, 2)),
        scaling(Image.NEAREST),
    ),
    "pillow bilinear": (lambda work: work["kind"] == "smooth" or resamples(work, 1), scaling(Image.BILINEAR)),
    "pillow box": (lambda work: resamples(work, 2) and shrinks(work), scaling(Image.BOX)),
    "pillow bicubic": (lambda work: resamples(work, 5, 6), scaling(Image.BICUBIC)),
    "pillow lanczos": (lambda work: resamples(work, 3, 7), scaling(Image.LANCZOS)),
    "pillow boxblur": (lambda work: work["kind"] == "blur", blurring),
}


def parse(words):
    found = re.fullmatch(r"([a-z]+)(\d*) (\d+)x(\d+) (\d+)x(\d+)", words)
    if not found:
        sys.exit(f"bench: not understood: {words}")
    kind, number, *sizes = found.groups()
    width, height, to_width, to_height = map(int, sizes)
    return {
        "kind": kind,
        "number": int(number or 0),
        "source": (width, height),
        "result": (to_width, to_height),
    }


def faults():
    return resource.getrusage(resource.RUSAGE_SELF).ru_minflt


def once(act, source):
    """(milliseconds, page faults); what was made is freed outside of the clock."""
    before = faults()
    start = time.perf_counter()
    made = act(source)
    passed = (time.perf_counter() - start) * 1e3
    taken = (passed, faults() - before)
    del made
    return taken


def repeat(act, source, count):
    if count:
        return sorted(once(act, source) for _ in range(count))[count // 2]
    taken = [once(act, source)]
    if taken[0][0] < SHORT:
        start = time.perf_counter()
        while (time.perf_counter() - start) * 1e3 < REPEATED:
            taken.append(once(act, source))
    return sum(one[0] for one in taken) / len(taken), sum(one[1] for one in taken) // len(taken)


def main():
    words, source = None, None
    for line in sys.stdin:
        fields = line.rstrip("\n").split("\t")
        if fields == ["list"]:
            print("\t".join(CANDIDATES), flush=True)
            continue
        work = parse(fields[1])
        comparable, make = CANDIDATES[fields[0]]
        if not comparable(work):
            print("-", flush=True)
            continue
        if words != fields[1]:
            words = fields[1]
            width, height = work["source"]
            source = Image.frombytes("RGB", work["source"], random.Random(1).randbytes(width * height * 3))
        taken, new = repeat(make(work), source, int(fields[2]) if len(fields) > 2 else 0)
        print(f"{taken:.6g} {new}", flush=True)


main()
