"""The linker's relocations: each kind leads where it should, and what is no known kind is refused."""

import struct

import linking
from linking import LinkingTest

START = ".text\n.globl _start\n_start:\n"
# Distances that grow from one object to the next, so that a forgotten correction shows.
PADDING = ".text\n.globl _padding\n_padding: .space 77, 0x90\n.data\n.space 52\n.const_data\n.space 20\n"


class Relocations(LinkingTest):
    def link_behind_padding(self, text, *others, **options):
        padding = self.assemble("padding", PADDING)
        return self.link(padding, self.assemble("one", text), *others, **options)

    def test_call_reaches_a_function_of_another_object(self):
        other = self.assemble("two", ".text\n.space 5\n.globl _far\n_far: ret\n")
        library = self.link_behind_padding(START + "nop\ncall _far\nret\n", other)
        call = library.address("_start") + 1
        self.assertEqual(library.data[call], 0xE8)
        self.assertEqual(library.target(call + 1) + 4, library.address("_far"))

    def test_call_reaches_a_place_inside_a_function(self):
        other = self.assemble("two", ".text\n.globl _far\n_far: .space 9, 0x90\n")
        library = self.link_behind_padding(START + "call _far+3\n", other)
        call = library.address("_start")
        self.assertEqual(library.target(call + 1) + 4, library.address("_far") + 3)

    def test_call_reaches_another_section_of_its_object(self):
        text = START + "call _local\n.section __TEXT,__extra,regular,pure_instructions\n_local: ret\n"
        library = self.link_behind_padding(text)
        call = library.address("_start")
        extra = library.section("__TEXT", "__extra")
        self.assertEqual(library.target(call + 1) + 4, extra.address)

    def test_call_of_an_import_goes_through_one_stub(self):
        library = self.link_behind_padding(
            START + "call _imported\ncall _otherImport\ncall _imported\n"
        )
        start = library.address("_start")
        self.assertEqual(
            [library.import_called(start + 5 * index) for index in range(3)],
            ["_imported", "_otherImport", "_imported"],
        )
        self.assertEqual(library.section("__TEXT", "__symbol_stub").size, 24)

    def test_address_in_data_moves_with_the_library(self):
        text = START + "ret\n.data\n_x: .long 7\n_pointer: .long _x+2\n.globl _far\n.long _far\n"
        other = self.assemble("two", ".data\n.long 5\n.globl _far\n_far: .long 6\n")
        library = self.link_behind_padding(text, other)
        data = library.section("__DATA", "__data")
        self.assertEqual(library.word(data.address + 52), 7)
        self.assertEqual(library.word(data.address + 56), data.address + 54)
        self.assertEqual(library.word(data.address + 60), data.address + 68)
        self.assertEqual(library.rebases(), [data.address + 56, data.address + 60])
        self.assertEqual(library.word(data.address + 68), 6)

    def test_address_beyond_its_target_belongs_to_the_target(self):
        """40 beyond a word is another section in the object, and must not be taken for it."""
        text = START + "ret\n.data\n_pointer: .long _x+40\n.const_data\n_x: .long 7\n"
        other = self.assemble("two", ".const_data\n.space 64\n")
        library = self.link_behind_padding(text, other)
        data, const = library.section("__DATA", "__data"), library.section("__DATA", "__const")
        self.assertEqual(library.word(data.address + 52), const.address + 20 + 40)

    def test_address_of_an_end_stays_with_what_ends_there(self):
        """In the object the next section begins at the same place; in the library it lies elsewhere."""
        text = START + ".long 0\n.data\n.long Lend\n.long 7\nLend:\n.const_data\n.p2align 2\n.long 8\n"
        library = self.link_behind_padding(text)
        data = library.section("__DATA", "__data").address
        self.assertEqual(library.word(data + 52), data + 60)

    def test_address_of_an_import_is_bound_with_its_addend(self):
        library = self.link_behind_padding(START + "ret\n.data\n.long _importedData+8\n.long _weakImport-3\n")
        data = library.section("__DATA", "__data").address
        self.assertEqual(
            library.binds(),
            [(data + 52, 8, "libSystem", "_importedData"), (data + 56, -3, "libother", "_weakImport")],
        )
        self.assertEqual(library.weak_binds(), [(data + 56, -3, "_weakImport")])
        self.assertEqual(library.rebases(), [])
        self.assertEqual((library.word(data + 52), library.word(data + 56)), (0, 0))

    def test_distances_between_sections_follow_them(self):
        text = START + """call L0
L0: popl %eax
  leal _local-L0(%eax), %ecx
  leal _shared+6-L0(%eax), %ecx
  .data
  .space 12
_local: .long 9
  .globl _shared
_shared: .long 8
  .const
  .space 4
  .long _local-_end
_end:
"""
        library = self.link_behind_padding(text)
        start, data = library.address("_start"), library.section("__DATA", "__data").address
        local = data + 52 + 12
        self.assertEqual((library.word(local), library.word(local + 4)), (9, 8))
        pic_base = start + 5
        self.assertEqual((pic_base + library.word(start + 8)) & 0xFFFFFFFF, local)
        self.assertEqual((pic_base + library.word(start + 14)) & 0xFFFFFFFF, local + 4 + 6)
        end = library.section("__TEXT", "__const").address + 8
        self.assertEqual((end + library.word(end - 4)) & 0xFFFFFFFF, local)

    def test_pointers_are_joined_moved_and_bound(self):
        text = START + """call L0
L0: popl %eax
  movl L_import-L0(%eax), %ecx
  movl L_far-L0(%eax), %ecx
  movl L_local-L0(%eax), %ecx
  call _imported
  .section __IMPORT,__pointers,non_lazy_symbol_pointers
L_import: .indirect_symbol _imported
  .long 0
L_far: .indirect_symbol _far
  .long 0
L_local: .indirect_symbol _local
  .long _local
  .data
  .space 4
_local: .long 3
"""
        other = self.assemble("two", """.data
  .globl _far
  .private_extern _far
_far: .long 4
  .section __IMPORT,__pointers,non_lazy_symbol_pointers
L_import: .indirect_symbol _imported
  .long 0
""")  # fmt: skip
        library = self.link_behind_padding(text, other)
        pointers = library.section("__DATA", "__nl_symbol_ptr")
        self.assertEqual(pointers.size, 12)  # the import's, which the stub uses too, and two
        base = library.address("_start") + 5
        slots = [(base + library.word(base + at)) & 0xFFFFFFFF for at in (3, 9, 15)]
        self.assertEqual(len(set(slots)), 3)
        self.assertTrue(all(pointers.holds(slot, 4) for slot in slots))
        self.assertEqual(library.binds(), [(slots[0], 0, "libSystem", "_imported")])
        self.assertEqual(library.rebases(), sorted(slots[1:]))
        self.assertEqual([library.word(library.word(slot)) for slot in slots[1:]], [4, 3])
        self.assertEqual(library.import_called(base + 19), "_imported")
        self.check_indirect_symbols(library, pointers)

    def check_indirect_symbols(self, library, pointers):
        at, count = struct.unpack_from("<2I", library.command(11), 56)
        self.assertEqual(count, 4)
        indirect = struct.unpack_from("<4I", library.data, at)
        bound = {address: name for address, _, _, name in library.binds()}
        for index in range(3):
            name = bound.get(pointers.address + 4 * index)
            entry = indirect[pointers.first_indirect + index]
            said = None if entry == 0x80000000 else library.symbols[entry][0]
            self.assertEqual(said, name)
        self.assertEqual(library.symbols[indirect[0]][0], "_imported")  # the stub's


