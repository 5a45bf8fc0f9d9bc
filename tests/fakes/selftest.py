#!/usr/bin/env python3
"""Checks that the stand-in yt-dlp beside this script behaves as the tests expect, run through
"bash -c" the way the application runs it. Exits non-zero on any failure."""

import json
import os
import re
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


def command(*words):
    return shlex.join([FAKE, "-o", f"{WORK}/dl/%(title)s.%(ext)s", *words])


def run(*words, steps=None, **env):
    """(exit code, stdout bytes, stderr bytes) of one run; `steps` a download scenario."""
    environment = dict(os.environ, **env)
    if steps is not None:
        environment["FAKE_YTDLP_SCENARIO"] = os.path.join(WORK, "scenario.json")
        with open(environment["FAKE_YTDLP_SCENARIO"], "w") as f:
            json.dump(steps, f)
    done = subprocess.run(["bash", "-c", command(*words)], env=environment, capture_output=True, timeout=60)
    return done.returncode, done.stdout, done.stderr


with open(f"{WORK}/info.json", "w") as f:
    f.write('{"title": "recorded"}')
CASES = [  # name, words, scenario, environment, exit code, stdout (or a test of it), stderr
    ("--version", ["--version"], None, {}, 0, b"2025.11.12\n", b""),
    ("--version overridden", ["--version"], None,
     {"FAKE_YTDLP_VERSION": "1999.01.01", "FAKE_YTDLP_VERSION_EXIT": "4"}, 4, b"1999.01.01\n", b""),
    ("-U overridden", ["-U"], None,
     {"FAKE_YTDLP_UPDATE_OUTPUT": "ERROR: nope", "FAKE_YTDLP_UPDATE_EXIT": "1"}, 1, b"ERROR: nope\n", b""),
    ("-v names the build and runtimes", ["-v"], None, {"FAKE_YTDLP_JS_RUNTIMES": "deno-2.5.0"}, 2, b"",
     lambda err: b"(zip)\n" in err and b"[debug] JS runtimes: deno-2.5.0\n" in err),
    ("--list-formats default table", ["--list-formats", "https://x"], None, {}, 0,
     lambda out: b"Available formats" in out and b"1280x720" in out, b""),
    ("-F overridden", ["-F", "https://x"], None, {"FAKE_YTDLP_FORMATS": "table", "FAKE_YTDLP_FORMATS_STDERR": "oops",
                                                  "FAKE_YTDLP_FORMATS_EXIT": "2"}, 2, b"table\n", b"oops\n"),
    ("-J default record", ["-J", "--", "https://x"], None, {}, 0,
     lambda out: [json.loads(out)[k] for k in ("title", "webpage_url")] == ["fake", "https://x"]
     and len(json.loads(out)["formats"]) == 5, b""),
    ("-J overridden", ["-J", "https://x"], None, {"FAKE_YTDLP_INFO": f"{WORK}/info.json", "FAKE_YTDLP_INFO_EXIT": "1",
                                                  "FAKE_YTDLP_INFO_STDERR": "ERROR: x"}, 1, b'{"title": "recorded"}',
     b"ERROR: x\n"),
    ("FAKE_YTDLP_EXIT", ["https://x"], [{"out": "a"}], {"FAKE_YTDLP_EXIT": "7"}, 7, b"a", b""),
    ("an exit step stops at once", ["https://x"], [{"out": "one\n"}, {"exit": 3}, {"out": "never"}], {}, 3,
     b"one\n", b""),
    ("raw bytes", ["https://x"], [{"out_hex": "ff00fe0a"}, {"err": "E\r"}, {"err_hex": "c328"}], {}, 0,
     b"\xff\x00\xfe\n", b"E\r\xc3\x28"),
    ("flood without a newline", ["https://x"], [{"flood": {"bytes": 200000}}], {}, 0, b"x" * 200000, b""),
    ("the default download", ["https://x"], None, {}, 0,
     lambda out: f"[download] Destination: {WORK}/dl/fake.mp4".encode() in out and b"\r[download] 100%" in out, b""),
    ("a link after -- is not an option", ["--", "--version"], None, {}, 0,
     lambda out: b"[download] Destination:" in out and b"2025." not in out.split(b"\n")[0], b""),
]
for name, words, steps, env, code, out, err in CASES:
    got = run(*words, steps=steps, **env)
    ok = got[0] == code and all(e(g) if callable(e) else e == g for e, g in zip((out, err), got[1:]))
    check(name, ok, repr(got)[:300])

