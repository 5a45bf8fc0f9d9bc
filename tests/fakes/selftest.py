#!/usr/bin/env python3
"""Checks what the engine tests take on trust from the stand-in yt-dlp beside this script, run
through "bash -c" the way the application runs it: that it records the arguments it got exactly,
and that its process group holds out against SIGTERM when told to (else a test of the SIGKILL that
follows would pass without it). What it prints is checked by the tests that read it. Exits
non-zero on any failure."""

import json
import os
import shlex
import signal
import subprocess
import sys
import tempfile
import time

FAKE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "yt-dlp")
WORK = tempfile.mkdtemp()
results = []


def check(name, ok, detail=""):
    print(("ok:   " if ok else "FAIL: ") + name + ("" if ok else f": {detail}"))
    results.append(bool(ok))


def start(*words, steps=None, **env):
    """One run of the stand-in through bash; `steps` a download scenario."""
    if steps is not None:
        env["FAKE_YTDLP_SCENARIO"] = os.path.join(WORK, "scenario.json")
        with open(env["FAKE_YTDLP_SCENARIO"], "w") as f:
            json.dump(steps, f)
    return subprocess.Popen(["bash", "-c", shlex.join([FAKE, *words])], env=dict(os.environ, **env),
                            stdout=subprocess.PIPE)


# argv recorded exactly: quote, $, backquotes, newline, non-ASCII, bytes that are not UTF-8; and
# concurrent runs each add one whole line.
odd = "it's a $HOME `x` \"q\"\nline2 é€🎬"
runs = [start("--version", odd, "bad\udcffbyte", f"run{i}", FAKE_YTDLP_ARGV_FILE=f"{WORK}/argv") for i in range(6)]
for process in runs:
    process.communicate()
with open(f"{WORK}/argv", encoding="ascii") as f:
    lines = sorted(json.loads(line) for line in f)
check("argv recorded exactly, one line a run", lines == [["--version", odd, "bad\udcffbyte", f"run{i}"]
                                                         for i in range(6)], lines)

# A spawned child shares the process group; SIGTERM can be ignored.
process = start("https://x", steps=[{"spawn_child_sleep": 30}, {"ignore_sigterm": True}, {"out": "ready\n"},
                                    {"sleep": 30}], FAKE_YTDLP_PIDFILE=f"{WORK}/pids")
process.stdout.readline()
with open(f"{WORK}/pids") as f:
    pids = [int(line) for line in f]
try:
    time.sleep(0.3)
    check("the spawned sleep shares the process group", len(pids) == 2
          and os.getpgid(pids[0]) == os.getpgid(pids[1]) and open(f"/proc/{pids[1]}/comm").read() == "sleep\n", pids)
    os.kill(pids[0], signal.SIGTERM)
    time.sleep(0.3)
    check("SIGTERM ignored", process.poll() is None)
finally:
    for pid in pids:
        os.kill(pid, signal.SIGKILL)
    process.wait()

subprocess.run(["rm", "-rf", WORK])
print(f"{results.count(True)} passed, {results.count(False)} failed")
sys.exit(0 if all(results) else 1)
