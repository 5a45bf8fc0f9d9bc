#!/usr/bin/env python3
"""HTTP server on 127.0.0.1 for the cookie end-to-end test: GET /set answers a page and two
cookies, any other path a few bytes of "video/mp4"; each request's path and Cookie header (or "-")
are appended to the --record FILE, tab-separated.
"""

import argparse
import threading

from testserver import Handler, listen, serve


class CookieHandler(Handler):
    def do_GET(self):
        with self.server.lock, open(self.server.record, "a", encoding="utf-8") as out:
            out.write("%s\t%s\n" % (self.path, self.headers.get("Cookie") or "-"))
        if self.path == "/set":
            cookies = [("Set-Cookie", f"{c}; Max-Age=86400; Path=/") for c in ("session=abc123", "pref=dark")]
            return self.answer(200, b"<html><body>ok</body></html>", cookies, "text/html; charset=utf-8")
        self.answer(200, b"\0" * 4096, content_type="video/mp4")

    do_HEAD = do_GET


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--record", required=True)
    serve(listen(CookieHandler, record=parser.parse_args().record, lock=threading.Lock())[0])
