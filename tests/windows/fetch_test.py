#!/usr/bin/env python3
"""Documents that can and cannot be fetched from a local server: sxml.exe ends as the command on Linux does.
    fetch_test.py LINUX_SXML SXML_EXE"""

import http.server
import os
import pathlib
import subprocess
import sys
import tempfile
import threading

DOCUMENT = b"<?xml version='1.0'?><a><r>1</r><r>2</r></a>"
TOO_LARGE = DOCUMENT + b" " * (1 << 20)  # of more than the one MiB that is allowed here
ELSEWHERE = {"/to-file": "file:///etc/hostname", "/to-ftp": "ftp://127.0.0.1/x", "/round": "/round"}
# What is asked for, and whether it is a document.
PATHS = {
    "/whole": True, "/no-length": True, "/chunked": True, "/redirect/1": True, "/redirect/10": True,
    "/redirect/11": False, "/round": False, "/to-file": False, "/to-ftp": False, "/none": False, "/empty": False,
    "/short": False, "/cut-chunk": False, "/large": False, "/large-no-length": False,
}  # fmt: skip


class Handler(http.server.BaseHTTPRequestHandler):
    def answer(self, status, body=b"", **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), str(value))
        self.end_headers()
        try:
            self.wfile.write(body)
        except ConnectionError:
            pass  # a document that is too large is not taken to its end

    def do_GET(self):
        size = len(DOCUMENT)
        if self.path.startswith("/redirect/"):
            left = int(self.path.rpartition("/")[2]) - 1
            self.answer(302, Location=f"/redirect/{left}" if left else "/whole", Content_Length=0)
        elif self.path in ELSEWHERE:
            self.answer(302, Location=ELSEWHERE[self.path], Content_Length=0)
        elif self.path == "/whole":
            self.answer(200, DOCUMENT, Content_Length=size)
        elif self.path == "/empty":
            self.answer(200, Content_Length=0)
        elif self.path == "/short":
            self.answer(200, DOCUMENT, Content_Length=size + 100)
        elif self.path == "/large":
            self.answer(200, TOO_LARGE, Content_Length=len(TOO_LARGE))
        elif self.path == "/no-length":
            self.answer(200, DOCUMENT)
        elif self.path == "/large-no-length":
            self.answer(200, TOO_LARGE)
        elif self.path in ("/chunked", "/cut-chunk"):
            self.protocol_version = "HTTP/1.1"
            end = b"0\r\n\r\n" if self.path == "/chunked" else b"ff\r\n<"
            self.answer(200, b"%x\r\n%s\r\n%s" % (size, DOCUMENT, end), Transfer_Encoding="chunked", Connection="close")
        else:
            self.answer(404, b"none", Content_Length=4)

    def log_message(self, *_):
        pass


def main():
    os.environ |= {"SXML_FETCH_LIMIT": "1", "no_proxy": "*"}
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    address = f"http://127.0.0.1:{server.server_port}"
    with tempfile.TemporaryDirectory() as folder:
        for path, is_document in PATHS.items():
            outcomes = []
            for command in sys.argv[1:]:
                words = [command, "tree", address + path]
                run = subprocess.run(words, capture_output=True, check=False, env={**os.environ, "TMPDIR": folder})
                message = run.stderr.partition(b"or not in full: ")  # then come the words of a library
                # Wine does not notice that chunks break off; the parser then does.
                outcomes.append((run.returncode, run.stdout, *(message[:2] if path != "/cut-chunk" else ())))
                left = [f.name for f in pathlib.Path(folder).iterdir() if not f.name.startswith("wine-")]
                assert not left, f"{path}: {left}"
            assert outcomes[0] == outcomes[1], f"{path}: {outcomes[0]} became {outcomes[1]}"
            assert (outcomes[0][0] == 0) == is_document, f"{path}: {outcomes[0]}"
    print(f"{len(PATHS)} addresses, of which {sum(PATHS.values())} give a document: all as on Linux")


main()
