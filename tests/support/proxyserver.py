#!/usr/bin/env python3
"""An HTTP proxy on 127.0.0.1 for the tests that send the real yt-dlp through a proxy (see
README.md):

    python3 tests/support/proxyserver.py --record FILE

It carries GET and HEAD requests in absolute form ("GET http://127.0.0.1:PORT/path HTTP/1.1")
to servers on 127.0.0.1 only, with their headers (Range included) and the answer as it comes.
Anything else is refused with 403: another host, another scheme, CONNECT, a request without a
host. Each request carried appends "METHOD URL STATUS" to FILE, each refused one
"REFUSED METHOD TARGET", one line each, written before the answer goes back.
"""

import argparse
import http.client
import threading
import urllib.parse

from testserver import CHUNK, HOST, Handler, listen, serve

# Headers that concern one connection only and are not passed on (RFC 9110, 7.6.1).
HOP_BY_HOP = {"connection", "keep-alive", "proxy-connection", "proxy-authenticate", "proxy-authorization", "te",
              "trailer", "transfer-encoding", "upgrade"}


class ProxyHandler(Handler):
    def record(self, line):
        with self.server.lock, open(self.server.record, "a", encoding="utf-8") as out:
            out.write(line + "\n")

    def refuse(self):
        self.record(f"REFUSED {self.command} {self.path}")
        self.answer(403, b"Only http://127.0.0.1 is carried\n")

    def do_CONNECT(self):
        self.refuse()
        self.close_connection = True

    def do_HEAD(self):
        self.do_GET()

    def do_GET(self):
        target = urllib.parse.urlsplit(self.path)
        if target.scheme != "http" or target.hostname != HOST:
            return self.refuse()
        headers = {key: value for key, value in self.headers.items() if key.lower() not in HOP_BY_HOP}
        upstream = http.client.HTTPConnection(HOST, target.port or 80, timeout=60)
        try:
            try:
                upstream.request(self.command, urllib.parse.urlunsplit(("", "", target.path or "/", target.query, "")),
                                 headers=headers)
                answer = upstream.getresponse()
            except OSError as error:
                self.record(f"{self.command} {self.path} 502")
                return self.answer(502, f"{error}\n".encode())
            self.record(f"{self.command} {self.path} {answer.status}")
            self.pass_on(answer)
        except (BrokenPipeError, ConnectionResetError):
            self.close_connection = True
        finally:
            upstream.close()

    def pass_on(self, answer):
        body = None
        length = answer.getheader("Content-Length")
        if length is None and self.command != "HEAD":
            body = answer.read()  # chunked, or until the server closes: sent on with its length
            length = str(len(body))
        self.send_response(answer.status, answer.reason)
        for key, value in answer.getheaders():
            if key.lower() not in HOP_BY_HOP | {"content-length", "date", "server"}:
                self.send_header(key, value)
        if length is not None:
            self.send_header("Content-Length", length)
        self.end_headers()
        if self.command == "HEAD":
            return
        if body is not None:
            self.wfile.write(body)
            return
        while data := answer.read(CHUNK):
            self.wfile.write(data)

def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--record", required=True, help="file that gets one line per request")
    args = parser.parse_args()
    open(args.record, "a", encoding="utf-8").close()
    serve(listen(ProxyHandler, record=args.record, lock=threading.Lock())[0])


if __name__ == "__main__":
    main()
