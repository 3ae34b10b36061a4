"""The linker's unwinding tables: every entry leads to its function in the library, to its table of
handlers and to the language's routine."""

import re
import struct

import linking
from library import tool
from linking import CXX_IMPORTS, LinkingTest

CATCHING = """
extern "C" void mayThrow(int);
extern "C" __attribute__((visibility("default"))) int {0}(int x) {{
  try {{ mayThrow(x); }} catch (...) {{ return {1}; }}
  return 0;
}}
extern "C" int {0}Plain(int x) {{ mayThrow(x); return {1}; }}
"""
FRAME = """
.section __TEXT,__eh_frame,coalesced,no_toc+strip_static_syms+live_support
{0}
"""


class Unwinding(LinkingTest):
    def entries(self, library):
        """(first address, end, table of handlers or None) of each function, as LLVM reads them."""
        text = tool("llvm-dwarfdump", "--eh-frame", library.path)
        found = re.findall(
            r"FDE cie=\w+ pc=(\w+)\.\.\.(\w+)\n +Format: .*\n(?: +LSDA Address: (\w+))?", text
        )
        self.assertEqual(len(found), text.count(" FDE "))
        return [tuple(int(word, 16) & 0xFFFFFFFF if word else None for word in one) for one in found]

    def link_two(self):
        first = self.compile_cxx("first", CATCHING.format("start", 1))
        second = self.compile_cxx("second", CATCHING.format("other", 2))
        padding = self.assemble("padding", ".text\n.globl _p\n_p: .space 333, 0x90\n.const\n.space 50\n")
        return self.link(padding, first, second, imports=CXX_IMPORTS)

    def test_entries_follow_their_functions(self):
        library = self.link_two()
        entries = self.entries(library)
        tables = library.section("__TEXT", "__gcc_except_tab")
        expected = {"_start": tables.address, "_startPlain": None,
                    "_other": tables.address + tables.size // 2, "_otherPlain": None}  # fmt: skip
        self.assertEqual(
            {start: handlers for start, _, handlers in entries},
            {library.address(name): handlers for name, handlers in expected.items()},
        )

    def test_the_languages_routine_is_reached_through_a_pointer(self):
        library = self.link_two()
        text = tool("llvm-dwarfdump", "--eh-frame", library.path)
        routines = {int(word, 16) for word in re.findall(r"Personality Address: (\w+)", text)}
        (bind,) = (one for one in library.binds() if one[3] == "___gxx_personality_v0")
        self.assertEqual(routines, {bind[0]})

    def test_handlers_find_the_types_they_catch(self):
        text = """
struct Apple { virtual ~Apple(); };
struct Pear { virtual ~Pear(); };
extern "C" void mayThrow(int);
extern "C" __attribute__((visibility("default"))) int %s(int x) {
  try { mayThrow(x); } catch (const Apple&) { return 1; } catch (const Pear&) { return 2; }
  return 0;
}
"""
        first, second = (self.compile_cxx(name, text % name) for name in ("start", "other"))
        table = CXX_IMPORTS + "  __ZTI5Apple\n  __ZTI4Pear\n"
        library = self.link(first, second, imports=table)
        self.assertEqual(
            sorted(library.caught_types().values()), ["__ZTI4Pear"] * 2 + ["__ZTI5Apple"] * 2
        )

    def test_the_table_ends_with_a_zero_word_and_has_no_other(self):
        library = self.link_two()
        data = library.content(library.section("__TEXT", "__eh_frame"))
        offset, entries = 0, 0
        while struct.unpack_from("<I", data, offset)[0]:
            offset += 4 + struct.unpack_from("<I", data, offset)[0]
            entries += 1
        self.assertEqual(offset + 4, len(data))
        self.assertEqual(entries, 4 + 4)  # functions, and what each two have in common

    def test_a_closing_zero_of_an_object_does_not_end_the_whole(self):
        start = ".text\n.globl _start\n_start:\n.cfi_startproc\nret\n.cfi_endproc\n" + FRAME
        second = ".text\n.globl _b\n_b:\n.cfi_startproc\nret\n.cfi_endproc\n"
        frame = ".long L1-L0\nL0: .long 0\n.byte 1\n.asciz \"zR\"\n.byte 1,0x7c,8,1,0x10\n.p2align 2\nL1:"
        one = self.assemble("one", start.format(frame + "\n.long 0\n"))
        # The assembler puts the entries it makes itself behind those in the text.
        self.assert_refused(self.run_linker(one, self.assemble("two", second)), "behind the end")
        bare = start.replace(".cfi_startproc", "").replace(".cfi_endproc", "")
        one = self.assemble("one", bare.format(frame + "\n.long 0\n"))
        library = self.link(one, self.assemble("two", second))
        self.assertEqual([entry[0] for entry in self.entries(library)], [library.address("_b")])

    def test_no_table_of_handlers_stays_none(self):
        frame = """.long L1-L0
L0: .long 0
  .byte 1
  .asciz "zLR"
  .byte 1, 0x7c, 8, 2, 0x10, 0x10
  .p2align 2
L1: .long L3-L2
L2: .long L2-L0+4
LP = _start-.
  .long LP, 1
  .byte 4
  .long 0
  .p2align 2
L3:
"""
        start = ".text\n.space 7\n.globl _start\n_start: ret\n"
        library = self.link(self.assemble("one", start + FRAME.format(frame)))
        ((first, end, _),) = self.entries(library)
        self.assertEqual((first, end), (library.address("_start"), library.address("_start") + 1))
        table = library.section("__TEXT", "__eh_frame")
        self.assertEqual(library.word(table.address + 24 + 17), 0)

    def test_entries_of_other_forms_are_refused(self):
        common = ".long L1-L0\nL0: .long 0\n.byte {0}\n.asciz \"{1}\"\n.byte 1,0x7c,8\n{2}\n.p2align 2\nL1:\n"
        entry = ".long L3-L2\nL2: .long L2-L0+{0}\n.long 0, 4\n.byte 0\n.p2align 2\nL3:\n"
        cases = {
            "version": (common.format(3, "zR", ".byte 1, 0x10"), "entry of version 3"),
            "no size": (common.format(1, "R", ".byte 0x10"), "of the kind 'R'"),
            "unknown letter": (common.format(1, "zRX", ".byte 2, 0x10, 0"), "of the kind 'zRX'"),
            "absolute code": (common.format(1, "zR", ".byte 1, 0x00"), "in the way 0x0"),
            "absolute table": (common.format(1, "zLR", ".byte 2, 0, 0x10"), "in the way 0x0"),
            "8-byte pointers": (common.format(1, "zR", ".byte 1, 0x1c"), "in the way 0x1c"),
            "no code encoding": (common.format(1, "z", ".byte 0"), "without relative code"),
            "stray": (common.format(1, "zR", ".byte 1, 0x10") + entry.format(8), "belongs to no other"),
            "too long": (".long 400\n.long 0\n", "entry of 400 bytes"),
            "endless": (".long 0xffffffff\n.long 0\n", "entry of 4294967295 bytes"),
        }
        for name, (text, message) in cases.items():
            with self.subTest(name):
                start = ".text\n.globl _start\n_start: ret\n"
                one = self.assemble("one", start + FRAME.format(text))
                self.assert_refused(self.run_linker(one), message)

    def test_relocations_that_belong_to_no_pointer_are_refused(self):
        text = ".long L1-L0\nL0: .long 0\n.byte 1\n.asciz \"zR\"\n.byte 1,0x7c,8,1,0x10\n.p2align 2\n{}\nL1:\n"
        start = ".text\n.globl _start\n_start: ret\n.data\n_x: .long 0\n"
        for word in (".long _x", ".long _x-L0"):
            one = self.assemble("one", start + FRAME.format(text.format(word)))
            self.assert_refused(self.run_linker(one), "relocation of no known pointer")


if __name__ == "__main__":
    linking.main()
