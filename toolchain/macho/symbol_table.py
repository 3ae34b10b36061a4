"""The library's table of symbols: functions inside, exports, imports; and which of them each stub and
pointer stands for."""

import struct

from . import format as f


class SymbolTable:
    """`records` is the table, `strings` its names, `indirect` the numbers for stubs and pointers, and
    `counts` how many symbols of each of the three sorts there are."""

    def __init__(self, definitions, needs, layout, exports, ordinals):
        """`exports`: names to be seen by others. `ordinals`: number of each imported library."""
        self._definitions, self._exports = definitions, exports
        self._sections = [section for segment in layout.segments for section in segment.sections]
        inside = self._inside(layout)
        exported = [self._exported(name, layout) for name in exports]
        imported = [
            (name, f.N_UNDEFINED | f.N_EXTERNAL, 0, ordinals[needs.imports[name].library] << 8, 0)
            for name in sorted(needs.imports)
        ]
        self.counts = len(inside), len(exported), len(imported)
        entries = inside + exported + imported
        self.records, self.strings = self._encoded(entries)
        numbers = {
            entry[0]: number for number, entry in enumerate(entries) if entry[1] & f.N_EXTERNAL
        }
        indirect = [numbers[name] for name in needs.stubs]
        for key in needs.pointers:
            imports = isinstance(key, str) and key in needs.imports
            indirect.append(numbers[key] if imports else f.INDIRECT_LOCAL)
        self.indirect = struct.pack(f"<{len(indirect)}I", *indirect)

    @staticmethod
    def _encoded(entries):
        strings, records = bytearray(b" \0"), bytearray()
        for name, *rest in entries:
            records += struct.pack("<IBBHI", len(strings), *rest)
            strings += name.encode() + b"\0"
        return bytes(records), bytes(strings) + bytes(-len(strings) % 4)

    def _exported(self, name, layout):
        _, symbol = self._definitions.chosen[name]
        address = layout.address_in(symbol.section, symbol.value)
        (number,) = (
            number
            for number, output in enumerate(self._sections, 1)
            if any(section is symbol.section for _, section, _ in output.chunks)
        )
        return name, f.N_SECTION | f.N_EXTERNAL, number, 0, address

    def _inside(self, layout):
        """The functions, so that crash reports name them."""
        found = set()
        for number, output in enumerate(self._sections, 1):
            if not output.flags & f.ATTRIBUTE_CODE:
                continue
            for obj, section, _ in output.chunks:
                for symbol in obj.symbols:
                    if symbol and symbol.section is section and self._is_worth_naming(obj, symbol):
                        address = layout.address_in(section, symbol.value)
                        found.add((address, symbol.name, number))
        return [(name, f.N_SECTION, number, 0, address) for address, name, number in sorted(found)]

    def _is_worth_naming(self, obj, symbol):
        if not symbol.external:
            return symbol.name.startswith("_")
        return self._definitions.chosen[symbol.name][0] is obj and symbol.name not in self._exports
