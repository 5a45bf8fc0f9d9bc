#!/usr/bin/env python3
"""Small static HTTP server for end-to-end tests and benchmarks that drive the real yt-dlp.

    python3 tests/support/mediaserver.py --root DIR [--port 0] [--generate]
                                         [--duration SECONDS] [--rate-limit BYTES_PER_SEC]
                                         [--verbose]

Serves DIR on 127.0.0.1 only. Once listening it prints exactly one line,
"READY http://127.0.0.1:PORT/", to stdout. It then serves until it gets SIGTERM/SIGINT, or until
its stdin reaches end of file when stdin is a pipe or socket (so a test that dies does not leave
it behind). A terminal or /dev/null on stdin is not watched.

Supports GET and HEAD, single byte ranges (206 / 416), Accept-Ranges and proper Content-Type for
media and manifests. /status/CODE/... answers with that HTTP status (403, 404, 410, 429, ...),
and /named/FILE/ANY-NAME serves FILE under any name. --rate-limit throttles every response body
to about that many bytes per second.

--generate first creates, with ffmpeg, whatever of these is missing in DIR:
    video.mp4            H.264 (or MPEG-4 part 2) + AAC, faststart
    silent.mp4           the same video without an audio track
    audio.m4a            AAC only
    hls/index.m3u8       VOD playlist with 1 s .ts segments
    dash/manifest.mpd    separate video-only and audio-only representations
"""

import argparse
import email.utils
import os
import posixpath
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import time
import urllib.parse
from http import HTTPStatus
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from serverlife import exit_with_starter

HOST = "127.0.0.1"

CONTENT_TYPES = {
    ".mp4": "video/mp4",
    ".m4v": "video/mp4",
    ".m4a": "audio/mp4",
    ".m4s": "video/iso.segment",
    ".mp3": "audio/mpeg",
    ".m3u8": "application/vnd.apple.mpegurl",
    ".ts": "video/mp2t",
    ".mpd": "application/dash+xml",
    ".webm": "video/webm",
    ".mkv": "video/x-matroska",
    ".ogg": "audio/ogg",
    ".opus": "audio/ogg",
    ".html": "text/html; charset=utf-8",
    ".txt": "text/plain; charset=utf-8",
    ".json": "application/json",
    ".vtt": "text/vtt",
}

CHUNK = 64 * 1024

STATUS_CODES = {status.value for status in HTTPStatus}


# --------------------------------------------------------------------------------------------
# Media generation

def _ffmpeg():
    path = shutil.which("ffmpeg")
    if not path:
        sys.exit("mediaserver: ffmpeg not found on PATH")
    return path


def _video_codec_args(ffmpeg):
    encoders = subprocess.run([ffmpeg, "-hide_banner", "-encoders"], capture_output=True,
                              text=True).stdout
    if re.search(r"^\s*V\S*\s+libx264\s", encoders, re.M):
        return ["-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"]
    return ["-c:v", "mpeg4", "-q:v", "5"]


def _sources(duration):
    # Two lavfi inputs: input 0 is video, input 1 is audio.
    return ["-f", "lavfi", "-i", f"testsrc=size=160x120:rate=25:duration={duration}",
            "-f", "lavfi", "-i", f"sine=frequency=440:sample_rate=44100:duration={duration}"]


