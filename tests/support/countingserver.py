#!/usr/bin/env python3
"""An HTTP server on 127.0.0.1 that counts the requests made to it, for the plain-text view test.

    countingserver.py start STATE_DIR   start it in the background; it writes STATE_DIR/url and
                                        STATE_DIR/info.json, a video record for the stand-in
                                        yt-dlp whose texts hold markup pointing at it
    countingserver.py stop STATE_DIR    stop it; fails if anything but /control* was asked for

GET /count answers the counts so far as JSON ({"/x.png": 1}), without counting itself; a query
is ignored, so a client that caches can ask "/count?N". The
server stops by itself after --lifetime seconds (default 900).
"""

import argparse
import http.server
import json
import os
import subprocess
import sys
import threading
import time
import urllib.request
from pathlib import Path


def texts(base):
    """The record's texts: markup a rich-text view would act on, the picture on this server."""
    return {
        "title": f'<img src="{base}x.png"> <b>bold</b> &amp; 标题',
        "uploader": f'<b>频道</b> &amp; <img src="{base}uploader.png">',
    }


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        # The query is ignored: asking "/count?7" gets past a cache.
        path = self.path.split("?")[0]
        if path not in ("/count", "/stop"):
            with self.server.lock:
                self.server.counts[path] = self.server.counts.get(path, 0) + 1
            self.send_error(404)
            return
        with self.server.lock:
            body = json.dumps(self.server.counts).encode()
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)
        if path == "/stop":
            threading.Thread(target=self.server.shutdown).start()

    def log_message(self, *args):
        pass


def serve(state, lifetime):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.counts, server.lock = {}, threading.Lock()
    base = f"http://127.0.0.1:{server.server_address[1]}/"
    record = dict(texts(base), id="plain", duration=65, view_count=1, formats=[])
    (state / "info.json").write_text(json.dumps(record, ensure_ascii=False), encoding="utf-8")
    (state / "url.tmp").write_text(base)
    os.replace(state / "url.tmp", state / "url")
    timer = threading.Timer(lifetime, server.shutdown)
    timer.daemon = True
    timer.start()
    server.serve_forever()


def start(state, lifetime):
    state.mkdir(parents=True, exist_ok=True)
    for name in ("url", "info.json"):
        (state / name).unlink(missing_ok=True)
    subprocess.Popen([sys.executable, __file__, "serve", str(state), "--lifetime", str(lifetime)],
                     stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                     start_new_session=True)
    for _ in range(300):
        if (state / "url").exists():
            print("READY", (state / "url").read_text())
            return 0
        time.sleep(0.1)
    print("the counting server did not start", file=sys.stderr)
    return 1


def stop(state):
    base = (state / "url").read_text()
    with urllib.request.urlopen(base + "stop", timeout=30) as answer:
        counts = json.load(answer)
    unexpected = {path: n for path, n in counts.items() if not path.startswith("/control")}
    print("requests:", json.dumps(counts))
    if unexpected:
        print("fetched from text that should have been plain:", json.dumps(unexpected), file=sys.stderr)
        return 1
    return 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("command", choices=["start", "serve", "stop"])
    parser.add_argument("state", type=Path)
    parser.add_argument("--lifetime", type=float, default=900)
    arguments = parser.parse_args()
    if arguments.command == "serve":
        serve(arguments.state, arguments.lifetime)
        return 0
    if arguments.command == "start":
        return start(arguments.state, arguments.lifetime)
    return stop(arguments.state)


if __name__ == "__main__":
    sys.exit(main())
