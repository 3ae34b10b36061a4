"""Reads the page of picturehost gallery."""

import base64
import html.parser

from png import parse_png

VOID = {"meta", "link", "img", "br", "path", "hr"}


class Tile:
    """A figure: its pictures, plots and captions."""

    def __init__(self, section):
        self.section = section  # the id of the heading above it
        self.classes = ""
        self.images = []  # attributes of each img
        self.plots = []  # of each plot: what its paths draw, by their classes
        self.title = self.call = self.hash = self.refusal = ""
        self.facts = []


class Page(html.parser.HTMLParser):
    """Everything of the page that tests ask about. Elements must be closed in order."""

    def __init__(self, text):
        super().__init__()
        self.tiles, self.elements, self.sections, self.links = [], [], [], []
        self.headings, self.style = [], ""
        self.open, self.tile = [], None
        self.feed(text)
        self.close()
        assert not self.open, self.open

    def handle_starttag(self, name, attributes):
        attributes = dict(attributes)
        self.elements.append((name, attributes))
        if name in ("h1", "h2", "h3"):
            self.headings.append((name, attributes.get("id")))
            self.sections.append(attributes.get("id"))
        elif name == "a":
            self.links.append(attributes["href"])
        elif name == "figure":
            self.tile = Tile(self.sections[-1])
            self.tile.classes = attributes.get("class", "")
            self.tiles.append(self.tile)
        elif self.tile and name == "img":
            self.tile.images.append(attributes)
        elif self.tile and name == "svg" and "class" in attributes:
            self.tile.plots.append({})
        elif self.tile and name == "path":
            self.tile.plots[-1][attributes["class"]] = attributes["d"]
        if name not in VOID:
            self.open.append((name, attributes.get("class", "")))

    def handle_startendtag(self, name, attributes):
        self.handle_starttag(name, attributes)

    def handle_endtag(self, name):
        assert self.open and self.open[-1][0] == name, (name, self.open)
        self.open.pop()
        if name == "figure":
            self.tile = None

    def handle_data(self, data):
        name, kind = self.open[-1] if self.open else ("", "")
        if name == "style":
            self.style += data
        if self.tile is None:
            return
        if name == "strong":
            self.tile.title += data
        elif kind in ("call", "hash"):
            setattr(self.tile, kind, getattr(self.tile, kind) + data)
        elif kind == "fact":
            self.tile.facts.append(data)
        elif name == "p":
            self.tile.refusal += data

    def in_section(self, ending):
        return [tile for tile in self.tiles if tile.section.endswith(ending)]


def pixels_of(image):
    """The rows of an img's picture."""
    prefix = "data:image/png;base64,"
    assert image["src"].startswith(prefix), image["src"][:60]
    return parse_png(base64.b64decode(image["src"][len(prefix):], validate=True))


def fnv1a(rows):
    """The name of a picture as the page gives it."""
    value = 0xCBF29CE484222325
    data = len(rows[0]).to_bytes(4, "little") + len(rows).to_bytes(4, "little")
    for row in rows:
        for pixel in row:
            data += bytes(pixel if len(pixel) == 4 else (*pixel, 255))
    for byte in data:
        value = (value ^ byte) * 0x100000001B3 % 2**64
    return f"{value:016x}"
