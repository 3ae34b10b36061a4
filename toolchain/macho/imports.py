"""The table of what the library may import, and from where."""

import dataclasses

from .format import LinkError


@dataclasses.dataclass(frozen=True)
class Import:
    name: str
    library: str  # install name
    weak: bool  # any image of the process may define it anew


def read_imports(text):
    """The table's libraries, in order, and its imports by name. A line that begins at the margin names
    a library; indented lines name its symbols, one each, with the word `weak` behind a weak one."""
    libraries, imports = [], {}
    for number, line in enumerate(text.splitlines(), 1):
        line = line.split("#")[0].rstrip()
        words = line.split()
        if not words:
            continue
        if not line[0].isspace():
            if len(words) != 1 or words[0] in libraries:
                raise LinkError(f"imports, line {number}: a library that is named twice or badly")
            libraries.append(words[0])
            continue
        if not libraries or words[1:] not in ([], ["weak"]) or words[0] in imports:
            raise LinkError(f"imports, line {number}: a symbol that is named twice or badly")
        imports[words[0]] = Import(words[0], libraries[-1], len(words) > 1)
    return libraries, imports
