"""The linker's symbols: weak definitions become one, everything is defined once, only what is named is
exported, and nothing is imported that the table lacks."""

import linking
from linking import IMPORTS, LinkingTest

START = ".text\n.globl _start\n_start:\n"
WEAK_CODE = """
.text
{before}
.globl _weak
.private_extern _weak
.weak_definition _weak
_weak: .byte {mark}
"""
WEAK_DATA = """
.data
{before}
.globl _weak
.private_extern _weak
.weak_definition _weak
_weak: .long {mark}, {mark}
l_neighbour: .long 99
"""


class WeakDefinitions(LinkingTest):
    def test_calls_from_every_object_reach_the_first_function(self):
        one = self.assemble("one", START + "call _weak\n" + WEAK_CODE.format(before="", mark=1))
        two = self.assemble("two", WEAK_CODE.format(before=".space 3", mark=2)
                            + ".globl _other\n_other: call _weak\n")  # fmt: skip
        for order, mark in (((one, two), 1), ((two, one), 2)):
            library = self.link(*order)
            weak = library.address("_weak")
            self.assertEqual(library.word(weak) & 0xFF, mark)
            for caller in ("_start", "_other"):
                self.assertEqual(library.target(library.address(caller) + 1) + 4, weak)

    def test_addresses_of_data_mean_the_first_definition(self):
        """By name, by distance, and in the middle. The neighbour behind stays each object's own."""
        uses = """call L{0}
L{0}: popl %eax
  leal _weak-L{0}(%eax), %ecx
  leal _weak+4-L{0}(%eax), %ecx
  leal l_neighbour-L{0}(%eax), %ecx
  .data
  .long _weak+4
"""
        one = self.assemble("one", START + uses.format(0) + WEAK_DATA.format(before="", mark=1))
        two = self.assemble("two", ".text\n.globl _other\n_other: " + uses.format(1)
                            + WEAK_DATA.format(before=".space 20", mark=2))  # fmt: skip
        library = self.link(one, two)
        neighbours = []
        for caller in ("_start", "_other"):
            base = library.address(caller) + 5
            first, middle, neighbour = (
                (base + library.word(base + at)) & 0xFFFFFFFF for at in (3, 9, 15)
            )
            self.assertEqual((library.word(first), middle - first), (1, 4))
            self.assertEqual(library.word(neighbour), 99)
            neighbours.append(neighbour)
        self.assertEqual(neighbours[0], first + 8)
        self.assertNotEqual(*neighbours)
        pointers = library.rebases()
        self.assertEqual(len(pointers), 2)
        self.assertEqual([library.word(at) for at in pointers], [first + 4] * 2)

    def test_pointers_mean_the_first_definition(self):
        use = """.section __IMPORT,__pointers,non_lazy_symbol_pointers
  .indirect_symbol _weak
  .long 0
"""
        one = self.assemble("one", START + "ret\n" + WEAK_DATA.format(before="", mark=1) + use)
        two = self.assemble("two", WEAK_DATA.format(before="", mark=2) + use)
        library = self.link(two, one)
        (pointer,) = library.rebases()
        self.assertEqual(library.word(library.word(pointer)), 2)

    def test_places_inside_mean_the_first_definition(self):
        text = """.data
  {0}
  .globl _weak
  .weak_definition _weak
_weak: .long {1}
Linside: .long {1}
l_next: .long Linside
"""
        one = self.assemble("one", START + "ret\n" + text.format("", 1))
        two = self.assemble("two", text.format(".space 20", 2))
        library = self.link(one, two)
        data = library.section("__DATA", "__data").address
        self.assertEqual(library.rebases(), [data + 8, data + 40])
        self.assertEqual([library.word(at) for at in library.rebases()], [data + 4] * 2)

    def test_a_second_name_that_is_not_weak_keeps_its_own(self):
        one = self.assemble("one", START + "ret\n" + WEAK_DATA.format(before="", mark=1))
        two = self.assemble("two", """.text
  .globl _other
_other: call L0
L0: popl %eax
  leal _youngest-L0(%eax), %ecx
  .data
  .globl _youngest
_youngest:
""" + WEAK_DATA.format(before="", mark=2))  # fmt: skip
        library = self.link(one, two)
        base = library.address("_other") + 5
        self.assertEqual(library.word((base + library.word(base + 3)) & 0xFFFFFFFF), 2)

    def test_an_unused_definition_stays_whole(self):
        text = """.text
  .globl {0}
{0}: ret
  .globl _weak
  .weak_definition _weak
_weak: call L0
L0: popl %eax
  leal _local-L0(%eax), %ecx
  .data
_local: .long {1}
"""
        objects = [self.assemble(name, text.format(name, mark))
                   for name, mark in (("_start", 1), ("_other", 2))]  # fmt: skip
        library = self.link(*objects)
        for name, mark in (("_start", 1), ("_other", 2)):
            base = library.address(name) + 1 + 5
            self.assertEqual(library.word((base + library.word(base + 3)) & 0xFFFFFFFF), mark)

    def test_a_definition_that_is_not_weak_wins(self):
        one = self.assemble("one", START + "call _weak\n" + WEAK_CODE.format(before="", mark=1))
        two = self.assemble("two", ".text\n.globl _weak\n_weak: .byte 7\n")
        for order in ((one, two), (two, one)):
            library = self.link(*order)
            target = library.target(library.address("_start") + 1) + 4
            self.assertEqual(library.word(target) & 0xFF, 7)

    def test_templates_of_the_language_become_one(self):
        text = """
#include <new>
struct Shape { virtual ~Shape() {} virtual int Corners() const { return 4; } };
template <typename T> __attribute__((noinline)) int Twice(T value) {
  static int calls;
  return calls += 2 * int(value);
}
int %s(void* place) { new (place) Shape; return Twice(3.0); }
"""
        imports = """
/usr/lib/libSystem.B.dylib
/usr/lib/libstdc++.6.dylib
  __ZTVN10__cxxabiv117__class_type_infoE
  __ZdlPv weak
"""
        objects = [self.compile_cxx(name, text % name) for name in ("One", "Two")]
        library = self.link(*objects, exports=["__Z3OnePv"], imports=imports)
        twice = library.address("__Z5TwiceIdEiT_")
        code = library.section("__TEXT", "__text")
        starts = sorted(one[4] for one in library.symbols if one[2]) + [code.address + code.size]
        for caller in ("__Z3OnePv", "__Z3TwoPv"):
            start = library.address(caller)
            end = starts[starts.index(start) + 1]
            calls = [at for at in range(start, end - 4) if library.data[at] == 0xE8]
            targets = [library.target(at + 1) + 4 for at in calls]
            self.assertEqual(targets.count(twice), 1, caller)
        tables = [bind for bind in library.binds() if "class_type_info" in bind[3]]
        self.assertEqual([bind[1] for bind in tables], [8, 8])  # the unused one stays

    def test_weak_definitions_of_indivisible_sections_are_refused(self):
        one = self.assemble("one", START + WEAK_CODE.format(before="", mark=1), divisible=False)
        self.assert_refused(self.run_linker(one), "_weak is weak in sections that are not divisible")


