"""Every protocol of the distribution, and some corner cases: the C compiles, and says what the
distribution's own generator says, table by table."""

import subprocess
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from wayland_tools import COMPILER, SCANNER, FolderTest, descriptions, generate

HERE = Path(__file__).parent


class Protocol:
    """A description, as far as the tests have to know it."""

    def __init__(self, path: Path) -> None:
        root = ElementTree.parse(path).getroot()
        self.path = path
        self.name = root.attrib["name"]
        self.stem = self.name.replace("_", "-")
        self.interfaces = [element.attrib["name"] for element in root.iter("interface")]
        self.messages = len(list(root.iter("request"))) + len(list(root.iter("event")))


def batches(protocols: list[Protocol]) -> list[list[Protocol]]:
    """Protocols that fit into one program: no two of a batch define the same interface."""
    result: list[list[Protocol]] = []
    for protocol in protocols:
        for batch in result:
            if not any(set(protocol.interfaces) & set(other.interfaces) for other in batch):
                batch.append(protocol)
                break
        else:
            result.append([protocol])
    return result


class ProtocolsTest(FolderTest):
    """Both generators' code for all protocols."""

    def setUp(self) -> None:
        super().setUp()
        paths = [*descriptions(), HERE / "corner_cases.xml"]
        self.protocols = [Protocol(path) for path in paths]
        self.ours = self.folder / "ours"
        done = generate(self.ours, [protocol.path for protocol in self.protocols])
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def dump(self, where: Path, batch: list[Protocol]) -> list[str]:
        """The tables in the object files of `batch` in the folder `where`."""
        names = [f"{name}_interface" for protocol in batch for name in protocol.interfaces]
        program = [str(HERE / "dump_tables.c"), "interfaces.c"]
        (where / "interfaces.c").write_text(
            "#include <wayland-util.h>\n"
            + "".join(f"extern const struct wl_interface {name};\n" for name in names)
            + "extern const struct wl_interface *const interfaces[];\n"
            + "extern const size_t interface_count;\n"
            + "const struct wl_interface *const interfaces[] = {"
            + "".join(f"\n\t&{name}," for name in names)
            + f"\n}};\nconst size_t interface_count = {len(names)};\n"
        )
        objects = [f"{protocol.stem}-protocol.o" for protocol in batch]
        # The core interfaces come from the library where a batch does not define them.
        subprocess.run(
            [*COMPILER, "-o", "dump", *program, *objects, "-lwayland-client"], cwd=where, check=True
        )
        done = subprocess.run([str(where / "dump")], capture_output=True, text=True, check=True)
        return done.stdout.splitlines()

    def test_tables_are_those_of_the_distributions_generator(self) -> None:
        theirs = self.folder / "theirs"
        theirs.mkdir()
        sources = [f"{protocol.stem}-protocol.c" for protocol in self.protocols]
        for protocol, source in zip(self.protocols, sources):
            subprocess.run(
                [SCANNER, "private-code", str(protocol.path), str(theirs / source)], check=True
            )
        self.compile(self.ours, sources)
        self.compile(theirs, sources)
        compared: list[str] = []
        for batch in batches(self.protocols):
            tables = self.dump(self.ours, batch)
            self.assertEqual(tables, self.dump(theirs, batch))
            compared += tables
        messages = [line for line in compared if line.startswith(" ")]
        self.assertEqual(len(messages), sum(protocol.messages for protocol in self.protocols))
        print(
            f"compared {len(self.protocols)} protocols, {len(compared) - len(messages)} interfaces,"
            f" {len(messages)} messages"
        )

    def test_types_stand_at_their_letters_of_the_signature(self) -> None:
        # The distribution's generator leaves no room for the two letters of an untyped object.
        path = self.folder / "mixed.xml"
        path.write_text(
            '<protocol name="mixed"><interface name="i" version="1"><request name="r">'
            '<arg name="a" type="new_id"/><arg name="b" type="object" interface="i"/>'
            "</request></interface></protocol>"
        )
        self.assertEqual(generate(self.ours, [path]).returncode, 0)
        self.compile(self.ours, ["mixed-protocol.c"])
        tables = self.dump(self.ours, [Protocol(path)])
        self.assertEqual(tables, ["i 1 1 0", '  request r "suno" - - - i'])

    def test_headers_compile_alone_together_and_beside_the_installed_ones(self) -> None:
        sources: list[str] = []
        for protocol in self.protocols:
            for kind in ("client-protocol", "server-protocol", "enums", "protocol"):
                header = f'#include "{protocol.stem}-{kind}.h"\n'
                side = kind.split("-")[0]
                # The installed headers for the core protocol are themselves generated from it.
                beside = side in ("client", "server") and protocol.name != "wayland"
                installed = f"#include <wayland-{side}.h>\n" if beside else ""
                sources.append(f"check-{protocol.stem}-{kind}.c")
                # Included twice, so that a missing include guard shows.
                (self.ours / sources[-1]).write_text(
                    header + header if not beside else installed + header + header
                )
        self.compile(self.ours, sources)
        print(f"compiled {len(sources)} headers")


if __name__ == "__main__":
    unittest.main()
