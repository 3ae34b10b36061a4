"""The headers of the language that the plug-in is built with: what they promise, checked by the compiler
for the target, and against this machine's own headers."""

import re
import subprocess

import linking
from linking import ROOT, TARGET, LinkingTest

# Holds with these headers for the target, and with this machine's own.
COMMON = """
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>
#include <utility>

using std::is_same_v;
using std::numeric_limits;

static_assert(sizeof(std::int8_t) == 1 && sizeof(std::int16_t) == 2 && sizeof(std::int32_t) == 4);
static_assert(sizeof(std::int64_t) == 8 && sizeof(std::uint64_t) == 8 && sizeof(std::uint32_t) == 4);
static_assert(sizeof(std::size_t) == sizeof(void*) && sizeof(std::ptrdiff_t) == sizeof(void*));
static_assert(sizeof(std::uintptr_t) == sizeof(void*) && sizeof(std::intptr_t) == sizeof(void*));
static_assert(is_same_v<std::nullptr_t, decltype(nullptr)>);

static_assert(numeric_limits<std::int32_t>::min() == -2147483647 - 1);
static_assert(numeric_limits<std::int32_t>::max() == 2147483647);
static_assert(numeric_limits<std::int32_t>::digits == 31 && numeric_limits<std::uint32_t>::digits == 32);
static_assert(numeric_limits<std::uint32_t>::min() == 0 && numeric_limits<std::uint32_t>::max() == 0xFFFFFFFF);
static_assert(numeric_limits<std::int8_t>::min() == -128 && numeric_limits<std::int8_t>::max() == 127);
static_assert(numeric_limits<std::uint8_t>::max() == 255 && numeric_limits<std::uint16_t>::max() == 65535);
static_assert(numeric_limits<std::int64_t>::min() == -0x7FFFFFFFFFFFFFFF - 1);
static_assert(numeric_limits<std::int64_t>::max() == 0x7FFFFFFFFFFFFFFF);
static_assert(numeric_limits<std::uint64_t>::max() == 0xFFFFFFFFFFFFFFFF);
static_assert(numeric_limits<bool>::max() && !numeric_limits<bool>::min());
static_assert(numeric_limits<char>::lowest() == -128);
static_assert(numeric_limits<double>::digits == 53 && numeric_limits<float>::digits == 24);
static_assert(numeric_limits<double>::lowest() == -numeric_limits<double>::max());
static_assert(numeric_limits<double>::max() == 0x1.fffffffffffffp1023);
static_assert(numeric_limits<double>::min() == 0x1p-1022 && numeric_limits<float>::min() == 0x1p-126F);
static_assert(numeric_limits<double>::epsilon() == 0x1p-52 && numeric_limits<float>::epsilon() == 0x1p-23F);
static_assert(numeric_limits<float>::max() == 0x1.fffffep127F);
static_assert(numeric_limits<double>::infinity() > numeric_limits<double>::max());
static_assert(numeric_limits<double>::quiet_NaN() != numeric_limits<double>::quiet_NaN());
static_assert(numeric_limits<int>::is_integer && !numeric_limits<float>::is_integer);
static_assert(numeric_limits<int>::is_signed && !numeric_limits<unsigned>::is_signed);

enum class Plain : std::uint8_t { kOne };
struct Polymorphic { virtual ~Polymorphic(); };
static_assert(std::integral_constant<int, 3>::value == 3 && std::integral_constant<int, 3>{}() == 3);
static_assert(std::true_type::value && !std::false_type{});
static_assert(is_same_v<std::enable_if_t<true, int>, int>);
static_assert(is_same_v<std::conditional_t<true, int, char>, int>);
static_assert(is_same_v<std::conditional_t<false, int, char>, char>);
static_assert(is_same_v<std::remove_reference_t<int&>, int> && is_same_v<std::remove_reference_t<int&&>, int>);
static_assert(is_same_v<std::remove_cv_t<const volatile int>, int>);
static_assert(!is_same_v<int, unsigned> && std::is_same<int, int>::value);
static_assert(std::is_integral_v<bool> && !std::is_integral_v<float> && !std::is_integral_v<Plain>);
static_assert(std::is_floating_point_v<double> && !std::is_floating_point_v<int>);
static_assert(std::is_signed_v<int> && std::is_signed_v<float> && !std::is_signed_v<unsigned>);
static_assert(std::is_polymorphic_v<Polymorphic> && !std::is_polymorphic_v<Plain>);
static_assert(std::is_standard_layout_v<Plain> && !std::is_standard_layout_v<Polymorphic>);
static_assert(std::is_trivially_copyable_v<Plain> && !std::is_trivially_copyable_v<Polymorphic>);

struct MoveOnly {
  constexpr explicit MoveOnly(int number) : value(number) {}
  constexpr MoveOnly(MoveOnly&& other) : value(other.value) { other.value = -1; }
  constexpr MoveOnly& operator=(MoveOnly&& other) { value = other.value; other.value = -1; return *this; }
  int value;
};
constexpr int Exchanged() {
  MoveOnly a(1), b(2);
  const MoveOnly old = std::exchange(a, MoveOnly(3));
  return old.value * 100 + a.value * 10 + b.value;
}
static_assert(Exchanged() == 132);

double Functions(double x) {
  static_assert(is_same_v<decltype(std::fabs(1.0F)), float> && is_same_v<decltype(std::fabs(1.0)), double>);
  return std::sin(x) + std::floor(x) + std::ceil(x) + std::fabs(x);
}
char* Memory(char* to, const char* from) {
  std::memcpy(to, from, 3);
  std::memmove(to, from, std::strlen(from));
  std::memset(to, 0, std::strcspn(from, "("));
  std::free(to);
  return static_cast<char*>(std::calloc(1, 2));
}
static_assert(sizeof(std::exception) == sizeof(void*) && sizeof(std::bad_alloc) == sizeof(void*));
static_assert(sizeof(std::bad_cast) == sizeof(void*) && sizeof(std::logic_error) == 2 * sizeof(void*));
static_assert(sizeof(std::runtime_error) == 2 * sizeof(void*));
static_assert(sizeof(std::range_error) == sizeof(std::runtime_error));
const char* Text(const std::exception& error) { return error.what(); }
const char* Text(const std::runtime_error& error) { return error.what(); }
const char* Text(const std::bad_cast& error) { return error.what(); }
template <typename A, typename B> inline constexpr bool kDerived = __is_base_of(A, B);
static_assert(kDerived<std::logic_error, std::out_of_range> && kDerived<std::runtime_error, std::range_error>);
static_assert(kDerived<std::runtime_error, std::overflow_error> && kDerived<std::runtime_error, std::underflow_error>);
static_assert(kDerived<std::exception, std::bad_alloc> && kDerived<std::exception, std::bad_cast>);
static_assert(kDerived<std::exception, std::logic_error> && kDerived<std::exception, std::runtime_error>);
"""
VECTORS = """
#include <cpuid.h>
#include <emmintrin.h>
#include <immintrin.h>
#include <smmintrin.h>
#include <tmmintrin.h>
__m128i Two(__m128i a, __m128i b) { return _mm_madd_epi16(a, b); }
__attribute__((target("avx2"))) __m256i Wide(__m256i a, __m256i b) { return _mm256_madd_epi16(a, b); }
__attribute__((target("ssse3"))) __m128i Shuffled(__m128i a, __m128i b) { return _mm_shuffle_epi8(a, b); }
bool Asked() { unsigned a, b, c, d; return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & 32) != 0; }
"""
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]


