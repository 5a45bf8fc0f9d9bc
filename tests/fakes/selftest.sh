#!/usr/bin/env bash
# Checks that the fake yt-dlp next to this script behaves as the engine tests expect.
# Runs it through "bash -c" the way the application does. Exits non-zero on any failure.
# "cond && pass || fail" is fine here: pass always succeeds.
# shellcheck disable=SC2015
set -u

here=$(cd "$(dirname "$0")" && pwd)
fake="$here/yt-dlp"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
pass() { echo "ok:   $*"; }

# Single-quote a word for a POSIX shell: it's -> 'it'\''s'
quote() { local s=${1//\'/\'\\\'\'}; printf "'%s'" "$s"; }

scenario() { printf '%s' "$1" > "$work/scenario.json"; echo "$work/scenario.json"; }

# --- argv is recorded exactly -----------------------------------------------------------------
odd=$'it\'s a $HOME `x` "q"\nline2 \xc3\xa9\xe2\x82\xac\xf0\x9f\x8e\xac'
bad=$'bad\xffbyte'
cmd="$(quote "$fake") -o $(quote "$work/out/%(title)s.%(ext)s") $(quote "$odd") $(quote "$bad") --version"
FAKE_YTDLP_ARGV_FILE="$work/argv" bash -c "$cmd" > /dev/null
if ODD="$odd" BAD="$bad" WORK="$work" python3 - "$work/argv" <<'EOF'
import json, os, sys
lines = open(sys.argv[1], encoding="ascii").read().splitlines()
def env(name):
    return os.environb[name.encode()].decode("utf-8", "surrogateescape")
expected = ["-o", env("WORK") + "/out/%(title)s.%(ext)s", env("ODD"), env("BAD"), "--version"]
got = json.loads(lines[0])
sys.exit(0 if len(lines) == 1 and got == expected and got[3] == "bad\udcffbyte" else 1)
EOF
then pass "argv recorded exactly (quote, spaces, \$, newline, non-ASCII, invalid UTF-8)"
else fail "argv recorded: $(cat "$work/argv")"; fi

# Concurrent invocations each add one whole line.
rm -f "$work/argv"
for i in 1 2 3 4 5 6; do
    FAKE_YTDLP_ARGV_FILE="$work/argv" bash -c "$(quote "$fake") --version run$i" > /dev/null &
done
wait
if python3 -c '
import json, sys
runs = sorted(json.loads(l)[1] for l in open(sys.argv[1]))
sys.exit(runs != ["run%d" % i for i in range(1, 7)])' "$work/argv"
then pass "six concurrent invocations give six intact lines"
else fail "concurrent argv lines: $(cat "$work/argv")"; fi

# --- version, update, formats -----------------------------------------------------------------
out=$(bash -c "$(quote "$fake") --version"); rc=$?
[[ $out == 2025.11.12 && $rc == 0 ]] && pass "--version default" || fail "--version gave '$out' rc=$rc"

out=$(FAKE_YTDLP_VERSION=1999.01.01 FAKE_YTDLP_VERSION_EXIT=4 bash -c "$(quote "$fake") --version"); rc=$?
[[ $out == 1999.01.01 && $rc == 4 ]] && pass "--version overridden" || fail "--version gave '$out' rc=$rc"

out=$(FAKE_YTDLP_UPDATE_OUTPUT="ERROR: nope" FAKE_YTDLP_UPDATE_EXIT=1 bash -c "$(quote "$fake") -U"); rc=$?
[[ $out == "ERROR: nope" && $rc == 1 ]] && pass "-U overridden" || fail "-U gave '$out' rc=$rc"

out=$(bash -c "$(quote "$fake") --list-formats https://x"); rc=$?
[[ $rc == 0 && $out == *"Available formats"* && $out == *"1280x720"* ]] \
    && pass "--list-formats default table" || fail "--list-formats gave rc=$rc: $out"

out=$(FAKE_YTDLP_FORMATS=table FAKE_YTDLP_FORMATS_STDERR=oops FAKE_YTDLP_FORMATS_EXIT=2 \
      bash -c "$(quote "$fake") -F https://x" 2> "$work/err"); rc=$?
[[ $out == table && $(cat "$work/err") == oops && $rc == 2 ]] \
    && pass "-F overridden (stdout, stderr, exit)" || fail "-F gave '$out' rc=$rc"

out=$(bash -c "$(quote "$fake") -J --no-playlist -- https://x" | python3 -c 'import json,sys; d=json.load(sys.stdin); print(d["title"], len(d["formats"]), d["webpage_url"])'); rc=$?
[[ $rc == 0 && $out == "fake 5 https://x" ]] && pass "-J default record" || fail "-J gave rc=$rc: $out"

printf '{"title": "recorded"}' > "$work/info.json"
out=$(FAKE_YTDLP_INFO="$work/info.json" FAKE_YTDLP_INFO_STDERR="ERROR: x" FAKE_YTDLP_INFO_EXIT=1 \
      bash -c "$(quote "$fake") -J https://x" 2> "$work/err"); rc=$?
[[ $out == '{"title": "recorded"}' && $(cat "$work/err") == "ERROR: x" && $rc == 1 ]] \
    && pass "-J overridden (file, stderr, exit)" || fail "-J gave '$out' rc=$rc"

# --- scenarios --------------------------------------------------------------------------------
run() { FAKE_YTDLP_SCENARIO="$1" bash -c "$(quote "$fake") -o $(quote "$work/dl/%(title)s.%(ext)s") https://x"; }

FAKE_YTDLP_EXIT=7 run "$(scenario '[{"out": "a"}]')" > /dev/null; rc=$?
[[ $rc == 7 ]] && pass "FAKE_YTDLP_EXIT honoured" || fail "FAKE_YTDLP_EXIT: rc=$rc"

run "$(scenario '[{"out": "one\n"}, {"exit": 3}, {"out": "never"}]')" > "$work/out"; rc=$?
[[ $rc == 3 && $(cat "$work/out") == one ]] && pass "exit step stops at once" || fail "exit step: rc=$rc"

run "$(scenario '[{"out_hex": "ff00fe0a"}, {"err": "E\r"}, {"err_hex": "c328"}]')" \
    > "$work/out" 2> "$work/err"
[[ $(od -An -tx1 "$work/out" | tr -d ' \n') == ff00fe0a && $(od -An -tx1 "$work/err" | tr -d ' \n') == 450dc328 ]] \
    && pass "raw bytes on stdout and stderr" || fail "raw bytes: $(od -An -tx1 "$work/out") / $(od -An -tx1 "$work/err")"

# 40 lines at 20 a second: they must arrive over about two seconds, not all at the end.
if FAKE_YTDLP_SCENARIO="$(scenario '[{"progress": {"count": 40, "rate": 20, "size": "3.00MiB"}}]')" \
   python3 - "$(quote "$fake") https://x" <<'EOF'
import os, re, subprocess, sys, time
start = time.monotonic()
proc = subprocess.Popen(["bash", "-c", sys.argv[1]], stdout=subprocess.PIPE)
data, seen = b"", []  # seen[i]: seconds after start by which line i had arrived
while chunk := os.read(proc.stdout.fileno(), 65536):
    data += chunk
    seen += [time.monotonic() - start] * (data.count(b"\r") - len(seen))
proc.wait()
total = time.monotonic() - start
text = data.decode()
lines = text[:-1].split("\r")[1:]
checks = {
    "40 lines and one final newline": len(lines) == 40 and text.startswith("\r")
                                      and text.count("\n") == 1 and text.endswith("\n"),
    "line format": all(re.fullmatch(r"\[download\] +\d+\.\d% of 3\.00MiB at +\d+\.\d\d[KM]iB/s "
                                    r"ETA \d\d:\d\d", l) for l in lines),
    "0% to 100%": "   0.0% of" in lines[0] and " 100.0% of" in lines[-1],
    "speed varies": len({l.split(" at ")[1] for l in lines}) > 5,
    "first line early": len(seen) == 40 and seen[0] < 0.6,
    "line 20 after about 1 s": len(seen) == 40 and 0.9 <= seen[20] <= 3,
    "whole run about 2 s": 1.95 <= total <= 6,
}
failed = [name for name, ok in checks.items() if not ok]
if failed:
    print("  progress failed:", ", ".join(failed), "| arrival times:", seen[:1], seen[20:21], total)
sys.exit(1 if failed else 0)
EOF
then pass "progress: 40 \\r-separated lines, 0% to 100%, paced over 2 s"
else fail "progress output"; fi

start=$(date +%s%N)
run "$(scenario '[{"progress": {"count": 3000, "rate": 6000, "stream": "err"}}]')" 2> "$work/err" > "$work/out"
elapsed_ms=$(( ($(date +%s%N) - start) / 1000000 ))
n=$(tr -cd '\r' < "$work/err" | wc -c)
[[ $n == 3000 && ! -s "$work/out" && $elapsed_ms -ge 480 && $elapsed_ms -le 2500 ]] \
    && pass "fast progress on stderr: $n lines in ${elapsed_ms} ms" \
    || fail "fast progress: $n lines, ${elapsed_ms} ms"

run "$(scenario '[{"write_output": true}]')" > /dev/null
[[ -s "$work/dl/fake.mp4" ]] && pass "write_output creates the file" || fail "write_output: no $work/dl/fake.mp4"

out=$(bash -c "$(quote "$fake") -o $(quote "$work/x/%(title)s.%(ext)s") https://x"); rc=$?
[[ $rc == 0 && $out == *"[download] Destination: $work/x/fake.mp4"* && $out == *$'\r[download] 100%'* ]] \
    && pass "default download" || fail "default download rc=$rc: $out"

# After "--" every word is a link, as in yt-dlp: an option-shaped link is not obeyed.
out=$(bash -c "$(quote "$fake") -o $(quote "$work/x/%(title)s.%(ext)s") -- --version"); rc=$?
[[ $rc == 0 && $out == *"[download] Destination:"* && $out != 2025.* ]] \
    && pass "a link after -- is not an option" || fail "link after --: rc=$rc: $out"

out=$(run "$(scenario '[{"flood": {"bytes": 200000}}]')"); rc=$?
[[ $rc == 0 && ${#out} == 200000 && $out != *[!x]* ]] && pass "flood: bytes without a newline" \
    || fail "flood: rc=$rc, ${#out} bytes"

# --- processes --------------------------------------------------------------------------------
rm -f "$work/pids"
FAKE_YTDLP_PIDFILE="$work/pids" \
    run "$(scenario '[{"spawn_child_sleep": 30}, {"ignore_sigterm": true}, {"out": "ready\n"}, {"sleep": 30}]')" \
    > "$work/out" 2> /dev/null &
job=$!
for _ in $(seq 100); do [[ -s "$work/out" ]] && break; sleep 0.05; done
mapfile -t pids < "$work/pids"
if [[ ${#pids[@]} == 2 ]]; then
    parent=${pids[0]} child=${pids[1]}
    [[ $(ps -o pgid= -p "$parent") == $(ps -o pgid= -p "$child") && $(ps -o comm= -p "$child") == sleep ]] \
        && pass "spawned sleep shares the process group" || fail "child not in the parent's group"
    kill -TERM "$parent"; sleep 0.3
    kill -0 "$parent" 2> /dev/null && pass "SIGTERM ignored" || fail "SIGTERM was not ignored"
    kill -KILL "$parent" "$child" 2> /dev/null
else
    fail "pidfile holds ${#pids[@]} pids, expected 2"
    [[ ${#pids[@]} -gt 0 ]] && kill -KILL "${pids[@]}" 2> /dev/null
fi
wait "$job" 2> /dev/null

if (( failures )); then echo "$failures check(s) failed"; exit 1; fi
echo "all checks passed"
