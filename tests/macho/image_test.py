"""The linker's file: its segments and sections, what it keeps and drops, and that it is always the same."""

import hashlib
import shutil
import struct
import subprocess

import linking
from linking import LinkingTest

START = ".text\n.globl _start\n_start:\n"


class Image(LinkingTest):
    def test_segments_cover_the_file_in_whole_pages(self):
        library = self.link(self.assemble("one", START + """.space 5000
  .data
  .space 4097
  .zerofill __DATA,__bss,_big,10000,4
"""))  # fmt: skip
        text, data, link_edit = library.segments
        self.assertEqual([one.name for one in library.segments], ["__TEXT", "__DATA", "__LINKEDIT"])
        self.assertEqual([one.protection for one in library.segments], [5, 3, 1])  # r-x, rw-, r--
        self.assertEqual((text.address, text.offset, text.memory, text.file), (0, 0, 8192, 8192))
        self.assertEqual((data.address, data.offset, data.file), (8192, 8192, 8192))
        self.assertEqual(data.memory, 16384)
        self.assertEqual((link_edit.address, link_edit.offset), (8192 + 16384, 16384))
        self.assertEqual(link_edit.offset + link_edit.file, len(library.data))
        self.assertEqual(library.kind, 6)  # a dynamic library
        self.assertEqual(library.flags, 0x100085)

    def test_alignments_are_kept(self):
        texts = [
            START + "ret\n.const\n.byte 1\n.data\n.byte 1\n",
            ".text\n.p2align 5\n.globl _b\n_b: ret\n.const\n.p2align 4\n.byte 2\n.data\n.p2align 6\n.byte 3\n",
        ]
        library = self.link(*(self.assemble(f"o{i}", text) for i, text in enumerate(texts)))
        for section in library.sections:
            self.assertEqual(section.address % section.align, 0, section)
            if section.flags & 0xFF != 1:
                self.assertEqual(section.offset, section.address)
        for name, align, mark in (("__const", 16, 2), ("__data", 64, 3)):
            (section,) = (one for one in library.sections if one.name == name)
            self.assertEqual((section.align, section.size), (align, align + 1))
            self.assertEqual(library.content(section)[align], mark)
        self.assertEqual(library.address("_b") % 32, 0)

    def test_sections_keep_their_bytes(self):
        library = self.link(
            self.assemble("one", START + "ret\n.cstring\n.asciz \"one\"\n.literal8\n.quad 1\n"),
            self.assemble("two", ".cstring\n.asciz \"three\"\n.literal8\n.quad 2\n"),
        )
        strings = library.section("__TEXT", "__cstring")
        self.assertEqual(library.content(strings), b"one\0three\0")
        literals = library.section("__TEXT", "__literal8")
        self.assertEqual(library.content(literals), b"\1" + bytes(7) + b"\2" + bytes(7))

    def test_zero_filled_memory_takes_no_room_in_the_file(self):
        library = self.link(self.assemble("one", START + """call L0
L0: popl %eax
  leal _big+40-L0(%eax), %ecx
  .zerofill __DATA,__bss,_big,1000000,4
"""))  # fmt: skip
        bss = library.section("__DATA", "__bss")
        self.assertLess(len(library.data), 20000)
        base = library.address("_start") + 5
        self.assertEqual((base + library.word(base + 3)) & 0xFFFFFFFF, bss.address + 40)
        self.assertGreaterEqual(library.segments[1].memory, 1000000)

    def test_initialisers_are_kept_and_move_with_the_library(self):
        library = self.link(
            self.assemble("one", START + "ret\n.mod_init_func\n.long _start\n"),
            self.assemble("two", ".text\n_second: ret\n.mod_init_func\n.long _second\n"),
        )
        section = library.section("__DATA", "__mod_init_func")
        self.assertEqual((section.size, section.flags & 0xFF), (8, 9))
        self.assertEqual(library.rebases(), [section.address, section.address + 4])
        self.assertEqual(
            [library.word(section.address + at) for at in (0, 4)],
            [library.address("_start"), library.address("_second")],
        )

    def test_many_addresses_one_behind_the_other_all_move(self):
        for count in (14, 15, 16, 17, 200):
            with self.subTest(count):
                text = START + "ret\n.data\n" + ".long _start\n" * count + ".long 0\n.long _start\n"
                library = self.link(self.assemble("one", text))
                data = library.section("__DATA", "__data").address
                expected = [data + 4 * index for index in range(count)] + [data + 4 * count + 4]
                self.assertEqual(library.rebases(), expected)

    def test_debugging_information_is_dropped(self):
        path = self.compile_cxx("debug", 'extern "C" __attribute__((visibility("default"))) '
                                "int start(int x) { return 3 * x; }", "-g")  # fmt: skip
        self.assertIn(str(self.folder).encode(), path.read_bytes())
        library = self.link(path)
        self.assertEqual({one.segment for one in library.sections}, {"__TEXT"})
        self.assertNotIn(str(self.folder).encode(), library.data)
        self.assertNotIn(b"debug.cpp", library.data)

    def test_other_segments_are_refused(self):
        path = self.assemble("one", START + "ret\n.section __OTHER,__data\n.long 1\n")
        self.assert_refused(self.run_linker(path), "no place for the section __OTHER,__data")

    def test_the_linkers_own_sections_are_refused(self):
        for name in ("__TEXT,__symbol_stub", "__DATA,__nl_symbol_ptr"):
            # The assembler knows the names and gives their sections a type, so they are put in later.
            path = self.assemble("one", START + f"ret\n.section {name[:-1]}X,regular\n.long 1\n")
            plain = name.split(",")[1].encode()
            path.write_bytes(path.read_bytes().replace(plain[:-1] + b"X", plain))
            self.assert_refused(self.run_linker(path), f"{name} is the linker's own")

    def test_other_files_are_refused(self):
        elf = self.folder / "elf.s"
        elf.write_text(".globl _start\n_start: ret\n")
        cases = {
            "elf.s.o": self.compile("elf.s", target="--target=i386-linux-gnu"),
            "wide.s.o": self.assemble("wide", START + "ret\n", target="--target=x86_64-apple-macosx10.6"),
        }
        for name, path in cases.items():
            self.assert_refused(self.run_linker(path), name, "not an object for 32-bit Intel macOS")
        (self.folder / "text.o").write_text("no object")
        self.assert_refused(self.run_linker(self.folder / "text.o"), "text.o", "cut off or garbled")
        self.assert_refused(self.run_linker(self.folder / "absent.o"), "absent.o")

    def test_cut_objects_are_refused(self):
        whole = self.assemble("one", START + "call _imported\n.data\n.long _start\n").read_bytes()
        part = self.folder / "part.o"
        refused = 0
        for length in range(0, len(whole) - 40, 23):
            part.write_bytes(whole[:length])
            self.assert_refused(self.run_linker(part), "part.o")
            refused += 1
        self.assertGreater(refused, 10)

    def test_a_section_outside_its_file_is_refused(self):
        path = self.assemble("one", START + "ret\nret\n")
        data = bytearray(path.read_bytes())
        struct.pack_into("<I", data, 28 + 56 + 40, len(data) - 1)  # where the first section lies
        path.write_bytes(data)
        self.assert_refused(self.run_linker(path), "__TEXT,__text is cut off")


