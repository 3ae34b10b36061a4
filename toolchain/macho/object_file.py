"""Reads a relocatable object as clang writes it for 32-bit Intel. What is not understood is refused."""

import bisect
import dataclasses
import struct

from . import format as f
from .format import LinkError

KEPT_TYPES = {
    f.REGULAR, f.ZEROFILL, f.CSTRINGS, f.LITERALS_4, f.LITERALS_8, f.LITERALS_16,
    f.NON_LAZY_POINTERS, f.INITIALISERS, f.COALESCED,
}  # fmt: skip


@dataclasses.dataclass
class Relocation:
    """One relocation. `value` is an address when scattered, else the number of a symbol (external)
    or of a section, from 1. `minus` is the address that a difference takes away."""

    offset: int
    kind: int
    pcrel: bool
    length: int
    scattered: bool
    external: bool
    value: int
    minus: int | None = None


@dataclasses.dataclass
class Section:
    segment: str
    name: str
    address: int
    size: int
    align: int  # bytes
    flags: int
    first_indirect: int
    data: bytes
    relocations: list

    @property
    def type(self):
        return self.flags & f.TYPE_MASK

    @property
    def dropped(self):
        """Debugging and compact unwinding information has no place in the library."""
        return bool(self.flags & f.ATTRIBUTE_DEBUG) or self.segment in ("__LD", "__DWARF")

    @property
    def full_name(self):
        return f"{self.segment},{self.name}"


@dataclasses.dataclass
class Symbol:
    name: str
    section: Section | None  # None: undefined
    value: int
    external: bool
    weak: bool


def _text(raw):
    return raw.split(b"\0", 1)[0].decode()


