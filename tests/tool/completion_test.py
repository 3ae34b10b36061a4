"""What bash and zsh offer after the words of a command line."""

import os
import pathlib
import subprocess

from harness import PICTUREHOST, PicturehostTest, main

TOOL_FOLDER = pathlib.Path(PICTUREHOST).parent
RUN_OPTIONS = {"--help", "--mask", "--output", "--plugin", "--host-version", "--kind",
               "--pixel-format", "--alpha", "--trace"}  # fmt: skip


class CompletionTest(PicturehostTest):
    def script(self, shell):
        result = self.picturehost("documentation", shell)
        self.assert_done(result)
        path = self.folder / ("_picturehost" if shell == "zsh" else "picturehost.bash")
        path.write_text(result.stdout)
        return path

    def shell(self, *command, **options):
        environment = {**os.environ, "PATH": f"{TOOL_FOLDER}:{os.environ['PATH']}"}
        result = subprocess.run(
            command,
            cwd=self.folder,
            env=environment,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=60,
            **options,
        )
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout


class Bash(CompletionTest):
    def offered(self, *words):
        """What is offered for the last of the words, as bash splits them."""
        program = (
            'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
            'complete -p picturehost >&3; _picturehost; printf "%s\\n" "${COMPREPLY[@]}"'
        )
        out = self.shell(
            "bash", "--norc", "-c", "exec 3>/dev/null; " + program, "bash",
            self.script("bash"), "picturehost", *words,
        )  # fmt: skip
        return set(out.splitlines()) - {""}

    def test_commands_and_options_of_the_tool(self):
        self.assertEqual(self.offered("s"), {"sample", "sheet"})
        self.assertTrue({"run", "compare", "validate", "--help", "--version"} <= self.offered(""))
        self.assertNotIn("documentation", self.offered(""))

    def test_options_of_a_command(self):
        self.assertTrue(RUN_OPTIONS <= self.offered("run", "--"))
        self.assertEqual(self.offered("run", "in.png", "--ki"), {"--kind"})
        self.assertTrue({"-h", "--help"} <= self.offered("info", "-"))

    def test_allowed_values_of_options_and_arguments(self):
        kinds = {"desktop", "web", "console", "none"}
        self.assertEqual(self.offered("run", "--kind", ""), kinds)
        self.assertEqual(self.offered("run", "--kind", "=", "w"), {"web"})
        self.assertEqual(self.offered("run", "--kind", "="), kinds)
        self.assertEqual(self.offered("methods", "--alpha", "m"), {"mask"})
        self.assertEqual(self.offered("sample", ""), {"scene", "rings", "stamp"})
        self.assertEqual(self.offered("sample", "-o", "x.png", "r"), {"rings"})
        self.assertEqual(self.offered("sample", "--output", "=", "x.png", "r"), {"rings"})

    def test_pixel_formats(self):
        self.assertEqual(self.offered("run", "--pixel-format", ""), set("123456"))

    def test_methods_of_the_plug_in_stand_where_a_method_does(self):
        self.assertEqual(self.offered("run", "in.png", "Scal"),
                         {"ScaleZVQ", "ScaleImageAndMaskZVQ", "ScalingZVQ"})  # fmt: skip
        self.assertEqual(self.offered("run", "--kind", "=", "web", "in.png", "Bl"), {"BlurZVQ"})
        self.assertEqual(self.offered("run", "--trace", "in.png", "-o", "x.png", "D"), {"DrawPictureFZVQ"})

    def test_a_method_may_follow_several_pictures_and_stands_once(self):
        self.assertEqual(self.offered("run", "a.png", "b.png", "c.png", "Bl"), {"BlurZVQ"})
        self.assertEqual(self.offered("run", "a.png", "b.png", "BlurZVQ", ""), set())

    def test_checks(self):
        self.assertEqual(self.offered("validate", "--check", "blur-is"), {"blur-is-opaque"})

    def test_files_are_left_to_the_shell(self):
        for words in (("run", ""), ("run", "--plugin", ""), ("compare", "a.png", "")):
            self.assertEqual(self.offered(*words), set())
        out = self.shell("bash", "--norc", "-c", 'source "$1"; complete -p picturehost', "bash", self.script("bash"))
        self.assertEqual(out, "complete -o bashdefault -o default -F _picturehost picturehost\n")

    def test_a_folder(self):
        (self.folder / "my results").mkdir()
        (self.folder / "my file").touch()
        self.assertEqual(self.offered("gallery", "-o", "m"), {"my results"})


class Zsh(CompletionTest):
    # Types a line with a tab in an interactive shell, and prints what the line has become.
    PROGRAM = r"""
      zmodload zsh/zpty
      zpty shell "TERM=dumb PS1='<PROMPT>' zsh -f -i"
      zpty -w shell "unsetopt zle_bracketed_paste; fpath=($PWD \$fpath); autoload -Uz compinit; compinit -u -D; LISTMAX=0; setopt list_ambiguous; bindkey '^I' expand-or-complete; print READY''NOW"
      zpty -r shell ignored '*READYNOW*<PROMPT>*'
      zpty -w -n shell "$1"$'\t\t'
      line=''
      repeat 300; do
        while zpty -r -t shell part; do line+=$part; done
        sleep 0.1
        [[ $line == ${~2} ]] && break
      done
      print -r -- "$line"
      zpty -d shell
    """

    def assert_becomes(self, line, completed):
        """The line, followed by two tabs, ends as `completed` does."""
        self.script("zsh")
        shown = self.shell("zsh", "-f", "-c", self.PROGRAM, "zsh", line, f"*{completed}*")
        self.assertIn(completed, shown)

    def test_the_script_has_no_slip(self):
        self.shell("zsh", "-n", self.script("zsh"))

    def test_commands(self):
        self.assert_becomes("picturehost val", "picturehost validate ")

    def test_options(self):
        self.assert_becomes("picturehost run --pix", "run --pixel-format=")

    def test_allowed_values(self):
        self.assert_becomes("picturehost run --kind con", "--kind console ")
        self.assert_becomes("picturehost sample ri", "sample rings ")

    def test_methods(self):
        self.assert_becomes("picturehost run in.png Blu", "in.png BlurZVQ ")

    def test_checks(self):
        self.assert_becomes("picturehost validate --check blur-is", "--check blur-is-opaque ")

    def test_files(self):
        self.assert_becomes("picturehost compare i", "compare in.png ")


if __name__ == "__main__":
    main()
