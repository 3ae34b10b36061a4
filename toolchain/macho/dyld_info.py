"""What the system's loader reads: which words move with the library, which are bound to imports, and
the trie of exports."""

import dataclasses

POINTER = 1
REBASE_TYPE, REBASE_AT, REBASE_TIMES, REBASE_DONE = 0x10, 0x20, 0x50, 0x00
BIND_DONE, BIND_ORDINAL, BIND_ORDINAL_LONG = 0x00, 0x10, 0x20
BIND_SYMBOL, BIND_TYPE, BIND_ADDEND, BIND_AT, BIND_ONE = 0x40, 0x50, 0x60, 0x70, 0x90


@dataclasses.dataclass(frozen=True, order=True)
class Binding:
    """A word of a segment that gets an import's address plus an addend."""

    segment: int  # index of the segment
    offset: int  # bytes from the segment's start
    name: str
    addend: int
    ordinal: int  # number of the library among the load commands, from 1
    weak: bool


def uleb(value):
    out = bytearray()
    while True:
        byte, value = value & 0x7F, value >> 7
        out.append(byte | (0x80 if value else 0))
        if not value:
            return bytes(out)


def sleb(value):
    out = bytearray()
    while True:
        byte, value = value & 0x7F, value >> 7
        done = value == (-1 if byte & 0x40 else 0)
        out.append(byte | (0 if done else 0x80))
        if done:
            return bytes(out)


def _aligned(data):
    return bytes(data) + bytes(-len(data) % 4)


def rebase_opcodes(words):
    """`words`: (segment, offset) of each word that moves with the library."""
    if not words:
        return b""
    out = bytearray([REBASE_TYPE | POINTER])
    runs = []  # segment, offset, number of words one behind the other
    for segment, offset in sorted(words):
        if runs and runs[-1][0] == segment and runs[-1][1] + 4 * runs[-1][2] == offset:
            runs[-1][2] += 1
        else:
            runs.append([segment, offset, 1])
    for segment, offset, count in runs:
        out += bytes([REBASE_AT | segment]) + uleb(offset)
        # Up to 15 in the opcode itself.
        out += bytes([REBASE_TIMES | count]) if count < 16 else bytes([0x60]) + uleb(count)
    out.append(REBASE_DONE)
    return _aligned(out)


def _bind_opcodes(bindings, with_ordinal):
    if not bindings:
        return b""
    out = bytearray()
    for one in bindings:
        if with_ordinal:
            short = one.ordinal < 16
            out += bytes([BIND_ORDINAL | one.ordinal]) if short else b""
            out += b"" if short else bytes([BIND_ORDINAL_LONG]) + uleb(one.ordinal)
        out += bytes([BIND_SYMBOL]) + one.name.encode() + b"\0"
        out += bytes([BIND_TYPE | POINTER, BIND_ADDEND]) + sleb(one.addend)
        out += bytes([BIND_AT | one.segment]) + uleb(one.offset) + bytes([BIND_ONE])
    out.append(BIND_DONE)
    return _aligned(out)


def bind_opcodes(bindings):
    """Bindings to the libraries of the load commands, in the order of their places."""
    return _bind_opcodes(sorted(bindings), True)


def weak_bind_opcodes(bindings):
    """The weak ones once more, by name, so that all images of a process agree on one definition."""
    weak = [one for one in bindings if one.weak]
    return _bind_opcodes(sorted(weak, key=lambda one: (one.name, one)), False)


def _common_prefix(names):
    first, last = min(names), max(names)
    length = 0
    while length < min(len(first), len(last)) and first[length] == last[length]:
        length += 1
    return first[:length]


class _Node:
    """A node of the trie: the export that ends here, if any, and (label, node) for each way on."""

    def __init__(self, exports):
        address = exports.pop("", None)
        self.payload = b"" if address is None else b"\0" + uleb(address)
        self.ways = []
        for letter in sorted({name[0] for name in exports}):
            group = {name: at for name, at in exports.items() if name[0] == letter}
            label = _common_prefix(group)
            rest = _Node({name[len(label) :]: at for name, at in group.items()})
            self.ways.append((label, rest))
        self.offset = 0

    def all(self):
        yield self
        for _, node in self.ways:
            yield from node.all()

    def encoded(self):
        out = uleb(len(self.payload)) + self.payload + bytes([len(self.ways)])
        for label, node in self.ways:
            out += label.encode() + b"\0" + uleb(node.offset)
        return out


def export_trie(exports):
    """`exports`: the address of each exported name, counted from the start of the library."""
    if not exports:
        return b""
    nodes = list(_Node(dict(exports)).all())
    settled = False
    while not settled:  # Offsets take more bytes as they grow, never fewer.
        settled, offset = True, 0
        for node in nodes:
            settled = settled and node.offset == offset
            node.offset = offset
            offset += len(node.encoded())
    return _aligned(b"".join(node.encoded() for node in nodes))
