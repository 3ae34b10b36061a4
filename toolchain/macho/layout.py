"""Where everything goes: the objects' sections joined by name, the stubs and pointers beside them, in
two segments."""

import dataclasses

from . import format as f
from .eh_frame import pointer_fields
from .format import LinkError

STUB_BYTES = 12
# A signature or a longer name can be put into the file later without moving anything.
SPARE_HEADER_BYTES = 256

TEXT_ORDER = ["__text", "__textcoal_nt", "__symbol_stub", "__const", "__cstring", "__literal4",
              "__literal8", "__literal16", "__gcc_except_tab", "__eh_frame"]  # fmt: skip
DATA_ORDER = ["__nl_symbol_ptr", "__mod_init_func", "__const", "__data", "__common", "__bss"]


@dataclasses.dataclass
class OutputSection:
    segment: str
    name: str
    flags: int
    align: int = 1
    size: int = 0
    address: int = 0
    first_indirect: int = 0
    entry_bytes: int = 0
    chunks: list = dataclasses.field(default_factory=list)  # (object, section, offset)
    data: bytearray = dataclasses.field(default_factory=bytearray)

    @property
    def zerofill(self):
        return self.flags & f.TYPE_MASK == f.ZEROFILL

    def append(self, obj, section, size):
        self.align = max(self.align, section.align)
        offset = f.round_up(self.size, section.align)
        self.chunks.append((obj, section, offset))
        self.size = offset + size


@dataclasses.dataclass
class Segment:
    name: str
    protection: int
    sections: list
    address: int = 0
    memory: int = 0  # bytes in memory, whole pages
    file: int = 0  # bytes in the file, whole pages


def _order(section):
    order = TEXT_ORDER if section.segment == "__TEXT" else DATA_ORDER
    known = order.index(section.name) if section.name in order else len(order)
    return section.zerofill, known, section.name


def _common_flags(one, other, where):
    """Sections of one name go together if they are alike; some have code only in some objects."""
    if (one ^ other) & f.TYPE_MASK:
        raise LinkError(f"{where} is of another type than in the objects before")
    return one | other


class Layout:
    """`segments` are __TEXT and __DATA. `stubs` and `pointers` are there even when empty."""

    def __init__(self, objects, needs):
        self._joined = {}
        for obj in objects:
            for section in obj.sections:
                if not section.dropped and section.size:
                    if section.type != f.NON_LAZY_POINTERS:
                        self._join(obj, section)
        code = f.ATTRIBUTE_CODE | f.ATTRIBUTE_SOME_CODE
        self.stubs = OutputSection(
            "__TEXT", "__symbol_stub", f.SYMBOL_STUBS | code, 4, STUB_BYTES * len(needs.stubs),
            entry_bytes=STUB_BYTES,
        )  # fmt: skip
        self.pointers = OutputSection(
            "__DATA", "__nl_symbol_ptr", f.NON_LAZY_POINTERS, 4, 4 * len(needs.pointers),
            first_indirect=len(needs.stubs),
        )  # fmt: skip
        table = self._joined.get(("__TEXT", "__eh_frame"))
        if table:
            table.size += 4  # the closing zero
        sections = [*self._joined.values(), self.stubs, self.pointers]
        self.sections = sorted((one for one in sections if one.size), key=_order)
        self.segments = [
            Segment("__TEXT", f.READ | f.EXECUTE, self._of("__TEXT")),
            Segment("__DATA", f.READ | f.WRITE, self._of("__DATA")),
        ]
        self._places = {
            id(section): (output, offset)
            for output in self.sections
            for _, section, offset in output.chunks
        }

    def _of(self, segment):
        return [one for one in self.sections if one.segment == segment]

    def _join(self, obj, section):
        if section.segment not in ("__TEXT", "__DATA"):
            raise LinkError(f"{obj.name}: no place for the section {section.full_name}")
        if section.segment == "__TEXT" and section.type == f.ZEROFILL:
            raise LinkError(f"{obj.name}: {section.full_name} is writable")
        key = section.segment, section.name
        if key in (("__TEXT", "__symbol_stub"), ("__DATA", "__nl_symbol_ptr")):
            raise LinkError(f"{obj.name}: the section {section.full_name} is the linker's own")
        output = self._joined.setdefault(key, OutputSection(*key, section.flags))
        output.flags = _common_flags(output.flags, section.flags, obj.place(section, 0))
        size = section.size
        if key == ("__TEXT", "__eh_frame"):
            _, size = pointer_fields(section.data, obj.place(section, 0))
            if size % 4 or section.align > 4:  # a gap between two would read as the end
                raise LinkError(f"{obj.name}: {key[1]} leaves gaps")
        output.append(obj, section, size)

    def place(self, header_bytes):
        """Gives everything its address, behind that many bytes of header, and its bytes."""
        address = header_bytes + SPARE_HEADER_BYTES
        for segment in self.segments:
            segment.address = 0 if segment.name == "__TEXT" else f.round_up(address, f.PAGE)
            address = max(address, segment.address)
            end_in_file = address
            for section in segment.sections:
                section.address = address = f.round_up(address, section.align)
                address += section.size
                if not section.zerofill:
                    end_in_file = address
                    section.data = bytearray(section.size)
                    for _, piece, offset in section.chunks:
                        kept = min(piece.size, section.size - offset)
                        section.data[offset : offset + kept] = piece.data[:kept]
            segment.memory = f.round_up(address, f.PAGE) - segment.address
            segment.file = f.round_up(end_in_file, f.PAGE) - segment.address

    def address_in(self, section, address):
        """The address in the library of a place in a section of an object."""
        output, offset = self._places[id(section)]
        return output.address + offset + address - section.address