class Definitions(LinkingTest):
    def test_two_of_one_name_are_refused(self):
        one = self.assemble("one", START + "ret\n")
        two = self.assemble("two", START + "nop\n")
        self.assert_refused(self.run_linker(one, two), "_start is defined in one.s.o and in two.s.o")

    def test_local_names_may_repeat(self):
        one = self.assemble("one", START + "call _local\n_local: nop\n")
        two = self.assemble("two", ".text\n.globl _other\n_other: call _local\n_local: nop\n")
        library = self.link(one, two)
        for caller in ("_start", "_other"):
            address = library.address(caller)
            self.assertEqual(library.target(address + 1) + 4, address + 5)

    def test_common_absolute_and_optional_symbols_are_refused(self):
        cases = {
            ".comm _shared,4": "_shared is a common, absolute or indirect symbol",
            ".globl _fixed\n_fixed = 5": "_fixed is a common, absolute or indirect symbol",
            ".weak_reference _imported\ncall _imported": "_imported may be absent at run time",
        }
        for text, message in cases.items():
            with self.subTest(text):
                path = self.assemble("one", START + text + "\n")
                self.assert_refused(self.run_linker(path), message)

    def test_functions_inside_are_named_but_hidden(self):
        one = self.assemble("one", START + "ret\n_local: ret\n.globl _shared\n_shared: ret\n"
                            ".data\n_data: .long 1\n")  # fmt: skip
        library = self.link(one)
        named = {symbol[0]: bool(symbol[1] & 1) for symbol in library.symbols}
        self.assertEqual(named, {"_start": True, "_local": False, "_shared": False})


