"""README.md and docs/picturehost.md: their commands do what they say, and their links lead somewhere."""

import os
import pathlib
import re
import subprocess

from harness import PICTUREHOST, PicturehostTest, main

ROOT = pathlib.Path(__file__).resolve().parents[2]
README, GUIDE = ROOT / "README.md", ROOT / "docs/picturehost.md"
DIFFERENT = 1  # the exit status of picturehost compare


def commands(document):
    """The lines of its fenced blocks that call picturehost, without the remarks behind them."""
    found = []
    for block in re.findall(r"^```\n(.*?)^```$", document.read_text(), re.MULTILINE | re.DOTALL):
        found += [re.split(r"\s{2,}", line)[0] for line in block.splitlines() if line.startswith("picturehost ")]
    return found


def anchors(document):
    """What links call its headings."""
    headings = re.findall(r"^#+ (.*)$", document.read_text(), re.MULTILINE)
    return {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in headings}


class DocumentedCommands(PicturehostTest):
    def run_all(self, document, least):
        """In order, in one folder, by a shell; all outputs appear."""
        found = commands(document)
        self.assertGreater(len(found), least)
        path = f"{pathlib.Path(PICTUREHOST).parent}{os.pathsep}{os.environ['PATH']}"
        for command in found:
            result = subprocess.run(
                ["bash", "-c", command], cwd=self.folder, env={**os.environ, "PATH": path},
                stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=110,
            )  # fmt: skip
            is_comparison = "compare photo.jpg blurred.jpg" in command
            self.assertEqual(result.returncode, DIFFERENT if is_comparison else 0, command + "\n" + result.stderr)
            output = re.search(r" -o (\S+)", command)
            if output and "{" not in output[1]:
                self.assertTrue((self.folder / output[1]).exists(), command)

    def test_of_the_readme_work(self):
        self.run_all(README, 5)
        self.assertIn("quarter-photo.png", self.files())
        self.assertIn("index.html", [file.name for file in (self.folder / "gallery").iterdir()])

    def test_of_the_guide_work(self):
        self.run_all(GUIDE, 15)
        for file in ("quarter-photo.png", "blurred-1.png", "blurred-2.png"):
            self.assertIn(file, self.files())

    def test_of_the_guide_show_each_command(self):
        listed = self.picturehost().stdout
        names = re.findall(r"^  ([a-z]+) {2,}", listed, re.MULTILINE)
        self.assertGreater(len(names), 7)
        for name in names:
            self.assertIn(f"picturehost {name}", GUIDE.read_text())


class Documents(PicturehostTest):
    def test_link_to_what_is_there(self):
        documents = [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *ROOT.glob("bench/*.md")]
        links = 0
        for document in documents:
            for target in re.findall(r"\]\(([^)\s]+)\)", document.read_text()):
                if target.startswith("http"):
                    continue
                file, _, anchor = target.partition("#")
                linked = document.parent / file if file else document
                self.assertTrue(linked.exists(), f"{document.name}: {target}")
                if anchor:
                    self.assertIn(anchor, anchors(linked), document.name)
                links += 1
        self.assertGreater(links, 30)

    def test_of_the_readme_name_scripts_that_are_there(self):
        scripts = set(re.findall(r"scripts/[a-z-]+", README.read_text()))
        for script in scripts:
            self.assertTrue(os.access(ROOT / script, os.X_OK), script)
        there = {f"scripts/{file.name}" for file in (ROOT / "scripts").iterdir() if os.access(file, os.X_OK)}
        self.assertEqual(there - scripts, {"scripts/draw-images"})


if __name__ == "__main__":
    main()
