#!/usr/bin/env python3
"""Records what Debian's yt-dlp prints for -J (as the engine asks: -J --no-playlist, the link
after "--") into tests/data/videoinfo (see its README): a bare MP4 link, a page whose schema.org
VideoObject names the video, and a page with two videos. The server's port becomes 8000.

    python3 tests/support/record-videoinfo.py [--out tests/data/videoinfo]
"""

import argparse
import os
import subprocess
import sys
import tempfile

import testserver

HERE = os.path.dirname(os.path.abspath(__file__))
YTDLP = "/usr/bin/yt-dlp"
FFMPEG = "/usr/bin/ffmpeg"
STABLE_HOST = "127.0.0.1:8000"

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

TWO_VIDEOS = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>两个视频</title></head>
<body><video src="clip.mp4"></video><video src="video.mp4"></video></body></html>
"""


def ffmpeg(*args):
    subprocess.run([FFMPEG, "-hide_banner", "-loglevel", "error", "-y", *args], check=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--out", default=os.path.join(HERE, "..", "data", "videoinfo"))
    options = parser.parse_args()
    os.makedirs(options.out, exist_ok=True)

    with tempfile.TemporaryDirectory() as root:
        ffmpeg("-f", "lavfi", "-i", "testsrc=size=160x120:rate=10", "-f", "lavfi", "-i",
               "sine=frequency=440", "-t", "2", "-c:v", "libx264", "-pix_fmt", "yuv420p", "-c:a",
               "aac", "-metadata", "title=测试视频 Quillbox", "-metadata", "artist=Quillbox 测试频道",
               "-movflags", "+faststart", os.path.join(root, "clip.mp4"))
        ffmpeg("-f", "lavfi", "-i", "testsrc=size=160x90", "-frames:v", "1",
               os.path.join(root, "thumb.jpg"))
        server, base = testserver.start("mediaserver.py", "--root", root, "--generate", "--duration", "3")
        try:
            host = base.split("//", 1)[1].rstrip("/")
            with open(os.path.join(root, "page.html"), "w", encoding="utf-8") as f:
                f.write(PAGE.format(base=base))
            with open(os.path.join(root, "two.html"), "w", encoding="utf-8") as f:
                f.write(TWO_VIDEOS)
            for name, page in (("direct", "clip.mp4"), ("page", "page.html"),
                               ("playlist", "two.html")):
                result = subprocess.run([YTDLP, "-J", "--no-playlist", "--", base + page],
                                        stdin=subprocess.DEVNULL, capture_output=True,
                                        text=True, timeout=120)
                if result.returncode != 0:
                    sys.exit(f"{name}: yt-dlp exited {result.returncode}: {result.stderr}")
                with open(os.path.join(options.out, name + ".json"), "w", encoding="utf-8") as f:
                    f.write(result.stdout.replace(host, STABLE_HOST))
                print(f"{name}.json: {len(result.stdout)} characters")
        finally:
            server.stdin.close()
            server.wait(timeout=10)


if __name__ == "__main__":
    main()
