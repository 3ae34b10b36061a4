"""cmake --install: what it puts where, and that the tool works from there."""

import os
import pathlib
import subprocess

from harness import PicturehostTest, main
from png import read_png

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ["PICTUREHOST"]).parents[1]


class Install(PicturehostTest):
    def install(self, prefix, **environment):
        result = subprocess.run(
            ["cmake", "--install", BUILD, "--prefix", prefix],
            env={**os.environ, **environment},
            capture_output=True,
            text=True,
        )
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def installed(self, folder):
        return sorted(str(p.relative_to(folder)) for p in folder.rglob("*") if not p.is_dir())

    def expected(self):
        documents = ["README.md", "CHANGELOG.md"]
        documents += [str(p.relative_to(ROOT)) for p in (ROOT / "docs").rglob("*") if p.is_file()]
        return sorted(
            [
                "bin/picturehost",
                "lib/varnell/Varnell.so",
                "share/bash-completion/completions/picturehost",
                "share/man/man1/picturehost.1",
                "share/zsh/site-functions/_picturehost",
                *("share/doc/varnell/" + name for name in documents),
            ]
        )

    def test_each_file_has_its_place_and_there_are_no_others(self):
        self.install(self.folder / "usr")
        self.assertEqual(self.installed(self.folder / "usr"), self.expected())

    def test_the_tool_finds_its_plug_in_wherever_it_was_installed(self):
        self.install(self.folder / "before")
        (self.folder / "before").rename(self.folder / "opt")
        tool = self.folder / "opt/bin/picturehost"
        result = subprocess.run(
            [tool, "run", "in.png", "ScaleZVQ", "1", "1", "-o", "out.png"],
            cwd=self.folder,
            capture_output=True,
            text=True,
        )
        self.assert_done(result)
        self.assertEqual(read_png(self.folder / "out.png"), [[(20, 30, 40)]])
        told = subprocess.run([tool, "methods"], capture_output=True, text=True).stdout
        self.assertIn(f"plug-in: {self.folder}/opt/lib/varnell/Varnell.so\n", told)

    def test_the_documents_are_those_of_the_tool(self):
        self.install(self.folder / "usr")
        for kind, path in [
            ("man", "share/man/man1/picturehost.1"),
            ("bash", "share/bash-completion/completions/picturehost"),
            ("zsh", "share/zsh/site-functions/_picturehost"),
        ]:
            printed = self.picturehost("documentation", kind).stdout
            self.assertGreater(len(printed), 1000)
            self.assertEqual((self.folder / "usr" / path).read_text(), printed)

    def test_a_staging_folder_comes_before_the_prefix(self):
        self.install("/usr", DESTDIR=str(self.folder / "stage"))
        self.assertEqual(self.installed(self.folder / "stage/usr"), self.expected())
        self.assertEqual([p.name for p in (self.folder / "stage").iterdir()], ["usr"])


if __name__ == "__main__":
    main()
