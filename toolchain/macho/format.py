"""Numbers of the Mach-O file format on 32-bit Intel, and how its words are packed."""

import struct

MAGIC = 0xFEEDFACE
CPU_I386, CPU_SUBTYPE_ALL = 7, 3
OBJECT, DYLIB = 1, 6
PAGE = 4096

# Header flags.
NO_UNDEFINED, DYLD_LINK, TWO_LEVEL = 0x1, 0x4, 0x80
SUBSECTIONS_VIA_SYMBOLS = 0x2000
BINDS_TO_WEAK, NO_REEXPORTED_DYLIBS = 0x10000, 0x100000

# Load commands.
LC_SEGMENT, LC_SYMTAB, LC_DYSYMTAB = 0x1, 0x2, 0xB
LC_LOAD_DYLIB, LC_ID_DYLIB, LC_UUID = 0xC, 0xD, 0x1B
LC_VERSION_MIN_MACOSX, LC_DYLD_INFO_ONLY = 0x24, 0x80000022

# Section types, and the attributes beside them in the same word.
REGULAR, ZEROFILL, CSTRINGS = 0x0, 0x1, 0x2
LITERALS_4, LITERALS_8, LITERALS_16 = 0x3, 0x4, 0xE
NON_LAZY_POINTERS, SYMBOL_STUBS = 0x6, 0x8
INITIALISERS, COALESCED = 0x9, 0xB
TYPE_MASK = 0xFF
ATTRIBUTE_CODE, ATTRIBUTE_SOME_CODE = 0x80000000, 0x400
ATTRIBUTE_DEBUG = 0x02000000

# Symbols: bits of the type byte and of the description.
N_STAB, N_PRIVATE, N_TYPE, N_EXTERNAL = 0xE0, 0x10, 0x0E, 0x01
N_UNDEFINED, N_ABSOLUTE, N_SECTION = 0x0, 0x2, 0xE
N_WEAK_REFERENCE, N_WEAK_DEFINITION = 0x40, 0x80
INDIRECT_LOCAL, INDIRECT_ABSOLUTE = 0x80000000, 0x40000000

# Relocations.
VANILLA, PAIR, SECTDIFF, PREBOUND_LAZY, LOCAL_SECTDIFF, THREAD_LOCAL = range(6)
RELOCATION_NAMES = ["VANILLA", "PAIR", "SECTDIFF", "PB_LA_PTR", "LOCAL_SECTDIFF", "TLV"]
SCATTERED = 0x80000000

READ, WRITE, EXECUTE = 1, 2, 4


class LinkError(Exception):
    """The input cannot be made into a sound library. The text says where and why."""


def read_word(data, offset):
    return struct.unpack_from("<I", data, offset)[0]


def write_word(data, offset, value):
    struct.pack_into("<I", data, offset, value & 0xFFFFFFFF)


def signed(value):
    """A word as a signed number."""
    value &= 0xFFFFFFFF
    return value - (1 << 32) if value & 0x80000000 else value


def round_up(value, multiple):
    return -(-value // multiple) * multiple


def fixed_name(name):
    """A segment's or section's name in its 16 bytes."""
    raw = name.encode()
    if len(raw) > 16:
        raise LinkError(f"the name {name} is longer than 16 bytes")
    return raw.ljust(16, b"\0")
