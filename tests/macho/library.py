"""Reads a library for the tests: its bytes by a small reader of its own, what the system's loader is told
by LLVM's tools."""

import dataclasses
import functools
import pathlib
import re
import struct
import subprocess


@dataclasses.dataclass(frozen=True)
class Section:
    segment: str
    name: str
    address: int
    size: int
    offset: int
    align: int
    flags: int
    first_indirect: int

    def holds(self, address, length=1):
        return self.address <= address and address + length <= self.address + self.size


@dataclasses.dataclass(frozen=True)
class Segment:
    name: str
    address: int
    memory: int
    offset: int
    file: int
    protection: int


def tool(*words):
    """What a tool prints; it must not complain."""
    result = subprocess.run(
        list(map(str, words)), capture_output=True, text=True, timeout=100, check=True
    )
    assert result.stderr == "", result.stderr
    return result.stdout


class Library:
    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.data = self.path.read_bytes()
        magic, _, _, self.kind, count, _, self.flags = struct.unpack_from("<7I", self.data)
        assert magic == 0xFEEDFACE, hex(magic)
        self.commands, self.segments, self.sections = [], [], []
        offset = 28
        for _ in range(count):
            command, size = struct.unpack_from("<2I", self.data, offset)
            self.commands.append((command, self.data[offset : offset + size]))
            if command == 1:
                self._read_segment(offset)
            offset += size
        self.symbols = self._read_symbols()

    def _read_segment(self, offset):
        name, *place = struct.unpack_from("<16s4I", self.data, offset + 8)
        _, protection, count = struct.unpack_from("<3I", self.data, offset + 40)
        name = name.rstrip(b"\0").decode()
        self.segments.append(Segment(name, *place, protection))
        for index in range(count):
            section, _, address, size, at, align, _, _, flags, first = struct.unpack_from(
                "<16s16s8I", self.data, offset + 56 + 68 * index
            )
            section = section.rstrip(b"\0").decode()
            self.sections.append(
                Section(name, section, address, size, at, 1 << align, flags, first)
            )

    def _read_symbols(self):
        """(name, type, section's number, description, value) of each, in the table's order."""
        at, count, strings, _ = struct.unpack_from("<4I", self.command(2), 8)
        result = []
        for index in range(count):
            start, *rest = struct.unpack_from("<IBBHI", self.data, at + 12 * index)
            end = self.data.index(b"\0", strings + start)
            result.append((self.data[strings + start : end].decode(), *rest))
        return result

    def command(self, number):
        """The one load command of that number."""
        (found,) = (data for command, data in self.commands if command == number)
        return found

    def section(self, segment, name):
        (found,) = (one for one in self.sections if (one.segment, one.name) == (segment, name))
        return found

    def section_at(self, address):
        found = [one for one in self.sections if one.holds(address)]
        return found[0] if found else None

    def content(self, section):
        return self.data[section.offset : section.offset + section.size]

    def word(self, address):
        """The word that the file holds for an address."""
        section = self.section_at(address)
        return struct.unpack_from("<I", self.data, section.offset + address - section.address)[0]

    def target(self, address):
        """What the distance stored at an address leads to, counted from the address itself."""
        return (address + self.word(address)) & 0xFFFFFFFF

    def address(self, name):
        """Of a symbol that the library defines."""
        (value,) = {one[4] for one in self.symbols if one[0] == name and one[2] != 0}
        return value

    def _table(self, option, title, pattern):
        """The rows of one of objdump's tables, each of which must match; none where it is empty."""
        rows = []
        for line in tool("llvm-objdump", "--macho", option, self.path).splitlines()[1:]:
            if line and line != title and not line.startswith("segment  "):
                row = re.fullmatch(pattern, line)
                assert row, line
                rows.append(row.groups())
        return rows

    def exports(self):
        """Address by name."""
        rows = self._table("--exports-trie", "Exports trie:", r"0x([0-9A-F]+)  (\S+)")
        assert len({name for _, name in rows}) == len(rows), rows
        return {name: int(address, 16) for address, name in rows}

    def rebases(self):
        """Addresses of the words that move with the library."""
        rows = self._table("--rebase", "Rebase table:", r"(\S+) +(\S+) +0x([0-9A-F]+)  pointer")
        return [int(row[2], 16) for row in rows]

    def binds(self):
        """(address, addend, library's short name, symbol) of each word bound to an import."""
        return self._binds

    @functools.cached_property
    def _binds(self):
        rows = self._table(
            "--bind", "Bind table:", r"\S+ +\S+ +0x([0-9A-F]+) pointer +(-?\d+) (\S+) +(\S+)"
        )
        return [(int(address, 16), int(addend), *rest) for address, addend, *rest in rows]

    def weak_binds(self):
        """(address, addend, symbol) of each word bound to a weak import."""
        rows = self._table(
            "--weak-bind", "Weak bind table:", r"\S+ +\S+ +0x([0-9A-F]+) pointer +(-?\d+) +(\S+)"
        )
        return [(int(address, 16), int(addend), name) for address, addend, name in rows]

    def libraries(self):
        """Install names of the libraries it asks for, in order."""
        return [data[24:].rstrip(b"\0").decode() for command, data in self.commands if command == 12]

    def import_called(self, call):
        """The import that a call instruction at an address reaches through its stub."""
        stub = self.target(call + 1) + 4
        stubs = self.section("__TEXT", "__symbol_stub")
        assert self.data[call] == 0xE8 and stubs.holds(stub, 12), hex(stub)
        code = self.content(stubs)[stub - stubs.address :][:12]
        assert code[:8] == b"\xe8\0\0\0\0\x58\xff\xa0", code
        pointer = (stub + 5 + struct.unpack_from("<I", code, 8)[0]) & 0xFFFFFFFF
        (name,) = (bind[3] for bind in self._binds if bind[0] == pointer)
        return name

    def caught_types(self):
        """The types' information that the tables of handlers lead to, through its pointers: names by the
        address of the word that leads there."""
        tables = self.section("__TEXT", "__gcc_except_tab")
        types = {bind[0]: bind[3] for bind in self._binds if bind[3].startswith("__ZTI")}
        words = range(tables.address, tables.address + tables.size - 3, 4)
        return {at: types[self.target(at)] for at in words if self.target(at) in types}
