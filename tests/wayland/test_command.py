"""The command line: bad input, bad output, and what a run promises."""

import filecmp
import os
import resource
import signal
import subprocess
import unittest
from pathlib import Path

from wayland_tools import GENERATOR, FolderTest, descriptions, generate


def protocol(body: str, name: str = "p") -> str:
    """A description whose line 2 is `body`."""
    return f'<protocol name="{name}">\n{body}\n</protocol>'


EMPTY = '<interface name="{}" version="1"/>'

# Blocks of a message and the description that it is about.
UNUSABLE = (Path(__file__).parent / "unusable.txt").read_text(encoding="utf-8")[:-1]

MISUSE: list[tuple[list[str], str]] = [
    ([], "no output folder"),
    (["-o"], "'-o' needs a value"),
    (["-xo", "out"], "cannot use '-x'"),
    (["-o", "out"], "no protocol description"),
    (["--colour", "-o", "out", "p.xml"], "cannot use '--colour'"),
]


class CommandTest(FolderTest):
    """Runs of the program in a folder of their own."""

    def setUp(self) -> None:
        super().setUp()
        self.out = self.folder / "out"

    def describe(self, text: str, name: str = "p.xml") -> Path:
        """Writes a description file."""
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def describe_empty(self, *names: str) -> list[Path]:
        """Writes descriptions of protocols of these names, each with one interface."""
        return [self.describe(protocol(EMPTY.format("i"), name), f"{name}.xml") for name in names]

    def assert_fails(self, done: "subprocess.CompletedProcess[str]", message: str) -> None:
        self.assertEqual((done.returncode, done.stdout, done.stderr), (1, "", message + "\n"))

    def assert_compiles(self, path: Path) -> None:
        self.assertEqual(generate(self.out, [path]).returncode, 0)
        (self.out / "check.c").write_text('#include "p-protocol.h"\n')
        self.compile(self.out, ["check.c", "p-protocol.c"])

    def test_unusable_descriptions_are_refused_by_line(self) -> None:
        for block in UNUSABLE.split("\n----\n"):
            message, text = block.split("\n", 1)
            with self.subTest(message):
                path = self.describe(text)
                self.assert_fails(generate(self.out, [path]), f"{path}:{message}")
                self.assertFalse(self.out.exists())

    def test_one_bad_description_among_good_ones_writes_nothing(self) -> None:
        good = descriptions()[0]
        done = generate(self.out, [good, self.folder])
        self.assert_fails(done, f"varn_wayland: {self.folder}: Is a directory")
        done = generate(self.out, [good, good])
        self.assertRegex(done.stderr, f"^{good}:2: protocol 'wayland' is already described in ")
        # The umbrella header of the one would be the client header of the other.
        files = self.describe_empty("a", "a_client")
        self.assert_fails(
            generate(self.out, files),
            f"{files[1]}:1: its file 'a-client-protocol.h' would replace that of protocol 'a'",
        )
        self.assertFalse(self.out.exists())

    def test_misuse(self) -> None:
        for arguments, message in MISUSE:
            with self.subTest(arguments):
                done = subprocess.run([GENERATOR, *arguments], capture_output=True, text=True)
                text = f"varn_wayland: {message}\nTry 'varn_wayland --help'.\n"
                self.assertEqual((done.returncode, done.stderr), (2, text))

    def test_a_failed_run_leaves_the_folder_as_it_was(self) -> None:
        self.assertEqual(generate(self.out, descriptions()[1:2]).returncode, 0)
        before = {path.name: path.read_bytes() for path in self.out.iterdir()}

        def limit_file_size() -> None:
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))

        # The first protocols would fit; a later one does not.
        done = generate(self.out, descriptions()[1:], preexec_fn=limit_file_size)
        self.assertRegex(done.stderr, "^varn_wayland: .*/out/[a-z0-9-]+.h: File too large\n$")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(before, {path.name: path.read_bytes() for path in self.out.iterdir()})

    def test_places_that_cannot_be_written(self) -> None:
        path = self.describe(protocol(EMPTY.format("i")))
        done = generate(path / "out", [path])
        self.assert_fails(done, f"varn_wayland: {path}/out: Not a directory")
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = generate(self.out, [path], stdout=full)
            text = "varn_wayland: standard output: No space left on device\n"
            self.assertEqual((done.returncode, done.stderr), (1, text))
            # A failure to write messages does not change the exit status.
            runs: list[tuple[list[Path], int]] = [
                (self.describe_empty("p", "P"), 0),
                ([self.folder], 1),
                ([], 2),
            ]
            for inputs, status in runs:
                self.assertEqual(generate(self.out, inputs, stderr=full).returncode, status)

    def test_runs_are_equal_to_the_byte_and_as_their_table_says(self) -> None:
        again = self.folder / "again"
        first = generate(self.out, descriptions())
        second = generate(again, descriptions(), env={**os.environ, "LC_ALL": "tr_TR.UTF-8"})
        self.assertEqual(first.stdout, second.stdout)
        names = sorted(os.listdir(self.out))
        self.assertEqual(names, sorted(os.listdir(again)))
        equal, _, _ = filecmp.cmpfiles(self.out, again, names, shallow=False)
        self.assertEqual(sorted(equal), names)
        rows = [line.split() for line in first.stdout.splitlines()]
        sizes = {row[0]: int(row[2]) for row in rows[1:-1]}
        self.assertEqual(sizes, {name: (self.out / name).stat().st_size for name in names})
        self.assertEqual(int(rows[-1][3]), sum(sizes.values()))

    def test_names_that_differ_in_case_only_are_warned_of(self) -> None:
        done = generate(self.out, self.describe_empty("p", "P"))
        self.assertEqual(done.returncode, 0)
        self.assertEqual(done.stderr.count("warning:\n-->"), 5)
        self.assertIn("p-protocol.c", done.stderr)
        self.assertEqual(len(list(self.out.iterdir())), 10)

    def test_names_may_be_those_of_generated_parameters(self) -> None:
        names = ["data", "interface", "listener", "proxy", "resource", "user_data", "version"]
        arguments = "".join(f'<arg name="{name}" type="int"/>' for name in names)
        messages = f'<request name="r"><arg name="id" type="new_id"/>{arguments}</request>'
        messages += f'<event name="e">{arguments}</event>'
        interfaces = [f'<interface name="{i}" version="1">{messages}</interface>' for i in names]
        path = self.describe(protocol("".join(interfaces)))
        self.assert_compiles(path)

    def test_hostile_text_stays_in_comments(self) -> None:
        hostile = "*/\n#error injected\n/* ??/\n*&#8238;/ *\\\n/ /*/ \x7f&#12;\n#error injected\n"
        description = f'<description summary="{hostile}">{hostile}</description>'
        argument = f'<arg name="resource" type="int" summary="{hostile}"/>'
        argument += '<arg name="data" type="object"/><arg name="i" type="new_id" interface="i"/>'
        messages = "".join(
            f'<{kind} name="m">{description}{argument}</{kind}>' for kind in ("request", "event")
        )
        enum = (
            f'<enum name="e">{description}<entry name="1" value="-1" summary="{hostile}"/></enum>'
        )
        body = f'<interface name="i" version="1">{description}{messages}{enum}</interface>'
        path = self.describe(
            f'<protocol name="p"><copyright>{hostile}</copyright>{description}{body}</protocol>'
        )
        self.assert_compiles(path)


if __name__ == "__main__":
    unittest.main()
