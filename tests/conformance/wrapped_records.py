"""Reads each document of a folder, wrapped as records, with the lane for plain records and without.

    wrapped_records.py SXML FOLDER

`sxml from-xml` must end with the same status, messages and record file both ways. Each document is
wrapped as it is, and without what stands before its document element; between plain records, so that
the lane is left and taken again.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

LAYOUT = """       01 doc.
          05 a PIC X(20).
          05 b PIC X(20).
"""
PLAIN = b"<doc><a>one &amp; two</a>\n<b>3</b></doc>\n"
PROLOGUE = re.compile(rb"^(\xEF\xBB\xBF)?\s*(<\?xml.*?\?>)?(\s|<!--.*?-->|<\?.*?\?>)*"
                      rb"(<!DOCTYPE[^\[>]*(\[.*?\]\s*)?>)?", re.DOTALL)


def outcome(sxml, folder, lane):
    records = folder / "records"
    records.unlink(missing_ok=True)
    run = subprocess.run([sxml, "from-xml", folder / "in.xml", records, "--layout", folder / "doc.cpy"],
                         capture_output=True, check=False,
                         env={**os.environ, "SXML_PLAIN_RECORDS": lane})
    return run.returncode, run.stderr, records.read_bytes() if records.exists() else None


def wrapped(text):
    bare = PROLOGUE.sub(b"", text, count=1)
    for body in dict.fromkeys((text, bare)):
        yield b"<docs>" + PLAIN + body + PLAIN + b"</docs>"


def main():
    sxml, documents = sys.argv[1:]
    compared = differing = accepted = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "doc.cpy").write_text(LAYOUT)
        for path in sorted(pathlib.Path(documents).rglob("*.xml")):
            for text in wrapped(path.read_bytes()):
                (folder / "in.xml").write_bytes(text)
                ways = [outcome(sxml, folder, lane) for lane in ("yes", "no")]
                compared += 1
                accepted += ways[1][0] == 0
                if ways[0] != ways[1]:
                    differing += 1
                    print(f"{path}: lane {ways[0][:2]}, Expat {ways[1][:2]}")
    print(f"{compared} wrapped documents, {accepted} of them accepted, {differing} read differently")
    return 1 if differing or compared == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
