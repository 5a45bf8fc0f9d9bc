#!/usr/bin/env python3
"""An HTTP server on 127.0.0.1 that counts the requests made to it, for the plain-text view test
(see README.md): `start STATE_DIR` runs it in the background, `stop STATE_DIR` stops it and fails
if anything but /control* was asked for. GET /count answers the counts so far as JSON without
counting itself; its query is ignored, so a client that caches can ask "/count?N".
"""

import json
import os
import subprocess
import sys
import threading
import time
import urllib.request
from pathlib import Path

from testserver import Handler, listen, serve


class CountingHandler(Handler):
    def do_GET(self):
        path = self.path.split("?")[0]
        with self.server.lock:
            if path not in ("/count", "/stop"):
                self.server.counts[path] = self.server.counts.get(path, 0) + 1
                return self.answer(404, b"Not Found\n")
            body = json.dumps(self.server.counts).encode()
        self.answer(200, body, content_type="application/json")
        if path == "/stop":
            threading.Thread(target=self.server.shutdown).start()


def run(state):
    server, base = listen(CountingHandler, counts={}, lock=threading.Lock())
    # The record's texts: markup a rich-text view would act on, the picture on this server.
    record = {"id": "plain", "duration": 65, "view_count": 1, "formats": [],
              "title": f'<img src="{base}x.png"> <b>bold</b> &amp; 标题',
              "uploader": f'<b>频道</b> &amp; <img src="{base}uploader.png">'}
    (state / "info.json").write_text(json.dumps(record, ensure_ascii=False), encoding="utf-8")
    (state / "url.tmp").write_text(base)
    os.replace(state / "url.tmp", state / "url")
    # It ends by itself should "stop" never come.
    timer = threading.Timer(900, server.shutdown)
    timer.daemon = True
    timer.start()
    serve(server)


def start(state):
    state.mkdir(parents=True, exist_ok=True)
    for name in ("url", "info.json"):
        (state / name).unlink(missing_ok=True)
    subprocess.Popen([sys.executable, __file__, "serve", str(state)],
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
    with urllib.request.urlopen((state / "url").read_text() + "stop", timeout=30) as answer:
        counts = json.load(answer)
    print("requests:", json.dumps(counts))
    unexpected = {path: n for path, n in counts.items() if not path.startswith("/control")}
    if unexpected:
        print("fetched from text that should have been plain:", json.dumps(unexpected), file=sys.stderr)
        return 1
    return 0


def main():
    # "serve" is the server itself, which "start" leaves running in the background.
    command, state = sys.argv[1], Path(sys.argv[2])
    return {"start": start, "serve": run, "stop": stop}[command](state)


if __name__ == "__main__":
    sys.exit(main())