class Headers(LinkingTest):
    def test_they_promise_what_the_standard_does(self):
        self.compile_cxx("common", COMMON, *WARNINGS)

    def test_this_machines_headers_promise_the_same(self):
        (self.folder / "common.cpp").write_text(COMMON)
        subprocess.run(
            ["clang++", "-std=c++20", "-fsyntax-only", *WARNINGS, self.folder / "common.cpp"],
            check=True, timeout=60,
        )  # fmt: skip

    def test_each_stands_alone(self):
        names = sorted(path.name for path in (ROOT / "toolchain/include").iterdir())
        self.assertGreater(len(names), 12)
        for name in names:
            self.compile_cxx("alone", f"#include <{name}>\n#include <{name}>\n", *WARNINGS)

    def test_all_that_the_plug_in_may_include_is_there(self):
        layers = (ROOT / "scripts/check-layers").read_text()
        listed = re.search(r"PLUGIN_STANDARD_HEADERS = set\((.*?)\.split", layers, re.DOTALL)
        names = set(re.findall(r"[a-z_]+", listed.group(1)))
        self.assertGreater(len(names), 10)
        there = {path.name for path in (ROOT / "toolchain/include").iterdir()}
        self.assertEqual(names - there, set())

    def test_vector_instructions_can_be_used(self):
        self.compile_cxx("vectors", VECTORS, "-Wall", "-Wextra", "-Werror")

    def test_none_of_this_machines_headers_is_used(self):
        (self.folder / "all.cpp").write_text(COMMON + VECTORS)
        depends = subprocess.run(
            ["clang++", TARGET, "-std=c++17", "-nostdlibinc", "-nostdinc++", "-isystem",
             ROOT / "toolchain/include", "-M", self.folder / "all.cpp"],
            capture_output=True, text=True, check=True,
        )  # fmt: skip
        files = re.findall(r"(/\S+\.h|/\S+/include/[a-z_]+)(?=\s)", depends.stdout)
        own = [name for name in files if name.startswith(str(ROOT))]
        others = [name for name in files if "/clang/" not in name and name not in own]
        self.assertGreater(len(own), 12)
        self.assertEqual(others, [])

    def test_the_text_of_an_exception_is_the_third_word_of_its_table(self):
        text = "#include <stdexcept>\nconst char* Text(const std::runtime_error& e) { return e.what(); }\n"
        for words in (
            [TARGET, "-nostdlibinc", "-nostdinc++", "-isystem", ROOT / "toolchain/include"],
            ["-m32"],  # the same language on this machine, with its own headers
        ):
            (self.folder / "what.cpp").write_text(text)
            code = subprocess.run(
                ["clang++", *words, "-std=c++17", "-O2", "-fomit-frame-pointer", "-S", "-o", "-",
                 self.folder / "what.cpp"],
                capture_output=True, text=True, check=True,
            ).stdout  # fmt: skip
            self.assertRegex(code, r"\s\*?8\(%e[a-d]x\)")

    def test_exceptions_of_the_library_cannot_be_made_here(self):
        """They would need functions that the system's library of that time lacks."""
        headers = "#include <new>\n#include <stdexcept>\n#include <typeinfo>\n"
        makings = ["runtime_error", "logic_error", "out_of_range", "range_error", "bad_cast", "bad_alloc"]
        for name in makings:
            arguments = "" if name.startswith("bad") else '("text")'
            (self.folder / "made.cpp").write_text(headers + f"std::{name} made{arguments};\n")
            result = subprocess.run(
                ["clang++", TARGET, "-std=c++17", "-nostdlibinc", "-nostdinc++", "-isystem",
                 ROOT / "toolchain/include", "-fsyntax-only", self.folder / "made.cpp"],
                capture_output=True, text=True,
            )  # fmt: skip
            with self.subTest(name):
                self.assertEqual(result.returncode, 1)
                self.assertRegex(result.stderr, "error: (call to deleted|no matching) constructor")


if __name__ == "__main__":
    linking.main()
