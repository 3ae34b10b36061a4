"""Joins objects into a dynamic library and writes its file."""

import hashlib

from . import format as f
from . import load_commands as commands
from .dyld_info import bind_opcodes, export_trie, rebase_opcodes, weak_bind_opcodes
from .format import LinkError
from .layout import Layout
from .relocate import Relocator
from .symbol_table import SymbolTable
from .symbols import Definitions, Needs

# Every process has it, and the system's loader wants it named.
SYSTEM_LIBRARY = "/usr/lib/libSystem.B.dylib"
UNKNOWN_UUID = bytes(16)
LINK_EDIT_PARTS = ["rebase", "bind", "weak bind", "exports", "symbols", "indirect", "strings"]


def _uuid_of(content):
    """An identifier in the form of those that are made from a name."""
    digest = bytearray(hashlib.sha256(content).digest()[:16])
    digest[6] = digest[6] & 0x0F | 0x50
    digest[8] = digest[8] & 0x3F | 0x80
    return bytes(digest)


class Image:
    """The library in the making.

    libraries  install names, in the order of their load commands
    allowed    what may be imported, by name
    exports    the names that others see; all else is hidden"""

    def __init__(self, objects, libraries, allowed, exports, install_name):
        definitions = Definitions(objects)
        missing = sorted(name for name in exports if name not in definitions.chosen)
        if missing:
            raise LinkError(f"to be exported, but defined nowhere: {', '.join(missing)}")
        needs = Needs(objects, definitions, allowed)
        used = {one.library for one in needs.imports.values()} | {SYSTEM_LIBRARY}
        self._libraries = [one for one in libraries if one in used]
        if SYSTEM_LIBRARY not in self._libraries:
            raise LinkError(f"the table of imports lacks {SYSTEM_LIBRARY}")
        ordinals = {one: number for number, one in enumerate(self._libraries, 1)}
        self._install_name = install_name
        self._binds_to_weak = any(one.weak for one in needs.imports.values())

        self._layout = Layout(objects, needs)
        self._places = dict.fromkeys(LINK_EDIT_PARTS, (0, 0))
        self._symbol_counts = 0, 0, 0
        self._link_edit_bytes = 0
        self._layout.place(len(self._header(UNKNOWN_UUID)))
        relocator = Relocator(objects, definitions, needs, self._layout, ordinals)
        relocator.run()
        table = SymbolTable(definitions, needs, self._layout, sorted(exports), ordinals)
        self._symbol_counts = table.counts
        self._link_edit = [
            rebase_opcodes(relocator.rebases),
            bind_opcodes(relocator.bindings),
            weak_bind_opcodes(relocator.bindings),
            export_trie({name: relocator.symbol_address(name) for name in exports}),
            table.records,
            table.indirect,
            table.strings,
        ]

    def bytes(self):
        """The file. The same inputs in the same order give the same bytes."""
        body = bytearray()
        for segment in self._layout.segments:
            body += bytes(segment.address + segment.file - len(body))
            for section in segment.sections:
                if not section.zerofill:
                    body[section.address : section.address + section.size] = section.data
        start = len(body)
        for name, part in zip(LINK_EDIT_PARTS, self._link_edit):
            self._places[name] = (len(body), len(part)) if part else (0, 0)
            body += part
        self._link_edit_bytes = len(body) - start
        unnamed = self._header(UNKNOWN_UUID)
        body[: len(unnamed)] = unnamed
        body[: len(unnamed)] = self._header(_uuid_of(body))
        return bytes(body)

    def _header(self, identifier):
        text, data = self._layout.segments
        place = self._places
        records = [commands.segment(text)]
        if data.sections:
            records.append(commands.segment(data))
        records += [
            commands.link_edit(text.memory + data.memory, text.file + data.file, self._link_edit_bytes),
            commands.dylib(f.LC_ID_DYLIB, self._install_name, 1),
            commands.dyld_info(*(place[name] for name in LINK_EDIT_PARTS[:4])),
            commands.symbols(place["symbols"][0], sum(self._symbol_counts), place["strings"]),
            commands.dynamic_symbols(*self._symbol_counts, place["indirect"]),
            commands.uuid(identifier),
            commands.oldest_system(),
        ]
        records += [commands.dylib(f.LC_LOAD_DYLIB, name, 2) for name in self._libraries]
        flags = f.NO_UNDEFINED | f.DYLD_LINK | f.TWO_LEVEL | f.NO_REEXPORTED_DYLIBS
        return commands.header(records, flags | (f.BINDS_TO_WEAK if self._binds_to_weak else 0))
