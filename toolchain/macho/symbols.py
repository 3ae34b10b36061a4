"""Which definition each name means, and what the objects need beside their own sections: pointers,
stubs and imports."""

from . import format as f
from .format import LinkError


class Definitions:
    """The one definition of each external name. Of several weak ones the first object's counts, unless
    another is not weak; the rest stay where they are, unused."""

    def __init__(self, objects):
        self.chosen = {}  # name: (object, symbol)
        for obj in objects:
            for symbol in obj.symbols:
                if symbol and symbol.external and symbol.section is not None:
                    self._add(obj, symbol)

    def _add(self, obj, symbol):
        if symbol.section.dropped:
            raise LinkError(f"{obj.name}: {symbol.name} lies in {symbol.section.full_name}")
        other, known = self.chosen.get(symbol.name, (None, None))
        if known is None or (known.weak and not symbol.weak):
            self.chosen[symbol.name] = (obj, symbol)
        elif not known.weak and not symbol.weak:
            raise LinkError(f"{symbol.name} is defined in {other.name} and in {obj.name}")

    def instead(self, obj, section, address):
        """The definition (object, symbol) that counts, and the offset in it, for a place in the section
        of an object that belongs to an unused weak definition; else nothing."""
        owners = obj.owner(section, address)
        if not owners or not all(one.weak for one in owners):
            return None
        name = min(one.name for one in owners)
        chosen = self.chosen[name]
        return None if chosen[0] is obj else (*chosen, address - owners[0].value)


class Needs:
    """What the objects refer to. Pointers and stubs are numbered in the order of their first use.

    pointers  number of each word that holds an address, by what it points to: a name, or (object's
              number, address) for what has no external name
    stubs     number of the jump to each import that is called
    imports   the imports, by name"""

    def __init__(self, objects, definitions, allowed):
        self.pointers, self.stubs, self.imports = {}, {}, {}
        self._definitions, self._allowed, self._unknown = definitions, allowed, set()
        for number, obj in enumerate(objects):
            for section in obj.sections:
                if section.dropped:
                    continue
                if section.type == f.NON_LAZY_POINTERS:
                    self._collect_pointers(number, obj, section)
                else:
                    self._collect_references(obj, section)
        if self._unknown:
            names = ", ".join(sorted(self._unknown))
            raise LinkError(f"defined nowhere, and not in the table of imports: {names}")

    def _name(self, name):
        if name in self._definitions.chosen:
            return False
        if name in self._allowed:
            self.imports[name] = self._allowed[name]
        else:
            self._unknown.add(name)
        return True

    def _collect_pointers(self, number, obj, section):
        if section.size % 4:
            raise LinkError(f"{obj.name}: {section.full_name} holds no whole number of pointers")
        for index in range(section.size // 4):
            key = pointer_key(number, obj, section, index)
            self.pointers.setdefault(key, len(self.pointers))
            if isinstance(key, str):
                self._name(key)

    def _collect_references(self, obj, section):
        for one in section.relocations:
            if not one.external:
                continue
            name = symbol_of(obj, section, one).name
            if self._name(name) and one.pcrel:
                self.stubs.setdefault(name, len(self.stubs))
                self.pointers.setdefault(name, len(self.pointers))


def symbol_of(obj, section, relocation):
    """The symbol that an external relocation names."""
    if relocation.value >= len(obj.symbols) or obj.symbols[relocation.value] is None:
        raise LinkError(f"{obj.place(section, relocation.offset)}: relocation without a symbol")
    symbol = obj.symbols[relocation.value]
    if not symbol.external:
        raise LinkError(f"{obj.place(section, relocation.offset)}: {symbol.name} is not external")
    return symbol


def pointer_key(number, obj, section, index):
    """What the word of that index in a section of pointers points to: see Needs.pointers."""
    at = section.first_indirect + index
    entry = obj.indirect[at] if at < len(obj.indirect) else f.INDIRECT_ABSOLUTE
    if entry & f.INDIRECT_ABSOLUTE:
        raise LinkError(f"{obj.place(section, 4 * index)}: pointer to nothing known")
    if entry & f.INDIRECT_LOCAL:
        return number, f.read_word(section.data, 4 * index)
    symbol = obj.symbols[entry] if entry < len(obj.symbols) else None
    if symbol is None:
        raise LinkError(f"{obj.place(section, 4 * index)}: pointer to nothing known")
    return symbol.name if symbol.external else (number, symbol.value)
