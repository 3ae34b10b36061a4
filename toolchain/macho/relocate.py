"""Fills in addresses: the objects' relocations, the stubs, the pointers and the unwinding tables."""

from . import format as f
from .dyld_info import Binding
from .eh_frame import re_aim
from .format import LinkError
from .symbols import pointer_key, symbol_of


class Relocator:
    """`rebases` (segment, offset) and `bindings` collect what the system's loader has left to do."""

    def __init__(self, objects, definitions, needs, layout, ordinals):
        self._objects, self._definitions = objects, definitions
        self._needs, self._layout, self._ordinals = needs, layout, ordinals
        self.rebases, self.bindings = [], []

    def run(self):
        numbers = {id(obj): number for number, obj in enumerate(self._objects)}
        for output in self._layout.sections:
            for obj, section, offset in output.chunks:
                number = numbers[id(obj)]
                if output.name == "__eh_frame":
                    self._re_aim(number, obj, section, output, offset)
                    continue
                for one in section.relocations:
                    self._relocate(number, obj, section, one, output, offset + one.offset)
        self._fill_stubs()
        self._fill_pointers()

    def symbol_address(self, name):
        """Of a name that the library defines."""
        _, symbol = self._definitions.chosen[name]
        return self._layout.address_in(symbol.section, symbol.value)

    def _pointer_address(self, key):
        return self._layout.pointers.address + 4 * self._needs.pointers[key]

    def _address(self, number, obj, address, base, section=None, follow=True):
        """The address in the library of an object's address. `base` is an address in the thing meant,
        as `address` may lie beyond it, and `section` its section where that is known; with `follow` a
        weak thing is replaced by the one that counts."""
        section = section or obj.section_at(base)
        if section.dropped:
            raise LinkError(f"{obj.name}: reference to {section.full_name}")
        if section.type == f.NON_LAZY_POINTERS:
            index, rest = divmod(base - section.address, 4)
            if rest or index >= section.size // 4:
                raise LinkError(f"{obj.name}: reference into a pointer")
            key = pointer_key(number, obj, section, index)
            return self._pointer_address(key) + address - base
        instead = self._definitions.instead(obj, section, base) if follow else None
        if instead:
            _, symbol, offset = instead
            section, base, address = symbol.section, symbol.value, address - base + offset
            return self._layout.address_in(section, base) + address
        return self._layout.address_in(section, address)

    def _relocate(self, number, obj, section, one, output, offset):
        place = output.address + offset
        value = f.read_word(section.data, one.offset)
        from_here = section.address + one.offset + 4  # pc-relative numbers count from here
        if one.kind != f.VANILLA:
            distance = f.signed(value - (one.value - one.minus))
            end = self._address(number, obj, one.value, one.value)
            start = self._address(number, obj, one.minus, one.minus, follow=False)
            f.write_word(output.data, offset, end - start + distance)
            return
        if not one.pcrel and output.segment == "__TEXT":
            raise LinkError(f"{obj.place(section, one.offset)}: an address in read-only code or data")
        addend = f.signed(value + (from_here if one.pcrel else 0))
        if not one.external:
            target = addend & 0xFFFFFFFF
            if one.scattered:
                target = self._address(number, obj, target, one.value)
            else:
                home = self._home(obj, section, one, target)
                target = self._address(number, obj, target, target, home)
        else:
            name = symbol_of(obj, section, one).name
            if name in self._definitions.chosen:
                target = self.symbol_address(name) + addend
            elif one.pcrel:
                if addend:
                    raise LinkError(f"{obj.place(section, one.offset)}: call into an import")
                target = self._layout.stubs.address + 12 * self._needs.stubs[name]
            else:
                self._bind(output, offset, name, addend)
                return
        f.write_word(output.data, offset, target - (place + 4) if one.pcrel else target)
        if not one.pcrel:
            self._rebase(output, offset)

    @staticmethod
    def _home(obj, section, one, target):
        """The section that a relocation says its target lies in, or ends."""
        home = obj.section(one.value)
        if not home.address <= target <= home.address + home.size:
            raise LinkError(f"{obj.place(section, one.offset)}: reference outside its section")
        return home

    def _re_aim(self, number, obj, section, output, offset):
        data = memoryview(output.data)[offset : offset + section.size]
        re_aim(data, obj, section, output.address + offset,
               lambda address: self._address(number, obj, address, address, follow=False))  # fmt: skip

    def _fill_stubs(self):
        """call next; next: pop eax; jmp [eax + distance to the pointer]. No address in it, and only a
        register that no call passes anything in."""
        stubs = self._layout.stubs
        for name, number in self._needs.stubs.items():
            at = 12 * number
            distance = self._pointer_address(name) - (stubs.address + at + 5)
            stubs.data[at : at + 8] = b"\xe8\0\0\0\0\x58\xff\xa0"
            f.write_word(stubs.data, at + 8, distance)

    def _fill_pointers(self):
        pointers = self._layout.pointers
        for key, index in self._needs.pointers.items():
            if isinstance(key, str) and key not in self._definitions.chosen:
                self._bind(pointers, 4 * index, key, 0)
                continue
            if isinstance(key, str):
                target = self.symbol_address(key)
            else:
                number, address = key
                target = self._address(number, self._objects[number], address, address)
            f.write_word(pointers.data, 4 * index, target)
            self._rebase(pointers, 4 * index)

    def _where(self, output, offset):
        index = [one.name for one in self._layout.segments].index(output.segment)
        return index, output.address + offset - self._layout.segments[index].address

    def _rebase(self, output, offset):
        self.rebases.append(self._where(output, offset))

    def _bind(self, output, offset, name, addend):
        one = self._needs.imports[name]
        f.write_word(output.data, offset, 0)
        self.bindings.append(
            Binding(*self._where(output, offset), name, addend, self._ordinals[one.library], one.weak)
        )
