"""Tests of scripts/macos-examine, on programs that are put together here.

    examine_test.py SCRIPT
"""

import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

SYSTEM, DATABASE = "/usr/lib/libSystem.B.dylib", "/usr/lib/libsqlite3.dylib"


def command(kind, *numbers, text=""):
    body = b"".join(struct.pack("<I", number) for number in numbers)
    body += text.encode() + b"\0" if text else b""
    body += b"\0" * (-len(body) % 8)
    return struct.pack("<II", kind, 8 + len(body)) + body


def program(processor=0x0100000C, kind=2, flags=0x200085, version=14 << 16, system=1,
            libraries=(SYSTEM, DATABASE), undefined=(("_read", 1), ("_sqlite3_open", 2)),
            defined=("_main",), search_path="", places=""):
    """The bytes of a program with these properties."""
    commands = [command(0x32, system, version, 0, 0)]
    commands += [command(0xC, 24, 0, 0, 0, text=library) for library in libraries]
    commands += [command(0x8000001C, 12, text=search_path)] if search_path else []
    size = sum(map(len, commands)) + len(command(2, 0, 0, 0, 0))
    texts, entries = b"\0", b""
    for name, kind_of_symbol, library in ([(name, 0x01, library) for name, library in undefined] +
                                          [(name, 0x0F, 0) for name in defined]):
        entries += struct.pack("<IBBHQ", len(texts), kind_of_symbol, 0, library << 8, 0)
        texts += name.encode() + b"\0"
    start = 32 + size
    commands.append(command(2, start, len(undefined) + len(defined), start + len(entries),
                            len(texts)))
    header = struct.pack("<8I", 0xFEEDFACF, processor, 0, kind, len(commands), size, flags, 0)
    return header + b"".join(commands) + entries + texts + places.encode() + b"\0"


class Examine(unittest.TestCase):
    def complaints(self, data, architecture="aarch64"):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "system.tbd").write_text("symbols: [ _read, '_$write', _statx ]\n")
            (folder / "database.tbd").write_text("symbols: [ _sqlite3_open ]\n")
            (folder / "program").write_bytes(data)
            result = subprocess.run(
                [SCRIPT, folder / "program", architecture, "14.0", f"{SYSTEM}={folder}/system.tbd",
                 f"{DATABASE}={folder}/database.tbd"],
                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return [line.split(": ", 1)[1] for line in result.stderr.splitlines()]

    def test_a_good_program(self):
        self.assertEqual(self.complaints(program()), [])
        self.assertEqual(self.complaints(program(processor=0x01000007), "x86_64"), [])

    def test_each_fault(self):
        for data, complaint in (
                (program(processor=0x01000007), "not for aarch64: processor 0x1000007"),
                (program(kind=6), "not a program: kind 6"),
                (program(flags=0x200005), "its functions are looked for in all libraries"),
                (program(flags=0x85), "it depends on its position in memory"),
                (program(version=13 << 16), "not for macOS 14.0 and later: [(1, '13.0')]"),
                (program(system=2), "not for macOS 14.0 and later: [(2, '14.0')]"),
                (program(libraries=(SYSTEM, DATABASE, "@rpath/x.dylib")), "loads @rpath/x.dylib"),
                (program(libraries=(SYSTEM,), undefined=(("_read", 1),)),
                 "does not load " + DATABASE),
                (program(search_path="/opt/lib"), "a folder to look for libraries in: /opt/lib"),
                (program(undefined=()), "no symbol of a library, which no program is without"),
                (program(undefined=(("_open", 1),)), SYSTEM + " does not have _open"),
                (program(undefined=(("_read", 2),)), DATABASE + " does not have _read"),
                (program(undefined=(("_read", 254),)), "library 254 does not have _read"),
                (program(undefined=(("_statx", 1),)), "_statx is of Linux"),
                (program(places="/proc/self/stat"), "a place of Linux: /proc/self/stat"),
                (b"\x7fELF" + b"\0" * 60, "not a program of macOS with 64 bits")):
            with self.subTest(complaint):
                self.assertEqual(self.complaints(data), [complaint])

    def test_objects_that_take_what_none_defines(self):
        function, of_class = "__ZN11tallowcrest4host1fEv", "__ZNK11tallowcrest3Own1gEv"
        user = (function, of_class, "__ZTVN11tallowcrest4PageE", "__ZN3Own1gEv", "_read")
        of_qt = ("__ZN11tallowcrest4Page16staticMetaObjectE", "__ZN11tallowcrest4Page7clickedEv",
                 "__ZNK11tallowcrest4Page10metaObjectEv")
        for defined, missing in (
                ((function, of_class), []), ((function,), [of_class]), ((of_class,), [function])):
            with self.subTest(missing):
                self.assertEqual(self.missing(user, defined), missing)
        self.assertEqual(self.missing(of_qt, ("_main",)), [])
        self.assertEqual(self.missing(of_qt[1:], ("_main",)), sorted(of_qt[1:]))
        for other in ("__ZN11tallowcrest5Page27clickedEv", "__ZN11tallowcrest4PageC1EP7QWidget",
                      "__ZN11tallowcrest4PageD2Ev", "__ZNK11tallowcrest4Page5titleEv"):
            with self.subTest(other):
                self.assertEqual(self.missing((*of_qt, other), ()), [other])

    def test_objects_with_what_only_linux_has(self):
        for taken, places, complaint in (
                ("_pipe2", "", "_pipe2 is of Linux"),
                ("_read", "/proc/self/stat", "a place of Linux: /proc/self/stat")):
            with self.subTest(complaint), tempfile.TemporaryDirectory() as name:
                file = pathlib.Path(name, "one.cpp.o")
                file.write_bytes(program(kind=1, undefined=((taken, 0),), places=places))
                result = subprocess.run([SCRIPT, "--objects", name], stderr=subprocess.PIPE,
                                        text=True, check=False)
                self.assertEqual((result.returncode, result.stderr), (1, f"{file}: {complaint}\n"))

    def test_no_object(self):
        with tempfile.TemporaryDirectory() as name:
            result = subprocess.run([SCRIPT, "--objects", name], stderr=subprocess.PIPE, text=True,
                                    check=False)
        self.assertEqual((result.returncode, result.stderr), (1, f"{name}: no object file\n"))

    def missing(self, taken, defined):
        """What is missed of two object files in two folders."""
        with tempfile.TemporaryDirectory() as name:
            folders = [pathlib.Path(name, one) for one in ("layers", "window")]
            for folder, data in zip(folders, (
                    program(kind=1, undefined=(), defined=defined),
                    program(kind=1, undefined=[(one, 0) for one in taken], defined=()))):
                (folder / "deeper").mkdir(parents=True)
                (folder / "deeper" / "one.cpp.o").write_bytes(data)
            result = subprocess.run([SCRIPT, "--objects", *folders], stderr=subprocess.PIPE,
                                    text=True, check=False)
        self.assertEqual(result.returncode, 1 if result.stderr else 0)
        return [line.split(": ", 1)[0] for line in result.stderr.splitlines()]


if __name__ == "__main__":
    SCRIPT = sys.argv.pop()
    unittest.main()
