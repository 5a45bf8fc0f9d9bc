#!/usr/bin/python3
"""A new user's first hour, walked in the real window on a real X server, a screenshot per step.

    scripts/walk.py --app BUILD/src/quillbox --out DIR --size WxH --media MEDIA_DIR

Run it through scripts/walk, which builds Quillbox, installs what the walk needs and gives it a
session bus. Quillbox starts in an empty home and finds the yt-dlp and ffmpeg of the system; its
links point at a media server on 127.0.0.1, its release checks at a release server there, so
nothing leaves the machine. Controls are found by their accessible names (AT-SPI) and used with
the X server's own pointer and keyboard (xdotool), as a person would. Each step writes
DIR/NN-step.png; a step that cannot find what it needs stops the walk with its name.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

import pyatspi

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SUPPORT = os.path.join(ROOT, "tests", "support")
sys.path.insert(0, SUPPORT)
import testserver  # noqa: E402  (the test servers' own starter)


class Walk:
    def __init__(self, app, out, size, media):
        self.app_path, self.out, self.size, self.media_root = app, out, size, media
        self.width, self.height = (int(v) for v in size.split("x"))
        self.step = 0
        self.children = []
        self.home = tempfile.mkdtemp(prefix="quillbox-walk-")
        self.app = None

    # -- the machine around the window

    def start_x(self):
        read, write = os.pipe()
        self.x = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{self.size}x24",
                                   "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as f:
            self.display = ":" + f.readline().strip()
        self.children.append(self.x)
        os.environ["DISPLAY"] = self.display
        self.children.append(subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                              stderr=subprocess.DEVNULL))

    def start_servers(self):
        self.media, self.media_url = testserver.start("mediaserver.py", "--root", self.media_root, "--generate",
                                                      "--duration", "40")
        releases = os.path.join(self.home, "releases")
        tag = "2026.08.19"
        shipped = os.path.join(os.path.dirname(ROOT), "shared", "tools", "yt-dlp", "yt-dlp")
        os.makedirs(os.path.join(releases, "yt-dlp", "yt-dlp", tag))
        if os.path.exists(shipped):
            shutil.copy(shipped, os.path.join(releases, "yt-dlp", "yt-dlp", tag, "yt-dlp"))
        else:
            print(f"  no {shipped}: the release server offers no yt-dlp to install", flush=True)
        self.releases, self.releases_url = testserver.start("releaseserver.py", "--root", releases)

    def environment(self):
        env = dict(os.environ)
        for name in [n for n in env if n.startswith(("QT_", "XDG_", "QUILLBOX_", "FAKE_YTDLP"))]:
            del env[name]
        runtime = os.path.join(self.home, "run")
        os.makedirs(runtime, mode=0o700, exist_ok=True)
        env.update(HOME=self.home, XDG_RUNTIME_DIR=runtime, QT_QPA_PLATFORM="xcb",
                   QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", LANG="zh_CN.UTF-8",
                   QUILLBOX_RELEASES_URL=self.releases_url)
        return env

    def launch(self):
        with open(os.path.join(self.out, "quillbox.log"), "a") as log:
            self.app = subprocess.Popen([self.app_path], env=self.environment(), stdout=log, stderr=log)
        self.window = self.wait(lambda: self.find("frame", "Quillbox"), "the window")
        wid = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "Quillbox"],
                             capture_output=True, text=True, timeout=20).stdout.split()[0]
        self.xdo("windowsize", wid, str(self.width), str(self.height))
        self.xdo("windowmove", wid, "0", "0")
        self.xdo("windowfocus", wid)
        time.sleep(1.5)

    def close(self):
        def end(process, politely):
            try:
                politely(process)
                process.wait(10)
            except (OSError, subprocess.TimeoutExpired):
                process.kill()
                process.wait()

        if self.app and self.app.poll() is None:
            end(self.app, subprocess.Popen.terminate)
        for server in (getattr(self, "media", None), getattr(self, "releases", None)):
            if server:
                end(server, lambda p: p.stdin.close())
        for child in reversed(self.children):
            end(child, subprocess.Popen.terminate)
        shutil.rmtree(self.home, ignore_errors=True)

    # -- finding and using controls

    def find(self, role, name, exact=False):
        """The first visible accessible of `role` whose name is or contains `name`."""
        desktop = pyatspi.Registry.getDesktop(0)
        for app in desktop:
            if app is None or app.name != "Quillbox":
                continue
            found = pyatspi.findDescendant(
                app, lambda a: a.getRoleName() == role
                and (a.name == name if exact else name in (a.name or ""))
                and a.getState().contains(pyatspi.STATE_SHOWING))
            if found:
                return found
        return None

    def wait(self, probe, what, timeout=20):
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            try:
                found = probe()
            except Exception:  # the tree changes under us while it is read
                found = None
            if found:
                return found
            time.sleep(0.25)
        self.shot("missing")
        self.dump()
        raise SystemExit(f"walk {self.size}: step {self.step} could not find {what}")

    def dump(self):
        """Writes what the window shows to assistive tools, for a step that found nothing."""
        def lines(a, depth):
            try:
                e = a.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
                where = f"{e.x},{e.y} {e.width}x{e.height}"
            except Exception:
                where = ""
            yield f"{'  ' * depth}{a.getRoleName()} {a.name!r} {where}"
            for i in range(a.childCount):
                yield from lines(a.getChildAtIndex(i), depth + 1)
        with open(os.path.join(self.out, f"{self.step:02d}-tree.txt"), "w") as f:
            for app in pyatspi.Registry.getDesktop(0):
                if app is not None and app.name == "Quillbox":
                    f.write("\n".join(lines(app, 0)) + "\n")

    def centre(self, accessible):
        e = accessible.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        return e.x + e.width // 2, e.y + e.height // 2

    def click(self, role, name, button=1, exact=False):
        x, y = self.centre(self.wait(lambda: self.find(role, name, exact), f"{role} '{name}'"))
        self.xdo("mousemove", str(x), str(y), "sleep", "0.2", "click", str(button))
        time.sleep(0.6)

    def hover(self, role, name):
        x, y = self.centre(self.wait(lambda: self.find(role, name), f"{role} '{name}'"))
        self.xdo("mousemove", str(x), str(y))
        time.sleep(0.6)

    def key(self, *keys):
        self.xdo("key", "--delay", "120", *keys)
        time.sleep(0.6)

    def xdo(self, *args):
        subprocess.run(["xdotool", *args], check=True, timeout=20)

    def copy_to_clipboard(self, text):
        subprocess.run(["xclip", "-selection", "clipboard", "-i"], input=text.encode(), check=True, timeout=10)

    def shot(self, name):
        self.step += 1
        path = os.path.join(self.out, f"{self.step:02d}-{name}.png")
        subprocess.run(["ffmpeg", "-loglevel", "error", "-y", "-f", "x11grab", "-video_size", self.size,
                        "-i", self.display, "-frames:v", "1", path], check=True, timeout=30)
        print(f"  {path}", flush=True)

    def row(self, title):
        """The queue row whose title (or link, until the title is known) holds `title`."""
        return self.wait(lambda: self.find("push button", title), f"the row '{title}'", timeout=40)

    def on_row(self, title, action):
        """Right-clicks the row and picks `action` from its menu, as the hover buttons also offer."""
        x, y = self.centre(self.row(title))
        self.xdo("mousemove", str(x), str(y), "sleep", "0.2", "click", "3")
        time.sleep(0.6)
        self.click("menu item", action, exact=True)

    # -- the walk

    def run(self):
        os.makedirs(self.out, exist_ok=True)
        self.start_x()
        self.start_servers()
        base = self.media_url.rstrip("/")
        links = [f"{base}/slow/6000/named/video.mp4/城市夜景延时摄影_合集_第一部分_一段很长很长的标题用来看它会不会被截断.mp4",
                 "",
                 f"{base}/named/audio.m4a/山间清晨的鸟鸣.m4a",
                 f"{base}/status/404/已经删除的视频.mp4",
                 f"{base}/slow/5000/named/silent.mp4/无声片段.mp4"]

        self.launch()
        self.shot("first-start")
        self.click("push button", "下载日志")
        self.shot("log-closed")

        self.copy_to_clipboard("\n".join(links) + "\n")
        self.click("push button", "粘贴", exact=True)
        self.shot("pasted")
        self.click("push button", "开始下载", exact=True)
        time.sleep(3)
        self.shot("started")
        self.click("push button", "开始下载", exact=True)
        self.shot("same-links-question")
        self.click("push button", "取消", exact=True)

        self.hover("push button", "城市夜景")
        self.shot("row-hover")
        self.on_row("城市夜景", "停止")
        self.shot("row-stopped")
        self.on_row("城市夜景", "重试")
        time.sleep(2)
        self.shot("row-resumed")

        self.row("已经删除的视频")
        self.on_row("已经删除的视频", "复制链接")
        self.shot("failed-copied")

        self.wait(lambda: self.find("push button", "山间清晨"), "the finished audio", timeout=60)
        self.on_row("山间清晨", "打开文件")
        self.shot("open-file")
        self.on_row("山间清晨", "在文件夹中显示")
        self.shot("reveal")
        self.on_row("山间清晨", "视频信息")
        time.sleep(2)
        self.shot("video-info")
        self.key("Return")
        self.shot("video-info-closed")
        self.on_row("山间清晨", "移除")
        self.shot("remove-question")
        self.key("Return")
        self.shot("removed")

        self.click("push button", "设置", exact=True)
        time.sleep(1)
        self.shot("settings")
        self.key("Escape")
        self.shot("settings-closed")
        self.click("push button", "参数预设", exact=True)
        self.shot("presets-page")
        self.click("push button", "Cookie 管理", exact=True)
        self.shot("cookies-page")
        self.click("push button", "下载管理", exact=True)
        self.key("ctrl+n")
        self.shot("new-download")

        self.key("ctrl+q")
        self.shot("quit-question")
        self.click("push button", "退出", exact=True)
        self.app.wait(20)
        self.app = None

        self.launch()
        time.sleep(3)
        self.shot("restarted")
        self.key("ctrl+q")
        if self.find("push button", "退出", exact=True):
            self.click("push button", "退出", exact=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--app", required=True)
    parser.add_argument("--out", required=True)
    parser.add_argument("--size", default="1200x800")
    parser.add_argument("--media", required=True, help="folder of the generated test media (kept)")
    args = parser.parse_args()
    walk = Walk(os.path.abspath(args.app), os.path.abspath(args.out), args.size, os.path.abspath(args.media))
    try:
        walk.run()
    finally:
        walk.close()


if __name__ == "__main__":
    main()