class ObjectFile:
    """`name` is used in messages only. Nothing of it gets into the library."""

    def __init__(self, name, data):
        self.name = name
        self.data = data
        self.sections, self.symbols, self.indirect = [], [], []
        try:
            self._read()
        except (struct.error, IndexError, UnicodeDecodeError) as error:
            raise LinkError(f"{name}: the file is cut off or garbled ({error})") from error
        self._index_owners()

    def _read(self):
        magic, cpu, _, kind, commands, _, self.flags = struct.unpack_from("<7I", self.data, 0)
        if (magic, cpu, kind) != (f.MAGIC, f.CPU_I386, f.OBJECT):
            raise LinkError(f"{self.name}: not an object for 32-bit Intel macOS")
        symbols = dynamic = None
        offset = 28
        for _ in range(commands):
            command, size = struct.unpack_from("<2I", self.data, offset)
            if command == f.LC_SEGMENT:
                self._read_sections(offset)
            elif command == f.LC_SYMTAB:
                symbols = struct.unpack_from("<4I", self.data, offset + 8)
            elif command == f.LC_DYSYMTAB:
                dynamic = struct.unpack_from("<2I", self.data, offset + 56)
            offset += size
        if symbols:
            self._read_symbols(*symbols)
        if dynamic:
            self.indirect = struct.unpack_from(f"<{dynamic[1]}I", self.data, dynamic[0])

    def _read_sections(self, offset):
        (count,) = struct.unpack_from("<I", self.data, offset + 48)
        for index in range(count):
            name, segment, address, size, place, align, relocations, number, flags, first = (
                struct.unpack_from("<16s16s8I", self.data, offset + 56 + 68 * index)
            )
            section = Section(
                _text(segment), _text(name), address, size, 1 << align, flags, first, b"", []
            )
            if not section.dropped:
                if section.type not in KEPT_TYPES:
                    raise LinkError(
                        f"{self.name}: {section.full_name} is of the unknown type {section.type}"
                    )
                if section.type != f.ZEROFILL:
                    section.data = self.data[place : place + size]
                    if len(section.data) != size:
                        raise LinkError(f"{self.name}: {section.full_name} is cut off")
                section.relocations = self._read_relocations(section, relocations, number)
            self.sections.append(section)

    def _read_relocations(self, section, offset, count):
        result = []
        for index in range(count):
            first, second = struct.unpack_from("<2I", self.data, offset + 8 * index)
            if first & f.SCATTERED:
                one = Relocation(
                    first & 0xFFFFFF, first >> 24 & 15, bool(first >> 30 & 1), first >> 28 & 3,
                    True, False, second,
                )  # fmt: skip
            else:
                one = Relocation(
                    first, second >> 28, bool(second >> 24 & 1), second >> 25 & 3,
                    False, bool(second >> 27 & 1), second & 0xFFFFFF,
                )  # fmt: skip
            if one.kind == f.PAIR:
                if not result or result[-1].minus is not None or not one.scattered:
                    raise LinkError(f"{self.place(section, one.offset)}: PAIR without a difference")
                result[-1].minus = one.value
                continue
            result.append(one)
        for one in result:
            self._check(section, one)
        return result

    def _check(self, section, one):
        place = self.place(section, one.offset)
        if one.kind not in (f.VANILLA, f.SECTDIFF, f.LOCAL_SECTDIFF):
            name = f.RELOCATION_NAMES[one.kind] if one.kind < 6 else one.kind
            raise LinkError(f"{place}: relocation of the unknown kind {name}")
        if one.length != 2:
            raise LinkError(f"{place}: relocation of {1 << one.length} bytes, not 4")
        if one.offset + 4 > section.size or section.type == f.ZEROFILL:
            raise LinkError(f"{place}: relocation outside its section")
        difference = one.kind != f.VANILLA
        if difference != (one.minus is not None) or (difference and one.pcrel):
            raise LinkError(f"{place}: a difference and its PAIR do not belong together")

    def _read_symbols(self, offset, count, strings, length):
        names = self.data[strings : strings + length]
        for index in range(count):
            start, kind, section, description, value = struct.unpack_from(
                "<IBBHI", self.data, offset + 12 * index
            )
            if kind & f.N_STAB:
                self.symbols.append(None)
                continue
            name = _text(names[start:])
            where = kind & f.N_TYPE
            if where == f.N_SECTION:
                home = self.section(section)
            elif where == f.N_UNDEFINED and value == 0:
                home = None
                if description & f.N_WEAK_REFERENCE:
                    raise LinkError(f"{self.name}: {name} may be absent at run time")
            else:
                raise LinkError(f"{self.name}: {name} is a common, absolute or indirect symbol")
            weak = home is not None and bool(description & f.N_WEAK_DEFINITION)
            if weak and not self.flags & f.SUBSECTIONS_VIA_SYMBOLS:
                raise LinkError(f"{self.name}: {name} is weak in sections that are not divisible")
            self.symbols.append(Symbol(name, home, value, bool(kind & f.N_EXTERNAL), weak))

    def _index_owners(self):
        """For each section the addresses that symbols begin at, and the symbols at each."""
        self._owners = {}
        for symbol in self.symbols:
            if symbol and symbol.section is not None:
                at = self._owners.setdefault(id(symbol.section), {})
                at.setdefault(symbol.value, []).append(symbol)
        self._starts = {key: sorted(at) for key, at in self._owners.items()}

    def section(self, number):
        """The section of a number as symbols and relocations count, from 1."""
        if not 1 <= number <= len(self.sections):
            raise LinkError(f"{self.name}: there is no section {number}")
        return self.sections[number - 1]

    def section_at(self, address):
        """The section that holds an address, or else the one that ends there."""
        for last in (0, 1):
            for section in self.sections:
                if section.address <= address < section.address + section.size + last:
                    return section
        raise LinkError(f"{self.name}: no section holds the address {address:#x}")

    def owner(self, section, address):
        """The symbols that begin what lies at an address of a section; none before the first."""
        starts = self._starts.get(id(section), [])
        index = bisect.bisect_right(starts, address)
        return self._owners[id(section)][starts[index - 1]] if index else []

    def place(self, section, offset):
        """A place, for messages."""
        return f"{self.name}: {section.full_name}+{offset:#x}"
