"""What the test servers here share: 127.0.0.1 only, the "READY http://127.0.0.1:PORT/" line,
quiet handlers, paced bodies, and an end with the process that started them: a server whose
standard input is a pipe (as QProcess and start() give it) exits when that pipe closes, even if
its starter died. A terminal or /dev/null on standard input is not watched.
"""

import os
import stat
import subprocess
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

HOST = "127.0.0.1"
HERE = os.path.dirname(os.path.abspath(__file__))
CHUNK = 64 * 1024


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *args):
        pass

    def answer(self, code, body=b"", headers=(), content_type="text/plain; charset=utf-8"):
        """A whole answer; its body is left out for HEAD."""
        self.send_response(code)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        for key, value in headers:
            self.send_header(key, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def send_body(self, source, length, rate=0):
        """Copies `length` bytes of the file `source`, at about `rate` bytes a second if given
        (paced against the start, so sleeps do not drift)."""
        chunk = max(1, min(CHUNK, rate // 20)) if rate > 0 else CHUNK
        started, sent = time.monotonic(), 0
        try:
            while sent < length:
                data = source.read(min(chunk, length - sent))
                if not data:
                    break
                self.wfile.write(data)
                sent += len(data)
                if rate > 0:
                    self.wfile.flush()
                    time.sleep(max(0.0, started + sent / rate - time.monotonic()))
        except (BrokenPipeError, ConnectionResetError):
            self.close_connection = True


class QuietServer(ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        # A client that goes away before its answer is written (a picture whose loading was
        # cancelled) is not the server's fault.
        if isinstance(sys.exc_info()[1], (BrokenPipeError, ConnectionResetError)):
            return
        super().handle_error(request, client_address)


def listen(handler, **attributes):
    """A server on a free port of 127.0.0.1 with `attributes` set on it, and its address."""
    server = QuietServer((HOST, 0), handler)
    for name, value in attributes.items():
        setattr(server, name, value)
    return server, f"http://{HOST}:{server.server_address[1]}/"


def _exit_when_stdin_closes():
    try:
        while os.read(sys.stdin.fileno(), 4096):
            pass
    except OSError:
        pass
    os._exit(0)


def serve(server):
    """Says READY, then serves until SIGTERM/SIGINT or until standard input, a pipe, closes."""
    print(f"READY http://{HOST}:{server.server_address[1]}/", flush=True)
    try:
        mode = os.fstat(sys.stdin.fileno()).st_mode
    except (OSError, ValueError, AttributeError):
        mode = 0
    if stat.S_ISFIFO(mode) or stat.S_ISSOCK(mode):
        threading.Thread(target=_exit_when_stdin_closes, daemon=True).start()
    try:
        server.serve_forever(poll_interval=0.2)
    except KeyboardInterrupt:
        pass
    finally:
        server.server_close()


def start(script, *arguments):
    """Starts the server `script` of this folder; gives the process, which ends when its stdin is
    closed, and the server's address."""
    process = subprocess.Popen([sys.executable, os.path.join(HERE, script), *arguments],
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    line = process.stdout.readline().strip()
    if not line.startswith("READY "):
        sys.exit(f"{script} did not start: {line}")
    return process, line.split(" ", 1)[1]
