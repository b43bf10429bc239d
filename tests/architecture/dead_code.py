#!/usr/bin/env python3
"""Finds the functions of src/ that no other function of src/ calls: nobody does, or tests alone.

    dead_code.py ALLOWED SOURCE_FOLDER BINARY...

BINARY are the object files and static libraries that the programs are linked from. A function that
they define is called when a relocation in them refers to it: a call, a stored address, a virtual
table. A call that the compiler inlined leaves no relocation, so a function also counts as called
when the text of its own source file calls its name. An inline function that is not used leaves no
symbol at all; it is looked for in the text of the files below SOURCE_FOLDER, where one that is used
is called, or named with its class in front, besides where headers define a function of that name.

ALLOWED lists the functions that may stay, one on a line, under a comment that says why. A listed
function that is called or gone is an error too.

Not found: an uncalled inline function that has its name from a data member which is named with its
class in front, an uncalled overload when another one of its name is called in the same file, and a
function that only an uncalled one calls, until that one is removed.
"""

import collections
import pathlib
import re
import subprocess
import sys

NAMESPACE = "tallowcrest::"


def demangled(symbols):
    """The readable name of each symbol."""
    symbols = list(symbols)
    # A clone that the optimiser made ("name.part.0") stands for the function it was made from.
    mangled = [symbol.partition(".")[0] for symbol in symbols]
    names = subprocess.run(
        ["c++filt"], input="\n".join(mangled), capture_output=True, text=True, check=True).stdout
    return dict(zip(symbols, names.split("\n")))


def without_parameters(function):
    return re.split(r"\[abi|\(", function)[0]


def calls_by_name(function, text):
    """Whether `text`, which defines `function`, also calls a function of that name."""
    scope, _, name = without_parameters(function).rpartition("::")
    if scope.rpartition("::")[2] == name:
        return False  # a constructor, whose name is found wherever its class is
    return len(re.findall(rf"\b{re.escape(name)}\(", text)) > 1


def uncalled_functions(binaries, texts):
    """The functions with external linkage that nothing in `binaries` refers to."""
    listing = subprocess.run(
        ["readelf", "--wide", "--symbols", "--relocs", *binaries],
        capture_output=True, text=True, check=True).stdout
    defined = {}
    referenced = set()
    source = ""
    in_debug_information = False
    for line in listing.splitlines():
        fields = line.split()
        if line.startswith("File: "):
            # "File: core/libcore.a(uuid.cpp.o)" or "File: app/main.cpp.o"
            source = re.split(r"[/(]", line)[-1].rstrip(")").removesuffix(".o")
        elif line.startswith("Relocation section"):
            in_debug_information = ".debug" in line
        elif len(fields) == 8 and fields[3:5] == ["FUNC", "GLOBAL"] and fields[6] != "UND":
            defined[fields[7]] = source
        elif len(fields) >= 5 and fields[2].startswith("R_") and not in_debug_information:
            referenced.add(fields[4])
    # Compared by readable names, as a constructor has several symbols.
    functions = {name: defined[symbol] for symbol, name in demangled(defined).items()
                 if name.startswith(NAMESPACE)}
    if not functions:
        raise SystemExit("dead_code.py: no function of this project in the given binaries")
    called = set(demangled(referenced).values())
    return {name for name, source in functions.items()
            if name not in called
            and not any(path.name == source and calls_by_name(name, text)
                        for path, text in texts.items())}


def source_texts(folder):
    """The C++ files below `folder`, without their comments."""
    comment = re.compile(r"//[^\n]*|/\*.*?\*/", flags=re.DOTALL)
    return {path: comment.sub("", path.read_text(encoding="utf-8"))
            for path in pathlib.Path(folder).rglob("*") if path.suffix in (".h", ".cpp", ".mm")}


def uncalled_inline_functions(texts):
    """The names of functions with a body in a header that `texts` do not use besides defining
    them, be it by several classes."""
    use = re.compile(r"\b(\w+)(?:<[^<>()]*>)?\(|::(\w+)\b(?!\()")
    uses = collections.Counter(
        match[1] or match[2] for text in texts.values() for match in use.finditer(text))
    body = re.compile(r"\b(\w+)\([^()]*\)(?: const)?(?: noexcept)? \{")
    # Behind a colon or a comma it is the last initializer of a constructor.
    definitions = collections.Counter(
        match[1] for path, text in texts.items() if path.suffix == ".h"
        for match in body.finditer(text)
        if not text[:match.start()].rstrip().endswith((":", ",")))
    return {name for name, count in definitions.items()
            if uses[name] == count and name != "requires"}


def main(allowed_list, source_folder, *binaries):
    lines = pathlib.Path(allowed_list).read_text(encoding="utf-8").splitlines()
    allowed = {line for line in lines if line and not line.startswith("#")}
    texts = source_texts(source_folder)
    uncalled = uncalled_functions(binaries, texts) | uncalled_inline_functions(texts)
    unlisted = sorted(name for name in uncalled if without_parameters(name) not in allowed)
    stale = sorted(allowed - {without_parameters(name) for name in uncalled})
    for name in unlisted:
        print(f"{name}: nothing in src calls it. Remove it and its tests.")
    for name in stale:
        print(f"{name}: called or gone. Remove its line from {allowed_list}.")
    return 1 if unlisted or stale else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