run("https://x", steps=[{"write_output": True}])
check("write_output creates the file", os.path.getsize(f"{WORK}/dl/fake.mp4") > 0)

# argv recorded exactly: quote, $, backquotes, newline, non-ASCII, bytes that are not UTF-8.
odd = "it's a $HOME `x` \"q\"\nline2 é€🎬"
run(odd, "bad\udcffbyte", "--version", FAKE_YTDLP_ARGV_FILE=f"{WORK}/argv")
with open(f"{WORK}/argv", encoding="ascii") as f:
    lines = f.read().splitlines()
check("argv recorded exactly", [json.loads(line) for line in lines]
      == [["-o", f"{WORK}/dl/%(title)s.%(ext)s", odd, "bad\udcffbyte", "--version"]], lines)

# Concurrent runs each add one whole line.
os.remove(f"{WORK}/argv")
runs = [subprocess.Popen(["bash", "-c", command("--version", f"run{i}")], stdout=subprocess.DEVNULL,
                         env=dict(os.environ, FAKE_YTDLP_ARGV_FILE=f"{WORK}/argv")) for i in range(6)]
for process in runs:
    process.wait()
with open(f"{WORK}/argv") as f:
    seen = sorted(json.loads(line)[3] for line in f)
check("six concurrent runs give six intact lines", seen == [f"run{i}" for i in range(6)], seen)

# 40 progress lines at 20 a second arrive over about two seconds, not all at the end.
with open(f"{WORK}/scenario.json", "w") as f:
    json.dump([{"progress": {"count": 40, "rate": 20, "size": "3.00MiB"}}], f)
start = time.monotonic()
process = subprocess.Popen(["bash", "-c", command("https://x")], stdout=subprocess.PIPE,
                           env=dict(os.environ, FAKE_YTDLP_SCENARIO=f"{WORK}/scenario.json"))
data, arrived = b"", []  # arrived[i]: seconds after the start by which line i had come
while chunk := os.read(process.stdout.fileno(), 65536):
    data += chunk
    arrived += [time.monotonic() - start] * (data.count(b"\r") - len(arrived))
process.wait()
total = time.monotonic() - start
lines = data.decode()[:-1].split("\r")[1:]
check("progress: 40 lines, one final newline", len(lines) == 40 and data.startswith(b"\r")
      and data.count(b"\n") == 1 and data.endswith(b"\n"), data[:200])
check("progress: line format, 0% to 100%, speed varies",
      all(re.fullmatch(r"\[download\] +\d+\.\d% of 3\.00MiB at +\d+\.\d\d[KM]iB/s ETA \d\d:\d\d", l) for l in lines)
      and "   0.0% of" in lines[0] and " 100.0% of" in lines[-1] and len({l.split(" at ")[1] for l in lines}) > 5,
      lines[:3])
check("progress: paced over about 2 s", len(arrived) == 40 and arrived[0] < 0.6 and 0.9 <= arrived[20] <= 3
      and 1.95 <= total <= 6, (arrived[:1], arrived[20:21], total))
start = time.monotonic()
code, out, err = run("https://x", steps=[{"progress": {"count": 3000, "rate": 6000, "stream": "err"}}])
elapsed = time.monotonic() - start
check("fast progress on stderr", err.count(b"\r") == 3000 and not out and 0.48 <= elapsed <= 2.5, elapsed)

# A spawned child shares the process group; SIGTERM can be ignored.
environment = dict(os.environ, FAKE_YTDLP_PIDFILE=f"{WORK}/pids", FAKE_YTDLP_SCENARIO=f"{WORK}/scenario.json")
with open(f"{WORK}/scenario.json", "w") as f:
    json.dump([{"spawn_child_sleep": 30}, {"ignore_sigterm": True}, {"out": "ready\n"}, {"sleep": 30}], f)
process = subprocess.Popen(["bash", "-c", command("https://x")], stdout=subprocess.PIPE, env=environment)
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
