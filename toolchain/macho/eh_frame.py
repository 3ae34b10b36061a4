"""Re-aims the unwinding tables. The assembler leaves the distances in them as plain numbers, without
relocations, so each entry is taken apart and its pointers are computed anew."""

from . import format as f
from .format import LinkError

PCREL_WORDS = (0x10, 0x1B)  # relative to the field itself, 4 bytes
INDIRECT, OMITTED = 0x80, 0xFF


def _uleb_end(data, offset):
    while data[offset] & 0x80:
        offset += 1
    return offset + 1


class _Common:
    """A CIE: which pointers its entries hold, and how they are written."""

    def __init__(self, data, start, where):
        offset = start + 8
        if data[offset] != 1:
            raise LinkError(f"{where}: unwinding entry of version {data[offset]}")
        end = data.index(0, offset + 1)
        augmentation = bytes(data[offset + 1 : end]).decode()
        offset = _uleb_end(data, end + 1)  # code alignment
        offset = _uleb_end(data, offset) + 1  # data alignment, return register
        if not augmentation.startswith("z"):
            raise LinkError(f"{where}: unwinding entry of the kind {augmentation!r}")
        offset = _uleb_end(data, offset)
        self.code = self.table = None
        self.pointers = []  # offsets of its own pointers
        for letter in augmentation[1:]:
            if letter == "P":
                self.checked(data[offset] & ~INDIRECT, where)
                self.pointers.append(offset + 1)
                offset += 5
            elif letter == "L":
                self.table = self.checked(data[offset], where)
                offset += 1
            elif letter == "R":
                self.code = self.checked(data[offset], where)
                offset += 1
            elif letter != "S":
                raise LinkError(f"{where}: unwinding entry of the kind {augmentation!r}")
        if self.code is None:
            raise LinkError(f"{where}: unwinding entry without relative code addresses")

    @staticmethod
    def checked(encoding, where):
        if encoding not in PCREL_WORDS:
            raise LinkError(f"{where}: pointers written in the way {encoding:#x}")
        return encoding


def pointer_fields(data, where):
    """Offsets of the fields of one object's __eh_frame that hold a distance from themselves to something
    outside the table, and the table's length without a closing zero."""
    fields, commons, offset = [], {}, 0
    while offset < len(data):
        length = f.read_word(data, offset)
        if length == 0:
            if any(data[offset:]):
                raise LinkError(f"{where}: unwinding entries behind the end of the table")
            break
        if length == 0xFFFFFFFF or offset + 4 + length > len(data):
            raise LinkError(f"{where}: unwinding entry of {length} bytes")
        back = f.read_word(data, offset + 4)
        if back == 0:
            commons[offset] = _Common(data, offset, where)
            fields += commons[offset].pointers
        else:
            common = commons.get(offset + 4 - back)
            if common is None:
                raise LinkError(f"{where}: unwinding entry that belongs to no other")
            fields.append(offset + 8)
            if common.table is not None:
                field = _uleb_end(data, offset + 16)
                if f.read_word(data, field) != 0:  # 0: no table for this function
                    fields.append(field)
        offset += 4 + length
    return fields, offset


def re_aim(data, obj, section, out_address, map_address):
    """Rewrites `data`, the entries of `section`, for their new place. `map_address` gives the address in
    the library for one of the object."""
    where = obj.place(section, 0)
    fields, _ = pointer_fields(section.data, where)
    for one in section.relocations:
        if one.offset not in fields or one.kind == f.VANILLA:
            raise LinkError(f"{obj.place(section, one.offset)}: relocation of no known pointer")
    for field in fields:
        target = section.address + field + f.signed(f.read_word(section.data, field))
        f.write_word(data, field, map_address(target) - (out_address + field))
