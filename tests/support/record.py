#!/usr/bin/env python3
"""Records what Debian's yt-dlp prints into tests/data (see its README); run it again after a
yt-dlp upgrade. Nothing leaves the machine: the links are served by mediaserver.py on 127.0.0.1.

    python3 tests/support/record.py failures [--out tests/data/failures]
    python3 tests/support/record.py videoinfo [--out tests/data/videoinfo] [--yt-dlp PATH]

failures: how a download fails, each case as the engine runs a download, against the media server,
a closed port, a listener that never answers, or a name looked up without a network; each as
NAME.json (the command, exit status, stdout and stderr). The full disk and the read-only folder are
tmpfs mounts that need root; without it they keep their old recordings.

videoinfo: what -J prints, asked as the engine asks (-J --no-playlist, the link after "--"), for a
bare MP4 link (direct.json), a page whose schema.org VideoObject names the video (page.json), a
page with two videos (playlist.json) and a page whose video is an HLS master playlist of two
variants with their frame rates (stream.json); beside each, NAME.formats.txt, the table that
--list-formats prints for the same link. The server's port becomes 8000. --yt-dlp records another
yt-dlp than Debian's (into another --out).
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

YTDLP = "/usr/bin/yt-dlp"
FFMPEG = "/usr/bin/ffmpeg"

PAGE = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>页面标题</title>
<script type="application/ld+json">
{{"@context": "https://schema.org", "@type": "VideoObject", "name": "测试视频 Quillbox",
  "description": "一段测试视频", "thumbnailUrl": "{base}thumb.jpg",
  "uploadDate": "2024-01-02T03:04:05Z", "duration": "PT1H2M5S",
  "author": {{"@type": "Person", "name": "Quillbox 测试频道"}},
  "contentUrl": "{base}dash/manifest.mpd",
  "interactionStatistic": [
    {{"@type": "InteractionCounter", "interactionType": {{"@type": "WatchAction"}},
      "userInteractionCount": 12345678901}},
    {{"@type": "InteractionCounter", "interactionType": {{"@type": "LikeAction"}},
      "userInteractionCount": 4321}}]}}
</script></head><body></body></html>
"""

# Two variants of the server's HLS stream, as a site's master playlist announces them.
MASTER = """#EXTM3U
#EXT-X-STREAM-INF:BANDWIDTH=420000,AVERAGE-BANDWIDTH=380000,RESOLUTION=320x240,FRAME-RATE=29.970,CODECS="avc1.4d400d,mp4a.40.2"
hls/index.m3u8
#EXT-X-STREAM-INF:BANDWIDTH=180000,RESOLUTION=160x120,FRAME-RATE=25.000,CODECS="avc1.42c00b,mp4a.40.2"
hls/index.m3u8
"""

