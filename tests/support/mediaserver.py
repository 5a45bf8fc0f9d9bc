#!/usr/bin/env python3
"""Static HTTP server for the tests and benchmarks that drive the real yt-dlp (see README.md).

    python3 tests/support/mediaserver.py --root DIR [--generate] [--duration SECONDS]

/slow/RATE/PATH serves PATH at about RATE bytes a second, for a download that can be watched.

Playlists, as RSS feeds that yt-dlp's generic extractor reads (each item's enclosure is an entry):
/feed/N.xml is "测试列表 N" with N items, item i "第 i 个视频" at /clip/i.mp4; /clip/NAME.mp4 is the
generated video.mp4 under an address of its own, so every item gets its own id and file name.
/watch?v=ID is that clip, and with &list=L the feed of 5 items instead, as a video link that also
names a list. /empty-feed.xml has no items; /broken-feed.xml answers 500.
"""

import argparse
import email.utils
import os
import posixpath
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.parse
from xml.sax.saxutils import escape, quoteattr

from testserver import HOST, Handler, listen, serve

CONTENT_TYPES = {".mp4": "video/mp4", ".m4a": "audio/mp4", ".m4s": "video/iso.segment", ".ts": "video/mp2t",
                 ".m3u8": "application/vnd.apple.mpegurl", ".mpd": "application/dash+xml",
                 ".html": "text/html; charset=utf-8", ".jpg": "image/jpeg"}
CLIP = "video.mp4"
FEED_LIMIT = 100_000  # items; a larger feed is a typo, not a test
LIST_LENGTH = 5  # items of the list a /watch link names


def generate(root, duration):
    ffmpeg = shutil.which("ffmpeg") or sys.exit("mediaserver: ffmpeg not found on PATH")
    video = ["-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-g", "25", "-keyint_min", "25",
             "-sc_threshold", "0"]
    aac = ["-c:a", "aac", "-b:a", "64k", "-ac", "2"]
    av = ["-map", "0:v", "-map", "1:a"] + video + aac
    mp4 = ["-movflags", "+faststart", "-f", "mp4"]
    outputs = [
        ("video.mp4", av + mp4),
        ("silent.mp4", ["-map", "0:v"] + video + mp4),
        ("audio.m4a", ["-map", "1:a"] + aac + ["-movflags", "+faststart", "-f", "ipod"]),
        ("hls/index.m3u8", av + ["-f", "hls", "-hls_time", "1", "-hls_playlist_type", "vod",
                                 "-hls_segment_filename", "{work}/segment%03d.ts"]),
        ("dash/manifest.mpd", av + ["-f", "dash", "-seg_duration", "1", "-use_template", "1",
                                    "-use_timeline", "1", "-adaptation_sets", "id=0,streams=v id=1,streams=a"]),
    ]
    for name, args in outputs:
        if os.path.exists(os.path.join(root, name)):
            continue
        # Made in a folder of its own and moved into place, so an interrupted run never leaves a
        # truncated file that a later run would take as done.
        work = tempfile.mkdtemp(prefix=".partial.", dir=root)
        try:
            command = [ffmpeg, "-hide_banner", "-nostdin", "-y",
                       "-f", "lavfi", "-i", f"testsrc=size=160x120:rate=25:duration={duration}",
                       "-f", "lavfi", "-i", f"sine=frequency=440:sample_rate=44100:duration={duration}",
                       *[a.format(work=work) for a in args], os.path.join(work, os.path.basename(name))]
            result = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
            if result.returncode != 0:
                sys.exit(f"{result.stderr}\nmediaserver: ffmpeg failed while making {name}")
            if "/" in name:
                os.chmod(work, 0o755)  # mkdtemp makes it private
                shutil.rmtree(os.path.join(root, os.path.dirname(name)), ignore_errors=True)
                os.replace(work, os.path.join(root, os.path.dirname(name)))
            else:
                os.replace(os.path.join(work, name), os.path.join(root, name))
        finally:
            shutil.rmtree(work, ignore_errors=True)


def parse_range(header, size):
    """(start, end) inclusive, None to serve the whole file, or "unsatisfiable"."""
    m = re.fullmatch(r"\s*bytes\s*=\s*(\d*)\s*-\s*(\d*)\s*", header or "")
    if not m or m.group(1) == m.group(2) == "":
        return None  # absent, malformed or multi-range
    first, last = m.group(1), m.group(2)
    if first == "":
        return "unsatisfiable" if int(last) == 0 or size == 0 else (max(0, size - int(last)), size - 1)
    start, end = int(first), size - 1 if last == "" else min(int(last), size - 1)
    return "unsatisfiable" if start >= size or (last != "" and int(last) < start) else (start, end)


