"""The records at the head of the library's file."""

import struct

from . import format as f

VERSION_1 = 0x10000  # 1.0.0, which no library of the system is older than
MACOS_10_6 = 0x0A0600
ANY_ACCESS = f.READ | f.WRITE | f.EXECUTE  # what a debugger may ask for later


def header(commands, flags):
    joined = b"".join(commands)
    return struct.pack(
        "<7I", f.MAGIC, f.CPU_I386, f.CPU_SUBTYPE_ALL, f.DYLIB, len(commands), len(joined), flags
    ) + joined  # fmt: skip


def dylib(command, name, timestamp):
    text = name.encode() + b"\0"
    text += bytes(-len(text) % 4)
    return struct.pack("<6I", command, 24 + len(text), 24, timestamp, VERSION_1, VERSION_1) + text


def segment(one):
    """A segment and its sections, which lie in the file as they lie in memory."""
    records = b"".join(map(_section, one.sections))
    return struct.pack(
        "<2I16s8I", f.LC_SEGMENT, 56 + len(records), f.fixed_name(one.name), one.address,
        one.memory, one.address, one.file, ANY_ACCESS, one.protection, len(one.sections), 0,
    ) + records  # fmt: skip


def _section(one):
    return struct.pack(
        "<16s16s9I", f.fixed_name(one.name), f.fixed_name(one.segment), one.address, one.size,
        0 if one.zerofill else one.address, one.align.bit_length() - 1, 0, 0, one.flags,
        one.first_indirect, one.entry_bytes,
    )  # fmt: skip


def link_edit(address, at, size):
    return struct.pack(
        "<2I16s8I", f.LC_SEGMENT, 56, f.fixed_name("__LINKEDIT"), address,
        f.round_up(size, f.PAGE), at, size, ANY_ACCESS, f.READ, 0, 0,
    )  # fmt: skip


def dyld_info(rebase, bind, weak_bind, exports):
    """Each as (place in the file, size)."""
    return struct.pack(
        "<12I", f.LC_DYLD_INFO_ONLY, 48, *rebase, *bind, *weak_bind, 0, 0, *exports
    )


def symbols(at, count, strings):
    return struct.pack("<6I", f.LC_SYMTAB, 24, at, count, *strings)


def dynamic_symbols(local, exported, imported, indirect):
    """Counts of symbols, which lie in this order; `indirect` as (place, size)."""
    return struct.pack(
        "<20I", f.LC_DYSYMTAB, 80, 0, local, local, exported, local + exported, imported,
        0, 0, 0, 0, 0, 0, indirect[0], indirect[1] // 4, 0, 0, 0, 0,
    )  # fmt: skip


def uuid(raw):
    return struct.pack("<2I16s", f.LC_UUID, 24, raw)


def oldest_system():
    return struct.pack("<4I", f.LC_VERSION_MIN_MACOSX, 16, MACOS_10_6, MACOS_10_6)