def _run(cmd, what):
    started = time.monotonic()
    result = subprocess.run(cmd, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if result.returncode != 0:
        sys.stderr.write(result.stderr)
        sys.exit(f"mediaserver: ffmpeg failed while making {what}")
    return time.monotonic() - started


def _make_file(root, name, args, duration, ffmpeg, timings):
    target = os.path.join(root, name)
    if os.path.exists(target):
        return
    # Write under a temporary name first so an interrupted run never leaves a truncated file
    # that a later run would take as done.
    stem, ext = os.path.splitext(name)
    partial = os.path.join(root, f".{stem}.partial{ext}")
    cmd = [ffmpeg, "-hide_banner", "-nostdin", "-y"] + _sources(duration) + args + [partial]
    timings.append((name, _run(cmd, name)))
    os.replace(partial, target)


def _make_dir(root, dirname, manifest, args, duration, ffmpeg, timings):
    target = os.path.join(root, dirname)
    if os.path.exists(os.path.join(target, manifest)):
        return
    work = tempfile.mkdtemp(prefix=f".{dirname}.", dir=root)
    try:
        args = [a.replace("%SEGDIR%", work) for a in args]
        cmd = [ffmpeg, "-hide_banner", "-nostdin", "-y"] + _sources(duration) + args + [
            os.path.join(work, manifest)]
        timings.append((f"{dirname}/{manifest}", _run(cmd, f"{dirname}/{manifest}")))
        os.chmod(work, 0o755)  # mkdtemp makes it private
        shutil.rmtree(target, ignore_errors=True)
        os.replace(work, target)
    finally:
        shutil.rmtree(work, ignore_errors=True)


def generate(root, duration):
    ffmpeg = _ffmpeg()
    vcodec = _video_codec_args(ffmpeg)
    gop = ["-g", "25", "-keyint_min", "25", "-sc_threshold", "0"] if "libx264" in vcodec \
        else ["-g", "25"]
    # Without libx264 the MPEG-4 part 2 headers only go into the HLS muxer's global header,
    # leaving the .ts segments without them; repeat them in-band so players can read the size.
    hls_video = [] if "libx264" in vcodec else ["-bsf:v", "dump_extra"]
    aac = ["-c:a", "aac", "-b:a", "64k", "-ac", "2"]
    av = ["-map", "0:v", "-map", "1:a"] + vcodec + gop + aac
    timings = []

    _make_file(root, "video.mp4", av + ["-movflags", "+faststart", "-f", "mp4"],
               duration, ffmpeg, timings)
    _make_file(root, "silent.mp4", ["-map", "0:v"] + vcodec + gop + ["-movflags", "+faststart",
                                                                     "-f", "mp4"],
               duration, ffmpeg, timings)
    _make_file(root, "audio.m4a", ["-map", "1:a"] + aac + ["-movflags", "+faststart",
                                                           "-f", "ipod"],
               duration, ffmpeg, timings)
    _make_dir(root, "hls", "index.m3u8",
              av + hls_video + ["-f", "hls", "-hls_time", "1", "-hls_playlist_type", "vod",
                    "-hls_segment_filename", "%SEGDIR%/segment%03d.ts"],
              duration, ffmpeg, timings)
    _make_dir(root, "dash", "manifest.mpd",
              av + ["-f", "dash", "-seg_duration", "1", "-use_template", "1",
                    "-use_timeline", "1", "-adaptation_sets", "id=0,streams=v id=1,streams=a"],
              duration, ffmpeg, timings)
    return timings


# --------------------------------------------------------------------------------------------
# HTTP serving

def parse_range(header, size):
    """Returns (start, end) inclusive, None to ignore the header, or "unsatisfiable"."""
    m = re.fullmatch(r"\s*bytes\s*=\s*(\d*)\s*-\s*(\d*)\s*", header or "")
    if not m or (m.group(1) == "" and m.group(2) == ""):
        return None  # absent, malformed or multi-range: serve the whole file
    first, last = m.group(1), m.group(2)
    if first == "":
        length = int(last)
        if length == 0 or size == 0:
            return "unsatisfiable"
        return max(0, size - length), size - 1
    start = int(first)
    end = size - 1 if last == "" else min(int(last), size - 1)
    if start >= size or (last != "" and int(last) < start):
        return "unsatisfiable"
    return start, end


class MediaHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "QuillboxTestMedia/1.0"

    def log_message(self, fmt, *args):
        if self.server.verbose:
            super().log_message(fmt, *args)

    def do_HEAD(self):
        self._serve(body=False)

    def do_GET(self):
        self._serve(body=True)

    def _local_path(self):
        path = urllib.parse.urlsplit(self.path).path
        path = posixpath.normpath(urllib.parse.unquote(path))
        parts = [p for p in path.split("/") if p and p not in (".", "..")]
        # /named/ANY/NAME.EXT serves ANY (a file under DIR) under a name no file system would
        # take, such as one longer than 255 bytes.
        if len(parts) >= 3 and parts[0] == "named":
            parts = [parts[1]]
        return os.path.join(self.server.root, *parts)

    def _status_path(self):
        """The code of /status/CODE/..., which answers CODE instead of a file."""
        m = re.match(r"/status/(\d{3})(/|$)", urllib.parse.urlsplit(self.path).path)
        return int(m.group(1)) if m else None

    def _send_error_page(self, code, message, extra_headers=()):
        body = f"{code} {message}\n".encode()
        self.send_response(code, message)
        self.send_header("Content-Type", "text/plain; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        for key, value in extra_headers:
            self.send_header(key, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def _serve(self, body):
        status = self._status_path()
        if status is not None:
            extra = [("Retry-After", "60")] if status == 429 else []
            self._send_error_page(status, HTTPStatus(status).phrase if status in STATUS_CODES
                                  else "Error", extra)
            return
        local = self._local_path()
        try:
            f = open(local, "rb")
            st = os.fstat(f.fileno())
            if not stat.S_ISREG(st.st_mode):
                f.close()
                raise FileNotFoundError(local)
        except OSError:
            self._send_error_page(404, "Not Found")
            return
        with f:
            size = st.st_size
            ctype = CONTENT_TYPES.get(os.path.splitext(local)[1].lower(),
                                      "application/octet-stream")
            rng = parse_range(self.headers.get("Range"), size)
            if rng == "unsatisfiable":
                self._send_error_page(416, "Range Not Satisfiable",
                                      [("Content-Range", f"bytes */{size}")])
                return
            if rng is None:
                start, end = 0, size - 1
                self.send_response(200)
            else:
                start, end = rng
                self.send_response(206)
                self.send_header("Content-Range", f"bytes {start}-{end}/{size}")
            length = end - start + 1
            self.send_header("Content-Type", ctype)
            self.send_header("Content-Length", str(length))
            self.send_header("Accept-Ranges", "bytes")
            self.send_header("Last-Modified", email.utils.formatdate(st.st_mtime, usegmt=True))
            self.end_headers()
            if body and length > 0:
                f.seek(start)
                try:
                    self._copy(f, length)
                except (BrokenPipeError, ConnectionResetError):
                    self.close_connection = True

    def _copy(self, f, remaining):
        rate = self.server.rate_limit
        if rate <= 0:
            while remaining > 0:
                data = f.read(min(CHUNK, remaining))
                if not data:
                    break
                self.wfile.write(data)
                remaining -= len(data)
            return
        # About 50 writes a second, paced against a fixed start time so sleeps do not drift.
        chunk = max(1, min(CHUNK, rate // 50))
        started = time.monotonic()
        sent = 0
        while remaining > 0:
            data = f.read(min(chunk, remaining))
            if not data:
                break
            self.wfile.write(data)
            self.wfile.flush()
            sent += len(data)
            remaining -= len(data)
            delay = started + sent / rate - time.monotonic()
            if delay > 0:
                time.sleep(delay)


class MediaServer(ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True

    def __init__(self, port, root, rate_limit, verbose):
        self.root = root
        self.rate_limit = rate_limit
        self.verbose = verbose
        super().__init__((HOST, port), MediaHandler)

    def handle_error(self, request, client_address):
        if self.verbose:
            super().handle_error(request, client_address)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--root", required=True, help="directory to serve")
    parser.add_argument("--port", type=int, default=0, help="port on 127.0.0.1 (0: any free)")
    parser.add_argument("--generate", action="store_true",
                        help="create the test media in ROOT with ffmpeg if missing")
    parser.add_argument("--duration", type=float, default=4.0,
                        help="length of generated media in seconds (default 4)")
    parser.add_argument("--rate-limit", type=int, default=0, metavar="BYTES_PER_SEC",
                        help="throttle each response body to about this many bytes/second")
    parser.add_argument("--verbose", action="store_true", help="log requests to stderr")
    args = parser.parse_args()

    root = os.path.abspath(args.root)
    os.makedirs(root, exist_ok=True)
    if args.generate:
        for name, seconds in generate(root, args.duration):
            if args.verbose:
                sys.stderr.write(f"mediaserver: generated {name} in {seconds:.2f}s\n")

    server = MediaServer(args.port, root, args.rate_limit, args.verbose)
    port = server.server_address[1]
    sys.stdout.write(f"READY http://{HOST}:{port}/\n")
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
