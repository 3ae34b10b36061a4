"""The division of 64-bit integers that the library brings along, against this machine's compiler's."""

import subprocess

import linking
from linking import ROOT, LinkingTest

PROGRAM = r"""
#include <cstdint>
#include <cstdio>

extern "C" {
std::int64_t OurQuotient(std::int64_t a, std::int64_t b);
std::int64_t OurRemainder(std::int64_t a, std::int64_t b);
std::uint64_t OurUnsignedQuotient(std::uint64_t a, std::uint64_t b);
std::uint64_t OurUnsignedRemainder(std::uint64_t a, std::uint64_t b);
}

static std::uint64_t gState = 88172645463325252u;
static std::uint64_t Random() {
  gState ^= gState << 13;
  gState ^= gState >> 7;
  return gState ^= gState << 17;
}

static long gBad = 0, gDone = 0;
static void Check(std::uint64_t a, std::uint64_t b) {
  if (b == 0) return;
  ++gDone;
  const auto signedA = static_cast<std::int64_t>(a), signedB = static_cast<std::int64_t>(b);
  bool good = OurUnsignedQuotient(a, b) == a / b && OurUnsignedRemainder(a, b) == a % b;
  if (a == std::uint64_t{1} << 63 && signedB == -1) {  // overflow: both wrap
    good = good && OurQuotient(signedA, signedB) == signedA && OurRemainder(signedA, signedB) == 0;
  } else {
    good = good && OurQuotient(signedA, signedB) == signedA / signedB &&
           OurRemainder(signedA, signedB) == signedA % signedB;
  }
  if (!good && gBad++ < 5) std::printf("%llu / %llu\n", (unsigned long long)a, (unsigned long long)b);
}

int main() {
  std::uint64_t edges[300];
  int count = 0;
  for (int bit = 0; bit < 64; ++bit) {
    for (int around = -1; around <= 1; ++around) edges[count++] = (std::uint64_t{1} << bit) + around;
    edges[count++] = ~(std::uint64_t{1} << bit);
  }
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < count; ++j) Check(edges[i], edges[j]);
  }
  for (int i = 0; i < 2000000; ++i) {
    const std::uint64_t a = Random() >> (Random() & 63), b = Random() >> (Random() & 63);
    Check(a, b);
    Check(b * (Random() >> (Random() & 63)), b);          // exact, where it does not wrap
    Check(b * (Random() >> (Random() & 63)) - 1, b);      // one below
  }
  std::printf("%ld done, %ld bad\n", gDone, gBad);
  return gBad == 0 && gDone > 5000000 ? 0 : 1;
}
"""
NAMES = {"__divdi3": "OurQuotient", "__moddi3": "OurRemainder",
         "__udivdi3": "OurUnsignedQuotient", "__umoddi3": "OurUnsignedRemainder"}  # fmt: skip


class Division(LinkingTest):
    def test_every_quotient_and_remainder_is_right(self):
        (self.folder / "check.cpp").write_text(PROGRAM)
        ours = self.folder / "ours.o"
        names = [f"-D{theirs}={our}" for theirs, our in NAMES.items()]
        source = ROOT / "toolchain/runtime/division.cpp"
        self.run_quietly("clang++", "-m32", "-O2", *names, "-c", "-o", ours, source)
        self.run_quietly("g++", "-m32", "-O2", "-o", self.folder / "check",
                         self.folder / "check.cpp", ours)  # fmt: skip
        result = subprocess.run([self.folder / "check"], capture_output=True, text=True, timeout=100)
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertRegex(result.stdout, r"^\d+ done, 0 bad\n$")

    def test_it_needs_nothing_else(self):
        """Above all not itself."""
        source = (ROOT / "toolchain/runtime/division.cpp").read_text()
        path = self.compile_cxx("division", source)
        listed = subprocess.run(["llvm-nm", path], capture_output=True, text=True, check=True).stdout
        kinds = {line.split()[-1]: line.split()[-2] for line in listed.splitlines()}
        self.assertEqual(kinds, {"_" + name: "T" for name in NAMES})
        library = self.link(path, exports=["___divdi3"])
        for name in ("___moddi3", "___divdi3"):
            self.assertGreater(library.address(name), 0)
        self.assertEqual(list(library.exports()), ["___divdi3"])
        self.assertEqual(library.binds(), [])

    def run_quietly(self, *words):
        subprocess.run(list(map(str, words)), check=True, timeout=100)


if __name__ == "__main__":
    linking.main()
