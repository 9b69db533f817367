#!/usr/bin/env python3
"""What the module exports and imports, read from the file by objdump:  tables_test.py MODULE ORDINALS HOST"""

import pathlib
import re
import subprocess
import sys


def main():
    module, ordinals, host = sys.argv[1:]
    text = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", module], check=True, capture_output=True, text=True).stdout
    listed = {int(number) for number in re.findall(r"^XML_ORDINAL\((\d+),", pathlib.Path(ordinals).read_text(), re.M)}
    assert {44, 66, 70}.isdisjoint(listed)

    # "[ 0] +base[ 1] 12f0 Export RVA": numbers begin at the base; an empty one is not shown.
    addresses = text[text.index("Export Address Table") : text.index("[Ordinal/Name Pointer] Table")]
    exported = {int(number) for number in re.findall(r"\+base\[\s*(\d+)\] [0-9a-f]+ Export RVA", addresses)}
    entry = 100
    assert exported == listed | {entry}, exported ^ (listed | {entry})
    names = re.findall(r"^\s*\[\s*\d+\](?: \+base\[\s*\d+\])?(?:\s+[0-9a-f]{4,})? (\w+)$", text[text.index("[Ordinal/Name Pointer] Table") :], re.M)
    assert names == ["GetDispatchTable"], names

    libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)", text)}
    allowed = {"kernel32.dll", "msvcrt.dll", host.lower()}
    assert libraries == allowed, libraries
    print(f"{len(listed)} functions by number alone, one by name; imports from {', '.join(sorted(libraries))}")


main()
