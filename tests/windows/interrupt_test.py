#!/usr/bin/env python3
"""Ctrl-C on a console, while sxml.exe writes, reads standard input and fetches: no file remains.
    interrupt_test.py WINE SXML_EXE COPYBOOK"""

import os
import pathlib
import pty
import signal
import socket
import sys
import tempfile
import threading
import time

WINE, EXE, COPYBOOK = sys.argv[1:]
SECONDS = 60


def wait_for(condition):
    end = time.monotonic() + SECONDS
    while not condition():
        assert time.monotonic() < end, "nothing came"
        time.sleep(0.02)


def interrupted(words, folder, pattern):
    """Starts the command on a console, presses Ctrl-C when a file of this pattern is there; gives the exit status."""
    process, console = pty.fork()
    if process == 0:
        if words[-1] == "-":
            os.dup2(os.open("fifo", os.O_RDWR), 0)
        os.execv(WINE, [WINE, EXE, *words])
    console_output = threading.Thread(target=drain, args=(console,), daemon=True)
    console_output.start()
    wait_for(lambda: list(folder.glob(pattern)))
    time.sleep(0.3)
    os.write(console, b"\x03")
    end = time.monotonic() + SECONDS
    while time.monotonic() < end:
        done, status = os.waitpid(process, os.WNOHANG)
        if done:
            return os.waitstatus_to_exitcode(status)
        time.sleep(0.02)
    os.kill(process, signal.SIGKILL)
    raise AssertionError("goes on after Ctrl-C")


def drain(console):
    try:
        while os.read(console, 4096):
            pass
    except OSError:
        pass  # the console is gone


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        temporary = folder / "tmp"
        temporary.mkdir()
        os.chdir(folder)
        os.environ["TMPDIR"] = str(temporary)
        os.mkfifo("fifo")
        held = os.open("fifo", os.O_RDWR)
        server = socket.create_server(("127.0.0.1", 0))  # accepts, and never answers
        address = f"http://127.0.0.1:{server.getsockname()[1]}/"
        before = sorted(folder.iterdir())
        for what, words, pattern in (
            ("writing", ["to-xml", "fifo", "n.xml", "--layout", COPYBOOK], ".n.xml.*"),
            ("reading standard input", ["tree", "-"], "tmp/.sxml-input*"),
            ("fetching", ["tree", address], "tmp/.sxml-input*"),
        ):
            status = interrupted(words, folder, pattern)
            assert status not in (0, 1), f"{what}: status {status}"
            # Wine keeps a file of its own there.
            left = [*set(folder.iterdir()) - set(before), *(f for f in temporary.iterdir() if not f.name.startswith("wine-"))]
            assert not left, f"{what}: {left}"
            print(f"{what}: ended with status {status}, nothing left")
        os.close(held)


main()
