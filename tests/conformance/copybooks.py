"""Makes a copybook of each document of a folder, and reads the document with it.

    copybooks.py SXML FOLDER

Each document is taken as it is, and as one of several records. `sxml copybook` must end with status 0
or 1 within a time limit; where it makes a copybook, `sxml check` must be able to read that, and the
document with it.
"""

import pathlib
import subprocess
import sys
import tempfile

from wrapped_records import wrapped

SECONDS = 20


def status_of(words, folder):
    try:
        run = subprocess.run(words, cwd=folder, capture_output=True, check=False, timeout=SECONDS)
    except subprocess.TimeoutExpired:
        return "too slow", b""
    return run.returncode, run.stderr


def settings_for(note):
    return ["--set", "4GL_COLUMN_CASE=2"] if b"4GL_COLUMN_CASE=2" in note else []


def main():
    sxml, documents = sys.argv[1:]
    tried = made = failed = 0
    for path in sorted(pathlib.Path(documents).rglob("*.xml")):
        with tempfile.TemporaryDirectory() as name:
            for number, text in enumerate((path.read_bytes(), *wrapped(path.read_bytes()))):
                # As it is it stands beside its DTD.
                document = path
                if number > 0:
                    document = pathlib.Path(name) / "in.xml"
                    document.write_bytes(text)
                for options in ([], ["--attributes"]):
                    tried += 1
                    status, error = status_of(
                        [sxml, "copybook", document, "-o", "c.cpy", *options], name)
                    if status == 0:
                        made += 1
                        status, error = status_of(
                            [sxml, "check", document, "--as", "xml", "-l", "c.cpy",
                             *settings_for(error), *options], name)
                    if status not in (0, 1) or b"in XML already" in error:
                        failed += 1
                        print(f"{path}: {number} {options}: {status}: {error[:300]}")
    print(f"{tried} documents, {made} copybooks, {failed} failures")
    return 1 if failed or made == 0 else 0


sys.exit(main())
