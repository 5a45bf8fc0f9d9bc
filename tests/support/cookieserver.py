#!/usr/bin/env python3
"""HTTP server on 127.0.0.1 for the cookie end-to-end test.

    python3 tests/support/cookieserver.py --record FILE

GET /set answers with a page and two cookies ("session=abc123", "pref=dark", one day). Any other
path answers with a few bytes of "video/mp4". Every request appends its path and its Cookie header
(or "-") to FILE, tab-separated. Once listening it prints "READY http://127.0.0.1:PORT/"; it serves
until its standard input reaches end of file.
"""

import argparse
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--record", required=True)
    args = parser.parse_args()
    lock = threading.Lock()

    class Handler(BaseHTTPRequestHandler):
        def record(self):
            with lock, open(args.record, "a", encoding="utf-8") as out:
                out.write("%s\t%s\n" % (self.path, self.headers.get("Cookie") or "-"))

        def answer(self, body):
            self.record()
            self.send_response(200)
            if self.path == "/set":
                self.send_header("Set-Cookie", "session=abc123; Max-Age=86400; Path=/")
                self.send_header("Set-Cookie", "pref=dark; Max-Age=86400; Path=/")
                self.send_header("Content-Type", "text/html; charset=utf-8")
            else:
                self.send_header("Content-Type", "video/mp4")
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            return body

        def do_GET(self):
            body = b"<html><body>ok</body></html>" if self.path == "/set" else b"\0" * 4096
            self.wfile.write(self.answer(body))

        def do_HEAD(self):
            self.answer(b"\0" * 4096)

        def log_message(self, *_):
            pass

    server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print("READY http://127.0.0.1:%d/" % server.server_address[1], flush=True)
    sys.stdin.read()
    server.shutdown()


main()