class Sameness(LinkingTest):
    TEXT = START + "call _imported\ncall _weakImport\nret\n.data\n.long _start\n.long {}\n"

    def test_the_same_objects_give_the_same_bytes_wherever_they_lie(self):
        other = self.folder / "another" / "deeper"
        other.mkdir(parents=True)
        path = self.assemble("one", self.TEXT.format(1))
        copy = shutil.copy(path, other / "quite_another_name.o")
        first = self.link(path).data
        self.assertEqual(self.link(copy, output="another/deeper/o.dylib").data, first)
        self.assertNotIn(str(self.folder).encode(), first)

    def test_the_identifier_follows_the_content(self):
        first, second = (
            self.link(self.assemble("one", self.TEXT.format(value)), output=f"{value}.dylib")
            for value in (1, 2)
        )
        identifiers = [one.command(0x1B)[8:] for one in (first, second)]
        self.assertNotEqual(*identifiers)
        for one, identifier in zip((first, second), identifiers):
            self.assertEqual(one.data.count(identifier), 1)
            digest = hashlib.sha256(one.data.replace(identifier, bytes(16))).digest()
            self.assertEqual(identifier[9:], digest[9:16])

    def test_the_file_is_what_llvms_tools_understand(self):
        library = self.link(self.assemble("one", self.TEXT.format(1)))
        text = subprocess.run(
            ["llvm-objdump", "--macho", "--private-headers", library.path],
            capture_output=True, text=True, check=True,
        )  # fmt: skip
        self.assertEqual(text.stderr, "")
        for line in ("cmd LC_ID_DYLIB", "name @loader_path/out.dylib", "cmd LC_DYLD_INFO_ONLY",
                     "cmd LC_VERSION_MIN_MACOSX", "version 10.6"):  # fmt: skip
            self.assertIn(line, text.stdout)
        self.assertNotIn("past end of file", text.stdout)


if __name__ == "__main__":
    linking.main()
