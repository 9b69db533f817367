"""A web server on a free port of the loopback: the port goes to standard output.

/good.xml is a document, /short.xml one whose body is cut short, everything else is not found.
"""
import http.server

DOCUMENT = b"<?xml version='1.0'?><a><r>1</r><r>2</r></a>"


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        if self.path not in ("/good.xml", "/short.xml"):
            self.send_error(404)
            return
        missing = 100 if self.path == "/short.xml" else 0
        self.send_response(200)
        self.send_header("Content-Length", str(len(DOCUMENT) + missing))
        self.end_headers()
        self.wfile.write(DOCUMENT)

    def log_message(self, *args):
        pass


server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
print(server.server_port, flush=True)
server.serve_forever()
