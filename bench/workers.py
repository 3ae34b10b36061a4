"""The workers of scripts/bench: building them, talking with them, and the libraries that some are made of."""

import os
import pathlib
import platform
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# The word size of a plug-in, as its file tells: the preset whose host can load it.
PRODUCT_PRESET, NATIVE_PRESET = "i386", "native"
# What was freed is used again, its pages not being new: libraries that make their results themselves are not
# charged for making them.
PEER_ENVIRONMENT = {"MALLOC_MMAP_MAX_": "0", "MALLOC_TRIM_THRESHOLD_": str(1 << 40)}
# Other libraries, by the first word of their candidates, and the Debian packages to build with.
PEERS = {
    "cairo": "libcairo2-dev",
    "libyuv": "libyuv-dev",
    "opencv": "libopencv-imgproc-dev",
    "pillow": "python3-pil",
    "pixman": "libpixman-1-dev",
    "qt": "qtbase5-dev",
    "swscale": "libswscale-dev",
    "vips": "libvips-dev",
    "zimg": "libzimg-dev",
}


class Worker:
    """A process that times its candidates, on one core (worker.h tells how it is spoken with)."""

    def __init__(self, *words, **environment):
        self.process = subprocess.Popen(
            [str(word) for word in words],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
            env={**os.environ, **environment},
            preexec_fn=lambda: os.sched_setaffinity(0, {max(os.sched_getaffinity(0))}),
        )
        self.candidates = self.ask("list").rstrip("\t").split("\t")

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer:
            sys.exit(f"bench: {self.process.args[0]} ended at '{line}'")
        return answer.rstrip("\n")

    def take(self, candidate, work, count=0):
        """(milliseconds, page faults), or a word for why not."""
        answer = self.ask("\t".join([candidate, work] + ([str(count)] if count else [])))
        found = re.fullmatch(r"([-+.0-9e]+) (\d+)", answer)
        return (float(found[1]), int(found[2])) if found else answer


def preset_of(plugin):
    """Where the file is one for the machine's own word size, that preset; else the product's."""
    with open(plugin, "rb") as file:
        start = file.read(5)
    return NATIVE_PRESET if start == b"\x7fELF\x02" else PRODUCT_PRESET


def build(preset, *targets):
    for words in (
        ["cmake", "--preset", preset],
        ["cmake", "--build", "--preset", preset, "--target", *targets],
    ):
        result = subprocess.run(words, cwd=ROOT, capture_output=True, text=True)
        if result.returncode != 0:
            sys.exit(f"bench: {' '.join(words)} failed\n{result.stdout}{result.stderr}")
    return ROOT / "build" / preset / "bin"


def plugin_worker(name, path):
    return Worker(build(preset_of(path), "plugin_worker") / "plugin_worker", f"{name}={path}")


def peer_workers():
    """Those that can be had here; says which libraries are not."""
    workers = [Worker(build(NATIVE_PRESET, "peer_worker") / "peer_worker", **PEER_ENVIRONMENT)]
    for python in (sys.executable, "/usr/bin/python3"):
        found = subprocess.run([python, "-c", "import PIL.Image"], capture_output=True)
        if found.returncode == 0:
            workers.append(Worker(python, ROOT / "bench/peers/pillow_worker.py", **PEER_ENVIRONMENT))
            break
    present = {candidate.split()[0] for worker in workers for candidate in worker.candidates}
    missing = [peer for peer in PEERS if peer not in present]
    if missing:
        print(f"not found: {', '.join(missing)} (scripts/bench --peers installs them)")
    return workers


def install_peers():
    packages = [package for package in PEERS.values() if not is_installed(package)]
    if not packages:
        return
    print(f"Installing: {' '.join(packages)}", flush=True)
    as_root = [] if os.geteuid() == 0 else ["sudo", "-n"]
    for words in (["update"], ["install", "-y", "--no-install-recommends", *packages]):
        command = [*as_root, "env", "DEBIAN_FRONTEND=noninteractive", "apt-get", *words]
        if subprocess.run(command, stdout=sys.stderr).returncode != 0:
            sys.exit(f"bench: '{' '.join(command)}' failed")


def is_installed(package):
    words = ["dpkg-query", "--show", "--showformat=${db:Status-Status}", package]
    return subprocess.run(words, capture_output=True, text=True).stdout == "installed"


def machine():
    """What a reader of numbers wants to know of where they come from."""
    found = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return {
        "processor": found[1] if found else platform.processor(),
        "architecture": platform.machine(),
        "cores": os.cpu_count(),
        "kernel": platform.release(),
        "load": os.getloadavg()[0],
        "compilers": {name: first_line(name, "--version") for name in ("g++", "clang++")},
    }


def compiler_of(plugin):
    """As its file tells, which a shared object does."""
    found = re.findall(r"\]\s+(.*)", output("readelf", "-p", ".comment", plugin))
    return "; ".join(found) or None


def first_line(*words):
    return output(*words).split("\n")[0]


def output(*words, given=""):
    if not shutil.which(words[0]):
        return ""
    return subprocess.run(words, input=given, capture_output=True, text=True).stdout