class Imports(LinkingTest):
    def test_names_that_the_table_lacks_are_refused_together(self):
        one = self.assemble("one", START + "call _zebra\ncall _imported\ncall _apple\n"
                            ".data\n.long _middle\n.section __IMPORT,__pointers,"
                            "non_lazy_symbol_pointers\n.indirect_symbol _pear\n.long 0\n")  # fmt: skip
        self.assert_refused(
            self.run_linker(one), "not in the table of imports: _apple, _middle, _pear, _zebra\n"
        )

    def test_only_libraries_that_are_needed_are_asked_for(self):
        one = self.assemble("one", START + "ret\n")
        self.assertEqual(self.link(one).libraries(), ["/usr/lib/libSystem.B.dylib"])
        two = self.assemble("two", START + "call _otherImport\n")
        library = self.link(two)
        self.assertEqual(
            library.libraries(), ["/usr/lib/libSystem.B.dylib", "/usr/lib/libother.dylib"]
        )
        self.assertEqual([bind[2:] for bind in library.binds()], [("libother", "_otherImport")])

    def test_weak_imports_are_told_to_the_loader(self):
        weak, plain = (
            self.link(self.assemble(name, START + f"call {name}\n"), output=name + ".dylib")
            for name in ("_weakImport", "_otherImport")
        )
        self.assertEqual([bind[2] for bind in weak.weak_binds()], ["_weakImport"])
        self.assertEqual([bind[3] for bind in weak.binds()], ["_weakImport"])
        self.assertEqual(plain.weak_binds(), [])
        self.assertEqual((weak.flags & 0x10000, plain.flags & 0x10000), (0x10000, 0))

    def test_many_libraries_are_told_apart(self):
        names = [f"_f{number}" for number in range(20)]
        table = "/usr/lib/libSystem.B.dylib\n" + "".join(
            f"/usr/lib/lib{name[1:]}.dylib\n  {name}\n" for name in names
        )
        one = self.assemble("one", START + "".join(f"call {name}\n" for name in names))
        library = self.link(one, imports=table)
        self.assertEqual(
            sorted(bind[2:] for bind in library.binds()),
            sorted(("lib" + name[1:], name) for name in names),
        )
        said = {one[0]: one[3] >> 8 for one in library.symbols if one[2] == 0}
        self.assertEqual(said, {name: number for number, name in enumerate(names, 2)})

    def test_a_faulty_table_is_refused(self):
        one = self.assemble("one", START + "ret\n")
        cases = {
            "  _early\n" + IMPORTS: "line 1",
            IMPORTS + "  _imported\n": "named twice or badly",
            IMPORTS + "  _new strong\n": "named twice or badly",
            IMPORTS + "  _new weak weak\n": "named twice or badly",
            IMPORTS + "/usr/lib/libother.dylib\n": "named twice or badly",
            "/usr/lib/libother.dylib\n  _imported\n": "lacks /usr/lib/libSystem.B.dylib",
        }
        for table, message in cases.items():
            with self.subTest(table):
                self.assert_refused(self.run_linker(one, imports=table), message)

    def test_comments_and_empty_lines_are_no_imports(self):
        one = self.assemble("one", START + "call _imported\n")
        table = "# first\n\n/usr/lib/libSystem.B.dylib # the system\n\n  _imported # a function\n"
        self.assertEqual(self.link(one, imports=table).binds()[0][3], "_imported")


class Exports(LinkingTest):
    def test_only_what_is_named_is_exported(self):
        one = self.assemble("one", START + "ret\n.globl _hidden\n_hidden: ret\n.data\n.space 8\n"
                            ".globl _datum\n_datum: .long 1\n")  # fmt: skip
        library = self.link(one, exports=["_start", "_datum"])
        data = library.section("__DATA", "__data").address
        self.assertEqual(
            library.exports(), {"_start": library.address("_start"), "_datum": data + 8}
        )

    def test_names_that_begin_alike_are_kept_apart(self):
        names = ["_a", "_ab", "_abc", "_abd", "_abcde", "_b", "_bbbbbbbbbbbb", "_ba"]
        text = ".text\n" + "".join(f".globl {name}\n{name}: nop\n" for name in names)
        library = self.link(self.assemble("one", text), exports=names)
        first = library.section("__TEXT", "__text").address
        self.assertEqual(
            library.exports(), {name: first + number for number, name in enumerate(names)}
        )

    def test_many_names_at_distant_addresses(self):
        """Both the places in the trie and the addresses take more bytes as they grow."""
        names = [f"_name{number * 7919 % 1000:03}" for number in range(300)]
        text = ".text\n" + "".join(f".globl {name}\n{name}: .space 97\n" for name in names)
        library = self.link(self.assemble("one", text), exports=names)
        first = library.section("__TEXT", "__text").address
        self.assertEqual(
            library.exports(), {name: first + 97 * number for number, name in enumerate(names)}
        )

    def test_a_name_that_is_not_defined_is_refused(self):
        one = self.assemble("one", START + "call _imported\n")
        self.assert_refused(
            self.run_linker(one, exports=["_start", "_nobody", "_imported"]),
            "to be exported, but defined nowhere: _imported, _nobody",
        )


if __name__ == "__main__":
    linking.main()
