#!/usr/bin/env python3
"""Stand-in for GitHub's release pages, for the tool installer's tests.

    python3 tests/support/releaseserver.py --root DIR [--port 0] [--fault KIND:NAME]...
                                           [--redirect NAME URL] [--rate BYTES_PER_SEC]
    python3 tests/support/releaseserver.py --make-zip OUT stored|deflated ENTRY=FILE...

Serves on 127.0.0.1 only and prints "READY http://127.0.0.1:PORT/" once listening. Exits on
SIGTERM/SIGINT or when stdin, if a pipe, reaches end of file.

DIR/OWNER/REPO/TAG/NAME are the release files; the latest tag is the content of
DIR/OWNER/REPO/LATEST, else the greatest TAG. As on GitHub:
    /repos/OWNER/REPO/releases/latest           JSON with tag_name and the assets
    /OWNER/REPO/releases/download/TAG/NAME      302 to /assets/OWNER/REPO/TAG/NAME (the file)
    /OWNER/REPO/releases/latest/download/NAME   302 to the latest tag's download path

--fault KIND:NAME changes the answer for every request whose last path part is NAME ("latest"
for the API): tamper (one byte differs), cut (the Content-Length is promised, half the body
sent, the connection closed), slow (--rate bytes a second), 404, 429, ratelimit (403 with
X-RateLimit-Remaining: 0). --redirect NAME URL sends NAME's download to URL instead ("{port}"
in URL is the server's port).

--make-zip writes a zip archive of FILEs under the names ENTRY, with their modes, and exits.
"""

import argparse
import json
import os
import socket
import sys
import time
import urllib.parse
import zipfile
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from serverlife import exit_with_starter

HOST = "127.0.0.1"
CHUNK = 64 * 1024


def make_zip(out, method, entries):
    compression = zipfile.ZIP_STORED if method == "stored" else zipfile.ZIP_DEFLATED
    with zipfile.ZipFile(out, "w", compression) as archive:
        for entry in entries:
            name, path = entry.split("=", 1)
            info = zipfile.ZipInfo.from_file(path, arcname=name)
            info.compress_type = compression
            with open(path, "rb") as f:
                archive.writestr(info, f.read())


class ReleaseHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "QuillboxTestReleases/1.0"

    def log_message(self, fmt, *args):
        pass

    def do_GET(self):
        parts = [urllib.parse.unquote(p) for p in urllib.parse.urlsplit(self.path).path.split("/") if p]
        if any(p in (".", "..") for p in parts):
            return self._answer(400, b"bad path\n")
        fault = self.server.faults.get(parts[-1] if parts else "")
        if fault == "404":
            return self._answer(404, b"Not Found\n")
        if fault == "429":
            return self._answer(429, b"Too Many Requests\n", [("Retry-After", "60")])
        if fault == "ratelimit":
            return self._answer(403, b'{"message": "API rate limit exceeded"}\n',
                                [("X-RateLimit-Limit", "60"), ("X-RateLimit-Remaining", "0")])

        if len(parts) == 5 and parts[0] == "repos" and parts[3:] == ["releases", "latest"]:
            return self._latest(parts[1], parts[2])
        if len(parts) == 6 and parts[2:4] == ["releases", "download"]:
            owner, repo, tag, name = parts[0], parts[1], parts[4], parts[5]
            if name in self.server.redirects:
                port = str(self.server.server_address[1])
                return self._redirect(self.server.redirects[name].replace("{port}", port))
            return self._redirect(f"/assets/{owner}/{repo}/{tag}/{name}")
        if len(parts) == 6 and parts[2:5] == ["releases", "latest", "download"]:
            tag = self._latest_tag(parts[0], parts[1])
            if tag is None:
                return self._answer(404, b"Not Found\n")
            return self._redirect(f"/{parts[0]}/{parts[1]}/releases/download/{tag}/{parts[5]}")
        if len(parts) == 5 and parts[0] == "assets":
            return self._file(os.path.join(self.server.root, *parts[1:]), fault)
        return self._answer(404, b"Not Found\n")

    def _answer(self, code, body, headers=(), content_type="text/plain; charset=utf-8"):
        self.send_response(code)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        for key, value in headers:
            self.send_header(key, value)
        self.end_headers()
        self.wfile.write(body)

    def _redirect(self, location):
        self.send_response(302)
        self.send_header("Location", location)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def _latest_tag(self, owner, repo):
        folder = os.path.join(self.server.root, owner, repo)
        try:
            with open(os.path.join(folder, "LATEST")) as f:
                return f.read().strip()
        except OSError:
            pass
        try:
            tags = [t for t in os.listdir(folder) if os.path.isdir(os.path.join(folder, t))]
        except OSError:
            return None
        return max(tags) if tags else None

    def _latest(self, owner, repo):
        tag = self._latest_tag(owner, repo)
        if tag is None:
            return self._answer(404, b'{"message": "Not Found"}\n', content_type="application/json")
        folder = os.path.join(self.server.root, owner, repo, tag)
        base = f"http://{HOST}:{self.server.server_address[1]}"
        assets = [{"name": name, "size": os.path.getsize(os.path.join(folder, name)),
                   "browser_download_url": f"{base}/{owner}/{repo}/releases/download/{tag}/{name}"}
                  for name in sorted(os.listdir(folder))]
        body = json.dumps({"tag_name": tag, "name": tag, "draft": False, "prerelease": False,
                           "assets": assets}, indent=2).encode()
        self._answer(200, body, content_type="application/json; charset=utf-8")

    def _file(self, path, fault):
        try:
            with open(path, "rb") as f:
                data = f.read()
        except OSError:
            return self._answer(404, b"Not Found\n")
        if fault == "tamper" and data:
            data = data[:-1] + bytes([data[-1] ^ 0xFF])
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        try:
            if fault == "cut":
                self.wfile.write(data[:len(data) // 2])
                self.wfile.flush()
                self.close_connection = True
                self.connection.shutdown(socket.SHUT_RDWR)
            elif fault == "slow":
                self._send_slowly(data)
            else:
                self.wfile.write(data)
        except (BrokenPipeError, ConnectionResetError):
            self.close_connection = True

    def _send_slowly(self, data):
        rate = self.server.rate
        chunk = max(1, min(CHUNK, rate // 20))
        started = time.monotonic()
        for sent in range(0, len(data), chunk):
            self.wfile.write(data[sent:sent + chunk])
            self.wfile.flush()
            delay = started + (sent + chunk) / rate - time.monotonic()
            if delay > 0:
                time.sleep(delay)


class ReleaseServer(ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True

    def __init__(self, port, root, faults, redirects, rate):
        self.root = root
        self.faults = faults
        self.redirects = redirects
        self.rate = rate
        super().__init__((HOST, port), ReleaseHandler)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--root", help="folder of OWNER/REPO/TAG/NAME files")
    parser.add_argument("--port", type=int, default=0, help="port on 127.0.0.1 (0: any free)")
    parser.add_argument("--fault", action="append", default=[], metavar="KIND:NAME")
    parser.add_argument("--redirect", nargs=2, action="append", default=[], metavar=("NAME", "URL"))
    parser.add_argument("--rate", type=int, default=100_000, help="bytes a second for slow")
    parser.add_argument("--make-zip", nargs="+", metavar="ARG")
    args = parser.parse_args()

    if args.make_zip:
        if len(args.make_zip) < 3 or args.make_zip[1] not in ("stored", "deflated"):
            parser.error("--make-zip OUT stored|deflated ENTRY=FILE...")
        make_zip(args.make_zip[0], args.make_zip[1], args.make_zip[2:])
        return
    if not args.root:
        parser.error("--root is required")

    faults = {}
    for fault in args.fault:
        kind, _, name = fault.partition(":")
        if kind not in ("tamper", "cut", "slow", "404", "429", "ratelimit") or not name:
            parser.error(f"unknown fault {fault!r}")
        faults[name] = kind
    server = ReleaseServer(args.port, os.path.abspath(args.root), faults, dict(args.redirect),
                           args.rate)
    sys.stdout.write(f"READY http://{HOST}:{server.server_address[1]}/\n")
    sys.stdout.flush()

    exit_with_starter()
    try:
        server.serve_forever(poll_interval=0.2)
    except KeyboardInterrupt:
        pass
    finally:
        server.server_close()


if __name__ == "__main__":
    main()
