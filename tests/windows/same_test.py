#!/usr/bin/env python3
"""The command on Linux and sxml.exe do the same: exit status, messages and files, byte for byte.
    same_test.py LINUX_SXML SXML_EXE layouts FOLDER [FIRST LAST]  layouts and records that random_layouts made
    same_test.py LINUX_SXML SXML_EXE documents FOLDER             all documents below a folder, rewritten"""

import pathlib
import subprocess
import sys
import tempfile

LINUX, EXE = sys.argv[1:3]


def outcome(command, words, folder, outputs):
    """Status, standard output, messages, and the files called `outputs`, which are new."""
    for name in outputs:
        (folder / name).unlink(missing_ok=True)
    run = subprocess.run([command, *words], cwd=folder, capture_output=True, check=False, stdin=subprocess.DEVNULL)
    files = [(folder / name).read_bytes() if (folder / name).exists() else None for name in outputs]
    return run.returncode, run.stdout, run.stderr, files


def differs(what, words, folder, outputs):
    """Whether the two differ, which is printed; and the exit status on Linux."""
    here, there = (outcome(command, words, folder, outputs) for command in (LINUX, EXE))
    for part, expected, found in zip(("status", "output", "messages", "files"), here, there):
        if expected != found:
            print(f"{what}: {words[0]}: {part}: {str(expected)[:300]} became {str(found)[:300]}")
    return here != there, here[0]


def compare_layouts(folder, first, last):
    different = back = 0
    for number in range(first, last + 1):
        options = (folder / f"{number}.options").read_text().split()
        options += ["--layout", f"{number}.cpy", "--set", "SXML_CREATE_STYLE=NONE"]
        for words, outputs in (
            (["to-xml", f"{number}.dat", "out.xml", *options], ["out.xml"]),
            (["from-xml", "out.xml", "back.dat", *options], ["back.dat"]),
        ):
            if not (folder / words[1]).exists():
                continue  # refused, by both
            is_different, status = differs(f"layout {number}", words, folder, outputs)
            different += is_different
            back += status == 0 and words[0] == "from-xml"
    print(f"{last - first + 1} layouts, {back} read back; {different} runs differ from Linux")
    return different == 0 and back > 0


def compare_documents(folder):
    documents = different = accepted = 0
    with tempfile.TemporaryDirectory() as name:
        for path in sorted(folder.rglob("*.xml")):
            is_different, status = differs(path, ["rewrite", path, "out.xml"], pathlib.Path(name), ["out.xml"])
            documents += 1
            different += is_different
            accepted += status == 0
    print(f"{documents} documents, {accepted} of them rewritten; {different} runs differ from Linux")
    return different == 0 and accepted > 0


def main():
    kind, folder, *limits = sys.argv[3:]
    if kind == "layouts":
        return compare_layouts(pathlib.Path(folder), *map(int, limits))
    return compare_documents(pathlib.Path(folder))


sys.exit(0 if main() else 1)