class MediaHandler(Handler):
    def do_HEAD(self):
        self.do_GET()

    def feed(self, count):
        """An RSS 2.0 feed of `count` items, each an enclosure at /clip/i.mp4."""
        base = f"http://{HOST}:{self.server.server_address[1]}"
        clip = os.path.join(self.server.root, CLIP)
        size = os.path.getsize(clip) if os.path.isfile(clip) else 0
        duration = f"{self.server.duration:g}"
        items = "".join(
            f"<item><title>第 {i} 个视频</title>"
            f"<enclosure url={quoteattr(f'{base}/clip/{i}.mp4')} length=\"{size}\" type=\"video/mp4\"/>"
            f"<itunes:duration>{duration}</itunes:duration></item>\n" for i in range(1, count + 1))
        body = ('<?xml version="1.0" encoding="UTF-8"?>\n'
                '<rss version="2.0" xmlns:itunes="http://www.itunes.com/dtds/podcast-1.0.dtd"><channel>\n'
                f"<title>{escape(f'测试列表 {count}')}</title><link>{escape(base + self.path)}</link>"
                f"<description>{count} 个测试视频</description>\n{items}</channel></rss>\n")
        self.answer(200, body.encode(), content_type="application/rss+xml; charset=utf-8")

    def do_GET(self):
        url = urllib.parse.urlsplit(self.path)
        path = url.path
        status = re.match(r"/status/(\d{3})(/|$)", path)
        if status:
            code = int(status.group(1))
            return self.answer(code, f"{code}\n".encode(), [("Retry-After", "60")] if code == 429 else [])
        feed = re.fullmatch(r"/feed/(\d+)\.xml", path)
        if feed and int(feed.group(1)) <= FEED_LIMIT:
            return self.feed(int(feed.group(1)))
        if path == "/empty-feed.xml":
            return self.feed(0)
        if path == "/broken-feed.xml":
            return self.answer(500, b"Internal Server Error\n")
        query = urllib.parse.parse_qs(url.query)
        if path == "/watch" and query.get("list"):
            return self.feed(LIST_LENGTH)
        parts = [p for p in posixpath.normpath(urllib.parse.unquote(path)).split("/") if p not in ("", ".", "..")]
        rate = 0
        if len(parts) >= 3 and parts[0] == "slow" and parts[1].isdigit():
            rate, parts = int(parts[1]), parts[2:]
        if len(parts) >= 3 and parts[0] == "named":
            parts = [parts[1]]
        elif len(parts) == 2 and parts[0] == "clip" and parts[1].endswith(".mp4"):
            parts = [CLIP]
        elif parts == ["watch"] and query.get("v"):
            parts = [CLIP]
        local = os.path.join(self.server.root, *parts)
        if not os.path.isfile(local):
            return self.answer(404, b"Not Found\n")
        with open(local, "rb") as f:
            size = os.fstat(f.fileno()).st_size
            rng = parse_range(self.headers.get("Range"), size)
            if rng == "unsatisfiable":
                return self.answer(416, b"Range Not Satisfiable\n", [("Content-Range", f"bytes */{size}")])
            start, end = rng or (0, size - 1)
            self.send_response(206 if rng else 200)
            if rng:
                self.send_header("Content-Range", f"bytes {start}-{end}/{size}")
            self.send_header("Content-Type", CONTENT_TYPES.get(os.path.splitext(local)[1], "application/octet-stream"))
            self.send_header("Content-Length", str(end - start + 1))
            self.send_header("Accept-Ranges", "bytes")
            self.send_header("Last-Modified", email.utils.formatdate(os.path.getmtime(local), usegmt=True))
            self.end_headers()
            if self.command == "GET":
                f.seek(start)
                self.send_body(f, end - start + 1, rate)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--root", required=True, help="directory to serve")
    parser.add_argument("--generate", action="store_true", help="make the test media in ROOT if missing")
    parser.add_argument("--duration", type=float, default=4.0, help="length of generated media in seconds")
    args = parser.parse_args()
    root = os.path.abspath(args.root)
    os.makedirs(root, exist_ok=True)
    if args.generate:
        generate(root, args.duration)
    serve(listen(MediaHandler, root=root, duration=args.duration)[0])


if __name__ == "__main__":
    main()
