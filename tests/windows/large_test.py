#!/usr/bin/env python3
"""A large document, written to a file from a pipe and read from that file into a pipe, as on Linux.
    large_test.py LINUX_SXML SXML_EXE [MEGABYTES]      default: 4400, more than 4 GiB"""

import hashlib
import pathlib
import subprocess
import sys
import tempfile
import threading

LINUX, EXE = sys.argv[1:3]
MEGABYTES = int(sys.argv[3]) if len(sys.argv) > 3 else 4400
LENGTH = 10_000
LAYOUT = f"       01 r.\n          05 n PIC 9(8).\n          05 t PIC X({LENGTH - 8}).\n"


def feed(stream, digest):
    """Writes the records, each with its number, and takes them into a digest."""
    with stream:
        for first in range(0, MEGABYTES * 100, 100):
            piece = b"".join(b"%08d" % n + b"x" * (LENGTH - 8) for n in range(first, first + 100))
            digest.update(piece)
            stream.write(piece)


def digest_of(stream):
    digest = hashlib.sha256()
    while piece := stream.read(1 << 20):
        digest.update(piece)
    return digest.hexdigest()


def run(command, words, folder, records=None):
    """Runs a command, with records as its standard input; gives the digest of its standard output."""
    source = subprocess.DEVNULL if records is None else subprocess.PIPE
    with subprocess.Popen([command, *words], cwd=folder, stdin=source, stdout=subprocess.PIPE) as process:
        if records is not None:
            threading.Thread(target=feed, args=(process.stdin, records)).start()
        digest = digest_of(process.stdout)
    assert process.returncode == 0, f"{words}: status {process.returncode}"
    return digest


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "r.cpy").write_text(LAYOUT)
        options = ["--layout", "r.cpy", "--name", "large"]
        digests = []
        for command in (LINUX, EXE):
            records = hashlib.sha256()
            run(command, ["to-xml", "-", "large.xml", *options], folder, records)
            with open(folder / "large.xml", "rb") as document:
                digests.append(digest_of(document))
        assert digests[0] == digests[1], "the document differs from that of Linux"
        size = (folder / "large.xml").stat().st_size
        assert size > MEGABYTES * 1_000_000
        assert run(EXE, ["from-xml", "large.xml", "-", *options], folder) == records.hexdigest(), "other records came back"
        print(f"a document of {size} bytes is that of Linux, and its records come back")


main()
