#!/usr/bin/env python3
"""Does what the pages tell their readers to do: run_pages.py BUILD SOURCE PAGE...

The build is installed; each page gets a folder of its own with the examples in it. Of a page's parts between lines
of three backquotes, in their order:
    ```console     lines that begin with "$ " are run; what follows each is what it prints ("..." stands for any lines)
    ```sh          is run, and must succeed
    ```text        is what the part before prints
    ```python      is run by Python
    ```LANGUAGE FILE   is written to the file
Other parts are not looked at.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

RUNTIME_WARNING = "Warning: program compiled against libxml "  # each program with Debian's libcob 3.2
MARK = "-- end of the output, status "


class Shell:
    """One shell for a page, so that `cd` and `export` count for what follows."""

    def __init__(self, folder, environment):
        self.process = subprocess.Popen(["bash"], cwd=folder, env=environment, text=True, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def run(self, command):
        """What the command printed, and its status."""
        self.process.stdin.write(f'{command}\nstatus=$?; echo "{MARK}$status"; (exit $status)\n')
        self.process.stdin.flush()
        lines = []
        for line in self.process.stdout:
            if MARK in line:
                before, _, status = line.partition(MARK)
                return "".join(lines) + before, int(status)
            if not line.startswith(RUNTIME_WARNING):
                lines.append(line.replace("\r", ""))
        raise SystemExit(f"the shell has ended in: {command}")


def matches(printed, expected):
    """Whether a text is as the page says."""
    pattern = re.escape(expected.strip("\n")).replace(re.escape("\n...\n"), r"\n(?:.*\n)*?")
    return re.fullmatch(pattern, printed.strip("\n")) is not None


def run_console(shell, text, fail):
    commands = re.split(r"^\$ ", text, flags=re.M)[1:]
    for part in commands:
        command, _, expected = part.partition("\n")
        while command.endswith("\\"):
            more, _, expected = expected.partition("\n")
            command += "\n" + more
        printed, _ = shell.run(command)
        if not matches(printed, expected):
            fail(command, f"prints\n{printed}\nand not\n{expected}")


def run_page(page, folder, environment):
    failures = []
    shell = Shell(folder, environment)

    def fail(command, why):
        failures.append(f"{page.name}: {command}: {why}")

    printed, ran = "", 0
    for label, text in re.findall(r"^```([^\n`]*)\n(.*?)^```$", page.read_text(), flags=re.M | re.S):
        language, _, file = label.partition(" ")
        if file:
            (folder / file).write_text(text)
        elif language == "console":
            run_console(shell, text, fail)
        elif language in ("sh", "python"):
            command = text if language == "sh" else f"/usr/bin/python3 - <<'PYTHON'\n{text}PYTHON"
            printed, status = shell.run(command)
            if status != 0:
                fail(text, f"ends with status {status}:\n{printed}")
        elif language == "text" and printed.strip() != text.strip():
            fail("the output", f"is\n{printed}\nand not\n{text}")
        ran += language in ("console", "sh", "python")
    if ran == 0:
        fail("the page", "has no commands")
    return failures


def main(build, source, pages):
    failures = []
    with tempfile.TemporaryDirectory() as scratch:
        prefix = pathlib.Path(scratch) / "installed"
        subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
        environment = {**os.environ, "PATH": f"{prefix}/bin:{os.environ['PATH']}", "LD_LIBRARY_PATH": f"{prefix}/lib",
                       "PKG_CONFIG_PATH": f"{prefix}/lib/pkgconfig", "SOURCE_DATE_EPOCH": "1795348800",
                       "PYTHONPATH": f"{prefix}/lib/python3/dist-packages", "PYTHONDONTWRITEBYTECODE": "1"}
        for name in pages:
            folder = pathlib.Path(scratch) / name.replace("/", "-")
            examples = prefix / "share/sxml/examples"
            subprocess.run(["cp", "-r", examples, folder], check=True)
            (folder / "examples").symlink_to(examples)  # as in the sources
            (folder / "build").symlink_to(pathlib.Path(build).resolve())
            home = pathlib.Path(scratch) / "home"
            home.mkdir(exist_ok=True)
            environment["HOME"] = str(home)
            failures += run_page(pathlib.Path(source) / name, folder, environment)
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit("usage: run_pages.py BUILD SOURCE PAGE...")
    sys.exit(main(sys.argv[1], sys.argv[2], sys.argv[3:]))
