#!/usr/bin/env python3
"""Records how Debian's yt-dlp fails into tests/data/failures (see its README), each case the
way a download runs against servers on 127.0.0.1 or a name looked up without a network. The full
disk and the read-only folder are tmpfs mounts that need root; without it they keep their old
recordings.

    python3 tests/support/record-failures.py [--out tests/data/failures]
"""

import argparse
import json
import os
import shlex
import socket
import subprocess
import sys
import tempfile

import testserver

HERE = os.path.dirname(os.path.abspath(__file__))
YTDLP = "/usr/bin/yt-dlp"
FFMPEG = "/usr/bin/ffmpeg"


def local_port(listen):
    """A port of 127.0.0.1 and its socket: with `listen`, its connections are taken (the kernel
    completes them into the backlog) and never answered; without, nobody listens there."""
    s = socket.socket()
    s.bind(("127.0.0.1", 0))
    port = s.getsockname()[1]
    s.listen(8) if listen else s.close()
    return s, port


def download_words(folder, preset=(), extra=()):
    # The words of a download as the engine builds them (no cookies, no JS runtime: this yt-dlp
    # predates the option).
    return [YTDLP, "--ffmpeg-location", FFMPEG, "--no-playlist", "-o",
            folder + "/%(title)s.%(ext)s", *preset, *extra, "--progress"]


def run(words, prefix=()):
    command = shlex.join(words)
    result = subprocess.run([*prefix, "/bin/sh", "-c", command], stdin=subprocess.DEVNULL,
                            capture_output=True, timeout=120)
    return command, result


def mounted(path, options):
    os.makedirs(path, exist_ok=True)
    return subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", path]).returncode == 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--out", default=os.path.join(HERE, "..", "data", "failures"))
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    work = tempfile.mkdtemp(prefix="quillbox-record-")
    media = os.path.join(work, "media")
    os.makedirs(media)
    with open(os.path.join(media, "page.html"), "w") as f:
        f.write("<html><head><title>No video here</title></head><body>text</body></html>\n")
    out = os.path.join(work, "out")
    server, base = testserver.start("mediaserver.py", "--root", media, "--generate")
    listener, silent_port = local_port(True)
    audio_only = ["-x", "--audio-format", "mp3"]
    # A cookie file that is not in the Netscape format; a browser with no profile under HOME.
    bad_cookies = os.path.join(work, "cookies.json")
    with open(bad_cookies, "w") as f:
        f.write('[{"name": "sid", "value": "1"}]\n')
    os.environ["HOME"] = os.path.join(work, "home")

    cases = {
        "http-404": download_words(out) + ["--", base + "missing.mp4"],
        "http-410": download_words(out) + ["--", base + "status/410/gone.mp4"],
        "http-403": download_words(out) + ["--", base + "status/403/video.mp4"],
        "http-429": download_words(out) + ["--", base + "status/429/video.mp4"],
        "connection-refused": download_words(out) + [
            "--", f"http://127.0.0.1:{local_port(False)[1]}/video.mp4"],
        "timeout": download_words(out, extra=["--socket-timeout", "2", "--retries", "0"]) + [
            "--", f"http://127.0.0.1:{silent_port}/video.mp4"],
        "unknown-option": download_words(out, extra=["--no-such-option"]) + [
            "--", base + "video.mp4"],
        "silent-audio-only": download_words(out, preset=audio_only) + ["--", base + "silent.mp4"],
        "name-too-long": download_words(out) + ["--", base + "named/video.mp4/" + "长" * 100 + ".mp4"],
        "not-a-link": download_words(out) + ["--", "hello world"],
        "unsupported-url": download_words(out) + ["--", base + "page.html"],
        "format-not-available": download_words(out, preset=["-f", "bv[height>4000]"]) + [
            "--", base + "video.mp4"],
        "cookie-file-invalid": download_words(out, extra=["--cookies", bad_cookies]) + [
            "--", base + "video.mp4"],
        "browser-cookies-missing": download_words(out, extra=["--cookies-from-browser", "vivaldi"]) + [
            "--", base + "video.mp4"],
        "ffmpeg-missing": [YTDLP, "--ffmpeg-location", "/nonexistent/ffmpeg", "--no-playlist", "-o",
                           out + "/%(title)s.%(ext)s", *audio_only, "--progress", "--",
                           base + "audio.m4a"],
    }
    recorded = {}
    for name, words in cases.items():
        recorded[name] = run(words)

    # A name that does not resolve, looked up where there is no network at all.
    dns_words = download_words(out) + ["--", "http://no-such-host.invalid/video.mp4"]
    recorded["dns-failure"] = run(dns_words, prefix=("unshare", "-n"))

    # The tool itself missing, as each shell says it.
    for shell in ("bash", "zsh"):
        command = "/nonexistent/yt-dlp --progress -- " + base + "video.mp4"
        result = subprocess.run(["/bin/" + shell if os.path.exists("/bin/" + shell) else shell,
                                 "-c", command], stdin=subprocess.DEVNULL, capture_output=True)
        recorded["missing-ytdlp-" + shell] = (command, result)

    if os.geteuid() == 0:
        full = os.path.join(work, "full")
        if mounted(full, "size=48k"):
            recorded["disk-full"] = run(download_words(full) + ["--", base + "video.mp4"])
            subprocess.run(["umount", full])
        readonly = os.path.join(work, "readonly")
        if mounted(readonly, "ro,size=1m"):
            recorded["read-only-folder"] = run(download_words(readonly) + ["--", base + "video.mp4"])
            subprocess.run(["umount", readonly])
    else:
        print("not root: disk-full and read-only-folder skipped", file=sys.stderr)

    listener.close()
    server.stdin.close()
    server.wait()

    for name, (command, result) in recorded.items():
        def clean(text):
            return text.replace(work, "/tmp/WORK").replace(base, "http://127.0.0.1:PORT/")
        record = {"command": clean(command), "exit": result.returncode,
                  "stdout": clean(result.stdout.decode("utf-8", "replace")),
                  "stderr": clean(result.stderr.decode("utf-8", "replace"))}
        with open(os.path.join(args.out, name + ".json"), "w", encoding="utf-8") as f:
            json.dump(record, f, ensure_ascii=False, indent=1)
            f.write("\n")
        print(f"{name}: exit {result.returncode}")
    subprocess.run(["rm", "-rf", work])


if __name__ == "__main__":
    main()