TWO_VIDEOS = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>两个视频</title></head>
<body><video src="clip.mp4"></video><video src="video.mp4"></video></body></html>
"""


def write(path, text):
    with open(path, "w", encoding="utf-8") as f:
        f.write(text)


def local_port(listen):
    """A port of 127.0.0.1 and its socket: with `listen`, its connections are taken (the kernel
    completes them into the backlog) and never answered; without, nobody listens there."""
    s = socket.socket()
    s.bind(("127.0.0.1", 0))
    port = s.getsockname()[1]
    s.listen(8) if listen else s.close()
    return s, port


def run(words, prefix=()):
    command = shlex.join(words)
    return command, subprocess.run([*prefix, "/bin/sh", "-c", command], stdin=subprocess.DEVNULL,
                                   capture_output=True, timeout=120)


def mounted(path, options):
    os.makedirs(path, exist_ok=True)
    return subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", path]).returncode == 0


def failures(work, base, out_dir):
    write(os.path.join(work, "page.html"), "<html><head><title>No video here</title></head><body>text</body></html>\n")
    listener, silent_port = local_port(True)
    audio_only = ["-x", "--audio-format", "mp3"]
    # A cookie file that is not in the Netscape format; a browser with no profile under HOME.
    bad_cookies = os.path.join(work, "cookies.json")
    write(bad_cookies, '[{"name": "sid", "value": "1"}]\n')
    os.environ["HOME"] = os.path.join(work, "home")

    def download(link, folder=os.path.join(work, "out"), preset=(), extra=(), ffmpeg=FFMPEG):
        # As the engine builds it (no cookies, no JS runtime: this yt-dlp predates the option).
        return [YTDLP, "--ffmpeg-location", ffmpeg, "--no-playlist", "-o", folder + "/%(title)s.%(ext)s", *preset,
                *extra, "--progress", "--", link]

    cases = {
        "http-404": download(base + "missing.mp4"),
        "http-410": download(base + "status/410/gone.mp4"),
        "http-403": download(base + "status/403/video.mp4"),
        "http-429": download(base + "status/429/video.mp4"),
        "connection-refused": download(f"http://127.0.0.1:{local_port(False)[1]}/video.mp4"),
        "timeout": download(f"http://127.0.0.1:{silent_port}/video.mp4",
                            extra=["--socket-timeout", "2", "--retries", "0"]),
        "unknown-option": download(base + "video.mp4", extra=["--no-such-option"]),
        "silent-audio-only": download(base + "silent.mp4", preset=audio_only),
        "name-too-long": download(base + "named/video.mp4/" + "长" * 100 + ".mp4"),
        "not-a-link": download("hello world"),
        "unsupported-url": download(base + "page.html"),
        "format-not-available": download(base + "video.mp4", preset=["-f", "bv[height>4000]"]),
        "cookie-file-invalid": download(base + "video.mp4", extra=["--cookies", bad_cookies]),
        "browser-cookies-missing": download(base + "video.mp4", extra=["--cookies-from-browser", "vivaldi"]),
        "ffmpeg-missing": download(base + "audio.m4a", preset=audio_only, ffmpeg="/nonexistent/ffmpeg"),
    }
    recorded = {name: run(words) for name, words in cases.items()}
    # A name that does not resolve, looked up where there is no network at all.
    recorded["dns-failure"] = run(download("http://no-such-host.invalid/video.mp4"), prefix=("unshare", "-n"))
    # The tool itself missing, as each shell says it.
    for shell in ("bash", "zsh"):
        command = "/nonexistent/yt-dlp --progress -- " + base + "video.mp4"
        result = subprocess.run(["/bin/" + shell if os.path.exists("/bin/" + shell) else shell, "-c", command],
                                stdin=subprocess.DEVNULL, capture_output=True)
        recorded["missing-ytdlp-" + shell] = (command, result)
    if os.geteuid() == 0:
        for name, folder, options in (("disk-full", "full", "size=48k"),
                                      ("read-only-folder", "readonly", "ro,size=1m")):
            folder = os.path.join(work, folder)
            if mounted(folder, options):
                recorded[name] = run(download(base + "video.mp4", folder=folder))
                subprocess.run(["umount", folder])
    else:
        print("not root: disk-full and read-only-folder skipped", file=sys.stderr)
    listener.close()

    def clean(text):
        return text.replace(work, "/tmp/WORK").replace(base, "http://127.0.0.1:PORT/")
    for name, (command, result) in recorded.items():
        record = {"command": clean(command), "exit": result.returncode,
                  "stdout": clean(result.stdout.decode("utf-8", "replace")),
                  "stderr": clean(result.stderr.decode("utf-8", "replace"))}
        write(os.path.join(out_dir, name + ".json"), json.dumps(record, ensure_ascii=False, indent=1) + "\n")
        print(f"{name}: exit {result.returncode}")


def videoinfo(work, base, out_dir, ytdlp):
    write(os.path.join(work, "page.html"), PAGE.format(base=base))
    write(os.path.join(work, "stream.html"),
          PAGE.format(base=base).replace(base + "dash/manifest.mpd", base + "master.m3u8"))
    write(os.path.join(work, "master.m3u8"), MASTER)
    write(os.path.join(work, "two.html"), TWO_VIDEOS)
    pages = (("direct", "clip.mp4"), ("page", "page.html"), ("playlist", "two.html"), ("stream", "stream.html"))
    for name, page in pages:
        for option, suffix in (("-J", ".json"), ("--list-formats", ".formats.txt")):
            result = subprocess.run([ytdlp, option, "--no-playlist", "--", base + page], stdin=subprocess.DEVNULL,
                                    capture_output=True, text=True, timeout=120)
            if result.returncode != 0:
                sys.exit(f"{name}: yt-dlp exited {result.returncode}: {result.stderr}")
            write(os.path.join(out_dir, name + suffix), result.stdout.replace(base.split("//")[1].rstrip("/"),
                                                                              "127.0.0.1:8000"))
            print(f"{name}{suffix}: {len(result.stdout)} characters")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("what", choices=["failures", "videoinfo"])
    parser.add_argument("--out")
    parser.add_argument("--yt-dlp", default=YTDLP, help="the yt-dlp to record (videoinfo)")
    args = parser.parse_args()
    out_dir = args.out or os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", args.what)
    os.makedirs(out_dir, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="quillbox-record-") as work:
        if args.what == "videoinfo":
            # A clip whose title tag yt-dlp's generic extractor does not read, and a picture.
            ffmpeg = [FFMPEG, "-hide_banner", "-loglevel", "error", "-y", "-f", "lavfi", "-i"]
            subprocess.run(ffmpeg + ["testsrc=size=160x120:rate=10", "-f", "lavfi", "-i", "sine=frequency=440",
                                     "-t", "2", "-c:v", "libx264", "-pix_fmt", "yuv420p", "-c:a", "aac",
                                     "-metadata", "title=测试视频 Quillbox", "-metadata", "artist=Quillbox 测试频道",
                                     "-movflags", "+faststart", os.path.join(work, "clip.mp4")], check=True)
            subprocess.run(ffmpeg + ["testsrc=size=160x90", "-frames:v", "1", os.path.join(work, "thumb.jpg")],
                           check=True)
        duration = "3" if args.what == "videoinfo" else "4"
        server, base = testserver.start("mediaserver.py", "--root", work, "--generate", "--duration", duration)
        try:
            if args.what == "failures":
                failures(work, base, out_dir)
            else:
                videoinfo(work, base, out_dir, args.yt_dlp)
        finally:
            server.stdin.close()
            server.wait(timeout=10)


if __name__ == "__main__":
    main()