class RefusedRelocations(LinkingTest):
    def patched(self, text, change):
        """The object of the text, the second words of its plain relocations changed."""
        path = self.assemble("one", text)
        data = bytearray(path.read_bytes())
        command = 28  # the segment, with the first section
        at, count = struct.unpack_from("<2I", data, command + 56 + 48)
        self.assertGreater(count, 0)
        for index in range(count):
            first, second = struct.unpack_from("<2I", data, at + 8 * index)
            struct.pack_into("<2I", data, at + 8 * index, *change(first, second))
        path.write_bytes(data)
        return path

    def test_every_unknown_kind_is_refused(self):
        names = {3: "PB_LA_PTR", 5: "TLV", 6: "6", 15: "15"}
        for kind, name in names.items():
            with self.subTest(name):
                path = self.patched(
                    START + "call _imported\n",
                    lambda first, second: (first, second & 0x0FFFFFFF | kind << 28),
                )
                self.assert_refused(self.run_linker(path), "__TEXT,__text+0x1", f"unknown kind {name}")

    def test_a_pair_alone_is_refused(self):
        path = self.patched(START + "call _imported\n",
                            lambda first, second: (first, second & 0x0FFFFFFF | 1 << 28))  # fmt: skip
        self.assert_refused(self.run_linker(path), "PAIR without a difference")

    def test_a_difference_without_its_pair_is_refused(self):
        for kind in (2, 4):
            path = self.patched(START + "call _imported\n",
                                lambda first, second: (first, second & 0x0FFFFFFF | kind << 28))  # fmt: skip
            self.assert_refused(self.run_linker(path), "do not belong together")

    def test_other_widths_are_refused(self):
        path = self.assemble("one", START + "ret\n.data\n.short _start\n")
        self.assert_refused(self.run_linker(path), "__DATA,__data+0x0", "2 bytes, not 4")

    def test_a_place_outside_its_section_is_refused(self):
        path = self.patched(START + "call _imported\n", lambda first, second: (first + 1, second))
        self.assert_refused(self.run_linker(path), "outside its section")

    def test_a_symbol_that_is_not_there_is_refused(self):
        path = self.patched(START + "call _imported\n", lambda first, second: (first, second | 0xFFFF))
        self.assert_refused(self.run_linker(path), "relocation without a symbol")

    def test_an_address_in_text_is_refused(self):
        cases = {
            "code": START + "movl $_x, %eax\n.data\n_x: .long 1\n",
            "import in code": START + "movl _importedData, %eax\n",
            "constants": START + "ret\n.const\n_pointer: .long _x\n.data\n_x: .long 1\n",
        }
        for name, text in cases.items():
            with self.subTest(name):
                path = self.assemble("one", text)
                self.assert_refused(self.run_linker(path), "an address in read-only code or data")

    def test_a_call_into_an_import_is_refused(self):
        path = self.assemble("one", START + "call _imported+4\n")
        self.assert_refused(self.run_linker(path), "call into an import")

    def test_lazy_pointers_and_foreign_stubs_are_refused(self):
        for kind, number in (("lazy_symbol_pointers", 7), ("symbol_stubs,none,5", 8),
                             ("mod_term_funcs", 10)):  # fmt: skip
            with self.subTest(kind):
                path = self.assemble("one", START + f"ret\n.section __DATA,__odd,{kind}\n.long 0\n")
                self.assert_refused(self.run_linker(path), "__DATA,__odd", f"unknown type {number}")


if __name__ == "__main__":
    linking.main()
