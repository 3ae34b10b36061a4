"""The examples of docs/methods.md: that they call what is declared."""

import re

from harness import PicturehostTest, main
from method_documents import DECLARATIONS, METHODS, MINUS, blocks, number, sections, tables


class Examples(PicturehostTest):
    """The calls in the examples against the declarations; of the language, what they use."""

    ALWAYS = {"p": "Picture", "photo": "Picture", "frame": "Picture", "sprite": "Picture",
              "w": "Integer", "h": "Integer", "x": "Double", "y": "Double"}  # fmt: skip
    PROPERTIES = {"width": "integer", "height": "integer"}
    # All that the examples use of the host's own classes: what is not here must be declared.
    MEMBERS = set(
        "Append Child CopyColorChannels CopyMask Count DrawPicture Enabled FillRect ForeColor "
        "Graphics HasAlphaChannel Height Invalidate Item Mask Maximum Mode ModeMultiple ModeOff "
        "Name Open PathTypeNative Rect Run Save SaveAsPNG Value Width".split()
    )
    TAKES = {"integer": ("integer",), "double": ("integer", "double"), "boolean": ("boolean",),
             "picture": ("picture",)}  # fmt: skip

    def kind(self, expression, types):
        """The type of an expression of names, properties, numbers and arithmetic."""
        expression = expression.strip()
        if expression.lower() in ("true", "false"):
            return "boolean"
        kinds = set()
        for operand in re.split(r"[-+*/\\()]", expression):
            operand = operand.strip().lower()
            if re.fullmatch(r"\d+", operand):
                kinds.add("integer")
            elif re.fullmatch(r"\d*\.\d+", operand):
                kinds.add("double")
            elif operand:
                name, *properties = operand.split(".")
                known = types.get(name, "nothing known").lower()
                kinds.add(self.PROPERTIES.get(properties[-1], operand) if properties else known)
        if kinds <= {"integer", "double"}:
            return "double" if "/" in expression or "double" in kinds else "integer"
        return kinds.pop() if len(kinds) == 1 else "a mixture"

    def arguments(self, text):
        """What stands between the parenthesis that `text` begins with and its partner, split at
        commas, and what follows."""
        depth, parts = 0, [""]
        for at, character in enumerate(text):
            depth += {"(": 1, ")": -1}.get(character, 0)
            if depth == 0:
                return parts, text[at + 1 :]
            if character == "," and depth == 1:
                parts.append("")
            elif at > 0:
                parts[-1] += character
        self.fail(f"no end: {text}")

    def ranges(self, name):
        (rows,) = tables(sections()[name], "Argument")
        found = [re.match(rf"({MINUS}?\d+) to (\d+)", row[3]) for row in rows]
        return [tuple(map(number, match.groups())) if match else None for match in found]

    def check_call(self, line, types, wanted=None):
        """Checks the calls in a line; `wanted` is the type that the function returns."""
        members = re.findall(r"\.([A-Za-z]\w*)", re.sub(r'"[^"]*"', "", line))
        for name in members:
            if name in self.MEMBERS:
                continue
            self.assertIn(name, DECLARATIONS, line)
            declaration = DECLARATIONS[name]
            before, _, after = line.partition(name)
            receiver = re.search(r"(\w+)\.$", before)
            self.assertIsNotNone(receiver, line)
            self.assertEqual(types.get(receiver[1].lower()), "Picture", line)
            given, rest = self.arguments(after)
            self.assertGreaterEqual(len(given), declaration.required(), line)
            self.assertLessEqual(len(given), len(declaration.parameters), line)
            for text, parameter, range_ in zip(given, declaration.parameters, self.ranges(name)):
                where = f"{parameter.name} in {line}"
                self.assertIn(self.kind(text, types), self.TAKES[parameter.kind], where)
                if range_ and re.fullmatch(r"\s*-?[\d.]+\s*", text):
                    self.assertTrue(range_[0] <= float(text) <= range_[1], where)
            self.check_result(before[: receiver.start()], rest, declaration, types, wanted, line)

    def check_result(self, before, rest, declaration, types, wanted, line):
        before = before.strip()
        if re.fullmatch(r"If( Not)?", before):
            self.assertEqual((declaration.result, rest.strip()), ("boolean", "Then"), line)
            return
        self.assertEqual(rest.strip(), "", line)
        declared = re.fullmatch(r"Dim \w+ As (\w+) =", before)
        assigned = re.fullmatch(r"(\w+) =", before)
        if declared:
            target = declared[1]
        elif assigned:
            target = types[assigned[1].lower()]
        else:
            self.assertEqual(before, "Return", "a result must be used: " + line)
            target = wanted
        self.assertEqual(target.lower(), declaration.result, line)

    def declared(self, text):
        """Names and types in declarations; arrays are not told apart from their elements."""
        found = re.findall(r"\b(\w+)(?:\(\))? As (?:New )?([\w.]+)", text)
        return {name.lower(): kind for name, kind in found}

    def test_call_what_is_declared(self):
        called = set()
        for section in re.split(r"^##+ ", METHODS, flags=re.MULTILINE):
            prose = re.sub(r"^```.*?^```$", "", section, flags=re.MULTILINE | re.DOTALL)
            properties = self.declared(" ".join(re.findall(r"`([^`]*)`", prose)))
            for block in blocks(section, "xojo"):
                types, wanted = {**self.ALWAYS, **properties}, None
                for line in block.splitlines():
                    line = line.partition("//")[0].strip()
                    head = re.match(r"(?:Sub|Function) \w+\((.*)\)(?: As (\w+))?$", line)
                    if head:
                        types, wanted = {**properties, **self.declared(head[1])}, head[2]
                    types = {**types, **self.declared(line)}
                    self.check_call(line, types, wanted)
                    called |= set(re.findall(r"\w+ZVQ", line))
        self.assertEqual(called, set(DECLARATIONS))

    def test_in_a_few_words_call_what_is_declared(self):
        (rows,) = tables(METHODS, "To do")
        types = dict(self.ALWAYS)
        called = set()
        for row in rows:
            for call in re.findall(r"`([^`]*)`", row[1]):
                name = re.search(r"\w+ZVQ", call)[0]
                called.add(name)
                draws = DECLARATIONS[name].result == "boolean"
                self.check_call(f"If {call} Then" if draws else f"Return {call}", types, "Picture")
        self.assertEqual(called, set(DECLARATIONS))


if __name__ == "__main__":
    main()
