#!/usr/bin/env python3
"""Stand-in for GitHub's release pages, for the tool installer's tests (see README.md).

    python3 tests/support/releaseserver.py --root DIR [--fault KIND:NAME]... [--redirect NAME URL]
                                           [--rate BYTES_PER_SEC]
    python3 tests/support/releaseserver.py --make-zip OUT stored|deflated ENTRY=FILE...

The latest tag of DIR/OWNER/REPO is its greatest TAG folder. As on GitHub:
/repos/OWNER/REPO/releases/latest is JSON with the tag_name, and
/OWNER/REPO/releases/download/TAG/NAME redirects to /assets/OWNER/REPO/TAG/NAME (the file).
--fault KIND:NAME changes the answer to every request whose last path part is NAME ("latest" for
the API): tamper (one byte differs), cut (half the promised body, then the connection closes), slow
(--rate bytes a second), 404, 429, ratelimit (403 with X-RateLimit-Remaining: 0). --redirect NAME
URL sends NAME's download to URL ("{port}" in it is the server's port).
"""

import argparse
import io
import json
import os
import socket
import urllib.parse
import zipfile

from testserver import Handler, listen, serve

FAULTS = ("tamper", "cut", "slow", "404", "429", "ratelimit")


def make_zip(out, method, entries):
    compression = zipfile.ZIP_STORED if method == "stored" else zipfile.ZIP_DEFLATED
    with zipfile.ZipFile(out, "w", compression) as archive:
        for entry in entries:
            name, path = entry.split("=", 1)
            info = zipfile.ZipInfo.from_file(path, arcname=name)
            info.compress_type = compression
            with open(path, "rb") as f:
                archive.writestr(info, f.read())


class ReleaseHandler(Handler):
    def do_GET(self):
        parts = [urllib.parse.unquote(p) for p in urllib.parse.urlsplit(self.path).path.split("/") if p]
        if any(p in (".", "..") for p in parts):
            return self.answer(400, b"bad path\n")
        fault = self.server.faults.get(parts[-1] if parts else "")
        if fault == "404":
            return self.answer(404, b"Not Found\n")
        if fault == "429":
            return self.answer(429, b"Too Many Requests\n", [("Retry-After", "60")])
        if fault == "ratelimit":
            return self.answer(403, b'{"message": "API rate limit exceeded"}\n',
                               [("X-RateLimit-Limit", "60"), ("X-RateLimit-Remaining", "0")])

        if len(parts) == 5 and parts[0] == "repos" and parts[3:] == ["releases", "latest"]:
            return self._latest(parts[1], parts[2])
        if len(parts) == 6 and parts[2:4] == ["releases", "download"]:
            owner, repo, tag, name = parts[0], parts[1], parts[4], parts[5]
            if name in self.server.redirects:
                port = str(self.server.server_address[1])
                return self._redirect(self.server.redirects[name].replace("{port}", port))
            return self._redirect(f"/assets/{owner}/{repo}/{tag}/{name}")
        if len(parts) == 5 and parts[0] == "assets":
            return self._file(os.path.join(self.server.root, *parts[1:]), fault)
        return self.answer(404, b"Not Found\n")

    def _redirect(self, location):
        self.answer(302, headers=[("Location", location)])

    def _latest_tag(self, owner, repo):
        folder = os.path.join(self.server.root, owner, repo)
        try:
            tags = [t for t in os.listdir(folder) if os.path.isdir(os.path.join(folder, t))]
        except OSError:
            return None
        return max(tags) if tags else None

    def _latest(self, owner, repo):
        tag = self._latest_tag(owner, repo)
        if tag is None:
            return self.answer(404, b'{"message": "Not Found"}\n', content_type="application/json")
        self.answer(200, json.dumps({"tag_name": tag}).encode(), content_type="application/json; charset=utf-8")

    def _file(self, path, fault):
        try:
            with open(path, "rb") as f:
                data = f.read()
        except OSError:
            return self.answer(404, b"Not Found\n")
        if fault == "tamper" and data:
            data = data[:-1] + bytes([data[-1] ^ 0xFF])
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        if fault == "cut":
            self.send_body(io.BytesIO(data), len(data) // 2)
            self.close_connection = True
            try:
                self.connection.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
        else:
            self.send_body(io.BytesIO(data), len(data), self.server.rate if fault == "slow" else 0)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--root", help="folder of OWNER/REPO/TAG/NAME files")
    parser.add_argument("--fault", action="append", default=[], metavar="KIND:NAME")
    parser.add_argument("--redirect", nargs=2, action="append", default=[], metavar=("NAME", "URL"))
    parser.add_argument("--rate", type=int, default=100_000, help="bytes a second for slow")
    parser.add_argument("--make-zip", nargs="+", metavar="ARG")
    args = parser.parse_args()

    if args.make_zip:
        if len(args.make_zip) < 3 or args.make_zip[1] not in ("stored", "deflated"):
            parser.error("--make-zip OUT stored|deflated ENTRY=FILE...")
        return make_zip(args.make_zip[0], args.make_zip[1], args.make_zip[2:])
    if not args.root:
        parser.error("--root is required")
    faults = {}
    for fault in args.fault:
        kind, _, name = fault.partition(":")
        if kind not in FAULTS or not name:
            parser.error(f"unknown fault {fault!r}")
        faults[name] = kind
    serve(listen(ReleaseHandler, root=os.path.abspath(args.root), faults=faults,
                 redirects=dict(args.redirect), rate=args.rate)[0])


if __name__ == "__main__":
    main()
